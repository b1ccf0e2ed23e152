#include "ReelCore/Transcribe/DocxTranscriptWriter.h"

#include "ReelCore/Platform/SystemError.h"
#include "ReelCore/Transcribe/TranscribeError.h"
#include "Support/DocumentReaders.h"
#include "Support/Forked.h"
#include "Support/LoopMount.h"
#include "Support/OwnMounts.h"
#include "Support/Tool.h"
#include "Support/ToolFixture.h"

#include <thread>

#include <gmock/gmock.h>
#include <sys/mount.h>

namespace ReelCore {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::EnvironmentVariable;
using TestSupport::outputOf;
using TestSupport::readFile;
using TestSupport::writeFile;

Transcript sample(const std::string& text = "Hello & <goodbye>.") {
    Transcript transcript;
    transcript.sourceName = "A001C002.mov";
    transcript.startTimecode = Timecode(1, 0, 0, 0, FrameRate::fps25);
    transcript.slate.emplace();
    transcript.slate->take = "3";
    transcript.segments = {{"Speaker 1", 0.0, 1.0, text}, {"♪ Music", 1.0, 2.0, "(song)"}};
    transcript.appearances = {{"Speaker 1", {"Speaker 1", "01:00:00:12", 1, 1, "blue"}}};
    return transcript;
}

std::string partOf(const URL& document, const std::string& part) {
    // unzip takes names for patterns.
    const std::string literal = part == "[Content_Types].xml" ? "[[]Content_Types].xml" : part;
    return outputOf("unzip", {"-p", document.native(), literal});
}

class DocxTranscriptWriterTest : public TestSupport::ToolFixture {
protected:
    DocxTranscriptWriterTest() { std::filesystem::create_directory(out()); }

    URL out() const { return folder() / "out"; }
    URL document() const { return out() / "A001C002_transcript.docx"; }

    /// The reason of a run that must fail.
    std::string failureOf(const URL& url) const {
        try {
            DocxTranscriptWriter().write(sample(), url);
        } catch (const TranscribeError& error) {
            EXPECT_TRUE(error.is<TranscribeError::ParseFailed>());
            return error.description();
        }
        ADD_FAILURE() << "no failure";
        return {};
    }
};

TEST_F(DocxTranscriptWriterTest, Package_HasItsPartsInOrder) {
    EXPECT_EQ(DocxTranscriptWriter().write(sample(), document()), document());

    EXPECT_EQ(outputOf("unzip", {"-Z1", document()}),
              "[Content_Types].xml\n_rels/\n_rels/.rels\nword/\nword/document.xml\n");
    EXPECT_EQ(TestSupport::runTool("unzip", {"-tq", document()}).status, 0);
    EXPECT_THAT(FileSystem::names(out()), ElementsAre("A001C002_transcript.docx"));
}

TEST_F(DocxTranscriptWriterTest, Parts_AreAsPrescribedByteForByte) {
    DocxTranscriptWriter().write(sample(), document());

    EXPECT_EQ(partOf(document(), "[Content_Types].xml"),
              "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
              "<Types xmlns=\"http://schemas.openxmlformats.org/package/2006/content-types\">\n"
              "  <Default Extension=\"rels\" "
              "ContentType=\"application/vnd.openxmlformats-package.relationships+xml\"/>\n"
              "  <Default Extension=\"xml\" ContentType=\"application/xml\"/>\n"
              "  <Override PartName=\"/word/document.xml\" "
              "ContentType=\"application/vnd.openxmlformats-officedocument.wordprocessingml."
              "document.main+xml\"/>\n"
              "</Types>");
    EXPECT_EQ(partOf(document(), "_rels/.rels"),
              "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
              "<Relationships "
              "xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">\n"
              "  <Relationship Id=\"rId1\" "
              "Type=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships/"
              "officeDocument\" Target=\"word/document.xml\"/>\n"
              "</Relationships>");
    EXPECT_EQ(partOf(document(), "word/document.xml"), DocxTranscriptWriter::documentXML(sample()));
}

TEST_F(DocxTranscriptWriterTest, Parts_AreWellFormedWhateverTheTextHolds) {
    DocxTranscriptWriter().write(sample("\x01 \xFF & < > \" ' ]]> \uFFFE 🎬\r\n"), document());
    outputOf("unzip", {"-q", document(), "-d", folder() / "unpacked"});

    for (const char* part : {"[Content_Types].xml", "_rels/.rels", "word/document.xml"}) {
        EXPECT_EQ(TestSupport::xmlFaults(folder() / "unpacked" / part), "") << part;
    }
}

// python-docx, which we did not write, reads it as Word does.
TEST_F(DocxTranscriptWriterTest, WordReader_SeesHeadingSlateAndTable) {
    DocxTranscriptWriter().write(sample(), document());

    EXPECT_EQ(outputOf("/usr/bin/python3", {"-c", R"(
import docx, sys
document = docx.Document(sys.argv[1])
for paragraph in document.paragraphs:
    print(paragraph.text, paragraph.runs[0].bold)
table, = document.tables
for row in table.rows:
    print([[(p.text, p.runs[0].bold) for p in cell.paragraphs] for cell in row.cells],
          [cell.width.pt * 20 for cell in row.cells])
)",
                                            document()}),
              "A001C002.mov  ·  Start TC 01:00:00:00 True\n"
              "Slate — Take 3 None\n"
              "[[('TIMECODE / SPEAKER', True)], [('DIALOGUE', True)]] [2600.0, 6400.0]\n"
              "[[('01:00:00:00', True), ('Speaker 1', True), ('(person in blue)', None)], "
              "[('Hello & <goodbye>.', None)]] [2600.0, 6400.0]\n"
              "[[('01:00:01:00', True), ('♪ Music', True)], [('(song)', None)]] "
              "[2600.0, 6400.0]\n");
}

TEST_F(DocxTranscriptWriterTest, Rewriting_ReplacesTheEarlierDocument) {
    DocxTranscriptWriter().write(sample("first"), document());
    DocxTranscriptWriter().write(sample("second"), document());

    EXPECT_EQ(partOf(document(), "word/document.xml"),
              DocxTranscriptWriter::documentXML(sample("second")));
}

TEST_F(DocxTranscriptWriterTest, AnythingElseThatHasTheName_IsReplacedAndALinkNotFollowed) {
    writeFile(document(), "not a package");
    std::filesystem::permissions(document(), std::filesystem::perms(0400));
    DocxTranscriptWriter().write(sample(), document());
    EXPECT_EQ(TestSupport::runTool("unzip", {"-tq", document()}).status, 0);

    writeFile(folder() / "notes", "mine");
    const URL link = out() / "link.docx";
    std::filesystem::create_symlink(folder() / "notes", link);
    DocxTranscriptWriter().write(sample(), link);
    EXPECT_EQ(readFile(folder() / "notes"), "mine");
    EXPECT_TRUE(std::filesystem::is_regular_file(std::filesystem::symlink_status(link)));
}

TEST_F(DocxTranscriptWriterTest, FolderThatHasTheName_Stays) {
    std::filesystem::create_directory(document());

    EXPECT_EQ(failureOf(document()), "Could not parse Whisper output: zip failed (3) writing docx");

    EXPECT_TRUE(FileSystem::isFolder(document()));
    EXPECT_EQ(FileSystem::names(out()).size(), 1U);
}

TEST_F(DocxTranscriptWriterTest, FolderMissing_IsToldWithTheStatusOfZip) {
    EXPECT_EQ(failureOf(folder() / "missing/A.docx"),
              "Could not parse Whisper output: zip failed (15) writing docx");
    EXPECT_FALSE(FileSystem::exists(folder() / "missing"));
}

TEST_F(DocxTranscriptWriterTest, NamesThatMeanSomethingToZip_AreNamesAllTheSame) {
    for (const URL name : {"-.docx", "-@.x", "@.docx", "*.docx", "[ab]?.docx", "two words.docx",
                           "trailing.", ".hidden", "A.zip", "caf\xE9\n\"'.docx", "A.mov"}) {
        const int status = TestSupport::statusOfForked([&] {
            std::filesystem::current_path(out());
            return DocxTranscriptWriter().write(sample(), name) == name ? 0 : 1;
        });

        EXPECT_EQ(status, 0) << name;
        EXPECT_THAT(FileSystem::names(out()), ElementsAre(name.native()));
        EXPECT_EQ(outputOf("python3", {"-c",
                                       "import sys, zipfile\n"
                                       "print(len(zipfile.ZipFile(sys.argv[1]).namelist()))",
                                       out() / name}),
                  "5\n");
        std::filesystem::remove(out() / name);
    }
}

// zip would write "A.zip", and change one that is there.
TEST_F(DocxTranscriptWriterTest, NameWithoutExtension_IsRefused) {
    for (const URL& name : {out() / "A", out() / "-", out() / "", URL("A")}) {
        EXPECT_THROW(DocxTranscriptWriter().write(sample(), name), SystemError) << name;
    }
    EXPECT_THAT(FileSystem::names(out()), IsEmpty());
}

TEST_F(DocxTranscriptWriterTest, SettingsOfTheUserForZip_DoNotChangeThePackage) {
    const EnvironmentVariable junkPaths("ZIPOPT", "-j");
    const EnvironmentVariable exclude("ZIP", "-x word/*");

    DocxTranscriptWriter().write(sample(), document());

    EXPECT_EQ(outputOf("unzip", {"-Z1", document()}),
              "[Content_Types].xml\n_rels/\n_rels/.rels\nword/\nword/document.xml\n");
}

TEST_F(DocxTranscriptWriterTest, FullDrive_LeavesNothingBeside) {
    if (!TestSupport::LoopMount::isAvailable()) GTEST_SKIP() << "this machine mounts no images";
    const TestSupport::LoopMount drive("ext4", 4);
    std::filesystem::create_directory(drive.path() / "out");
    TestSupport::runTool("dd", {"if=/dev/zero", "of=" + (drive.path() / "full").native(), "bs=1K"});
    Transcript transcript = sample();
    transcript.segments.resize(1000, {"S", 0.0, 1.0, TestSupport::noise(500)});

    try {
        DocxTranscriptWriter().write(transcript, drive.path() / "out/A.docx");
        ADD_FAILURE() << "no failure";
    } catch (const TranscribeError& error) {
        EXPECT_TRUE(error.is<TranscribeError::ParseFailed>()) << error.description();
    }

    EXPECT_THAT(FileSystem::names(drive.path() / "out"), IsEmpty());
}

TEST_F(DocxTranscriptWriterTest, ReadOnlyDrive_KeepsTheEarlierDocument) {
    if (!TestSupport::LoopMount::isAvailable()) GTEST_SKIP() << "this machine mounts no images";
    TestSupport::LoopMount drive("ext4", 4);
    const URL url = drive.path() / "A.docx";
    DocxTranscriptWriter().write(sample("first"), url);
    const std::string before = readFile(url);
    drive.makeReadOnly();

    EXPECT_EQ(failureOf(url).find("Could not parse Whisper output: zip failed ("), 0U);

    EXPECT_EQ(readFile(url), before);
}

TEST_F(DocxTranscriptWriterTest, FullTemporaryFolder_IsTheSystemsOwnFailureAndLeavesNothing) {
    if (!TestSupport::LoopMount::isAvailable()) GTEST_SKIP() << "this machine mounts no images";
    const TestSupport::LoopMount drive("ext4", 4);
    TestSupport::runTool("dd", {"if=/dev/zero", "of=" + (drive.path() / "full").native(), "bs=1K"});
    const auto before = FileSystem::names(drive.path()).size();
    writeFile(document(), "the earlier one");
    const EnvironmentVariable full("TMPDIR", drive.path().native());

    EXPECT_THROW(DocxTranscriptWriter().write(sample(), document()), SystemError);

    EXPECT_EQ(FileSystem::names(drive.path()).size(), before);
    EXPECT_EQ(readFile(document()), "the earlier one");
}

TEST_F(DocxTranscriptWriterTest, NoTemporaryFolder_IsTheSystemsOwnFailure) {
    const EnvironmentVariable missing("TMPDIR", folder() / "missing");

    EXPECT_THROW(DocxTranscriptWriter().write(sample(), document()), SystemError);
}

TEST_F(DocxTranscriptWriterTest, NoZip_IsTheSystemsOwnFailure) {
    if (const auto missing = TestSupport::ownMountsMissing(); !missing.empty()) {
        GTEST_SKIP() << missing;
    }
    const int status = TestSupport::statusInOwnMounts([&] {
        writeFile(folder() / "nozip", "");
        if (::mount((folder() / "nozip").c_str(), "/usr/bin/zip", nullptr, MS_BIND, nullptr) != 0) {
            return 1;
        }
        try {
            DocxTranscriptWriter().write(sample(), document());
        } catch (const SystemError& error) {
            return error.description() == "Permission denied: /usr/bin/zip" ? 0 : 2;
        }
        return 3;
    });

    EXPECT_EQ(status, 0);
    EXPECT_THAT(FileSystem::names(out()), IsEmpty());
}

TEST_F(DocxTranscriptWriterTest, TwoAtOnce_DoNotMeet) {
    constexpr int rounds = 5;
    const auto writeMany = [&](const std::string& name) {
        for (int i = 0; i < rounds; ++i) {
            DocxTranscriptWriter().write(sample(name), out() / (name + ".docx"));
        }
    };

    std::thread other(writeMany, "B");
    writeMany("A");
    other.join();

    for (const std::string name : {"A", "B"}) {
        EXPECT_EQ(partOf(out() / (name + ".docx"), "word/document.xml"),
                  DocxTranscriptWriter::documentXML(sample(name)));
    }
}

}  // namespace

}  // namespace ReelCore
