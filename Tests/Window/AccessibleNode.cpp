#include "Window/AccessibleNode.h"

#include <QAccessible>
#include <QCoreApplication>
#include <QMetaEnum>
#include <stdexcept>

namespace WindowSupport {

namespace {

QAccessibleInterface& interfaceOf(QQuickItem& item) {
    QAccessible::setActive(true);
    QAccessibleInterface* found = QAccessible::queryAccessibleInterface(&item);
    if (!found) throw std::runtime_error("not told of: " + item.objectName().toStdString());
    return *found;
}

std::string roleOf(QAccessibleInterface& node) {
    return QMetaEnum::fromType<QAccessible::Role>().valueToKey(node.role());
}

std::string valueOf(QAccessibleInterface& node) {
    if (QAccessibleValueInterface* value = node.valueInterface()) {
        return value->currentValue().toString().toStdString();
    }
    return node.text(QAccessible::Value).toStdString();
}

void readTree(QAccessibleInterface& node, QStringList& lines) {
    if (node.state().invisible) return;
    lines += QString::fromStdString(roleOf(node)) + ": " + node.text(QAccessible::Name);
    for (int i = 0; i < node.childCount(); ++i) readTree(*node.child(i), lines);
}

}  // namespace

AccessibleNode AccessibleNode::of(QQuickItem& item) {
    QAccessibleInterface& node = interfaceOf(item);
    const QAccessible::State state = node.state();
    return {roleOf(node),
            node.text(QAccessible::Name).toStdString(),
            node.text(QAccessible::Description).toStdString(),
            valueOf(node),
            state.focusable != 0,
            state.focused != 0,
            state.checked != 0};
}

QStringList AccessibleNode::tree(QQuickItem& item) {
    QStringList lines;
    readTree(interfaceOf(item), lines);
    return lines;
}

QStringList AccessibleNode::actions(QQuickItem& item) {
    QAccessibleActionInterface* offered = interfaceOf(item).actionInterface();
    return offered ? offered->actionNames() : QStringList();
}

void AccessibleNode::act(QQuickItem& item, const QString& action) {
    if (!actions(item).contains(action)) {
        throw std::runtime_error(action.toStdString() + " is not offered by " +
                                 item.objectName().toStdString());
    }
    interfaceOf(item).actionInterface()->doAction(action);
    QCoreApplication::processEvents();
}

}  // namespace WindowSupport
