#include "ReelCore/Vision/SlateReader.h"

#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Platform/TemporaryPath.h"
#include "ReelCore/Transcribe/TranscribeError.h"
#include "ReelCore/Vision/SlateParser.h"

#include <algorithm>

namespace ReelCore {

std::optional<SlateInfo> SlateReader::read(const URL& url, double headSeconds, std::int64_t samples,
                                           const std::function<bool()>& isCancelled) const {
    if (!grabber.isAvailable()) throw TranscribeError(TranscribeError::FFmpegNotFound{});
    const TemporaryPath folder("keldobay-slate-", "");
    FileSystem::createFolders(folder.url());

    const std::int64_t slices = std::max<std::int64_t>(samples, 1);
    std::optional<SlateInfo> best;
    for (std::int64_t i = 0; i < slices && !isCancelled(); ++i) {
        const double middle =
            headSeconds * (static_cast<double>(i) + 0.5) / static_cast<double>(slices);
        const auto image = grabber.still(url, middle, folder.url());
        if (!image) continue;
        SlateInfo info = SlateParser::parse(vision.recognizeText(*image));
        if (info.fieldCount() > (best ? best->fieldCount() : 0)) best = std::move(info);
    }
    return best;
}

}  // namespace ReelCore
