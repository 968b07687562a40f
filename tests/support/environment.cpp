#include "support/environment.h"

#include <cstdlib>
#include <utility>

#ifdef _WIN32
#include <windows.h>
#endif

namespace korvatek::testing {

#ifdef _WIN32
namespace {

std::wstring wide(const std::string& utf8) {
    if (utf8.empty()) return {};
    const int n = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), nullptr, 0);
    std::wstring out(static_cast<std::size_t>(n), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), out.data(), n);
    return out;
}

std::string narrow(const wchar_t* text) {
    const int n = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
    std::string out(static_cast<std::size_t>(n > 0 ? n - 1 : 0), '\0');
    if (n > 1) WideCharToMultiByte(CP_UTF8, 0, text, -1, out.data(), n, nullptr, nullptr);
    return out;
}

}  // namespace

std::optional<std::string> environmentValue(const std::string& name) {
    const wchar_t* value = _wgetenv(wide(name).c_str());
    if (value == nullptr) return std::nullopt;
    return narrow(value);
}

void setEnvironment(const std::string& name, const std::optional<std::string>& value) {
    // The C runtime keeps its narrow copy of the environment in step with the wide one; an
    // empty value removes the variable there.
    _wputenv_s(wide(name).c_str(), value ? wide(*value).c_str() : L"");
}

#else

std::optional<std::string> environmentValue(const std::string& name) {
    const char* value = std::getenv(name.c_str());
    if (value == nullptr) return std::nullopt;
    return std::string(value);
}

void setEnvironment(const std::string& name, const std::optional<std::string>& value) {
    if (value)
        ::setenv(name.c_str(), value->c_str(), 1);
    else
        ::unsetenv(name.c_str());
}

#endif

ScopedEnvironment::ScopedEnvironment(std::string name, const std::string& value)
    : m_name(std::move(name)), m_saved(environmentValue(m_name)) {
    setEnvironment(m_name, value);
}

ScopedEnvironment::~ScopedEnvironment() { setEnvironment(m_name, m_saved); }

}  // namespace korvatek::testing
