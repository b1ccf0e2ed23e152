import QtQuick
import Keldo.Components
import Keldo.Plan

// Which cards, how many, and why so many.
Card {
    id: card

    required property PlanViewModel plan

    objectName: "plan.cardsCard"
    title: "Camera Cards"
    systemImage: "sdcard"

    ChoiceRow {
        objectName: "plan.cardFamily"
        label: "Card"
        choices: card.plan.cardFamilies
        value: card.plan.cardFamilyID
        onChosen: value => card.plan.cardFamilyID = value
    }
    ChoiceRow {
        objectName: "plan.cardGB"
        label: "GB"
        choices: card.plan.capacities
        value: card.plan.cardGB
        onChosen: value => card.plan.cardGB = value
    }
    FormRow {
        visible: card.plan.cardGB === 0
        label: "Custom"
        labelWidth: Theme.planLabelWidth
        NumberField {
            objectName: "plan.customCardGB"
            name: "Custom capacity"
            value: card.plan.customCardGB
            from: 0
            unit: "GB"
            onEdited: value => card.plan.customCardGB = value
        }
    }
    StepperRow {
        objectName: "plan.holdDays"
        label: "Days cards are held before wiping (until backups verified)"
        value: card.plan.holdDays
        from: 1
        to: 120
        onEdited: value => card.plan.holdDays = value
    }
    FactRow {
        objectName: "plan.runtime"
        visible: card.plan.facts.hasCard
        label: "Runtime per card"
        labelWidth: Theme.planLabelWidth
        value: card.plan.facts.runtimePerCard
    }
    FactRow {
        objectName: "plan.cardsPerDay"
        visible: card.plan.facts.hasCard
        label: "Cards per camera per day"
        labelWidth: Theme.planLabelWidth
        value: card.plan.facts.cardsPerCameraPerDay
    }
    FactRow {
        objectName: "plan.cardsToOwn"
        visible: card.plan.facts.hasCard
        label: "Cards to own"
        labelWidth: Theme.planLabelWidth
        value: card.plan.facts.cardsToOwn
    }
    Toggle {
        objectName: "plan.manual"
        visible: card.plan.facts.hasCard
        text: "Set count manually"
        on: card.plan.isManual
        onSwitched: on => card.plan.isManual = on
    }
    StepperRow {
        objectName: "plan.manualCards"
        visible: card.plan.facts.hasCard && card.plan.isManual
        label: "Cards"
        value: card.plan.manualCards
        from: 1
        to: 999
        onEdited: value => card.plan.manualCards = value
    }
}
