#include "platform/registry.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

#ifdef _WIN32
#include <windows.h>
#endif

namespace ormidex::platform {
namespace {

TEST(Registry, AKeyThatIsNotThereIsNull) {
  EXPECT_EQ(OpenLocalMachineKey("SOFTWARE\\No Such Key Of Any Camera"), nullptr);
}

class NoKey final : public RegistryKey {
 public:
  bool ReadValue(const char*, void*, std::uint32_t) override { return false; }
  std::uint32_t SubkeyCount() override { return 0; }
  bool SubkeyName(std::uint32_t, char (&)[kSubkeyNameBytes]) override { return false; }
  RegistryKey* OpenSubkey(const char*) override { return nullptr; }
  void Close() override {}
};

TEST(Registry, AReplacementAnswersUntilItIsTakenAway) {
  static NoKey key;
  ReplaceRegistryForTesting([](const char* path) -> RegistryKey* {
    return std::strcmp(path, "A") == 0 ? &key : nullptr;
  });
  EXPECT_EQ(OpenLocalMachineKey("A"), &key);
  EXPECT_EQ(OpenLocalMachineKey("B"), nullptr);
  ReplaceRegistryForTesting(nullptr);
  EXPECT_EQ(OpenLocalMachineKey("A"), nullptr);
}

#ifdef _WIN32
constexpr char kTestKey[] = "SOFTWARE\\Ormidex Registry Test";
constexpr char kTestSubkey[] = "SOFTWARE\\Ormidex Registry Test\\25634178";

class SystemRegistry : public testing::Test {
 protected:
  void SetUp() override {
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyA(HKEY_LOCAL_MACHINE, kTestKey, &key), ERROR_SUCCESS);
    const BYTE value[] = {1, 2, 3, 4, 5, 6, 7, 8};
    RegSetValueExA(key, "Eight", 0, REG_BINARY, value, sizeof(value));
    RegCloseKey(key);
    ASSERT_EQ(RegCreateKeyA(HKEY_LOCAL_MACHINE, kTestSubkey, &key), ERROR_SUCCESS);
    RegCloseKey(key);
  }
  void TearDown() override {
    RegDeleteKeyA(HKEY_LOCAL_MACHINE, kTestSubkey);
    RegDeleteKeyA(HKEY_LOCAL_MACHINE, kTestKey);
  }
};

TEST_F(SystemRegistry, ReadsTheFirstBytesOfALongEnoughValue) {
  RegistryKey* key = OpenLocalMachineKey(kTestKey);
  ASSERT_NE(key, nullptr);
  std::uint8_t six[6] = {};
  EXPECT_TRUE(key->ReadValue("Eight", six, sizeof(six)));
  const std::uint8_t expected[6] = {1, 2, 3, 4, 5, 6};
  EXPECT_EQ(std::memcmp(six, expected, sizeof(six)), 0);
  std::uint8_t nine[9] = {};
  EXPECT_FALSE(key->ReadValue("Eight", nine, sizeof(nine)));
  EXPECT_EQ(nine[0], 0) << "a value that is too short was copied";
  EXPECT_FALSE(key->ReadValue("Absent", six, sizeof(six)));
  key->Close();
}

TEST_F(SystemRegistry, ListsAndOpensSubkeys) {
  RegistryKey* key = OpenLocalMachineKey(kTestKey);
  ASSERT_NE(key, nullptr);
  EXPECT_EQ(key->SubkeyCount(), 1u);
  char name[kSubkeyNameBytes];
  ASSERT_TRUE(key->SubkeyName(0, name));
  EXPECT_STREQ(name, "25634178");
  RegistryKey* subkey = key->OpenSubkey(name);
  ASSERT_NE(subkey, nullptr);
  EXPECT_EQ(subkey->SubkeyCount(), 0u);
  subkey->Close();
  EXPECT_EQ(key->OpenSubkey("absent"), nullptr);
  EXPECT_FALSE(key->SubkeyName(1, name));
  key->Close();
}
#endif

}  // namespace
}  // namespace ormidex::platform
