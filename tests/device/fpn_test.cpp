// Where the fixed-pattern-noise values come from: registry, camera, defaults.
#include "device/fpn.h"

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "platform/registry.h"
#include "support/process_environment.h"
#include "support/scripted_gateway.h"
#include "support/test_session.h"

namespace ormidex::testing {
namespace {

using namespace device;

// One key with an optional value and subkeys.
class MemoryKey : public platform::RegistryKey {
 public:
  bool ReadValue(const char* name, void* value, std::uint32_t value_bytes) override {
    if (std::strcmp(name, "m_FpnRegisterValues") != 0 || bytes.size() < value_bytes) return false;
    std::memcpy(value, bytes.data(), value_bytes);
    return true;
  }
  std::uint32_t SubkeyCount() override { return static_cast<std::uint32_t>(subkeys.size()); }
  bool SubkeyName(std::uint32_t index, char (&name)[platform::kSubkeyNameBytes]) override {
    if (subkeys[index].first.empty()) return false;
    std::strcpy(name, subkeys[index].first.c_str());
    return true;
  }
  RegistryKey* OpenSubkey(const char* name) override {
    for (auto& [subkey_name, subkey] : subkeys) {
      if (subkey_name != name || subkey.refuses) continue;
      ++subkey.opened;
      return &subkey;
    }
    return nullptr;
  }
  void Close() override { ++closed; }

  std::vector<std::uint8_t> bytes;
  std::vector<std::pair<std::string, MemoryKey>> subkeys;
  bool refuses = false;
  int opened = 0;
  int closed = 0;
};

MemoryKey WithValue(std::vector<std::uint8_t> bytes) {
  MemoryKey key;
  key.bytes = std::move(bytes);
  return key;
}

constexpr char kDefaults[] = "19111111 1111";  // 25, then 17 five times

class Fpn : public ::testing::Test {
 protected:
  Fpn() : environment(driver), session(driver) {
    // Firmware that keeps no values, so that only the registry can supply them.
    session->identity.firmware_version = 0x020204FF;
    session->identity.serial_number = 0x12345678;
    Root() = nullptr;
    Paths().clear();
    platform::ReplaceRegistryForTesting([](const char* path) -> platform::RegistryKey* {
      Paths().push_back(path);
      if (Root() != nullptr) ++Root()->opened;
      return Root();
    });
  }
  static MemoryKey*& Root() {
    static MemoryKey* root = nullptr;
    return root;
  }
  static std::vector<std::string>& Paths() {
    static std::vector<std::string> paths;
    return paths;
  }
  void UseRegistry(MemoryKey& root) { Root() = &root; }
  std::string Load() {
    session->LoadFpnValues();
    return ToHex(session->exposure.clocking_register_values, 6);
  }

  ScriptedGateway driver;
  ProcessEnvironment environment;
  TestSession session;
};

TEST_F(Fpn, TheKeyDependsOnTheKindOfSystem) {
  const char* const other =
      "SYSTEM\\CurrentControlSet\\Enum\\1394\\KELMOR&Torvenal(tm)_1394_Camera";
  const char* const kind1 = "ENUM\\1394\\KELMOR&Torvenal(tm)_1394_Camera";
  for (const std::uint32_t kind : {1u, 2u, 3u}) {
    frame::SetOperatingSystemKindForTesting(kind);
    Paths().clear();
    EXPECT_EQ(Load(), kDefaults);
    EXPECT_EQ(Paths(), std::vector<std::string>{kind == 1 ? kind1 : other});
  }
}

TEST_F(Fpn, OtherKindsSkipTheRegistry) {
  MemoryKey root = WithValue({1, 2, 3, 4, 5, 6});
  UseRegistry(root);
  for (const std::uint32_t kind : {0u, 4u}) {
    frame::SetOperatingSystemKindForTesting(kind);
    EXPECT_EQ(Load(), kDefaults);
  }
  EXPECT_TRUE(Paths().empty());
}

TEST_F(Fpn, AValueOfTheKeyItselfWinsOverEverySubkey) {
  MemoryKey root = WithValue({1, 2, 3, 4, 5, 6, 7, 8});
  root.subkeys.emplace_back("78563412", WithValue({9, 9, 9, 9, 9, 9}));
  UseRegistry(root);
  EXPECT_EQ(Load(), "01020304 0506");
  EXPECT_EQ(root.subkeys[0].second.opened, 0);
  EXPECT_EQ(root.closed, 1);
}

TEST_F(Fpn, AValueOfFiveBytesIsTooShort) {
  MemoryKey root = WithValue({1, 2, 3, 4, 5});
  UseRegistry(root);
  EXPECT_EQ(Load(), kDefaults);
}

TEST_F(Fpn, ASubkeyNamedWithTheSerialsBytesInReverseOrderSuppliesTheValues) {
  // 0x12345678, lowest byte first: 78 56 34 12. What follows eight characters is free.
  MemoryKey root;
  root.subkeys.emplace_back("12345678", WithValue({1, 1, 1, 1, 1, 1}));
  root.subkeys.emplace_back("", WithValue({2, 2, 2, 2, 2, 2}));  // its name cannot be read
  root.subkeys.emplace_back("7856341", WithValue({3, 3, 3, 3, 3, 3}));
  root.subkeys.emplace_back("78563412&0", WithValue({4, 4, 4, 4, 4}));  // too short
  root.subkeys.emplace_back("78563412&1", WithValue({5, 5, 5, 5, 5, 5}));
  UseRegistry(root);
  EXPECT_EQ(Load(), "05050505 0505");
  for (const auto& [name, subkey] : root.subkeys) EXPECT_EQ(subkey.opened, subkey.closed) << name;
  EXPECT_EQ(root.closed, 1);
}

TEST_F(Fpn, ASubkeyThatCannotBeOpenedIsSkipped) {
  MemoryKey root;
  root.subkeys.emplace_back("78563412", WithValue({4, 4, 4, 4, 4, 4}));
  root.subkeys[0].second.refuses = true;
  UseRegistry(root);
  EXPECT_EQ(Load(), kDefaults);
  EXPECT_EQ(root.closed, 1);
}

TEST(SerialFromSubkeyName, TakesEachCharacterAsItsDistanceFromZero) {
  EXPECT_EQ(SerialFromSubkeyName("78563412"), 0x12345678u);
  EXPECT_EQ(SerialFromSubkeyName("01000000"), 0x00000001u);
  EXPECT_EQ(SerialFromSubkeyName("00000099 and more"), 0x99000000u);
}

TEST(SerialFromSubkeyName, LettersDoNotDecodeToTheirDigits) {
  // "A" is 17 away from "0", so 0A reads as 0 x 16 + 17 = 0x11 and A0 as 0x110.
  EXPECT_EQ(SerialFromSubkeyName("0A000000"), 0x00000011u);
  EXPECT_EQ(SerialFromSubkeyName("A0000000"), 0x00000110u);
}

TEST_F(Fpn, ASerialNumberWithLettersIsNeverMatchedByItsOwnName) {
  session->identity.serial_number = 0x0000000A;
  MemoryKey root;
  root.subkeys.emplace_back("0A000000", WithValue({1, 1, 1, 1, 1, 1}));
  UseRegistry(root);
  EXPECT_EQ(Load(), kDefaults);
}

// ---- From the camera ----

class CameraFpn : public Fpn {
 protected:
  CameraFpn() { session->identity.firmware_version = 0x02020500; }
  void CameraAnswers(const std::string& bytes, const std::string& status = "00000000") {
    driver.Expect(0x222000, kRequest, status + "60000000 00ff0000 06000000" + bytes);
  }
  const std::string kRequest = "00000000 60000000 00ff0000 06000000 00000000 0000";
};

TEST_F(CameraFpn, IsReadFromFirmware20205On) {
  CameraAnswers("2f010203 0405");  // 47: odd and below 49
  EXPECT_EQ(Load(), "2f010203 0405");
  session->identity.firmware_version = 0x020205FF;  // the low byte does not count
  CameraAnswers("01010203 0405");
  EXPECT_EQ(Load(), "01010203 0405");
  session->identity.firmware_version = 0x020204FF;
  EXPECT_EQ(Load(), kDefaults);
}

TEST_F(CameraFpn, IsTakenOnlyWhenItsFirstByteIsOddAndBelow49) {
  for (const char* bytes : {"31010203 0405", "30010203 0405", "02010203 0405", "ffffffff ffff"}) {
    CameraAnswers(bytes);
    EXPECT_EQ(Load(), kDefaults) << bytes;
  }
}

TEST_F(CameraFpn, IsNotTakenWhenTheReadFails) {
  driver.ExpectFailure(0x222000, kRequest);
  EXPECT_EQ(Load(), kDefaults);
  CameraAnswers("01010203 0405", "05000080");
  EXPECT_EQ(Load(), kDefaults);
}

TEST_F(CameraFpn, IsNotAskedWhenTheRegistryHasValues) {
  MemoryKey root = WithValue({2, 2, 2, 2, 2, 2});  // taken as they are, even or not
  UseRegistry(root);
  EXPECT_EQ(Load(), "02020202 0202");
}

TEST_F(CameraFpn, WithoutADeviceTheDefaultsStandAndNothingIsAsked) {
  session->link.handle = nullptr;
  std::memset(session->exposure.clocking_register_values, 0, 6);
  EXPECT_EQ(session->LoadFpnValues(), 1u);
  EXPECT_EQ(ToHex(session->exposure.clocking_register_values, 6), kDefaults);
  EXPECT_TRUE(Paths().empty());
}

}  // namespace
}  // namespace ormidex::testing
