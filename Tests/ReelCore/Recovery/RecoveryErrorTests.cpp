#include "ReelCore/Recovery/RecoveryError.h"

#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;

TEST(RecoveryError, EachCase_HasItsText) {
    const std::vector<std::pair<RecoveryError::Any, std::string>> cases{
        {RecoveryError::NotFound{"/Cards/A 001/\xFF.mov"}, "Not found: /Cards/A 001/\xFF.mov"},
        {RecoveryError::ReferenceRequired{"none given"},
         "A healthy reference clip from the same camera is required: none given"},
        {RecoveryError::ReferenceUnusable{"no moov"}, "Reference clip unusable: no moov"},
        {RecoveryError::IOFailed{"disk full"}, "I/O failed: disk full"},
        {RecoveryError::Unsupported{"RAW"}, "Unsupported for native rebuild: RAW"},
        {RecoveryError::NoRecoverableFrames{},
         "No recoverable media frames found in the damaged file."},
    };
    ASSERT_EQ(std::variant_size_v<RecoveryError::Any>, cases.size());

    for (const auto& [value, text] : cases) {
        const RecoveryError error(value);

        EXPECT_EQ(error.description(), text);
        EXPECT_STREQ(error.what(), text.c_str());
    }
}

TEST(RecoveryError, Cases_StandInTheirOrder) {
    using Expected = std::variant<RecoveryError::NotFound, RecoveryError::ReferenceRequired,
                                  RecoveryError::ReferenceUnusable, RecoveryError::IOFailed,
                                  RecoveryError::Unsupported, RecoveryError::NoRecoverableFrames>;

    EXPECT_TRUE((std::is_same_v<RecoveryError::Any, Expected>));
}

TEST(RecoveryError, Thrown_CanBeCaughtAsAnErrorAndAskedForItsCase) {
    try {
        throw RecoveryError(RecoveryError::ReferenceUnusable{"no tracks"});
    } catch (const Error& caught) {
        const auto* error = dynamic_cast<const RecoveryError*>(&caught);
        ASSERT_NE(error, nullptr);
        EXPECT_FALSE(error->is<RecoveryError::ReferenceRequired>());
        ASSERT_TRUE(error->is<RecoveryError::ReferenceUnusable>());
        EXPECT_EQ(error->get<RecoveryError::ReferenceUnusable>()->reason, "no tracks");
    }
}

}  // namespace
