#include "Tour/Guide.h"

#include <cstdio>
#include <stdexcept>

#include <fmt/format.h>

namespace Tour {

using ReelCore::URL;

Guide::Guide(const URL& pictures)
    : driver(WindowSupport::application(desktop)), pictures_(pictures) {
    driver.resize(940, 680);
}

void Guide::press(const QString& name) {
    driver.waitFor(name.toStdString() + " to show", [&] { return driver.isShown(name); });
    const std::string label = driver.shown(name).text;
    say(fmt::format("press “{}”", label.empty() ? name.toStdString() : label));
    driver.press(name);
}

void Guide::choose(const QString& button, const URL& answer) {
    desktop.answers = {answer};
    press(button);
    require(desktop.answers.empty(), "a panel for " + answer.filename().native());
}

void Guide::chooseFiles(const QString& button, const std::vector<URL>& answer) {
    desktop.filesAnswers = {answer};
    press(button);
    require(desktop.filesAnswers.empty(), fmt::format("a panel for {} files", answer.size()));
}

void Guide::waitFor(const QString& name) const {
    driver.waitFor(
        name.toStdString() + " to show", [&] { return driver.isShown(name); }, 120'000);
}

void Guide::waitForText(const QString& name, const QString& text, const QString& before) const {
    driver.waitFor(
        name.toStdString() + " to say something",
        [&] {
            return driver.isShown(name) && !driver.text(name).isEmpty() &&
                   driver.text(name) != before;
        },
        120'000);
    requireText(name, text);
}

void Guide::require(bool holds, const std::string& what) const {
    if (!holds) throw std::runtime_error("the tour expected " + what);
    say("  ok " + what);
}

void Guide::requireText(const QString& name, const QString& text) const {
    const std::string seen = driver.text(name).toStdString();
    if (seen != text.toStdString()) {
        throw std::runtime_error(fmt::format("the tour expected {} to say “{}”, not “{}”",
                                             name.toStdString(), text.toStdString(), seen));
    }
    say("  ok “" + seen + "”");
}

void Guide::show(const QString& name) {
    driver.hover(name);
}

void Guide::picture(const std::string& name) {
    const URL path = pictures_ / fmt::format("{:02}-{}.png", ++count_, name);
    driver.screenshot(path);
    say("     screenshot " + path.native());
}

void Guide::say(const std::string& line) {
    fmt::print("{}\n", line);
    std::fflush(stdout);
}

}  // namespace Tour
