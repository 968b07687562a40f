#pragma once
// Sets an environment variable for the life of a scope and puts back what was there before
// (or removes it again). setenv/unsetenv exist only on POSIX systems; on Windows the value is
// set through the wide environment, so UTF-8 text (a Cyrillic TMP) reaches the program whole.

#include <optional>
#include <string>

namespace korvatek::testing {

class ScopedEnvironment {
public:
    ScopedEnvironment(std::string name, const std::string& value);
    ~ScopedEnvironment();
    ScopedEnvironment(const ScopedEnvironment&) = delete;
    ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;

private:
    std::string m_name;
    std::optional<std::string> m_saved;
};

// The variable's value as UTF-8, nothing when it is not set.
std::optional<std::string> environmentValue(const std::string& name);
// Sets the variable, or removes it when there is no value.
void setEnvironment(const std::string& name, const std::optional<std::string>& value);

}  // namespace korvatek::testing
