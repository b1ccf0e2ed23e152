#include "ReelCore/Transcribe/DocxTranscriptWriter.h"

#include "ReelCore/Platform/File.h"
#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Platform/RunningChild.h"
#include "ReelCore/Platform/SystemError.h"
#include "ReelCore/Platform/TemporaryPath.h"
#include "ReelCore/Platform/Text.h"
#include "ReelCore/Transcribe/TranscribeError.h"

#include <cerrno>
#include <filesystem>
#include <span>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace ReelCore {

namespace {

constexpr std::string_view contentTypes =
    R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>
<Types xmlns="http://schemas.openxmlformats.org/package/2006/content-types">
  <Default Extension="rels" ContentType="application/vnd.openxmlformats-package.relationships+xml"/>
  <Default Extension="xml" ContentType="application/xml"/>
  <Override PartName="/word/document.xml" ContentType="application/vnd.openxmlformats-officedocument.wordprocessingml.document.main+xml"/>
</Types>)";

constexpr std::string_view relationships =
    R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>
<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">
  <Relationship Id="rId1" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/officeDocument" Target="word/document.xml"/>
</Relationships>)";

constexpr std::string_view documentHead =
    R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>
<w:document xmlns:w="http://schemas.openxmlformats.org/wordprocessingml/2006/main">
  <w:body>
    )";

constexpr std::string_view tableHead = R"(
    <w:tbl>
      <w:tblPr>
        <w:tblW w:w="0" w:type="auto"/>
        <w:tblBorders>
          <w:top w:val="single" w:sz="4" w:space="0" w:color="CCCCCC"/>
          <w:left w:val="single" w:sz="4" w:space="0" w:color="CCCCCC"/>
          <w:bottom w:val="single" w:sz="4" w:space="0" w:color="CCCCCC"/>
          <w:right w:val="single" w:sz="4" w:space="0" w:color="CCCCCC"/>
          <w:insideH w:val="single" w:sz="4" w:space="0" w:color="CCCCCC"/>
          <w:insideV w:val="single" w:sz="4" w:space="0" w:color="CCCCCC"/>
        </w:tblBorders>
      </w:tblPr>
      <w:tblGrid><w:gridCol w:w="2600"/><w:gridCol w:w="6400"/></w:tblGrid>
      )";

constexpr std::string_view documentTail = R"(
    </w:tbl>
  </w:body>
</w:document>)";

struct Paragraph {
    std::string text;
    bool isBold = false;
};

std::string xmlOf(const Paragraph& paragraph) {
    return fmt::format(R"(<w:p><w:r>{}<w:t xml:space="preserve">{}</w:t></w:r></w:p>)",
                       paragraph.isBold ? "<w:rPr><w:b/></w:rPr>" : "",
                       Text::escapedXML(paragraph.text));
}

std::string cell(int width, const std::vector<Paragraph>& paragraphs) {
    std::string xml =
        fmt::format(R"(<w:tc><w:tcPr><w:tcW w:w="{}" w:type="dxa"/></w:tcPr>)", width);
    for (const Paragraph& paragraph : paragraphs) xml += xmlOf(paragraph);
    return xml + "</w:tc>";
}

std::string row(const std::vector<Paragraph>& left, const std::vector<Paragraph>& right) {
    return "<w:tr>" + cell(2600, left) + cell(6400, right) + "</w:tr>";
}

std::string rowOf(const TranscriptSegment& segment, const Transcript& transcript) {
    std::vector<Paragraph> left{{transcript.timecode(segment).formatted(), true},
                                {segment.speaker, true}};
    const auto hint = transcript.appearances.find(segment.speaker);
    if (hint != transcript.appearances.end() &&
        (hint->second.clothingColor || hint->second.peopleCount > 0)) {
        left.push_back({"(" + hint->second.note() + ")"});
    }
    return row(left, {{segment.text}});
}

void writePart(const URL& path, std::string_view text) {
    File::create(path).write(std::as_bytes(std::span(text)));
}

/// Without the user's own settings for it, which might leave the folders out.
int zip(const URL& target, const URL& folder) {
    RunningChild child("/usr/bin/zip",
                       {"-X", "-r", "-q", target.native(), "[Content_Types].xml", "_rels", "word"},
                       {}, {.workingFolder = folder, .environment = {{"ZIPOPT", ""}, {"ZIP", ""}}});
    return child.wait();
}

}  // namespace

URL DocxTranscriptWriter::write(const Transcript& transcript, const URL& url) const {
    // To such a name zip adds an extension of its own.
    if (url.filename().native().find('.') == std::string::npos) throw SystemError(EINVAL, url);
    const URL target = FileSystem::absolute(url);
    const TemporaryPath package("keldo-docx-", "");
    FileSystem::createFolders(package.url() / "_rels");
    FileSystem::createFolders(package.url() / "word");
    writePart(package.url() / "[Content_Types].xml", contentTypes);
    writePart(package.url() / "_rels" / ".rels", relationships);
    writePart(package.url() / "word" / "document.xml", documentXML(transcript));
    std::error_code ignored;
    if (!FileSystem::isFolder(target)) std::filesystem::remove(target, ignored);
    const int status = zip(target, package.url());
    if (status != 0) {
        throw TranscribeError(
            TranscribeError::ParseFailed{fmt::format("zip failed ({}) writing docx", status)});
    }
    return url;
}

std::string DocxTranscriptWriter::documentXML(const Transcript& transcript) {
    std::string xml(documentHead);
    xml += xmlOf({fmt::format("{}  ·  Start TC {}", transcript.sourceName,
                              transcript.startTimecode.formatted()),
                  true});
    if (transcript.slate && transcript.slate->fieldCount() > 0) {
        xml += xmlOf({"Slate — " + slateLine(*transcript.slate)});
    }
    xml += tableHead;
    xml += row({{"TIMECODE / SPEAKER", true}}, {{"DIALOGUE", true}});
    for (const TranscriptSegment& segment : transcript.segments) xml += rowOf(segment, transcript);
    xml += documentTail;
    return xml;
}

std::string DocxTranscriptWriter::slateLine(const SlateInfo& slate) {
    std::vector<std::string> pieces;
    const auto add = [&](const std::optional<std::string>& field, std::string_view before,
                         std::string_view behind = "") {
        if (field) pieces.push_back(fmt::format("{}{}{}", before, *field, behind));
    };
    add(slate.production, "Prod: ");
    add(slate.scene, "Scene ");
    add(slate.take, "Take ");
    add(slate.roll, "Roll ");
    add(slate.director, "Dir: ");
    add(slate.camera, "Cam: ");
    add(slate.fps, "", " fps");
    add(slate.date, "");
    return fmt::format("{}", fmt::join(pieces, "  ·  "));
}

}  // namespace ReelCore
