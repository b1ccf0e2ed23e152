#include "keldo-app/Support/ReportSaver.h"

#include "Support/FolderTree.h"
#include "Window/FakeDesktop.h"

#include <QTest>
#include <stdexcept>

#include <gtest/gtest.h>

using keldo_app::ReportSaver;

namespace {

class ReportSaverTests : public testing::Test {
protected:
    static ReelCore::Report report() {
        ReelCore::Report report;
        report.title = "Day 1";
        return report;
    }

    void save(ReportSaver::Make make = report) {
        saver_.save(desktop_, "Save Report to…", std::move(make),
                    [this] { texts_.append(saver_.status()); });
    }

    bool waitForTexts(qsizetype count) const {
        return QTest::qWaitFor([&] { return texts_.size() == count; }, 30'000);
    }

    TestSupport::TemporaryFolder folder_;
    WindowSupport::FakeDesktop desktop_;
    ReportSaver saver_;
    QStringList texts_;
};

}  // namespace

TEST_F(ReportSaverTests, Save_WritesBothShowsThePDFAndSaysSo) {
    desktop_.answers = {folder_.path()};
    save();
    ASSERT_TRUE(waitForTexts(2));
    const auto name = QString::fromStdString(folder_.path().filename().native());
    EXPECT_EQ(texts_, (QStringList{"", "Saved 2 file(s) to " + name + "."}));
    EXPECT_EQ(desktop_.messages, QStringList("Save Report to…"));
    ASSERT_EQ(desktop_.revealed.size(), 1U);
    EXPECT_EQ(desktop_.revealed.front().extension(), ".pdf");
    EXPECT_TRUE(std::filesystem::exists(desktop_.revealed.front()));
}

TEST_F(ReportSaverTests, Dismissed_ChangesNothing) {
    desktop_.answers = {folder_.path()};
    save();
    ASSERT_TRUE(waitForTexts(2));
    const QString before = saver_.status();
    save([]() -> ReelCore::Report { throw std::runtime_error("must not be made"); });
    EXPECT_EQ(saver_.status(), before);
    EXPECT_EQ(texts_.size(), 2);
}

TEST_F(ReportSaverTests, FolderThatIsNone_IsSaid) {
    desktop_.answers = {folder_.path() / "missing" / "deeper"};
    TestSupport::writeFile(folder_.path() / "missing", "a file");
    save();
    ASSERT_TRUE(waitForTexts(2));
    EXPECT_EQ(saver_.status(), "Could not write report.");
    EXPECT_TRUE(desktop_.revealed.empty());
}

TEST_F(ReportSaverTests, ReportThatCanNotBeMade_IsSaid) {
    desktop_.answers = {folder_.path()};
    save([]() -> ReelCore::Report { throw std::runtime_error("no"); });
    ASSERT_TRUE(waitForTexts(2));
    EXPECT_EQ(saver_.status(), "Could not write report.");
}
