#include "frame/startup.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace ormidex::frame {
namespace {

struct Release {
  platform::SystemVersion version;
  std::uint32_t kind;
};

class SystemKindTest : public ::testing::TestWithParam<Release> {};

TEST_P(SystemKindTest, VersionDecidesTheKind) {
  EXPECT_EQ(KindOfSystem(GetParam().version), GetParam().kind);
}

// {platform, major, minor}
INSTANTIATE_TEST_SUITE_P(ConsumerPlatformExceptItsFirstRelease, SystemKindTest,
                         ::testing::Values(Release{{1, 4, 10}, 1}, Release{{1, 4, 90}, 1},
                                           Release{{1, 4, 1}, 1}));
INSTANTIATE_TEST_SUITE_P(Nt4And5, SystemKindTest,
                         ::testing::Values(Release{{2, 4, 0}, 2}, Release{{2, 5, 0}, 3},
                                           Release{{2, 5, 1}, 3}, Release{{2, 5, 2}, 3}));
INSTANTIATE_TEST_SUITE_P(Refused, SystemKindTest,
                         ::testing::Values(Release{{1, 4, 0}, 0}, Release{{2, 3, 51}, 0},
                                           Release{{2, 6, 0}, 0}, Release{{2, 6, 1}, 0},
                                           Release{{2, 10, 0}, 0}, Release{{0, 3, 10}, 0},
                                           Release{{3, 5, 1}, 0}));

class StartUpTest : public ::testing::Test {
 protected:
  void SetUp() override {
    calls.clear();
    SetOperatingSystemKindForTesting(3);
  }
  void TearDown() override { SetOperatingSystemKindForTesting(3); }

  static bool StartOn(const platform::SystemVersion& version) {
    reported = version;
    return StartUp({[] { calls.push_back("register class"); },
                    [] {
                      calls.push_back("read version");
                      return reported;
                    },
                    [](const char* text, const char* title) {
                      calls.push_back(std::string(title) + ": " + text);
                    }});
  }

  static inline std::vector<std::string> calls;
  static inline platform::SystemVersion reported;
};

TEST_F(StartUpTest, RegistersTheWindowClassBeforeItReadsTheVersion) {
  EXPECT_TRUE(StartOn({1, 4, 10}));
  EXPECT_EQ(calls, (std::vector<std::string>{"register class", "read version"}));
  EXPECT_EQ(OperatingSystemKind(), 1u);
}

TEST_F(StartUpTest, RecordsKind2OnNt4) {
  EXPECT_TRUE(StartOn({2, 4, 0}));
  EXPECT_EQ(OperatingSystemKind(), 2u);
}

TEST_F(StartUpTest, RefusesTheFirstConsumerReleaseWithTheMessage) {
  EXPECT_FALSE(StartOn({1, 4, 0}));
  EXPECT_EQ(calls, (std::vector<std::string>{"register class", "read version",
                                             "Torvenal: Unsupported Operating System."}));
  EXPECT_EQ(OperatingSystemKind(), 0u);
}

TEST_F(StartUpTest, RefusesNt6WithTheMessage) {
  EXPECT_FALSE(StartOn({2, 6, 0}));
  ASSERT_EQ(calls.size(), 3u);
  EXPECT_EQ(calls[2], "Torvenal: Unsupported Operating System.");
}

#ifndef _WIN32
TEST(SystemKindOnLinuxTest, IsThatOfASystemWithAnEnumerator) {
  EXPECT_EQ(KindOfSystem(platform::ReadSystemVersion()), 3u);
}
#endif

}  // namespace
}  // namespace ormidex::frame
