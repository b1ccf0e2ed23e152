#include "ReelCore/Platform/Text.h"
#include "ReelCore/Reports/MHLWriter.h"
#include "SampleOffload.h"
#include "Support/DocumentReaders.h"
#include "Support/FolderTree.h"
#include "Support/Forked.h"
#include "Support/Tool.h"

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

namespace {

using namespace ReelCore;
using namespace TestSupport;

const MHLWriter writer{"keldobay", "0.1.0"};

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
    EXPECT_EQ(elementTexts(list, "file"), std::vector<std::string>{path});
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

    EXPECT_EQ(xmlFaults(list), "");
    EXPECT_EQ(elementTexts(list, "file"), expected);
    EXPECT_EQ(expected[0], "DIR/invalid \uFFFD\uFFFD utf8.mov");
    EXPECT_EQ(expected[4], "DIR/control \uFFFD\uFFFD\uFFFD\x7F");
}

// Readers of XML turn a bare carriage return into a line feed, so that they would look for a file
// that is not there; a line feed and a tab they hand on as they are.
TEST(MHLWriter, ControlsThatXMLCanHold_ReadBackAsTheyAre) {
    const TemporaryFolder folder;
    const std::vector<std::string> names{"Icon\r", "a\rb\r\nc", "d\n\te\t", "&#13;", "\r"};
    std::vector<FileVerification> files;
    for (const std::string& name : names) files.push_back(sampleFile(name, 1));

    const URL list = writer.write(sampleOffload(files), folder.path());

    EXPECT_NE(readFile(list).find("<file>Icon&#13;</file>\n"), std::string::npos);
    EXPECT_EQ(readFile(list).find('\r'), std::string::npos);
    EXPECT_EQ(elementTexts(list, "file"), names);
    for (std::size_t i = 0; i < names.size(); ++i) {
        const std::string path = "string(//hash[" + std::to_string(i + 1) + "]/file)";
        EXPECT_EQ(outputOf("xmllint", {"--xpath", path, list.native()}), names[i] + "\n");
    }
}

TEST(MHLWriter, EveryPossibleByteInAName_KeepsTheListWellFormed) {
    const TemporaryFolder folder;
    std::vector<FileVerification> files;
    for (int byte = 1; byte < 256; ++byte) {
        files.push_back(sampleFile(std::string("x") + static_cast<char>(byte) + "y", byte));
    }

    const URL list = writer.write(sampleOffload(files), folder.path());

    EXPECT_EQ(xmlFaults(list), "");
    EXPECT_EQ(elementTexts(list, "size").size(), 255U);
}

}  // namespace
