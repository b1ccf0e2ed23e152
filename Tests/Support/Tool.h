#pragma once

#include <string>
#include <vector>

namespace TestSupport {

struct ToolOutcome {
    int status = 0;
    std::string output;  ///< Standard output and standard error together.
};

/// Runs a program that is found on the search path, with an empty standard input.
ToolOutcome runTool(const std::string& name, const std::vector<std::string>& arguments);

/// The same, and throws std::runtime_error with what it said if it fails.
std::string outputOf(const std::string& name, const std::vector<std::string>& arguments);

/// True if the program is on the search path.
bool hasTool(const std::string& name);

}  // namespace TestSupport
