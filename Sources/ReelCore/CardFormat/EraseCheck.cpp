#include "ReelCore/CardFormat/EraseCheck.h"

#include "ReelCore/Offload/OffloadError.h"
#include "ReelCore/Offload/OffloadTypes.h"
#include "ReelCore/Offload/SourceScanner.h"
#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Platform/SystemError.h"

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include <fmt/format.h>

namespace ReelCore {

namespace {

std::optional<std::string> objectionToCopies(const FileVerification& one) {
    std::vector<FileIdentity> places;
    for (const DestinationResult& copy : one.destinations) {
        const std::string path = copy.writtenURL.native();
        const auto found = FileSystem::stamp(copy.writtenURL);
        const auto place = FileSystem::identity(copy.writtenURL);
        if (!found || !place) return "A verified copy is no longer there: " + path;
        if (!copy.proved) return "A copy has not been proved: " + path;
        if (found != copy.proved) {
            return "A verified copy is no longer the file that was verified: " + path;
        }
        if (std::ranges::find(places, *place) != places.end()) {
            return "Two of the drives are one and the same folder, so there is only one copy.";
        }
        places.push_back(*place);
    }
    return std::nullopt;
}

std::optional<std::string> objectionToCopies(const OffloadResult& result) {
    for (const FileVerification& one : result.files) {
        if (auto objection = objectionToCopies(one)) return objection;
    }
    return std::nullopt;
}

/// `failed` says when they could not be read.
std::optional<std::string> objectionTo(const UnreadFolders& unread, std::string_view failed) {
    if (unread.count == 0) return std::nullopt;
    if (unread.count == 1) {
        return fmt::format("The folder {} on the card {}, so nobody knows what is in it.",
                           unread.first, failed);
    }
    return fmt::format(
        "{} folders on the card {}, so nobody knows what is in them. The first of them is {}.",
        unread.count, failed, unread.first);
}

HeldCard hold(const URL& source) {
    try {
        return HeldCard(source);
    } catch (const SystemError& error) {
        if (error.isOwnLimit()) throw;
        throw OffloadError(OffloadError::SourceNotFound{source});
    }
}

std::optional<std::string> objectionToCard(const OffloadResult& result, const HeldCard& card) {
    const auto scan = SourceScanner::scan(result.request.source);
    if (auto objection = objectionTo(scan.unreadFolders, "can't be read")) return objection;
    const bool same =
        std::ranges::equal(scan.files, result.files, {}, {}, &FileVerification::file) &&
        card.isAt(result.request.source);
    if (same) return std::nullopt;
    return "The files on the card are not the ones that were verified.";
}

}  // namespace

EraseCheck::Finding EraseCheck::look(const OffloadResult& result) {
    if (auto objection =
            objectionTo(result.unreadFolders, "could not be read when it was copied")) {
        return {std::move(objection), std::nullopt};
    }
    if (auto objection = objectionToCopies(result)) return {std::move(objection), std::nullopt};
    HeldCard card = hold(result.request.source);
    if (auto objection = objectionToCard(result, card)) return {std::move(objection), std::nullopt};
    return {std::nullopt, std::move(card)};
}

}  // namespace ReelCore
