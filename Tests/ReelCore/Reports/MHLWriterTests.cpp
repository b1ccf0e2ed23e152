#include "ReelCore/Reports/MHLWriter.h"

#include "DocumentReaders.h"
#include "ReelCore/Platform/DateText.h"
#include "ReelCore/Platform/SystemError.h"
#include "ReelCore/Platform/Text.h"
#include "ReelCore/Platform/UserAccount.h"
#include "SampleOffload.h"
#include "Support/FolderTree.h"
#include "Support/Forked.h"
#include "Support/Tool.h"

#include <algorithm>
#include <cerrno>
#include <regex>

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

namespace {

using namespace ReelCore;
using namespace TestSupport;
using namespace std::chrono_literals;

const MHLWriter writer{"keldobay", "0.1.0"};

/// The text of the only element of that name.
std::string onlyText(const URL& list, const std::string& name) {
    const auto texts = elementTexts(list, name);
    return texts.size() == 1 ? texts[0] : "not once but " + std::to_string(texts.size());
}

void expectWellFormed(const URL& list) {
    const ToolOutcome said = runTool("xmllint", {"--noout", list.native()});
    EXPECT_EQ(said.status, 0) << said.output;
}

/// The lines up to the first file, for a user whose names need no escaping.
std::string expectedHead() {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<hashlist version=\"1.1\">\n"
           "  <creatorinfo>\n"
           "    <name>" +
           UserAccount::fullName() +
           "</name>\n"
           "    <username>" +
           UserAccount::loginName() +
           "</username>\n"
           "    <hostname>" +
           UserAccount::hostName() +
           "</hostname>\n"
           "    <tool>keldobay 0.1.0</tool>\n"
           "    <startdate>2026-03-01T14:05:09Z</startdate>\n"
           "    <finishdate>2026-03-01T14:06:09Z</finishdate>\n"
           "  </creatorinfo>\n";
}

TEST(MHLWriter, TwoFiles_GiveTheListLineByLine) {
    const TemporaryFolder folder;
    OffloadResult result = sampleOffload(
        {sampleFile("CLIP/C0001.MXF", 1'610'612'736), sampleFile("CLIP/C0001.XML", 0)});
    result.files[1].sourceHash = "ef46db3751d8e999";

    const URL list = writer.write(result, folder.path());

    const std::string hashDate = elementTexts(list, "hashdate").at(0);
    EXPECT_EQ(readFile(list),
              expectedHead() +
                  "  <hash>\n"
                  "    <file>CLIP/C0001.MXF</file>\n"
                  "    <size>1610612736</size>\n"
                  "    <lastmodificationdate>2026-03-01T13:05:09Z</lastmodificationdate>\n"
                  "    <xxhash64>0eab543384f878ad</xxhash64>\n"
                  "    <hashdate>" +
                  hashDate +
                  "</hashdate>\n"
                  "  </hash>\n"
                  "  <hash>\n"
                  "    <file>CLIP/C0001.XML</file>\n"
                  "    <size>0</size>\n"
                  "    <lastmodificationdate>2026-03-01T13:05:09Z</lastmodificationdate>\n"
                  "    <xxhash64>ef46db3751d8e999</xxhash64>\n"
                  "    <hashdate>" +
                  hashDate +
                  "</hashdate>\n"
                  "  </hash>\n"
                  "</hashlist>\n");
    expectWellFormed(list);
}

TEST(MHLWriter, NoFiles_GiveTheHeadAndTheLastLineOnly) {
    const TemporaryFolder folder;

    const URL list = writer.write(sampleOffload({}), folder.path());

    EXPECT_EQ(readFile(list), expectedHead() + "</hashlist>\n");
    expectWellFormed(list);
}

TEST(MHLWriter, FileWithoutADate_HasFourInnerLines) {
    const TemporaryFolder folder;
    OffloadResult result = sampleOffload({sampleFile("a.mov", 7)});
    result.files[0].file.modificationDate.reset();

    const std::string list = readFile(writer.write(result, folder.path()));

    EXPECT_TRUE(std::regex_search(
        list, std::regex("  <hash>\n    <file>a\\.mov</file>\n    <size>7</size>\n"
                         "    <xxhash64>0eab543384f878ad</xxhash64>\n"
                         "    <hashdate>[^\n]*</hashdate>\n  </hash>\n")))
        << list;
}

TEST(MHLWriter, EachAlgorithm_NamesTheHashElement) {
    const TemporaryFolder folder;
    OffloadResult result = sampleOffload({sampleFile("a.mov", 7)});

    for (const HashAlgorithm algorithm : allCases<HashAlgorithm>()) {
        result.request.algorithm = algorithm;
        const URL list = writer.write(result, folder.path());
        for (const HashAlgorithm other : allCases<HashAlgorithm>()) {
            EXPECT_EQ(elementTexts(list, std::string(mhlTag(other))).size(),
                      other == algorithm ? 1U : 0U);
        }
    }
}

TEST(MHLWriter, HashDate_IsTheInstantOfWritingAndTheSameForAllFiles) {
    const TemporaryFolder folder;
    const std::string before = DateText::utc(now());

    const URL list = writer.write(
        sampleOffload({sampleFile("a.mov", 1), sampleFile("b.mov", 1), sampleFile("c.mov", 1)}),
        folder.path());

    const auto dates = elementTexts(list, "hashdate");
    ASSERT_EQ(dates.size(), 3U);
    EXPECT_EQ(std::ranges::count(dates, dates[0]), 3);
    EXPECT_LE(before, dates[0]);
    EXPECT_LE(dates[0], DateText::utc(now()));
}

TEST(MHLWriter, Dates_HaveNoFractions) {
    const TemporaryFolder folder;
    OffloadResult result = sampleOffload({sampleFile("a.mov", 1)});
    result.startedAt += 999'999'999ns;
    result.files[0].file.modificationDate = sampleDate() + 500ms;

    const URL list = writer.write(result, folder.path());

    EXPECT_EQ(onlyText(list, "startdate"), "2026-03-01T14:05:09Z");
    EXPECT_EQ(onlyText(list, "lastmodificationdate"), "2026-03-01T14:05:09Z");
}

TEST(MHLWriter, ListName_IsTheReelNameWithUnderscoresForSlashes) {
    const TemporaryFolder folder;
    OffloadResult result = sampleOffload({});

    for (const auto& [reel, name] : FolderTree{{"A001", "A001.mhl"},
                                               {"DAY 1/A001/B", "DAY 1_A001_B.mhl"},
                                               {"/A001", "_A001.mhl"},
                                               {"..", "...mhl"},
                                               {"", ".mhl"}}) {
        result.request.reelName = reel;
        EXPECT_EQ(writer.write(result, folder.path()), folder.path() / name);
        EXPECT_TRUE(std::filesystem::is_regular_file(folder.path() / name)) << name;
    }
}

TEST(MHLWriter, OldListOfThatName_IsReplacedWhole) {
    const TemporaryFolder folder;
    writeFile(folder.path() / "A001.mhl", noise(100'000));

    const URL list = writer.write(sampleOffload({}), folder.path());

    EXPECT_EQ(readFile(list), expectedHead() + "</hashlist>\n");
}

TEST(MHLWriter, Markup_IsEscapedOnceInThisOrder) {
    const TemporaryFolder folder;
    const std::string path = "<Tom> & \"Jerry's\" &amp; ]]>.mov";

    const URL list =
        MHLWriter{"a<b", "1&2"}.write(sampleOffload({sampleFile(path, 1)}), folder.path());

    const std::string text = readFile(list);
    EXPECT_NE(text.find("    <file>&lt;Tom&gt; &amp; \"Jerry's\" &amp;amp; ]]&gt;.mov</file>\n"),
              text.npos)
        << text;
    EXPECT_NE(text.find("    <tool>a&lt;b 1&amp;2</tool>\n"), text.npos) << text;
    EXPECT_EQ(onlyText(list, "file"), path);
}

TEST(MHLWriter, MarkupInTheNamesOfUserAndComputer_IsEscaped) {
    if (::geteuid() != 0) GTEST_SKIP() << "needs root";
    const TemporaryFolder folder;
    const URL accounts = folder.path() / "passwd";
    writeFile(accounts, "a<b>&c:x:0:0:Jo & <Doe>,,,:/root:/bin/sh\n");

    const int status = statusOfForked([&] {
        const std::string host = "h<o>&st";
        if (::unshare(CLONE_NEWNS | CLONE_NEWUTS) != 0 ||
            ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
            ::mount(accounts.c_str(), "/etc/passwd", nullptr, MS_BIND, nullptr) != 0 ||
            ::sethostname(host.data(), host.size()) != 0) {
            return 1;
        }
        MHLWriter{"tool", "1"}.write(sampleOffload({}), folder.path());
        return 0;
    });

    ASSERT_EQ(status, 0);
    const URL list = folder.path() / "A001.mhl";
    EXPECT_NE(readFile(list).find("<name>Jo &amp; &lt;Doe&gt;</name>"), std::string::npos);
    EXPECT_EQ(elementTexts(list, "name"), std::vector<std::string>{"Jo & <Doe>"});
    EXPECT_EQ(elementTexts(list, "username"), std::vector<std::string>{"a<b>&c"});
    EXPECT_EQ(elementTexts(list, "hostname"), std::vector<std::string>{"h<o>&st"});
}

TEST(MHLWriter, SameNameInTwoFolders_GivesTwoEntriesWithTheirPaths) {
    const TemporaryFolder folder;

    const URL list = writer.write(
        sampleOffload({sampleFile("A/C1.MOV", 1), sampleFile("B/C1.MOV", 1)}), folder.path());

    EXPECT_EQ(elementTexts(list, "file"), (std::vector<std::string>{"A/C1.MOV", "B/C1.MOV"}));
}

TEST(MHLWriter, FilesThatFailed_AreListedLikeAnyOther) {
    const TemporaryFolder folder;
    const URL good =
        writer.write(sampleOffload({sampleFile("a.mov", 5, {true, true})}), folder.path());
    const auto hashes = elementTexts(good, "xxhash64");

    const URL list = writer.write(
        sampleOffload({sampleFile("a.mov", 5, {true, false}), sampleFile("b.mov", 5, {})}),
        folder.path());

    EXPECT_EQ(elementTexts(list, "file"), (std::vector<std::string>{"a.mov", "b.mov"}));
    EXPECT_EQ(elementTexts(list, "xxhash64").at(0), hashes.at(0));
    EXPECT_EQ(readFile(list).find("FAILED"), std::string::npos);
}

// XML 1.0 has no way at all to write most control characters, and a list must be UTF-8: what can't
// be written stands as U+FFFD, so that the list stays readable for everything else.
TEST(MHLWriter, NamesOfAnyBytes_GiveAListThatReadsBackAsFarAsXMLAllows) {
    const TemporaryFolder folder;
    const std::vector<std::string> names{"invalid \xFF\xFE utf8.mov",
                                         "cut \xE2\x82",
                                         "overlong \xC0\xAF",
                                         "\xED\xA0\x80 surrogate",
                                         "control \x01\x02\x1B\x7F",
                                         "line\nfeed",
                                         "tab\there",
                                         " blanks at both ends ",
                                         std::string(255, 'x'),
                                         "שלום.mov",
                                         "👨‍👩‍👧 family.mov",
                                         "cafe\u0301.mov",
                                         "\uFFFE\uFFFF",
                                         "<!-- comment -->",
                                         "<![CDATA[x]]>",
                                         "&#0;",
                                         "-",
                                         "\U0010FFFF"};
    std::vector<FileVerification> files;
    std::vector<std::string> expected;
    for (const std::string& name : names) {
        files.push_back(sampleFile("DIR/" + name, 1));
        expected.push_back("DIR/" + Text::wellFormedXML(name));
    }

    const URL list = writer.write(sampleOffload(files), folder.path());

    expectWellFormed(list);
    EXPECT_EQ(elementTexts(list, "file"), expected);
    EXPECT_EQ(expected[0], "DIR/invalid \uFFFD\uFFFD utf8.mov");
    EXPECT_EQ(expected[4], "DIR/control \uFFFD\uFFFD\uFFFD\x7F");
}

// Readers of XML turn a carriage return into a line feed; the bytes have it as it is.
TEST(MHLWriter, CarriageReturn_IsNotTouched) {
    const TemporaryFolder folder;

    const URL list = writer.write(sampleOffload({sampleFile("Icon\r", 1)}), folder.path());

    EXPECT_NE(readFile(list).find("<file>Icon\r</file>\n"), std::string::npos);
    expectWellFormed(list);
}

TEST(MHLWriter, EveryPossibleByteInAName_KeepsTheListWellFormed) {
    const TemporaryFolder folder;
    std::vector<FileVerification> files;
    for (int byte = 1; byte < 256; ++byte) {
        files.push_back(sampleFile(std::string("x") + static_cast<char>(byte) + "y", byte));
    }

    const URL list = writer.write(sampleOffload(files), folder.path());

    expectWellFormed(list);
    EXPECT_EQ(elementTexts(list, "size").size(), 255U);
}

int codeOfFailure(const OffloadResult& result, const URL& folder) {
    try {
        writer.write(result, folder);
    } catch (const SystemError& error) {
        return error.code();
    }
    return 0;
}

TEST(MHLWriter, ListThatCannotBeWritten_IsASystemError) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.path() / "A001.mhl");
    OffloadResult tooLong = sampleOffload({});
    tooLong.request.reelName = std::string(252, 'x');

    EXPECT_EQ(codeOfFailure(sampleOffload({}), folder.path() / "missing"), ENOENT);
    EXPECT_EQ(codeOfFailure(sampleOffload({}), folder.path()), EISDIR);
    EXPECT_EQ(codeOfFailure(tooLong, folder.path()), ENAMETOOLONG);
}

}  // namespace
