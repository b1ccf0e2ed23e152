#pragma once

#include <QQuickItem>
#include <QStringList>
#include <string>

namespace WindowSupport {

/// What an assistive tool is told of one item. The role is the toolkit's name for it ("Button").
struct AccessibleNode {
    std::string role;
    std::string name;
    std::string description;
    std::string value;  ///< Of what has one: progress as a number, a field's text; else empty.
    bool isFocusable = false;
    bool isFocused = false;
    bool isChecked = false;

    /// Throws std::runtime_error if the tools are told nothing of the item.
    static AccessibleNode of(QQuickItem& item);

    /// Every visible thing at and below the item in reading order, a line each: "Role: name".
    static QStringList tree(QQuickItem& item);

    /// The actions that the tools are offered, by the toolkit's names ("Press").
    static QStringList actions(QQuickItem& item);

    /// Does an action as a tool would; throws std::runtime_error if it is not offered.
    static void act(QQuickItem& item, const QString& action);
};

}  // namespace WindowSupport
