#pragma once

namespace ReelCore {

/// From here on the signals that ask a program to end (SIGTERM, SIGINT, SIGHUP) have it end as an
/// application does: ProcessCleanup runs, on a thread of its own, and then the process dies of the
/// signal. A second signal of the same kind is not waited with. One that is ignored, as under
/// nohup, stays so.
///
/// Once, from `main`. Throws SystemError where the process has no means for it.
void cleanUpOnSignals();

}  // namespace ReelCore
