#include "OffloadFixture.h"

#include <thread>

using namespace ReelCore;
using namespace TestSupport;

namespace {

using Phase = OffloadProgress::Phase;

class OffloadProgressTest : public OffloadTest {};

}  // namespace

TEST_F(OffloadProgressTest, TwoFiles_ExactlyTheseEventsInThisOrder) {
    makeCard({{"A", "12345"}, {"DCIM/B", "123"}});

    run(request({at("d1"), at("d2")}));

    EXPECT_EQ(events_,
              (std::vector<OffloadProgress>{{Phase::scanning, std::nullopt, 0, 0, 0, 0},
                                            {Phase::copying, "A", 0, 2, 0, 8},
                                            {Phase::verifying, "A", 0, 2, 0, 8},
                                            {Phase::copying, "DCIM/B", 1, 2, 5, 8},
                                            {Phase::verifying, "DCIM/B", 1, 2, 5, 8},
                                            {Phase::writingReport, std::nullopt, 2, 2, 8, 8},
                                            {Phase::done, std::nullopt, 2, 2, 8, 8}}));
}

TEST_F(OffloadProgressTest, Phases_ComeWhenTheDisksAreInThatState) {
    makeCard({{"DCIM/A", "12345"}, {"DCIM/B", "123"}});
    std::vector<std::string> seen;
    onProgress = [&](const OffloadProgress& progress) {
        const bool folder = std::filesystem::exists(at("d2/A001"));
        const bool copied = std::filesystem::exists(at("d2/A001/DCIM/A"));
        const bool list = hasHashList(at("d2"));
        seen.push_back(std::string(rawValue(progress.phase)) + (folder ? " folder" : "") +
                       (copied ? " copy" : "") + (list ? " list" : ""));
    };

    run(request({at("d1"), at("d2")}));

    EXPECT_EQ(seen,
              (std::vector<std::string>{"scanning", "copying folder", "verifying folder copy",
                                        "copying folder copy", "verifying folder copy",
                                        "writingReport folder copy", "done folder copy list"}));
}

TEST_F(OffloadProgressTest, EventsOfARun_ComeOnTheThreadThatRuns) {
    makeCard({{"A", "12345"}});
    const auto here = std::this_thread::get_id();
    onProgress = [&](const auto&) { EXPECT_EQ(std::this_thread::get_id(), here); };

    run(request({at("d1")}));

    EXPECT_EQ(events_.size(), 5U);
}
