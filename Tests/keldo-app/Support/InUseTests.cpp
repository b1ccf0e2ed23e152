#include "keldo-app/Support/InUse.h"

#include <QTest>
#include <thread>

#include <gtest/gtest.h>

using keldo_app::InUse;
using Purpose = keldo_app::InUse::Purpose;

namespace {

QString objection(const char* place, Purpose purpose) {
    return InUse::shared().objection({place, purpose});
}

const QString erased = "“CARD” is being erased. Wait until that has ended.";

}  // namespace

TEST(InUse, NothingTaken_NothingStandsAgainstIt) {
    EXPECT_EQ(objection("/media/CARD", Purpose::erasing), "");
}

TEST(InUse, CardUnderErase_IsForNothingElseNorIsWhatLiesInItOrAboveIt) {
    const auto erase = InUse::shared().take({{"/media/CARD", Purpose::erasing}});
    EXPECT_EQ(objection("/media/CARD", Purpose::reading), erased);
    EXPECT_EQ(objection("/media/CARD", Purpose::erasing), erased);
    EXPECT_EQ(objection("/media/CARD/DCIM", Purpose::reading), erased);
    EXPECT_EQ(objection("/media", Purpose::writing), erased);
    EXPECT_EQ(objection("/media/CARD 2", Purpose::reading), "");
}

TEST(InUse, CardThatIsRead_MayBeReadAndNotErased) {
    const auto run = InUse::shared().take(
        {{"/media/CARD", Purpose::reading}, {"/media/RAID/A001", Purpose::writing}});
    EXPECT_EQ(objection("/media/CARD", Purpose::reading), "");
    EXPECT_EQ(objection("/media/CARD", Purpose::erasing),
              "“CARD” is being copied. Wait until that has ended.");
    EXPECT_EQ(objection("/media/RAID/A001", Purpose::reading),
              "“A001” is being written to. Wait until that has ended.");
    EXPECT_EQ(objection("/media/RAID/A002", Purpose::writing), "");
}

TEST(InUse, LetGoOnAnotherThread_EndsTheUseAndTells) {
    QCoreApplication::processEvents();  // what the tests before have left
    int told = 0;
    const auto heard = QObject::connect(&InUse::shared(), &InUse::changed, [&] { ++told; });
    auto use = InUse::shared().take({{"/media/CARD", Purpose::erasing}});
    std::thread([held = std::move(use)]() mutable { held.reset(); }).join();
    EXPECT_EQ(objection("/media/CARD", Purpose::reading), "");
    EXPECT_TRUE(QTest::qWaitFor([&] { return told == 1; }, 10'000));
    QObject::disconnect(heard);
}
