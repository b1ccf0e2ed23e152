#pragma once

namespace TestSupport {

/// From now on this process can start no thread, and is no longer root: for a forked one. False if
/// the system starts one all the same.
bool leaveNoThreads();

}  // namespace TestSupport
