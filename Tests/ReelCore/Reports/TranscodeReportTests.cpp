#include "ReelCore/Platform/UserAccount.h"
#include "ReelCore/Reports/Report.h"
#include "ReelCore/Reports/ReportFormat.h"
#include "ReelCore/Reports/ReportRenderer.h"
#include "ReelCore/Transcode/TranscodePreset.h"
#include "Support/DocumentReaders.h"
#include "Support/FolderTree.h"
#include "ValueOf.h"

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using namespace TestSupport;
using Outputs = std::vector<URL>;
using Failures = std::vector<Report::Failure>;
using Row = std::vector<std::string>;

const TranscodePreset& preset = TranscodePreset::proResProxy;

Report reportOn(const Outputs& outputs, const Failures& failures) {
    return Report::transcode(preset, "Rec709", 1920, outputs, failures, "Jo Doe");
}

TEST(TranscodeReport, WholeBatch_HasEveryFactInOrder) {
    const Date before = now();

    const Report report = reportOn({"/out/a.mov", "/out/b.mov"}, {{"c.mov", "no picture"}});

    EXPECT_EQ(report.title, "Transcode Report");
    EXPECT_EQ(report.subtitle, "ProRes 422 Proxy");
    EXPECT_EQ(report.tool, "keldobay 0.1.0");
    EXPECT_GE(report.generatedAt, before);
    EXPECT_LE(report.generatedAt, now());
    EXPECT_EQ(report.summary,
              (std::vector<Report::Field>{{"Preset", "ProRes 422 Proxy"},
                                          {"Edit system", "Resolve / Premiere"},
                                          {"Container", ".mov"},
                                          {"LUT", "Rec709"},
                                          {"Resolution", "long edge 1920px"},
                                          {"Rendered", "2"},
                                          {"Failed", "1"},
                                          {"Generated", dateTime(report.generatedAt)},
                                          {"Operator", "Jo Doe"}}));
}

TEST(TranscodeReport, EveryPreset_NamesItselfItsEditSystemAndItsContainer) {
    for (const TranscodePreset& one : TranscodePreset::all()) {
        const Report report = Report::transcode(one, std::nullopt, std::nullopt, {}, {}, "Jo");

        EXPECT_EQ(report.subtitle, one.name);
        EXPECT_EQ(valueOf(report, "Preset"), one.name);
        EXPECT_EQ(valueOf(report, "Edit system"), one.editor);
        EXPECT_EQ(valueOf(report, "Container"), "." + one.container);
    }
}

TEST(TranscodeReport, WithoutLUTAndScale_SaysSo) {
    const Report report = Report::transcode(preset, std::nullopt, std::nullopt, {}, {}, "Jo");

    EXPECT_EQ(valueOf(report, "LUT"), "none");
    EXPECT_EQ(valueOf(report, "Resolution"), "source");
}

TEST(TranscodeReport, LUTWithoutANameAndScaleOfNothing_AreStillPresent) {
    const Report report = Report::transcode(preset, "", 0, {}, {}, "Jo");

    EXPECT_EQ(valueOf(report, "LUT"), "");
    EXPECT_EQ(valueOf(report, "Resolution"), "long edge 0px");
}

TEST(TranscodeReport, WithoutAnOperator_NamesTheUser) {
    const auto operatorOf = [](const std::optional<std::string>& name) {
        return valueOf(Report::transcode(preset, "", 0, {}, {}, name), "Operator");
    };

    EXPECT_EQ(operatorOf(std::nullopt), UserAccount::fullName());
    EXPECT_EQ(operatorOf(""), "");
}

TEST(TranscodeReport, Table_HasTheOutputsThenTheFailuresInTheirOrder) {
    const Report report =
        reportOn({"/out/z.mov", "/out/a.mov"},
                 {{"x.mov", "ffmpeg failed (code 1)"}, {"b.mov", "input not found"}});

    ASSERT_TRUE(report.table);
    EXPECT_EQ(report.table->columns, (Row{"Output", "Status"}));
    EXPECT_EQ(report.table->rows, (std::vector<Row>{{"z.mov", "RENDERED"},
                                                    {"a.mov", "RENDERED"},
                                                    {"x.mov", "FAILED — ffmpeg failed (code 1)"},
                                                    {"b.mov", "FAILED — input not found"}}));
}

TEST(TranscodeReport, Outputs_AreNamedByTheirLastPartAndFailuresAsGiven) {
    const Report report =
        reportOn({"/out/day 1/a.mov", "b.mov", "/out/\xFF.mov"}, {{"/in/c.mov", ""}});

    EXPECT_EQ(report.table->rows, (std::vector<Row>{{"a.mov", "RENDERED"},
                                                    {"b.mov", "RENDERED"},
                                                    {"\xFF.mov", "RENDERED"},
                                                    {"/in/c.mov", "FAILED — "}}));
}

TEST(TranscodeReport, NothingDone_LeavesTheTableWithoutRows) {
    const Report report = reportOn({}, {});

    EXPECT_EQ(valueOf(report, "Rendered"), "0");
    EXPECT_EQ(valueOf(report, "Failed"), "0");
    ASSERT_TRUE(report.table);
    EXPECT_TRUE(report.table->rows.empty());
}

TEST(TranscodeReport, OnPaper_PDFAndCSVSayTheSame) {
    const TemporaryFolder folder;
    const Report report =
        reportOn({"/out/a.mov", "/out/b\xFF.mov"}, {{"c, d.mov", "ffmpeg said:\n\"no picture\""}});

    const auto written = ReportRenderer::write(report, folder.path(), {"pdf", "csv"});

    ASSERT_EQ(written.size(), 2U);
    EXPECT_EQ(written[0].filename(), "Transcode_Report_ProRes_422_Proxy.pdf");
    EXPECT_EQ(written[1].filename(), "Transcode_Report_ProRes_422_Proxy.csv");
    const auto rows = readCSV(written[1]);
    ASSERT_EQ(rows.size(), 18U);
    EXPECT_EQ(rows[0], (Row{"Transcode Report"}));
    EXPECT_EQ(rows[1], (Row{"ProRes 422 Proxy"}));
    EXPECT_EQ(rows[8], (Row{"Resolution", "long edge 1920px"}));
    EXPECT_EQ(rows[12], (Row{"Operator", "Jo Doe"}));
    EXPECT_EQ(rows[14], (Row{"Output", "Status"}));
    EXPECT_EQ(rows[15], (Row{"a.mov", "RENDERED"}));
    EXPECT_EQ(rows[16], (Row{"b\uFFFD.mov", "RENDERED"}));
    EXPECT_EQ(rows[17], (Row{"c, d.mov", "FAILED — ffmpeg said:\n\"no picture\""}));
    const Row lines = pdfLines(written[0]);
    ASSERT_EQ(lines.size(), 17U);
    EXPECT_EQ(lines[0], "Transcode Report");
    EXPECT_EQ(lines[4], "Edit system: Resolve / Premiere");
    EXPECT_EQ(lines[6], "LUT: Rec709");
    EXPECT_EQ(lines[8], "Rendered: 2");
    EXPECT_EQ(squeezed(lines[12]), "Output Status");
    EXPECT_EQ(squeezed(lines[14]), "a.mov RENDERED");
    EXPECT_EQ(squeezed(lines[16]), "c, d.mov FAILED — ff…");
}

}  // namespace
