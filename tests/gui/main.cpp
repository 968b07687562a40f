// Runs the window's test classes on the offscreen platform, in a temporary home so that no
// setting or association of the person running them is touched. One argument names the class
// to run (CTest runs each on its own); without one all run.
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <functional>
#include <map>
#include <memory>

#include "test_classes.h"

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QTemporaryDir home;
    if (!home.isValid()) return 2;
    for (const char* name : {"HOME", "TMP"}) qputenv(name, home.path().toLocal8Bit());
    qputenv("XDG_CONFIG_HOME", (home.path() + QStringLiteral("/.config")).toLocal8Bit());
    qputenv("XDG_DATA_HOME", (home.path() + QStringLiteral("/.local/share")).toLocal8Bit());

    const QString runtime = home.path() + QStringLiteral("/runtime");
    QDir().mkpath(runtime);
    QFile::setPermissions(runtime, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    qputenv("XDG_RUNTIME_DIR", runtime.toLocal8Bit());

    QApplication application(argc, argv);
    const std::map<QString, std::function<std::unique_ptr<QObject>()>> classes = korvatek::gui::test::testClasses();

    QStringList arguments = QApplication::arguments();
    const QString program = arguments.takeFirst();
    std::vector<QString> chosen;
    if (!arguments.isEmpty() && classes.count(arguments.first()) != 0) {
        chosen.push_back(arguments.takeFirst());
    } else {
        for (const auto& [name, make] : classes) chosen.push_back(name);
    }
    int failures = 0;
    for (const QString& name : chosen) {
        const std::unique_ptr<QObject> tests = classes.at(name)();
        failures += QTest::qExec(tests.get(), QStringList{program} + arguments);
    }
    return failures == 0 ? 0 : 1;
}
