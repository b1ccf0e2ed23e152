#pragma once

#include <QAbstractListModel>
#include <QHash>
#include <QMetaProperty>
#include <algorithm>
#include <concepts>
#include <cstddef>
#include <iterator>
#include <utility>
#include <vector>

#include <QtQml/qqmlregistration.h>

/// A list of a view model in one line: a property for QML, `name()` for C++, and `name_` for the
/// view model itself.
#define KELDO_ROWS(Row, name)                                       \
    Q_PROPERTY(keldo_app::RowModel* name READ name##Model CONSTANT) \
public:                                                             \
    const keldo_app::Rows<Row>& name() const {                      \
        return name##_;                                             \
    }                                                               \
                                                                    \
private:                                                            \
    keldo_app::RowModel* name##Model() {                            \
        return &name##_;                                            \
    }                                                               \
    keldo_app::Rows<Row> name##_;

namespace keldo_app {

/// A list as QML sees it.
class RowModel : public QAbstractListModel {
    Q_OBJECT
    QML_ANONYMOUS
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    using QAbstractListModel::QAbstractListModel;

    int count() const { return rowCount(); }
    int rowCount(const QModelIndex& = {}) const override = 0;

signals:
    void countChanged();
};

/// Rows of a screen's list. `Row` is a gadget; each of its properties is a role of that name, so
/// that a delegate says `required property string name`. What is done to one row is told of that
/// row alone: the others keep their items, the focus and what is being typed. Main thread only.
template <class Row>
class Rows : public RowModel {
public:
    using RowModel::RowModel;

    const std::vector<Row>& all() const { return rows_; }
    const Row& operator[](std::size_t row) const { return rows_[row]; }

    int rowCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : static_cast<int>(rows_.size());
    }

    QVariant data(const QModelIndex& index, int role) const override {
        if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
        return property(role).readOnGadget(&rows_[static_cast<std::size_t>(index.row())]);
    }

    /// As `model.name = …` in a delegate does.
    bool setData(const QModelIndex& index, const QVariant& value, int role) override {
        if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return false;
        Row& row = rows_[static_cast<std::size_t>(index.row())];
        if (!property(role).writeOnGadget(&row, value)) return false;
        emit dataChanged(index, index, {role});
        return true;
    }

    QHash<int, QByteArray> roleNames() const override {
        QHash<int, QByteArray> names;
        const QMetaObject& meta = Row::staticMetaObject;
        for (int i = 0; i < meta.propertyCount(); ++i) {
            names[Qt::UserRole + i] = meta.property(i).name();
        }
        return names;
    }

    void append(Row row) {
        const int at = rowCount();
        beginInsertRows({}, at, at);
        rows_.push_back(std::move(row));
        endInsertRows();
        emit countChanged();
    }

    /// Many at once are told of at once.
    void appendAll(std::vector<Row> rows) {
        if (rows.empty()) return;
        const int at = rowCount();
        beginInsertRows({}, at, at + static_cast<int>(rows.size()) - 1);
        std::ranges::move(rows, std::back_inserter(rows_));
        endInsertRows();
        emit countChanged();
    }

    void remove(std::size_t row) {
        const auto at = static_cast<int>(row);
        beginRemoveRows({}, at, at);
        rows_.erase(rows_.begin() + at);
        endRemoveRows();
        emit countChanged();
    }

    /// Alters one row by `change`, which gets it as a reference.
    void change(std::size_t row, const std::invocable<Row&> auto& change) {
        change(rows_[row]);
        const QModelIndex at = index(static_cast<int>(row));
        emit dataChanged(at, at);
    }

    /// Other rows altogether.
    void reset(std::vector<Row> rows = {}) {
        beginResetModel();
        rows_ = std::move(rows);
        endResetModel();
        emit countChanged();
    }

private:
    static QMetaProperty property(int role) {
        return Row::staticMetaObject.property(role - Qt::UserRole);
    }

    std::vector<Row> rows_;
};

}  // namespace keldo_app
