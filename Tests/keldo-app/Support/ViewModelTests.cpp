#include "keldo-app/Support/ViewModel.h"

#include <QMetaProperty>
#include <QSignalSpy>

#include <gtest/gtest.h>

using keldo_app::OptionalURL;

class SampleViewModel : public keldo_app::ViewModel {
    Q_OBJECT

    KELDO_PUBLISHED(int, done, 3)
    KELDO_EDITED(QString, reel, setReel, "A001")
};

TEST(ViewModel, PublishedField_IsReadByPropertyAndByName) {
    SampleViewModel model;
    EXPECT_EQ(model.done(), 3);
    EXPECT_EQ(model.property("done"), 3);
    EXPECT_FALSE(model.setProperty("done", 4)) << "only the view model itself changes it";
    EXPECT_EQ(model.done(), 3);
}

TEST(ViewModel, EditedField_IsWrittenAndTellsOnlyOfChanges) {
    SampleViewModel model;
    QSignalSpy changed(&model, &keldo_app::ViewModel::changed);
    EXPECT_TRUE(model.setProperty("reel", "A001"));
    EXPECT_EQ(changed.count(), 0);
    EXPECT_TRUE(model.setProperty("reel", "B002"));
    EXPECT_EQ(model.reel(), "B002");
    EXPECT_EQ(changed.count(), 1);
}

TEST(OptionalURL, Absent_HasEmptyTexts) {
    EXPECT_EQ(OptionalURL().path(), "");
    EXPECT_EQ(OptionalURL().name(), "");
}

TEST(OptionalURL, Chosen_HasItsPathAndTheLastPartOfIt) {
    const OptionalURL url = ReelCore::URL("/media/A001_C003");
    EXPECT_EQ(url.path(), "/media/A001_C003");
    EXPECT_EQ(url.name(), "A001_C003");
}

#include "ViewModelTests.moc"
