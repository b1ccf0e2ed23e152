#include "Support/CommaLocale.h"
#include "Support/FolderTree.h"
#include "keldo-app/Support/SystemPreferences.h"

#include <QCoreApplication>
#include <QLocale>
#include <csignal>
#include <filesystem>

#include <gtest/gtest.h>

using keldo_app::Preferences;
using keldo_app::SystemPreferences;

namespace {

class PreferencesTests : public testing::Test {
protected:
    PreferencesTests() {
        // A process that dies begins anew, with a folder of its own: the first one names it.
        ::setenv("KELDO_TEST_PREFERENCES", folder_.path().c_str(), 0);
        root_ = std::getenv("KELDO_TEST_PREFERENCES");
        QCoreApplication::setOrganizationName("keldobay");
        QCoreApplication::setApplicationName("keldobay");
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, root_.c_str());
    }
    ~PreferencesTests() override { ::unsetenv("KELDO_TEST_PREFERENCES"); }

    ReelCore::URL file() const { return root_ / "keldobay" / "keldobay.conf"; }

    TestSupport::TemporaryFolder folder_;
    ReelCore::URL root_;
};

}  // namespace

TEST_F(PreferencesTests, Values_ComeBackAsStored) {
    const QString title = "Ünit, “two”; a=b \\n @x %41 ";
    {
        SystemPreferences preferences;
        preferences.set("plan.fps", 23.976);
        preferences.set("plan.margin", 0.1 + 0.2);
        preferences.set("plan.cameras", 8);
        preferences.set("plan.bytes", std::numeric_limits<qint64>::max());
        preferences.set("plan.production", title);
        preferences.set("plan.empty", "");
    }
    const SystemPreferences preferences;
    EXPECT_EQ(Preferences::number(preferences.value("plan.fps")), 23.976);
    EXPECT_EQ(Preferences::number(preferences.value("plan.margin")), 0.1 + 0.2);
    EXPECT_EQ(Preferences::wholeNumber(preferences.value("plan.cameras")), 8);
    EXPECT_EQ(Preferences::wholeNumber(preferences.value("plan.bytes")),
              std::numeric_limits<qint64>::max());
    EXPECT_EQ(Preferences::text(preferences.value("plan.production")), title);
    EXPECT_EQ(Preferences::text(preferences.value("plan.empty")), "");
}

TEST_F(PreferencesTests, MissingKey_IsInvalid_AndAnEmptyTextIsNot) {
    SystemPreferences preferences;
    EXPECT_FALSE(preferences.value("plan.codec").isValid());
    preferences.set("plan.codec", "");
    EXPECT_TRUE(preferences.value("plan.codec").isValid());
}

TEST_F(PreferencesTests, ValueOfAnotherKind_IsThereButNoNumber) {
    TestSupport::writeFile(file(),
                           "[General]\n"
                           "plan.cameras=many\nplan.fps=nan\nplan.days=1.5\nplan.list=a, b\n");
    const SystemPreferences preferences;
    for (const char* key : {"plan.cameras", "plan.fps", "plan.list"}) {
        EXPECT_TRUE(preferences.value(key).isValid()) << key;
        EXPECT_EQ(Preferences::number(preferences.value(key)), std::nullopt) << key;
    }
    EXPECT_EQ(Preferences::wholeNumber(preferences.value("plan.days")), std::nullopt);
    EXPECT_EQ(Preferences::number(preferences.value("plan.days")), 1.5);
    EXPECT_EQ(Preferences::text(preferences.value("plan.list")), std::nullopt);
    EXPECT_EQ(Preferences::text(preferences.value("plan.cameras")), "many");
}

TEST_F(PreferencesTests, KeysAreKeptAsGiven) {
    SystemPreferences preferences;
    preferences.set("plan.customCardGB", 120);
    EXPECT_EQ(TestSupport::readFile(file()), "[General]\nplan.customCardGB=120\n");
}

TEST_F(PreferencesTests, Change_OutlivesAProcessThatIsKilled) {
    const auto setAndDie = [] {
        SystemPreferences preferences;
        preferences.set("plan.days", 12);
        ::raise(SIGKILL);
    };
    EXPECT_EXIT(setAndDie(), testing::KilledBySignal(SIGKILL), "");
    EXPECT_EQ(Preferences::wholeNumber(SystemPreferences().value("plan.days")), 12);
}

TEST_F(PreferencesTests, TwoProcesses_KeepEachOthersChanges) {
    SystemPreferences preferences;
    preferences.set("plan.days", 3);
    const auto other = [] {
        SystemPreferences others;
        others.set("plan.cameras", 2);
        std::_Exit(others.value("plan.days").toInt());
    };
    EXPECT_EXIT(other(), testing::ExitedWithCode(3), "");
    preferences.set("plan.copies", 4);
    const SystemPreferences anew;
    EXPECT_EQ(Preferences::wholeNumber(anew.value("plan.days")), 3);
    EXPECT_EQ(Preferences::wholeNumber(anew.value("plan.cameras")), 2);
    EXPECT_EQ(Preferences::wholeNumber(anew.value("plan.copies")), 4);
}

TEST_F(PreferencesTests, FileThatCanNotBeWritten_HoldsTheChangeForThisRun) {
    // A file where the folder should be: this stops root as well.
    TestSupport::writeFile(root_ / "keldobay", "in the way");
    SystemPreferences preferences;
    preferences.set("plan.days", 12);
    EXPECT_EQ(Preferences::wholeNumber(preferences.value("plan.days")), 12);
    EXPECT_EQ(TestSupport::readFile(root_ / "keldobay"), "in the way");
}

TEST_F(PreferencesTests, FileOfRubbish_IsReplacedWithTheFirstChange) {
    TestSupport::writeFile(file(), TestSupport::noise(4096));
    SystemPreferences preferences;
    EXPECT_FALSE(preferences.value("plan.days").isValid());
    preferences.set("plan.days", 12);
    EXPECT_EQ(Preferences::wholeNumber(SystemPreferences().value("plan.days")), 12);
}

TEST_F(PreferencesTests, LanguageWithDecimalCommas_ChangesNothing) {
    const TestSupport::CommaLocale comma;
    if (!comma.isThere()) GTEST_SKIP() << "needs localedef and the sources of de_DE";
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German));
    SystemPreferences preferences;
    preferences.set("plan.fps", 23.976);
    EXPECT_EQ(TestSupport::readFile(file()), "[General]\nplan.fps=23.976\n");
    EXPECT_EQ(Preferences::number(preferences.value("plan.fps")), 23.976);
    QLocale::setDefault(before);
}
