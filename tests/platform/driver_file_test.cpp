#include "platform/driver_file.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>

namespace ormidex::platform {
namespace {

TEST(DriverFile, ADeviceThatIsNotThereDoesNotOpen) {
  EXPECT_EQ(OpenDriverFile("\\\\.\\NoSuchCamera", true), nullptr);
  EXPECT_EQ(OpenDriverFile("\\\\.\\NoSuchCamera", false), nullptr);
  EXPECT_EQ(OpenDriverFile("Torvenal(tm) 1394 Camera", false), nullptr);
}

TEST(DriverFile, ARequestToNoDeviceFailsAndReturnsNoBytes) {
  std::uint32_t returned = 77;
  std::uint32_t record = 0;
  EXPECT_FALSE(ControlDriverFile(nullptr, 0x222018, &record, sizeof(record), &record,
                                 sizeof(record), &returned));
  EXPECT_EQ(returned, 0u);
}

TEST(DriverFile, ClosingNoDeviceFails) { EXPECT_FALSE(CloseDriverFile(nullptr)); }

#ifdef _WIN32
// A name without a device prefix is an ordinary file's, and such a file opens.
TEST(DriverFile, AFileOfThatNameOpensAndIsNotSharedUnlessAsked) {
  const char* const path = "platform-driver-file-test.tmp";
  FILE* file = std::fopen(path, "wb");
  ASSERT_NE(file, nullptr);
  std::fclose(file);

  const DriverFile exclusive = OpenDriverFile(path, false);
  ASSERT_NE(exclusive, nullptr);
  EXPECT_EQ(OpenDriverFile(path, true), nullptr);
  EXPECT_TRUE(CloseDriverFile(exclusive));

  const DriverFile shared = OpenDriverFile(path, true);
  ASSERT_NE(shared, nullptr);
  const DriverFile again = OpenDriverFile(path, true);
  EXPECT_NE(again, nullptr);
  EXPECT_TRUE(CloseDriverFile(again));
  EXPECT_TRUE(CloseDriverFile(shared));
  std::remove(path);
}
#endif

TEST(VideoDevices, AnEmptyCategoryVisitsNothing) {
  int visits = 0;
  EnterComApartment();
  const VideoDeviceWalk walk = WalkVideoDevices(
      [](void* user, void*) {
        ++*static_cast<int*>(user);
        return true;
      },
      &visits);
  LeaveComApartment();
  EXPECT_EQ(walk, VideoDeviceWalk::kEmptyCategory);
  EXPECT_EQ(visits, 0);
}

}  // namespace
}  // namespace ormidex::platform
