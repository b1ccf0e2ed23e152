#include "GalleryFixture.h"

using WindowSupport::Look;
using WindowSupport::Shown;

namespace {

/// What each component shows in each of its states, light and dark.
class StateTests : public GalleryFixture {
protected:
    /// Text and symbol, both in the theme's colour of that name, in both looks.
    void expectShown(const char* item, const std::string& text, const std::string& symbol,
                     const char* color) {
        for (const Look look : {Look::light, Look::dark}) {
            WindowSupport::setLook(look);
            const std::string value = driver_->themeColor(color).name().toStdString();
            const Shown expected{text, text.empty() ? "" : value, symbol,
                                 symbol.empty() ? "" : value};
            driver_->waitFor(std::string("the look of ") + item, [&] {
                return driver_->shown(item).symbolColor == expected.symbolColor;
            });
            EXPECT_EQ(driver_->shown(item), expected) << item;
        }
        WindowSupport::setLook(Look::light);
    }
};

}  // namespace

TEST_F(StateTests, Buttons) {
    openGallery("Controls");
    expectShown("plain", "Plain", "", "primary");
    expectShown("symbol", "With Symbol", "plus", "primary");
    expectShown("prominent", "Prominent", "play.fill", "onProminent");
    expectShown("destructive", "Destructive", "trash.fill", "onProminent");
    expectShown("plain.off", "Plain", "", "secondary");
    expectShown("prominent.off", "Prominent", "play.fill", "secondary");
    expectShown("icon", "", "minus.circle.fill", "danger");
    expectShown("icon.off", "", "minus.circle.fill", "secondary");
    expectShown("page.title", "Controls", "slider.horizontal.3", "primary");
}

TEST_F(StateTests, ChoicesAndNumbers) {
    openGallery("Controls");
    EXPECT_EQ(driver_->shown("segments.Two").text, "Two");
    EXPECT_FALSE(driver_->isEnabled("segments.off.One"));
    EXPECT_EQ(driver_->shown("picker").text, "ProRes 422");
    EXPECT_EQ(driver_->shown("picker").symbol, "chevron.down");
    EXPECT_EQ(driver_->shown("picker.off").textColor,
              driver_->themeColor("secondary").name().toStdString());
    EXPECT_EQ(driver_->shown("toggle").symbol, "checkmark");
    EXPECT_EQ(driver_->shown("toggle.stubborn").symbol, "");
    EXPECT_EQ(driver_->shown("toggle.off").textColor,
              driver_->themeColor("secondary").name().toStdString());
    EXPECT_EQ(driver_->text("hours.input"), "3.0");
    EXPECT_EQ(driver_->text("rate.input"), "100.0");
    EXPECT_EQ(property("field", "placeholderText"), "A001_2026-06-06");
    EXPECT_FALSE(driver_->isEnabled("field.off"));
}

TEST_F(StateTests, Rows) {
    openGallery("Rows");
    expectShown("path.empty.text", "No card selected", "", "secondary");
    expectShown("path.full.text", "/media/dit/A001_C003", "", "primary");
    EXPECT_EQ(driver_->text("path.full.choose"), "Choose Image");
    EXPECT_FALSE(driver_->isEnabled("path.off.choose"));
    driver_->press("path.empty.choose");
    EXPECT_EQ(driver_->text("last"), "chosen");
    EXPECT_EQ(driver_->shown("file.0.title").text, "A001.MXF");
    EXPECT_FALSE(driver_->isShown("file.0.path"));
    EXPECT_EQ(driver_->shown("file.awkward.title").text, "line␊feed␉tab");
    EXPECT_TRUE(driver_->text("file.awkward.path").endsWith("[U+202E]gpj.exe\u2069"));
    expectShown("status.good.trailing", "healthy", "", "proved");
    EXPECT_EQ(driver_->shown("status.bad").symbol, "xmark.circle.fill");
    EXPECT_FALSE(driver_->isShown("status.bare.trailing"));
    EXPECT_EQ(driver_->shown("status.bare").symbol, "");
    EXPECT_EQ(driver_->text("fact.label"), "Runtime per card");
    EXPECT_EQ(driver_->text("fact.value"), "≈ 51 min  (114 GB usable)");
    expectShown("badge.1", "238.4 GB", "scalemass", "secondary");
    EXPECT_FALSE(driver_->isShown("list.none"));
}

TEST_F(StateTests, Texts) {
    openGallery("Texts");
    EXPECT_EQ(driver_->shown("note").textColor,
              driver_->themeColor("secondary").name().toStdString());
    expectShown("notice.short", "One line.", "xmark.circle.fill", "danger");
    expectShown("notices.1", "The second.", "exclamationmark.triangle.fill", "attention");
    EXPECT_FALSE(driver_->isShown("notices.none"));
    EXPECT_EQ(driver_->text("selectable"), "An error that can be copied: <i>as it is</i>.");
    EXPECT_EQ(driver_->text("code").count('\n'), 2);
    EXPECT_EQ(driver_->shown("name.6.title").text, "<b>bold</b> & co");
}

TEST_F(StateTests, Jobs) {
    openGallery("States");
    EXPECT_EQ(driver_->text("begun.percent"), "0%");
    EXPECT_EQ(driver_->text("running.percent"), "41%");
    EXPECT_EQ(driver_->text("done.percent"), "100%");
    EXPECT_FALSE(driver_->isShown("begun.current"));
    EXPECT_TRUE(driver_->text("running.current").endsWith("A001C003␊261121XK.MXF"));
    expectShown("running.cancel", "Cancel", "stop.fill", "onProminent");
    driver_->press("running.cancel");
    EXPECT_EQ(driver_->text("running"), "Cancelled");
    expectShown("busyCard.head", "Busy", "magnifyingglass", "attention");
    EXPECT_EQ(driver_->shown("busy").text, "Scanning…");
    EXPECT_FALSE(driver_->isShown("busy.hidden"));
    expectShown("failure.head", "Offload Failed", "xmark.octagon.fill", "danger");
    EXPECT_TRUE(driver_->isShown("failure.reasons.0"));
    EXPECT_FALSE(driver_->isShown("failure.bare.reasons"));
}
