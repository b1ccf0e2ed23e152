#pragma once

#include <optional>
#include <string>

namespace TestSupport {

/// A variable of this process's environment that is another as long as the object lives. Made and
/// destroyed where no other thread reads the environment.
class EnvironmentVariable {
public:
    EnvironmentVariable(std::string name, const std::string& value);

    /// Without a value: it is not set.
    EnvironmentVariable(std::string name, std::nullopt_t unset);
    ~EnvironmentVariable();

    EnvironmentVariable(const EnvironmentVariable&) = delete;
    EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

private:
    std::string name_;
    std::optional<std::string> before_;
};

}  // namespace TestSupport
