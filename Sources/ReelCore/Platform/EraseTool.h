#pragma once

#include "ReelCore/Platform/URL.h"

namespace ReelCore {

/// The program that erases a volume: `/usr/sbin/diskutil` where that exists; elsewhere the helper
/// of the same name that is installed with the running program, in `../libexec/keldobay` seen from
/// the program's folder. It need not be there: starting it then fails. Throws
/// SystemError where the system does not tell where the running program is.
URL eraseTool();

}  // namespace ReelCore
