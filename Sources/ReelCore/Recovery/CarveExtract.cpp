#include "ReelCore/Platform/Error.h"
#include "ReelCore/Platform/File.h"
#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Recovery/CardCarver.h"
#include "ReelCore/Recovery/ClipDoctor.h"
#include "ReelCore/Recovery/ImagePiece.h"
#include "ReelCore/Recovery/MdatHeader.h"
#include "ReelCore/Recovery/OpenSource.h"
#include "ReelCore/Recovery/OutputGuard.h"

#include <algorithm>
#include <exception>
#include <system_error>

#include <fmt/format.h>

namespace ReelCore {

namespace {

/// Copies block by block. One that can't be read whole is left out, so that the rest moves up.
void copy(const File& image, const Finding& finding, File& target) {
    constexpr std::int64_t blockSize = 0x800000;
    const std::int64_t length = std::min(finding.length, image.size() - finding.offset);
    std::vector<std::byte> buffer(
        static_cast<std::size_t>(std::clamp<std::int64_t>(length, 0, blockSize)));
    for (std::int64_t done = 0; done < length; done += blockSize) {
        const auto size = static_cast<std::size_t>(std::min(blockSize, length - done));
        target.write(readPiece(image, finding.offset + done, std::span(buffer).first(size)));
    }
}

void cutOut(const Finding& finding, const URL& image, const URL& carved) {
    const File source = openSource(image);
    File target = File::create(carved);
    if (finding.kind == FindingKind::orphanProRes) target.write(mdatHeader(finding.length));
    copy(source, finding, target);
    // A drive may refuse late what it took at first.
    target.flush();
    FileSystem::flushFolder(carved.parent_path());
}

RepairOutcome repairCarved(const Finding& finding, const URL& image, const URL& carved,
                           const std::optional<URL>& reference) {
    const ClipReport report{carved, FileSystem::sizeOf(carved).value_or(0),
                            ClipDoctor::diagnose(carved)};
    if (report.diagnosis.isHealthy()) {
        return {image, carved, true, "carve", finding.label() + " — intact"};
    }
    RepairOutcome outcome = ClipDoctor::repair(report, reference, carved.parent_path());
    if (outcome.succeeded) {
        std::error_code ignored;
        std::filesystem::remove(carved, ignored);
    }
    return {image, outcome.output.value_or(carved), outcome.succeeded, "carve + " + outcome.method,
            finding.label() + " — " + outcome.detail};
}

}  // namespace

RepairOutcome CardCarver::extract(const Finding& finding, const URL& image, const URL& outputDir,
                                  const std::optional<URL>& reference, std::int64_t index) {
    try {
        FileSystem::createFolders(outputDir);
        const URL carved =
            outputDir / fmt::format("carved_{:03}.{}", index, outputExtension(finding.kind));
        requireOtherFile(carved, {image, reference.value_or(image)});
        cutOut(finding, image, carved);
        return repairCarved(finding, image, carved, reference);
    } catch (const Error& error) {
        return {image, std::nullopt, false, "carve", error.description()};
    } catch (const std::exception& error) {
        return {image, std::nullopt, false, "carve", error.what()};
    }
}

}  // namespace ReelCore
