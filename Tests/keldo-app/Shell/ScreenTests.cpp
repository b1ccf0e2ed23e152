#include "Window/FakeDesktop.h"
#include "Window/WindowDriver.h"

#include <QtQml/qqmlextensionplugin.h>
#include <gtest/gtest.h>

Q_IMPORT_QML_PLUGIN(Keldo_DummyPlugin)

namespace {

/// The window with a seventh mode, whose screen stands in a folder of these tests.
class ScreenTests : public testing::Test {
protected:
    ScreenTests() {
        const QStringList modes = window().property("modes").toStringList();
        window().setProperty("modes", modes + QStringList("Dummy"));
    }

    QQuickWindow& window() const { return driver_.window(); }

    WindowSupport::FakeDesktop desktop_;
    WindowSupport::WindowDriver driver_{WindowSupport::application(desktop_)};
};

}  // namespace

TEST_F(ScreenTests, FolderAndItsMode_AreAllThatAScreenTakes) {
    driver_.press("mode.Dummy");
    const QQuickItem* dummy = driver_.find("dummy");
    ASSERT_TRUE(dummy);
    EXPECT_EQ(dummy->property("desktop").value<QObject*>(), &desktop_);
    EXPECT_EQ(dummy->width(), window().width());
    EXPECT_EQ(driver_.warnings(), QStringList());
}

TEST_F(ScreenTests, Switch_DropsTheScreenBefore) {
    EXPECT_TRUE(driver_.isShown("offload.page"));
    driver_.press("mode.Dummy");
    EXPECT_FALSE(driver_.isShown("offload.page"));
    driver_.press("mode.Plan");
    EXPECT_FALSE(driver_.isShown("dummy"));
    EXPECT_TRUE(driver_.isShown("plan.page"));
}
