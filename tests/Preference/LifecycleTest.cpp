#include <gmock/gmock.h>

#include "tests/Preference/MemoryPane.h"

namespace vantrel::memory {
namespace {

using testing::ElementsAre;

TEST(Lifecycle, TheVersionIsShownBeforeAnythingElse) {
    MemoryPane it;
    it.bundle.info["CFBundleShortVersionString"] = "1.0.0";
    it.load();
    EXPECT_EQ(it.versionNumber.text, "1.0.0");
}

}  // namespace
}  // namespace vantrel::memory
