// Names as cameras, recorders and people give them: any bytes but "/" and zero.

#include "EditorialSamples.h"
#include "ReelCore/Sync/ALEWriter.h"
#include "ReelCore/Sync/FCPXMLWriter.h"
#include "Support/DocumentReaders.h"
#include "Support/EditorialReaders.h"
#include "Support/FolderTree.h"

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using namespace TestSupport;

struct Name {
    std::string bytes;
    std::string inXML;  ///< As a reader gives it, who turns line ends and tabs to blanks.
};

const std::vector<Name> names{
    {"plain.mov", "plain.mov"},
    {" blanks at both ends ", " blanks at both ends "},
    {"A&B.mov", "A&B.mov"},
    {"&amp; &#65; &lt;.mov", "&amp; &#65; &lt;.mov"},
    {"<Tom> \"and\" 'Jerry'.mov", "<Tom> \"and\" 'Jerry'.mov"},
    {"]]> <!-- --> <?x?>", "]]> <!-- --> <?x?>"},
    {"100%25 %41?x=1#y;z.mov", "100%25 %41?x=1#y;z.mov"},
    {"line\nfeed\ttab.mov", "line feed tab.mov"},
    {"control \x01\x1B\x7F.mov", "control \uFFFD\uFFFD\x7F.mov"},
    {"Sonnenschein über Köln.mov", "Sonnenschein über Köln.mov"},
    {"cafe\u0301.mov", "cafe\u0301.mov"},
    {"שלום 👨‍👩‍👧.mov", "שלום 👨‍👩‍👧.mov"},
    {"\uFFFE\uFFFF.mov", "\uFFFD\uFFFD.mov"},
    {"invalid \xFF\xFE.mov", "invalid \uFFFD\uFFFD.mov"},
    {"cut \xE2\x82", "cut \uFFFD"},
    {"back\\slash*:|$!(),=+@~[]{}^`.mov", "back\\slash*:|$!(),=+@~[]{}^`.mov"},
};

/// Every name once as a clip, and once as the recording that belongs to it.
SyncResult resultOfNames(const URL& folder) {
    SyncResult result;
    for (const Name& name : names) {
        result.groups.push_back(pair(picture(folder / "CLIPS" / name.bytes, 10),
                                     sound(folder / "SOUND & \xFF" / name.bytes, 20)));
    }
    return result;
}

TEST(FCPXMLWriter, NamesOfAnyBytes_GiveATimelineThatReadsBackAsFarAsXMLAllows) {
    const TemporaryFolder folder;

    const URL timeline =
        FCPXMLWriter::write(resultOfNames(folder.path()), folder.path() / "day.fcpxml", "Day 1");

    EXPECT_EQ(xmlFaults(timeline), "");
    std::vector<std::string> clipNames, assetNames;
    for (const Name& name : names) {
        clipNames.push_back(name.inXML);
        assetNames.insert(assetNames.end(), 2, name.inXML);
    }
    EXPECT_EQ(attributes(timeline, "asset-clip", "name"), clipNames);
    EXPECT_EQ(attributes(timeline, "asset", "name"), assetNames);
}

TEST(FCPXMLWriter, NamesOfAnyBytes_AreFoundAtTheirLocationByteForByte) {
    const TemporaryFolder folder;
    const SyncResult result = resultOfNames(folder.path());
    std::vector<std::string> paths;
    for (const SyncGroup& group : result.groups) {
        paths.push_back(group.video.url.native());
        paths.push_back(group.best()->clip->url.native());
    }

    const URL timeline = FCPXMLWriter::write(result, folder.path() / "day.fcpxml", "Day 1");

    EXPECT_EQ(mediaPaths(timeline), paths);
}

TEST(FCPXMLWriter, EveryByteOfAName_ComesBackFromItsLocation) {
    std::string all;
    for (int byte = 1; byte < 256; ++byte) {
        if (byte != '/') all += static_cast<char>(byte);
    }
    const TemporaryFolder folder;

    const URL timeline = FCPXMLWriter::write({{{picture("/day/" + all, 1), {}}}, {}},
                                             folder.path() / "day.fcpxml", "Day 1");

    EXPECT_EQ(xmlFaults(timeline), "");
    EXPECT_EQ(mediaPaths(timeline), std::vector<std::string>{"/day/" + all});
}

TEST(FCPXMLWriter, Location_IsWrittenInPlainASCII) {
    const std::string text =
        FCPXMLWriter::fcpxml({{{picture("/d\xC3\xA4y/A & B'\"<;\xFF%.mov", 1), {}}}, {}}, "P", "E");

    EXPECT_NE(text.find(R"(src="file:///d%C3%A4y/A%20%26%20B'%22%3C%3B%FF%25.mov"/>)"), text.npos)
        << text;
}

TEST(FCPXMLWriter, RelativePath_IsWrittenAsAnAbsoluteLocation) {
    const TemporaryFolder folder;

    const URL timeline = FCPXMLWriter::write({{{picture("A001/C 1.mov", 1), {}}}, {}},
                                             folder.path() / "day.fcpxml", "Day 1");

    const URL expected = std::filesystem::current_path() / "A001/C 1.mov";
    EXPECT_EQ(mediaPaths(timeline), std::vector<std::string>{expected.native()});
}

TEST(FCPXMLWriter, NamesInTheDocument_AreEscapedOnceAndInOrder) {
    const std::string text = FCPXMLWriter::fcpxml({{{picture("/d/A&\"<'>.mov", 1), {}}}, {}},
                                                  "P & <\"Q\">'s", "E &amp; '\"");

    EXPECT_NE(text.find(R"(<project name="P &amp; &lt;&quot;Q&quot;&gt;'s">)"), text.npos) << text;
    EXPECT_NE(text.find(R"(<event name="E &amp;amp; '&quot;">)"), text.npos) << text;
    EXPECT_NE(text.find(R"(<asset id="r2" name="A&amp;&quot;&lt;'&gt;.mov" start)"), text.npos);
    EXPECT_NE(text.find(R"(offset="0s" name="A&amp;&quot;&lt;'&gt;.mov" duration)"), text.npos);
}

TEST(FCPXMLWriter, ProjectOfAnyBytes_ReadsBackAsFarAsXMLAllows) {
    const TemporaryFolder folder;
    std::vector<std::string> read, expected;

    for (const Name& name : names) {
        const URL timeline = FCPXMLWriter::write({}, folder.path() / "day.fcpxml", name.bytes);
        EXPECT_EQ(xmlFaults(timeline), "");
        for (const std::string& one : attributes(timeline, "project", "name")) read.push_back(one);
        expected.push_back(name.inXML);
    }

    EXPECT_EQ(read, expected);
}

TEST(ALEWriter, NamesOfAnyBytes_StandAsTheyAreButForWhatIsNoUTF8) {
    const TemporaryFolder folder;
    AudioClip recording = sound("/day/T \"1\" & <2> \xFF.wav", 60);
    recording.scene = "Küche 'außen'";
    recording.tape = "\xC3";

    const URL log = ALEWriter::write({{pair(picture("/day/\"A\" & B \xE2\x82.mov", 1), recording),
                                       {picture("/day/שלום.mov", 1), {}}},
                                      {}},
                                     folder.path() / "day.ale");

    const auto rows = readTabbed(log);
    ASSERT_EQ(rows.size(), 12U);
    EXPECT_EQ(rows[10], (std::vector<std::string>{"\"A\" & B \uFFFD.mov", "V", "00:00:00:00",
                                                  "00:00:01:00", "\uFFFD", "Küche 'außen'", "",
                                                  "T \"1\" & <2> \uFFFD.wav", "00:00:00:00"}));
    EXPECT_EQ(rows[11][0], "שלום.mov");
}

}  // namespace
