#include "keldo-app/Plan/PlanViewModel.h"

#include "ReelCore/Reports/ReportRenderer.h"
#include "keldo-app/Support/Format.h"

#include <QUuid>
#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <limits>

#include <fmt/format.h>

namespace keldo_app {

using ReelCore::Report;
using ReelCore::StorageCalculator;
using ReelCore::URL;

namespace {

constexpr std::array fpsChoices{23.976, 24.0, 25.0, 29.97, 50.0, 59.94};

/// The number, or one that no table holds where it means nothing.
std::int64_t whole(double value) {
    return std::isnan(value) ? -1 : static_cast<std::int64_t>(value);
}

QVariantMap choice(const QString& text, const QVariant& value) {
    return {{"text", text}, {"value", value}};
}

QVariantList choicesOf(const auto& table) {
    QVariantList choices;
    for (const auto& one : table) {
        choices.append(choice(Format::text(one.name), Format::text(one.id)));
    }
    return choices;
}

std::string tb(double gb) {
    return gb >= 1000 ? fmt::format("{:.2f} TB", gb / 1000) : fmt::format("{:.0f} GB", gb);
}

void addEstimate(PlanFacts& facts, const StorageCalculator::Estimate& estimate,
                 std::int64_t copies) {
    const auto& [count, size] = estimate.drivesPerCopy;
    facts.hasEstimate = true;
    facts.rate = Format::text(fmt::format("{:.0f} Mbps · {:.1f} GB/hr per camera",
                                          estimate.videoMbps, estimate.gbPerHour));
    facts.perDay = Format::text(tb(estimate.gbPerDay) + " / day");
    facts.wholeShoot = Format::text(tb(estimate.shootGB));
    facts.perCopy = Format::text(tb(estimate.perCopyWithMarginGB));
    facts.drivesPerCopy = Format::text(fmt::format("{} × {} TB", count, size));
    facts.total = Format::text(
        fmt::format("{} × {} TB   ({})", count * copies, size, tb(estimate.totalAllCopiesGB)));
}

std::string cardsToOwn(const StorageCalculator::CardPlan& card, std::int64_t manual) {
    if (manual > 0) {
        return fmt::format("{}   (set manually — calc says {})", manual, card.totalToBuy());
    }
    return fmt::format("{}   ({} in {}-day rotation + {} spare{})", card.totalToBuy(),
                       card.rotationCards, card.effectiveHoldDays, card.spares,
                       card.spares == 1 ? "" : "s");
}

void addCard(PlanFacts& facts, const StorageCalculator::CardPlan& card, std::int64_t cameras,
             std::int64_t manual) {
    facts.hasCard = true;
    facts.runtimePerCard = Format::text(
        fmt::format("≈ {:.0f} min  ({:.0f} GB usable)", card.minutesPerCard, card.usableGB));
    facts.cardsPerCameraPerDay = Format::text(fmt::format(
        "{}   ({}/day total)", card.cardsPerCameraPerDay, card.cardsPerCameraPerDay * cameras));
    facts.cardsToOwn = Format::text(cardsToOwn(card, manual));
}

}  // namespace

QVariant PlanViewModel::stored(const char* key) const {
    // A screen's bindings are read once before the desktop is handed in.
    return desktop ? desktop->preferences().value(key) : QVariant();
}

double PlanViewModel::number(const PlanNumber& setting) const {
    constexpr double nothing = std::numeric_limits<double>::quiet_NaN();
    const QVariant stored = this->stored(setting.key);
    if (!stored.isValid()) return setting.initial;
    const auto value = Preferences::number(stored);
    if (!value || *value < setting.least || *value > setting.most) return nothing;
    if (setting.kind == PlanNumber::Kind::whole && *value != std::trunc(*value)) return nothing;
    return *value;
}

QString PlanViewModel::text(const char* key, const QString& initial) const {
    const QVariant stored = this->stored(key);
    return stored.isValid() ? Preferences::text(stored).value_or(QString()) : initial;
}

void PlanViewModel::store(const PlanNumber& setting, double value) {
    const double kept =
        std::isnan(value) ? setting.initial : std::clamp(value, setting.least, setting.most);
    const bool isWhole = setting.kind == PlanNumber::Kind::whole;
    desktop->preferences().set(
        setting.key, isWhole ? QVariant::fromValue<qlonglong>(std::llround(kept)) : QVariant(kept));
    emit changed();
}

void PlanViewModel::store(const char* key, const QString& value) {
    desktop->preferences().set(key, value);
    emit changed();
}

QString PlanViewModel::cardFamilyID() const {
    return text("plan.cardFamily", "xqd");
}

void PlanViewModel::setCardFamilyID(const QString& id) {
    store("plan.cardFamily", id);
    if (cardGB() == 0) return;
    const auto family = StorageCalculator::cardType(id.toStdString());
    if (!family) return setCardGB(0);
    const auto& sizes = family->capacitiesGB;
    if (std::ranges::find(sizes, whole(cardGB())) == sizes.end()) {
        setCardGB(static_cast<double>(sizes.front()));
    }
}

void PlanViewModel::setManual(bool manual) {
    const auto card = this->card();
    setManualCards(manual && card ? static_cast<double>(card->totalToBuy()) : 0);
}

QVariantList PlanViewModel::codecs() {
    return choicesOf(StorageCalculator::codecs());
}

QVariantList PlanViewModel::resolutions() {
    return choicesOf(StorageCalculator::Resolution::all());
}

QVariantList PlanViewModel::rates() {
    QVariantList choices;
    for (const double fps : fpsChoices) {
        choices.append(choice(Format::text(fmt::format("{:g} fps", fps)), fps));
    }
    return choices;
}

QVariantList PlanViewModel::cardFamilies() {
    return choicesOf(StorageCalculator::cardTypes());
}

QVariantList PlanViewModel::capacities() const {
    QVariantList choices;
    if (const auto family = StorageCalculator::cardType(cardFamilyID().toStdString())) {
        for (const std::int64_t size : family->capacitiesGB) {
            choices.append(
                choice(Format::text(fmt::format("{} GB", size)), static_cast<double>(size)));
        }
    }
    choices.append(choice("Custom", 0.0));
    return choices;
}

QString PlanViewModel::codecNote() const {
    const auto codec = StorageCalculator::codec(codecID().toStdString());
    return codec ? Format::text(codec->note) : QString();
}

bool PlanViewModel::usesResolution() const {
    const auto codec = StorageCalculator::codec(codecID().toStdString());
    return codec && codec->usesResolution;
}

std::optional<StorageCalculator::Plan> PlanViewModel::plan() const {
    const bool isCustom = codecID() == "custom";
    const std::array needed{fps(),         isCustom ? customMbps() : 0,
                            hoursPerDay(), cameras(),
                            days(),        copies(),
                            margin(),      audioChannels()};
    if (std::ranges::any_of(needed, [](double one) { return std::isnan(one); })) return {};
    StorageCalculator::Plan plan;
    plan.codecID = codecID().toStdString();
    plan.resolutionID = resolutionID().toStdString();
    plan.fps = fps();
    if (isCustom) plan.customMbps = customMbps();
    plan.hoursPerDay = hoursPerDay();
    plan.cameras = whole(cameras());
    plan.days = whole(days());
    plan.copies = whole(copies());
    plan.audioChannels = whole(audioChannels());
    plan.marginPercent = margin();
    return plan;
}

std::optional<StorageCalculator::Estimate> PlanViewModel::estimate() const {
    const auto plan = this->plan();
    return plan ? StorageCalculator::estimate(*plan) : std::nullopt;
}

double PlanViewModel::capacity() const {
    return cardGB() == 0 ? customCardGB() : cardGB();
}

std::optional<StorageCalculator::CardPlan> PlanViewModel::card() const {
    const auto estimate = this->estimate();
    if (!estimate || std::isnan(capacity()) || std::isnan(holdDays())) return {};
    return StorageCalculator::cardPlan(estimate->gbPerHour, hoursPerDay(), whole(cameras()),
                                       whole(days()), whole(holdDays()), whole(capacity()));
}

PlanFacts PlanViewModel::facts() const {
    PlanFacts facts;
    if (const auto estimate = this->estimate()) addEstimate(facts, *estimate, whole(copies()));
    if (const auto card = this->card()) {
        addCard(facts, *card, whole(cameras()), isManual() ? whole(manualCards()) : 0);
    }
    return facts;
}

std::optional<Report> PlanViewModel::buildReport() const {
    const auto estimate = this->estimate();
    if (!estimate) return std::nullopt;
    std::optional<Report::PlannedCards> cards;
    const auto family = StorageCalculator::cardType(cardFamilyID().toStdString());
    if (const auto card = this->card(); card && family) {
        cards = {family->name, whole(capacity()), *card, {}};
        if (isManual()) cards->overrideCount = whole(manualCards());
    }
    return Report::storagePlan(production().toStdString(), *plan(), *estimate, cards);
}

void PlanViewModel::tell(const QString& status) {
    reportStatus_ = status;
    emit changed();
}

void PlanViewModel::saveReport() {
    const auto report = buildReport();
    if (!report) return;
    const auto folder = desktop->chooseFolder("Save Storage Plan to…");
    if (!folder) return;
    try {
        const auto written = ReelCore::ReportRenderer::write(*report, *folder, {"pdf", "csv"});
        tell(QStringLiteral("Saved to %1.").arg(Format::name(*folder)));
        desktop->reveal(written.front());
    } catch (const std::exception& error) {
        tell("Save failed: " + Format::text(error.what()));
    }
}

void PlanViewModel::emailReport() {
    const auto report = buildReport();
    if (!report) return;
    std::vector<URL> written;
    try {
        // Left there: the mail program reads the file later.
        const URL folder =
            std::filesystem::temp_directory_path() /
            ("keldobay-plan-" +
             QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper().toStdString());
        written = ReelCore::ReportRenderer::write(*report, folder, {"pdf"});
    } catch (const std::exception& error) {
        return tell("Email failed: " + Format::text(error.what()));
    }
    const QString production = this->production();
    const QString subject = production.isEmpty() ? "Storage Plan" : "Storage Plan — " + production;
    desktop->composeMail(subject, written.front(), this, [this](MailOutcome outcome) {
        tell(outcome == MailOutcome::opened ? "Opened in Mail — add recipients and send."
             : outcome == MailOutcome::noService
                 ? "No email account configured in Mail."
                 : "Mail can't take the attachment — use Save and attach manually.");
    });
}

}  // namespace keldo_app
