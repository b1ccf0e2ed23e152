#include "keldo-app/Support/Rows.h"

#include "keldo-app/Support/ViewModel.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>

#include <gtest/gtest.h>

struct Fruit {
    Q_GADGET
    KELDO_FIELD(QString, name)
    KELDO_FIELD(int, count)
};

namespace {

class RowsTests : public testing::Test {
protected:
    RowsTests() { rows_.reset({{"apple", 1}, {"pear", 2}}); }

    QVariant at(int row, const char* role) const {
        return rows_.data(rows_.index(row), rows_.roleNames().key(role));
    }

    keldo_app::Rows<Fruit> rows_;
    QAbstractItemModelTester tester_{&rows_, QAbstractItemModelTester::FailureReportingMode::Fatal};
};

}  // namespace

TEST_F(RowsTests, FieldsOfTheRow_AreRoles) {
    EXPECT_EQ(rows_.rowCount(), 2);
    EXPECT_EQ(at(1, "name"), "pear");
    EXPECT_EQ(at(1, "count"), 2);
    EXPECT_FALSE(rows_.data(rows_.index(2), Qt::UserRole).isValid());
}

TEST_F(RowsTests, Append_TellsOfTheNewRowAlone) {
    QSignalSpy inserted(&rows_, &QAbstractItemModel::rowsInserted);
    QSignalSpy counted(&rows_, &keldo_app::RowModel::countChanged);
    rows_.append({"plum", 3});
    ASSERT_EQ(inserted.count(), 1);
    EXPECT_EQ(inserted.first().at(1), 2);
    EXPECT_EQ(counted.count(), 1);
    EXPECT_EQ(rows_.count(), 3);
}

TEST_F(RowsTests, AppendAll_TellsOnceOfAllNewRows) {
    QSignalSpy inserted(&rows_, &QAbstractItemModel::rowsInserted);
    QSignalSpy counted(&rows_, &keldo_app::RowModel::countChanged);
    rows_.appendAll({});
    EXPECT_EQ(inserted.count(), 0);
    rows_.appendAll({{"plum", 3}, {"fig", 4}});
    ASSERT_EQ(inserted.count(), 1);
    EXPECT_EQ(inserted.first().at(1), 2);
    EXPECT_EQ(inserted.first().at(2), 3);
    EXPECT_EQ(counted.count(), 1);
    EXPECT_EQ(at(3, "name"), "fig");
}

TEST_F(RowsTests, Remove_TakesThatRowAlone) {
    QSignalSpy removed(&rows_, &QAbstractItemModel::rowsRemoved);
    rows_.remove(0);
    ASSERT_EQ(removed.count(), 1);
    EXPECT_EQ(removed.first().at(1), 0);
    EXPECT_EQ(at(0, "name"), "pear");
}

TEST_F(RowsTests, DelegateSetsAField_AltersThatRowAlone) {
    QSignalSpy altered(&rows_, &QAbstractItemModel::dataChanged);
    const int name = rows_.roleNames().key("name");
    EXPECT_TRUE(rows_.setData(rows_.index(1), "plum", name));
    EXPECT_EQ(rows_[1].name, "plum");
    EXPECT_EQ(rows_[0].name, "apple");
    ASSERT_EQ(altered.count(), 1);
    EXPECT_EQ(altered.first().at(0).toModelIndex().row(), 1);
    EXPECT_FALSE(rows_.setData(rows_.index(2), "fig", name));
    EXPECT_FALSE(rows_.setData(rows_.index(0), "fig", Qt::UserRole + 9));
    EXPECT_EQ(altered.count(), 1);
}

TEST_F(RowsTests, Change_AltersOneRowAndResetsNothing) {
    QSignalSpy altered(&rows_, &QAbstractItemModel::dataChanged);
    QSignalSpy reset(&rows_, &QAbstractItemModel::modelReset);
    rows_.change(1, [](Fruit& row) { row.count = 9; });
    ASSERT_EQ(altered.count(), 1);
    EXPECT_EQ(altered.first().at(0).toModelIndex().row(), 1);
    EXPECT_EQ(reset.count(), 0);
    EXPECT_EQ(at(1, "count"), 9);
    EXPECT_EQ(at(0, "count"), 1);
}

#include "RowsTests.moc"
