#pragma once

#include <functional>

namespace TestSupport {

/// Runs `body` in a process of its own and returns its exit status (0 to 255): for what changes
/// the process for good, as another user or another root folder do. 255 if it throws or dies.
int statusOfForked(const std::function<int()>& body);

}  // namespace TestSupport
