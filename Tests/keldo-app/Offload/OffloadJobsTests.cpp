#include "keldo-app/Offload/OffloadJobs.h"

#include "ReelCore/Offload/OffloadEngine.h"
#include "Support/FolderTree.h"

#include <QTest>

#include <gtest/gtest.h>

using keldo_app::CancellationFlag;
using keldo_app::OffloadEvent;
using keldo_app::OffloadJobs;
using ReelCore::CardFormatter;
using TestSupport::TemporaryFolder;

namespace {

class OffloadJobsTests : public testing::Test {
protected:
    OffloadJobsTests() {
        TestSupport::writeTree(card(), {{"CLIP/A.MXF", "picture"}, {"CLIP/A.XML", "<a/>"}});
    }

    ReelCore::URL card() const { return folder_.path() / "card"; }
    ReelCore::URL drive(const char* name) const { return folder_.path() / name; }

    ReelCore::OffloadRequest request() const {
        return {card(), {drive("one"), drive("two")}, ReelCore::HashAlgorithm::xxhash64, "A001"};
    }

    std::shared_ptr<const ReelCore::OffloadResult> offload() const {
        ReelCore::OffloadEngine engine(4096, [] { return false; });
        return std::make_shared<const ReelCore::OffloadResult>(engine.run(request(), [](auto&) {}));
    }

    /// The text that an erase of the card ends with; the gate is open.
    QString erase(const std::shared_ptr<const ReelCore::OffloadResult>& result) const {
        QString status;
        const auto job = OffloadJobs::format(
            CardFormatter::plan(card(), "A001", CardFormatter::FileSystem::exFAT),
            CardFormatter::gate(*result, 2), result, nullptr,
            [&](const QString& text) { status = text; });
        EXPECT_TRUE(QTest::qWaitFor([&] { return !status.isEmpty(); }, 30'000));
        return status;
    }

    TemporaryFolder folder_;
};

const QString changedCard =
    "✗ The files on the card are not the ones that were verified. Nothing was erased.";

}  // namespace

TEST_F(OffloadJobsTests, Offload_EndsWithTheResultAfterItsProgress) {
    std::vector<OffloadEvent> events;
    const auto job = OffloadJobs::offload(request(), nullptr, std::make_shared<CancellationFlag>(),
                                          [&](OffloadEvent event) { events.push_back(event); });
    ASSERT_TRUE(QTest::qWaitFor(
        [&] {
            return !events.empty() &&
                   std::holds_alternative<OffloadEvent::Finished>(events.back().value);
        },
        30'000));
    ASSERT_GE(events.size(), 2U);
    const auto& progress = std::get<OffloadEvent::Progress>(events[events.size() - 2].value);
    EXPECT_EQ(progress.progress.phase, ReelCore::OffloadProgress::Phase::done);
    EXPECT_TRUE(std::get<OffloadEvent::Finished>(events.back().value).result->allVerified());
}

TEST_F(OffloadJobsTests, Offload_IntoTheCard_EndsWithTheErrorAndItsReason) {
    std::optional<OffloadEvent> last;
    auto inside = request();
    inside.destinations.push_back(card() / "BACKUP");
    const auto job = OffloadJobs::offload(inside, nullptr, std::make_shared<CancellationFlag>(),
                                          [&](OffloadEvent event) { last = std::move(event); });
    const auto failed = [&] {
        return last ? std::get_if<OffloadEvent::Failed>(&last->value) : nullptr;
    };
    ASSERT_TRUE(QTest::qWaitFor([&] { return failed() != nullptr; }, 30'000));
    EXPECT_EQ(failed()->description,
              "Destination is not writable: " + (card() / "BACKUP").native());
    EXPECT_NE(failed()->reason, "");
}

TEST_F(OffloadJobsTests, Scan_OfAMissingFolder_GivesNothing) {
    bool called = false;
    const auto job = OffloadJobs::scan(folder_.path() / "missing", [&](const auto& scan) {
        called = true;
        EXPECT_FALSE(scan.has_value());
    });
    EXPECT_TRUE(QTest::qWaitFor([&] { return called; }, 30'000));
}

TEST_F(OffloadJobsTests, Erase_OfACardThatGotAnotherFile_IsRefused) {
    const auto result = offload();
    TestSupport::writeFile(card() / "CLIP/B.MXF", "a take of just now");
    EXPECT_EQ(erase(result), changedCard);
}

TEST_F(OffloadJobsTests, Erase_OfACardWhoseFileChanged_IsRefused) {
    const auto result = offload();
    TestSupport::writeFile(card() / "CLIP/A.MXF", "picturE");
    EXPECT_EQ(erase(result), changedCard);
}

TEST_F(OffloadJobsTests, Erase_OfACardThatIsGone_IsRefused) {
    const auto result = offload();
    std::filesystem::remove_all(card());
    EXPECT_TRUE(erase(result).startsWith("✗ Source not found or not a directory: "));
}
