#include <gtest/gtest.h>

#include <string>

#include "platform/message_box.h"
#include "platform/system_version.h"

namespace ormidex::platform {
namespace {

TEST(SystemVersion, IsOneOfTheNtPlatform) {
  const SystemVersion version = ReadSystemVersion();
  EXPECT_EQ(version.platform, kPlatformNt);
  EXPECT_EQ(version.major, 5u);
  EXPECT_EQ(version.minor, 1u);
}

std::string shown;

TEST(MessageBox, AReplacementGetsTextAndTitle) {
  ReplaceMessageBoxForTesting([](const char* text, const char* title) {
    shown = std::string(text) + "|" + (title != nullptr ? title : "(none)");
  });
  ShowMessage("Unsupported Operating System.", "Torvenal");
  EXPECT_EQ(shown, "Unsupported Operating System.|Torvenal");
  ShowMessage("Warning", nullptr);
  EXPECT_EQ(shown, "Warning|(none)");
  ReplaceMessageBoxForTesting(nullptr);
}

#ifndef _WIN32
TEST(MessageBox, IsOneLineOnStandardError) {
  testing::internal::CaptureStderr();
  ShowMessage("Some text.", "Torvenal");
  ShowMessage("Other text.", nullptr);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Torvenal: Some text.\nOrmidex: Other text.\n");
}
#endif

}  // namespace
}  // namespace ormidex::platform
