#pragma once

#include "ReelCore/Offload/OffloadEngine.h"
#include "ReelCore/Offload/OffloadError.h"
#include "Support/FolderTree.h"
#include "Support/Snapshot.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

/// A card, drives, and an engine to offload one to the others. Every test that makes its card with
/// `makeCard` ends with a look at it: names, contents, dates of modification and of access must be
/// what they were.
class OffloadTest : public testing::Test {
protected:
    static constexpr std::size_t blockSize = 65536;

    /// A place in the test's own folder; the name may hold "..".
    ReelCore::URL at(const std::string& name) const { return folder_.path() / name; }
    ReelCore::URL card() const { return at("card"); }

    void makeCard(const TestSupport::FolderTree& tree) {
        TestSupport::writeTree(card(), tree);
        noteCard(card());
    }

    /// Looks at the card as it is now, which is how it must be at the end.
    void noteCard(const ReelCore::URL& path) {
        TestSupport::ageAccessDates(path);
        notedCard_ = path;
        before_ = TestSupport::snapshotOf(path);
    }

    /// For a test in which somebody else changes the card during the run.
    void forgetCard() { notedCard_.reset(); }

    /// The look itself, for a card that won't be there any more when the test ends.
    void expectCardUntouched() {
        if (!notedCard_) return;
        EXPECT_TRUE(TestSupport::snapshotOf(*notedCard_) == before_) << "the card has changed";
        notedCard_.reset();
    }

    void TearDown() override { expectCardUntouched(); }

    ReelCore::OffloadRequest request(const std::vector<ReelCore::URL>& drives) const {
        return {card(), drives, ReelCore::HashAlgorithm::xxhash64, "A001"};
    }

    ReelCore::OffloadResult run(const ReelCore::OffloadRequest& wanted) {
        events_.clear();
        ReelCore::OffloadEngine engine(blockSize, [this] { return isCancelled(); });
        return engine.run(wanted, [this](const ReelCore::OffloadProgress& progress) {
            events_.push_back(progress);
            onProgress(progress);
        });
    }

    /// The run's failure, or nothing if it came to its end.
    std::optional<ReelCore::OffloadError> failureOf(const ReelCore::OffloadRequest& wanted) {
        try {
            run(wanted);
            return std::nullopt;
        } catch (const ReelCore::OffloadError& error) {
            return error;
        }
    }

    std::string descriptionOf(const ReelCore::OffloadRequest& wanted) {
        const auto error = failureOf(wanted);
        return error ? error->description() : "no failure";
    }

    /// What one drive's reel folder holds, without the hash list.
    static TestSupport::FolderTree copiesOn(const ReelCore::URL& drive) {
        TestSupport::FolderTree tree = TestSupport::readTree(drive / "A001");
        tree.erase("A001.mhl");
        return tree;
    }

    static bool hasHashList(const ReelCore::URL& drive) {
        return std::filesystem::exists(drive / "A001/A001.mhl");
    }

    /// Calls once, when the run comes to that file and phase.
    void when(ReelCore::OffloadProgress::Phase phase, const std::string& file,
              std::function<void()> action) {
        onProgress = [=, done = false](const ReelCore::OffloadProgress& progress) mutable {
            if (done || progress.phase != phase || progress.currentFile != file) return;
            done = true;
            action();
        };
    }

    std::function<bool()> isCancelled = [] { return false; };
    std::function<void(const ReelCore::OffloadProgress&)> onProgress = [](const auto&) {};
    std::vector<ReelCore::OffloadProgress> events_;

private:
    TestSupport::TemporaryFolder folder_;
    std::optional<ReelCore::URL> notedCard_;
    TestSupport::Snapshot before_;
};
