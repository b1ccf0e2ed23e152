#include "ReelCore/Reports/ReportRenderer.h"
#include "SampleOffload.h"

#include <array>
#include <latch>
#include <thread>

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using namespace TestSupport;

/// Latin, bold, monospaced, and letters that another font has to help out with.
Report reportOf(std::size_t number) {
    Report report = reportWithRows(20 + static_cast<int>(number) * 30);
    report.subtitle = "A00" + std::to_string(number);
    report.summary.push_back({"Operator", "Жанна, שלום, 日本語"});
    report.table->rows.push_back({"שלום.mov", "1 B", "x", "FAILED"});
    return report;
}

// Two jobs may end in their reports at the same time.
TEST(ReportThreads, PDFsMadeAtOnce_AreThoseMadeAlone) {
    constexpr std::size_t count = 4;
    std::array<std::vector<std::byte>, count> atOnce;
    {
        std::latch start(count);
        std::vector<std::jthread> threads;
        for (std::size_t i = 0; i < count; ++i) {
            threads.emplace_back([&, i] {
                start.arrive_and_wait();
                atOnce[i] = ReportRenderer::pdf(reportOf(i));
            });
        }
    }

    for (std::size_t i = 0; i < count; ++i) {
        EXPECT_EQ(atOnce[i], ReportRenderer::pdf(reportOf(i))) << i;
    }
}

}  // namespace
