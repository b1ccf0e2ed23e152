#include "ReelCore/Reports/MHLWriter.h"

#include "ReelCore/Offload/OffloadTypes.h"
#include "ReelCore/Platform/DateText.h"
#include "ReelCore/Platform/File.h"
#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Platform/SystemError.h"
#include "ReelCore/Platform/Text.h"
#include "ReelCore/Platform/UserAccount.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <span>
#include <string_view>
#include <system_error>
#include <utility>

#include <fmt/format.h>

namespace ReelCore {

namespace {

void replaceAll(std::string& text, std::string_view old, std::string_view fresh) {
    for (auto at = text.find(old); at != text.npos; at = text.find(old, at + fresh.size())) {
        text.replace(at, old.size(), fresh);
    }
}

std::string escaped(std::string_view value) {
    std::string text = Text::wellFormedXML(value);
    replaceAll(text, "&", "&amp;");
    replaceAll(text, "<", "&lt;");
    replaceAll(text, ">", "&gt;");
    replaceAll(text, "\r", "&#13;");
    return text;
}

std::string head(const OffloadResult& result, const MHLWriter& writer) {
    std::string list;
    list += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    list += "<hashlist version=\"1.1\">\n";
    list += "  <creatorinfo>\n";
    list += fmt::format("    <name>{}</name>\n", escaped(UserAccount::fullName()));
    list += fmt::format("    <username>{}</username>\n", escaped(UserAccount::loginName()));
    list += fmt::format("    <hostname>{}</hostname>\n", escaped(UserAccount::hostName()));
    list += fmt::format("    <tool>{} {}</tool>\n", escaped(writer.toolName),
                        escaped(writer.toolVersion));
    list += fmt::format("    <startdate>{}</startdate>\n", DateText::utc(result.startedAt));
    list += fmt::format("    <finishdate>{}</finishdate>\n", DateText::utc(result.finishedAt));
    return list + "  </creatorinfo>\n";
}

std::string entry(const FileVerification& one, std::string_view tag, const std::string& hashDate) {
    const MediaFile& file = one.file;
    std::string list = "  <hash>\n";
    list += fmt::format("    <file>{}</file>\n", escaped(file.relativePath));
    list += fmt::format("    <size>{}</size>\n", file.size);
    if (file.modificationDate) {
        list += fmt::format("    <lastmodificationdate>{}</lastmodificationdate>\n",
                            DateText::utc(*file.modificationDate));
    }
    list += fmt::format("    <{0}>{1}</{0}>\n", tag, one.sourceHash);
    list += fmt::format("    <hashdate>{}</hashdate>\n", hashDate);
    return list + "  </hash>\n";
}

/// As much of a list as is put together before it is written.
constexpr std::size_t pieceSize = 1 << 16;

void writeWhole(File file, const OffloadResult& result, const MHLWriter& writer) {
    const std::string hashDate = DateText::utc(now());
    const std::string_view tag = mhlTag(result.request.algorithm);
    std::string piece = head(result, writer);
    const auto write = [&] {
        file.write(std::as_bytes(std::span(piece)));
        piece.clear();
    };
    for (const FileVerification& one : result.files) {
        piece += entry(one, tag, hashDate);
        if (piece.size() >= pieceSize) write();
    }
    piece += "</hashlist>\n";
    write();
    file.flush();
}

/// Where a drive has gone, another file of that name may stand there by now.
void removeOnly(const URL& url, const std::optional<FileIdentity>& identity) {
    std::error_code ignored;
    if (FileSystem::identity(url) == identity) std::filesystem::remove(url, ignored);
}

}  // namespace

std::string MHLWriter::listName(std::string reelName) {
    std::ranges::replace(reelName, '/', '_');
    return reelName + ".mhl";
}

URL MHLWriter::write(const OffloadResult& result, const URL& folder) const {
    const URL url = folder / listName(result.request.reelName);
    File file = File::create(url);
    const auto identity = FileSystem::identity(url);
    try {
        writeWhole(std::move(file), result, *this);
        FileSystem::flushFolder(folder);
    } catch (...) {
        removeOnly(url, identity);
        throw;
    }
    return url;
}

}  // namespace ReelCore
