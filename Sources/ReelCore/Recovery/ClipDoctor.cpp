#include "ReelCore/Recovery/ClipDoctor.h"

#include "ReelCore/Models/UniquePath.h"
#include "ReelCore/Offload/SourceScanner.h"
#include "ReelCore/Platform/Arithmetic.h"
#include "ReelCore/Platform/File.h"
#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Platform/FolderWalk.h"
#include "ReelCore/Platform/Text.h"
#include "ReelCore/Recovery/MoovRebuilder.h"
#include "ReelCore/Recovery/RecoveryError.h"
#include "ReelCore/Recovery/Remux.h"
#include "ReelCore/Recovery/WAVRepairer.h"

#include <algorithm>
#include <exception>
#include <new>
#include <string>

#include <fmt/format.h>

namespace ReelCore {

namespace {

bool isClip(const URL& url) {
    const std::string extension = lowerCasedExtension(url);
    const auto contains = [&](const auto& set) {
        return std::ranges::find(set, extension) != set.end();
    };
    return contains(ClipDoctor::movieExtensions) || contains(ClipDoctor::waveExtensions) ||
           contains(ClipDoctor::mxfExtensions);
}

URL outputFor(const URL& source, const URL& folder, std::string_view ending) {
    return folder / (source.stem().native() + std::string(ending));
}

/// A drive may refuse late what it took at first: a clip is repaired when all of it has arrived,
/// and its name too.
RepairOutcome success(const URL& source, const URL& output, std::string method,
                      std::string detail) {
    File::openForUpdating(output).flush();
    FileSystem::flushFolder(output.parent_path());
    return {source, output, true, std::move(method), std::move(detail)};
}

RepairOutcome failure(const URL& source, std::string method, std::string detail) {
    return {source, std::nullopt, false, std::move(method), std::move(detail)};
}

/// Repairs a clip by what is wrong with it; every failure is thrown.
struct Repair {
    const URL& source;
    const std::optional<URL>& reference;
    const URL& folder;

    RepairOutcome operator()(const ClipDiagnosis::MissingIndex&) const {
        if (!reference) {
            const RecoveryError missing(
                RecoveryError::ReferenceRequired{"pick a healthy clip from the same camera"});
            return failure(source, "moov rebuild", missing.description());
        }
        const ReservedOutput output(outputFor(source, folder, "_recovered.mov"));
        const auto stats = MoovRebuilder::rebuild(source, *reference, output.url());
        return success(source, output.url(), "moov rebuild", stats.summary());
    }

    /// The clip still has its own index to go by.
    RepairOutcome operator()(const ClipDiagnosis::Truncated&) const {
        const ReservedOutput output(outputFor(source, folder, "_repaired.mov"));
        if (const auto stats = rebuiltByItself(output.url())) {
            return success(source, output.url(), "index rebuild", stats->summary());
        }
        remux(source, output.url());
        return success(source, output.url(), "remux", "container rebuilt from intact index");
    }

    RepairOutcome operator()(const ClipDiagnosis::StaleWAVSizes&) const {
        const ReservedOutput output(outputFor(source, folder, "_repaired.wav"));
        const auto fixed = WAVRepairer::repair(source, output.url());
        return success(source, output.url(), "WAV size fix",
                       fmt::format("{:.1f}s of audio recovered", fixed.seconds));
    }

    RepairOutcome operator()(const ClipDiagnosis::Unreadable&) const { return nothing(); }
    RepairOutcome operator()(const ClipDiagnosis::Healthy&) const { return nothing(); }

private:
    /// Nothing where the clip can't be rebuilt, for whatever reason.
    std::optional<MoovRebuilder::Stats> rebuiltByItself(const URL& output) const {
        try {
            return MoovRebuilder::rebuild(source, source, output);
        } catch (const std::exception&) {
            return std::nullopt;
        }
    }

    RepairOutcome nothing() const { return failure(source, "—", "nothing to repair"); }
};

}  // namespace

RecoveryScan ClipDoctor::scan(const URL& directory) {
    std::vector<std::pair<std::string, ClipReport>> keyed;
    const auto report = [&](const URL& url) {
        if (!isClip(url)) return;
        keyed.emplace_back(Text::orderingKey(url.native()),
                           ClipReport{url, FileSystem::sizeOf(url).value_or(0), diagnose(url)});
    };
    walkReadableEntries(directory, SourceScanner::isIgnored, report);
    std::ranges::stable_sort(keyed, {}, [](const auto& one) { return one.first; });
    RecoveryScan result;
    for (auto& [key, one] : keyed) result.reports.push_back(std::move(one));
    return result;
}

RepairOutcome ClipDoctor::repair(const ClipReport& report, const std::optional<URL>& reference,
                                 const URL& outputDir) {
    try {
        FileSystem::createFolders(outputDir);
        return std::visit(Repair{report.url, reference, outputDir}, report.diagnosis.value);
    } catch (const OutOfRange&) {
        return failure(report.url, "repair", "Clip is too large to rebuild.");
    } catch (const std::bad_alloc&) {
        return failure(report.url, "repair", "Not enough memory for the index of the clip.");
    } catch (const Error& error) {
        return failure(report.url, "repair", error.description());
    } catch (const std::exception& error) {
        return failure(report.url, "repair", error.what());
    }
}

}  // namespace ReelCore
