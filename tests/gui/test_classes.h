#pragma once
// The test classes of the run, each registered by its file under its class name.

#include <QObject>
#include <QString>

#include <functional>
#include <map>
#include <memory>

namespace korvatek::gui::test {

using TestClassFactory = std::function<std::unique_ptr<QObject>()>;

std::map<QString, TestClassFactory>& testClassRegistry();
inline std::map<QString, TestClassFactory> testClasses() { return testClassRegistry(); }

inline bool registerTestClass(const char* name, TestClassFactory make) {
    testClassRegistry()[QString::fromLatin1(name)] = std::move(make);
    return true;
}

}  // namespace korvatek::gui::test

#define KORVATEK_TEST_CLASS(Class)                                                                   \
    [[maybe_unused]] static const bool registered##Class =                                          \
        korvatek::gui::test::registerTestClass(#Class, [] { return std::unique_ptr<QObject>(new Class); })
