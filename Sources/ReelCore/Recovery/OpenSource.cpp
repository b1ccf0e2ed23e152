#include "ReelCore/Recovery/OpenSource.h"

#include "ReelCore/Platform/SystemError.h"
#include "ReelCore/Recovery/RecoveryError.h"

namespace ReelCore {

File openSource(const URL& url) {
    try {
        return File::openForReading(url, FileLinks::follow);
    } catch (const SystemError&) {
        throw RecoveryError(RecoveryError::NotFound{url});
    }
}

}  // namespace ReelCore
