#pragma once

#include "ReelCore/Platform/ChildProcess.h"
#include "ReelCore/Platform/HeldCard.h"
#include "ReelCore/Platform/URL.h"

#include <optional>
#include <string>
#include <vector>

namespace ReelCore {

/// The program that erases a volume: `/usr/sbin/diskutil` where that exists; elsewhere the helper
/// of the same name that is installed with the running program, in `../libexec/keldobay` seen from
/// the program's folder. It need not be there: starting it then fails. Throws
/// SystemError where the system does not tell where the running program is.
URL eraseTool();

/// Runs the erase tool as ChildProcess::run does. Our own helper takes over `card` on its standard
/// input, so that it erases no other; a system's own knows nothing of that, and the card is let go
/// before it starts, since what is held can't be unmounted.
ChildProcess::Outcome runEraseTool(const std::vector<std::string>& arguments,
                                   std::optional<HeldCard> card);

}  // namespace ReelCore
