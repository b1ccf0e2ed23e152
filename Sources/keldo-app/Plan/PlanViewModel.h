#pragma once

#include "ReelCore/Planning/StorageCalculator.h"
#include "ReelCore/Reports/Report.h"
#include "keldo-app/Support/ViewModel.h"

#include <QStringList>
#include <QVariantList>
#include <optional>

#include <QtQml/qqmlregistration.h>

/// A setting of the plan that is a number, kept in the user's preferences.
#define KELDO_PLAN_NUMBER(name, setter, ...)                      \
    Q_PROPERTY(double name READ name WRITE setter NOTIFY changed) \
public:                                                           \
    double name() const {                                         \
        return number({__VA_ARGS__});                             \
    }                                                             \
    void setter(double value) {                                   \
        store({__VA_ARGS__}, value);                              \
    }

/// A setting of the plan that is a text.
#define KELDO_PLAN_TEXT(name, setter, key, initial)                \
    Q_PROPERTY(QString name READ name WRITE setter NOTIFY changed) \
public:                                                            \
    QString name() const {                                         \
        return text(key, initial);                                 \
    }                                                              \
    void setter(const QString& value) {                            \
        store(key, value);                                         \
    }

namespace keldo_app {

/// Where a number of the plan is kept, and which numbers mean something.
struct PlanNumber {
    enum class Kind { real, whole };

    const char* key;
    double initial;
    double least;
    double most;
    Kind kind = Kind::real;
};

/// The estimate and the cards in words.
struct PlanFacts {
    Q_GADGET
    QML_ANONYMOUS
    KELDO_FIELD(bool, hasEstimate)
    KELDO_FIELD(QString, rate)
    KELDO_FIELD(QString, perDay)
    KELDO_FIELD(QString, wholeShoot)
    KELDO_FIELD(QString, perCopy)
    KELDO_FIELD(QString, drivesPerCopy)
    KELDO_FIELD(QString, total)
    KELDO_FIELD(bool, hasCard)
    KELDO_FIELD(QString, runtimePerCard)
    KELDO_FIELD(QString, cardsPerCameraPerDay)
    KELDO_FIELD(QString, cardsToOwn)
};

/// The Plan screen: how a shoot will run, kept in the user's preferences, and what that takes,
/// computed anew whenever it is asked for. A number that means nothing, as a text where one
/// belongs, is NaN, and leaves nothing to show.
class PlanViewModel : public keldo_app::ViewModel {
    Q_OBJECT
    QML_ELEMENT
    KELDO_PLAN_TEXT(codecID, setCodecID, "plan.codec", "xavci_4k")
    KELDO_PLAN_TEXT(resolutionID, setResolutionID, "plan.res", "uhd")
    KELDO_PLAN_NUMBER(fps, setFps, "plan.fps", 23.976, 1, 1000)
    KELDO_PLAN_NUMBER(customMbps, setCustomMbps, "plan.bitrate", 100.0, 0, 1'000'000)
    KELDO_PLAN_NUMBER(hoursPerDay, setHoursPerDay, "plan.hours", 3.0, 0, 24)
    KELDO_PLAN_NUMBER(cameras, setCameras, "plan.cameras", 1, 1, 1'000, PlanNumber::Kind::whole)
    KELDO_PLAN_NUMBER(days, setDays, "plan.days", 1, 1, 10'000, PlanNumber::Kind::whole)
    KELDO_PLAN_NUMBER(copies, setCopies, "plan.copies", 3, 1, 100, PlanNumber::Kind::whole)
    KELDO_PLAN_NUMBER(audioChannels, setAudioChannels, "plan.audio", 0, 0, 1'000,
                      PlanNumber::Kind::whole)
    KELDO_PLAN_NUMBER(margin, setMargin, "plan.margin", 15.0, 0, 1'000)
    KELDO_PLAN_NUMBER(cardGB, setCardGB, "plan.cardGB", 120, 0, 1'000'000, PlanNumber::Kind::whole)
    KELDO_PLAN_NUMBER(customCardGB, setCustomCardGB, "plan.customCardGB", 120, 0, 1'000'000,
                      PlanNumber::Kind::whole)
    KELDO_PLAN_NUMBER(holdDays, setHoldDays, "plan.holdDays", 2, 1, 10'000, PlanNumber::Kind::whole)
    KELDO_PLAN_TEXT(production, setProduction, "plan.production", "")
    KELDO_PLAN_NUMBER(manualCards, setManualCards, "plan.manualCards", 0, 0, 1'000'000'000,
                      PlanNumber::Kind::whole)

    Q_PROPERTY(QString cardFamilyID READ cardFamilyID WRITE setCardFamilyID NOTIFY changed)
    /// Whether the user has set the number of cards. Setting it takes the calculated number.
    Q_PROPERTY(bool isManual READ isManual WRITE setManual NOTIFY changed)
    Q_PROPERTY(QVariantList codecs READ codecs CONSTANT)
    Q_PROPERTY(QVariantList resolutions READ resolutions CONSTANT)
    Q_PROPERTY(QVariantList rates READ rates CONSTANT)
    Q_PROPERTY(QVariantList cardFamilies READ cardFamilies CONSTANT)
    Q_PROPERTY(QVariantList capacities READ capacities NOTIFY changed)
    Q_PROPERTY(QString codecNote READ codecNote NOTIFY changed)
    Q_PROPERTY(bool usesResolution READ usesResolution NOTIFY changed)
    /// The estimate and the cards in words; a fact that is not there is an empty text.
    Q_PROPERTY(keldo_app::PlanFacts facts READ facts NOTIFY changed)
    Q_PROPERTY(QString reportStatus READ reportStatus NOTIFY changed)

public:
    using ViewModel::ViewModel;

    QString cardFamilyID() const;
    void setCardFamilyID(const QString& id);
    bool isManual() const { return manualCards() > 0; }
    void setManual(bool manual);
    const QString& reportStatus() const { return reportStatus_; }

    /// Absent where a setting that it takes means nothing.
    std::optional<ReelCore::StorageCalculator::Estimate> estimate() const;
    std::optional<ReelCore::StorageCalculator::CardPlan> card() const;
    std::optional<ReelCore::Report> buildReport() const;

    /// Blocks for as long as a report takes to render.
    Q_INVOKABLE void saveReport();
    Q_INVOKABLE void emailReport();

private:
    static QVariantList codecs();
    static QVariantList resolutions();
    static QVariantList rates();
    static QVariantList cardFamilies();
    QVariantList capacities() const;
    QString codecNote() const;
    bool usesResolution() const;
    PlanFacts facts() const;

    QVariant stored(const char* key) const;
    double number(const PlanNumber& setting) const;
    QString text(const char* key, const QString& initial) const;
    void store(const PlanNumber& setting, double value);
    void store(const char* key, const QString& value);

    double capacity() const;
    std::optional<ReelCore::StorageCalculator::Plan> plan() const;
    void tell(const QString& status);

    QString reportStatus_;
};

}  // namespace keldo_app
