#include "Support/EnvironmentVariable.h"

#include <cstdlib>

namespace TestSupport {

namespace {

std::optional<std::string> valueOf(const std::string& name) {
    const char* value = std::getenv(name.c_str());
    return value ? std::optional<std::string>(value) : std::nullopt;
}

void set(const std::string& name, const std::optional<std::string>& value) {
    if (value) {
        ::setenv(name.c_str(), value->c_str(), 1);
    } else {
        ::unsetenv(name.c_str());
    }
}

}  // namespace

EnvironmentVariable::EnvironmentVariable(std::string name, const std::string& value)
    : name_(std::move(name)), before_(valueOf(name_)) {
    set(name_, value);
}

EnvironmentVariable::EnvironmentVariable(std::string name, std::nullopt_t unset)
    : name_(std::move(name)), before_(valueOf(name_)) {
    set(name_, unset);
}

EnvironmentVariable::~EnvironmentVariable() {
    set(name_, before_);
}

}  // namespace TestSupport
