// Camera registers and command registers as literal request bytes.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "device/driver_protocol.h"
#include "support/faults.h"
#include "support/scripted_gateway.h"
#include "support/test_session.h"

namespace ormidex::testing {
namespace {

using namespace device;
using platform::FaultPoint;

TEST(ReadRegister, SendsOneTwentyByteRecordAndReturnsItsDataByte) {
  ScriptedGateway driver;
  TestSession session(driver);
  driver.Expect(0x222000, "00000000 60000000 12000000 01000000 00000000",
                "00000000 60000000 12000000 01000000 a5000000");
  std::uint8_t value = 0;
  EXPECT_EQ(session->ReadRegister(0x12, &value), kOk);
  EXPECT_EQ(value, 0xA5);
}

TEST(ReadRegister, SendsTheBusAddressOfASecondGenerationImager) {
  ScriptedGateway driver;
  TestSession session(driver);
  session.MakeSecondGeneration();
  driver.Expect(0x222000, "00000000 66000000 04030201 01000000 00000000",
                "00000000 66000000 04030201 01000000 07000000");
  std::uint8_t value = 0;
  EXPECT_EQ(session->ReadRegister(0x01020304, &value), kOk);
  EXPECT_EQ(value, 7);
}

TEST(ReadRegister, LooksAtThePointerBeforeTheDevice) {
  ScriptedGateway driver;
  TestSession session(driver);
  session->link.handle = nullptr;
  std::uint8_t value = 0x77;
  EXPECT_EQ(session->ReadRegister(1, nullptr), 2u);
  EXPECT_EQ(session->ReadRegister(1, &value), 1u);
  EXPECT_EQ(value, 0x77);
}

TEST(ReadRegister, ReportsAFailedRequestAndStoresNothing) {
  ScriptedGateway driver;
  TestSession session(driver);
  driver.ExpectFailure(0x222000, "00000000 60000000 01000000 01000000 00000000");
  std::uint8_t value = 0x77;
  EXPECT_EQ(session->ReadRegister(1, &value), 5u);
  EXPECT_EQ(value, 0x77);
}

TEST(ReadRegister, ReportsARefusedAllocation) {
  ScriptedGateway driver;
  TestSession session(driver);
  const Refusal refusal(FaultPoint::kAllocation);
  std::uint8_t value = 0;
  EXPECT_EQ(session->ReadRegister(1, &value), 9u);
}

// The first word of the reply, little-endian, and the status it stands for.
struct StatusRow {
  const char* word;
  std::uint32_t status;
};
constexpr StatusRow kStatusRows[] = {
    {"00000000", 0},  {"01000000", 0},  {"02000080", 14}, {"03000080", 12},
    {"04000080", 10}, {"05000080", 7},  {"10000080", 10}, {"11000080", 3},
    {"12000080", 1},  {"02000000", 10}, {"ffffffff", 10},
};

class DriverStatusWord : public ::testing::TestWithParam<StatusRow> {};

TEST_P(DriverStatusWord, OfARegisterReadIsMappedAndTheByteIsStoredAllTheSame) {
  ScriptedGateway driver;
  TestSession session(driver);
  driver.Expect(0x222000, "00000000 60000000 12000000 01000000 00000000",
                std::string(GetParam().word) + "60000000 12000000 01000000 a5000000");
  std::uint8_t value = 0;
  EXPECT_EQ(session->ReadRegister(0x12, &value), GetParam().status);
  EXPECT_EQ(value, 0xA5);
}

TEST_P(DriverStatusWord, OfABlockReadIsMapped) {
  ScriptedGateway driver;
  TestSession session(driver);
  driver.Expect(0x222000, "00000000 60000000 12000000 02000000 0000",
                std::string(GetParam().word) + "60000000 12000000 02000000 abcd");
  std::uint8_t data[2] = {};
  EXPECT_EQ(session->ReadMultRegister(0x12, 2, data), GetParam().status);
}

TEST_P(DriverStatusWord, OfRegisterWritesIsMapped) {
  ScriptedGateway driver;
  TestSession session(driver);
  driver.Expect(0x222004, "ff000000 60000000 12000000 01000000 07000000", GetParam().word);
  driver.Expect(0x222004, "00000000 60000000 12000000 01000000 07", GetParam().word);
  driver.Expect(0x222004, "00000000 31000000 12000000 01000000 07000000", GetParam().word);
  const std::uint8_t seven = 7;
  EXPECT_EQ(session->WriteRegister(0x12, 7, 0), GetParam().status);
  EXPECT_EQ(session->WriteMultRegister(0x12, 1, &seven, 0), GetParam().status);
  EXPECT_EQ(session->WriteExtI2CRegister(0x31, 0x12, 7), GetParam().status);
}

TEST_P(DriverStatusWord, OfIdentityRequestsIsMappedAndTheWordIsStoredAllTheSame) {
  ScriptedGateway driver;
  TestSession session(driver);
  driver.Expect(0x222024, "00000000 01000000 00000000",
                std::string(GetParam().word) + "01000000 78563412");
  driver.Expect(0x222018, "00000000 01000000 00000000",
                std::string(GetParam().word) + "01000000 00220103");
  driver.Expect(0x222020, "00000000 60000000 00000000",
                std::string(GetParam().word) + "60000000 30000000");
  std::uint32_t chip = 0;
  EXPECT_EQ(session->ReadSerialNumber(), GetParam().status);
  EXPECT_EQ(session->ReadFirmwareVersion(), GetParam().status);
  EXPECT_EQ(session->GetImagerChipId(&chip), GetParam().status);
  EXPECT_EQ(session->identity.serial_number, 0x12345678u);
  EXPECT_EQ(session->identity.firmware_version, 0x03012200u);
  EXPECT_EQ(chip, 0x30u);
}

TEST_P(DriverStatusWord, OfVideoModeAndLookupTableIsMapped) {
  ScriptedGateway driver;
  TestSession session(driver);
  std::string off(2 * 264, '0');
  driver.Expect(0x222088, "00000000 00000000 02000000", GetParam().word);
  driver.Expect(0x222028, off, GetParam().word);
  EXPECT_EQ(session->SetVideoMode(2), GetParam().status);
  EXPECT_EQ(session->SetGamma(1.0f), GetParam().status);
}

INSTANTIATE_TEST_SUITE_P(EveryRow, DriverStatusWord, ::testing::ValuesIn(kStatusRows));

TEST(ReadMultRegister, SendsSixteenBytesAndTheCountAndCopiesTheData) {
  ScriptedGateway driver;
  TestSession session(driver);
  driver.Expect(0x222000, "00000000 60000000 00ff0000 05000000 0000000000",
                "00000000 60000000 00ff0000 05000000 0102030405");
  std::uint8_t data[6] = {0, 0, 0, 0, 0, 0xEE};
  EXPECT_EQ(session->ReadMultRegister(0xFF00, 5, data), kOk);
  EXPECT_EQ(ToHex(data, 6), "01020304 05ee");
}

TEST(ReadMultRegister, ReportsPointerDeviceAllocationAndFailedRequest) {
  ScriptedGateway driver;
  TestSession session(driver);
  std::uint8_t data[2] = {0x77, 0x77};
  driver.ExpectFailure(0x222000, "00000000 60000000 05000000 02000000 0000");
  EXPECT_EQ(session->ReadMultRegister(5, 2, data), 5u);
  {
    const Refusal refusal(FaultPoint::kAllocation);
    EXPECT_EQ(session->ReadMultRegister(5, 2, data), 9u);
  }
  session->link.handle = nullptr;
  EXPECT_EQ(session->ReadMultRegister(5, 2, nullptr), 2u);
  EXPECT_EQ(session->ReadMultRegister(5, 2, data), 1u);
  EXPECT_EQ(ToHex(data, 2), "7777");
}

TEST(WriteRegister, PresetsTheStatusWordTo255) {
  ScriptedGateway driver;
  TestSession session(driver);
  driver.Expect(0x222004, "ff000000 60000000 91000000 01000000 11000000", "00000000");
  EXPECT_EQ(session->WriteRegister(0x91, 0x11, 0), kOk);
}

TEST(WriteRegister, FailsWithTheStatusTenWhenTheDriverLeavesThePreset) {
  ScriptedGateway driver;
  TestSession session(driver);
  driver.Expect(0x222004, "ff000000 60000000 91000000 01000000 11000000");
  EXPECT_EQ(session->WriteRegister(0x91, 0x11, 0), 10u);
}

TEST(WriteRegister, ReportsDeviceAllocationAndFailedRequest) {
  ScriptedGateway driver;
  TestSession session(driver);
  driver.ExpectFailure(0x222004, "ff000000 60000000 02000000 01000000 03000000");
  EXPECT_EQ(session->WriteRegister(2, 3, 0), 5u);
  {
    const Refusal refusal(FaultPoint::kAllocation);
    EXPECT_EQ(session->WriteRegister(2, 3, 0), 9u);
  }
  session->link.handle = nullptr;
  EXPECT_EQ(session->WriteRegister(2, 3, 0), 1u);
  EXPECT_EQ(session->WriteRegister(2, 3, 1), 1u);
}

TEST(WriteMultRegister, SendsTheBlockWithAClearStatusWord) {
  ScriptedGateway driver;
  TestSession session(driver);
  driver.ExpectEcho(0x222004, "00000000 60000000 04000000 04000000 00040004");
  const std::uint8_t data[4] = {0, 4, 0, 4};
  EXPECT_EQ(session->WriteMultRegister(4, 4, data, 0), kOk);
}

TEST(WriteMultRegister, Sends272BytesFor256BytesOfData) {
  ScriptedGateway driver;
  TestSession session(driver);
  std::uint8_t data[256];
  std::string hex;
  for (int i = 0; i < 256; ++i) {
    data[i] = static_cast<std::uint8_t>(255 - i);
    hex += ToHex(&data[i], 1);
  }
  driver.Expect(0x222004, "00000000 60000000 00020000 00010000" + hex, "00000000");
  EXPECT_EQ(session->WriteMultRegister(0x200, 256, data, 0), kOk);
}

TEST(WriteMultRegister, ReportsPointerDeviceAllocationAndFailedRequest) {
  ScriptedGateway driver;
  TestSession session(driver);
  const std::uint8_t data[2] = {1, 2};
  driver.ExpectFailure(0x222004, "00000000 60000000 05000000 02000000 0102");
  EXPECT_EQ(session->WriteMultRegister(5, 2, data, 0), 5u);
  {
    const Refusal refusal(FaultPoint::kAllocation);
    EXPECT_EQ(session->WriteMultRegister(5, 2, data, 0), 9u);
  }
  session->link.handle = nullptr;
  EXPECT_EQ(session->WriteMultRegister(5, 2, nullptr, 0), 2u);
  EXPECT_EQ(session->WriteMultRegister(5, 2, data, 0), 1u);
}

TEST(ExtI2CRegister, IsReadAtTheCallersBusAddress) {
  ScriptedGateway driver;
  TestSession session(driver);
  driver.Expect(0x222000, "00000000 a2000000 05000000 01000000 00000000",
                "00000000 a2000000 05000000 01000000 5a000000");
  std::uint8_t value = 0;
  EXPECT_EQ(session->ReadExtI2CRegister(0xA2, 5, &value), kOk);
  EXPECT_EQ(value, 0x5A);
}

TEST(ExtI2CRegister, IsWrittenWithoutAPresetStatusWord) {
  ScriptedGateway driver;
  TestSession session(driver);
  driver.ExpectEcho(0x222004, "00000000 a2000000 05000000 01000000 5a000000");
  EXPECT_EQ(session->WriteExtI2CRegister(0xA2, 5, 0x5A), kOk);
}

TEST(ExtI2CRegister, ReportsPointerDeviceAllocationAndFailedRequest) {
  ScriptedGateway driver;
  TestSession session(driver);
  std::uint8_t value = 0x77;
  driver.ExpectFailure(0x222000, "00000000 a2000000 05000000 01000000 00000000");
  driver.ExpectFailure(0x222004, "00000000 a2000000 05000000 01000000 01000000");
  EXPECT_EQ(session->ReadExtI2CRegister(0xA2, 5, &value), 5u);
  EXPECT_EQ(session->WriteExtI2CRegister(0xA2, 5, 1), 5u);
  {
    const Refusal refusal(FaultPoint::kAllocation);
    EXPECT_EQ(session->ReadExtI2CRegister(0xA2, 5, &value), 9u);
  }
  {
    const Refusal refusal(FaultPoint::kAllocation);
    EXPECT_EQ(session->WriteExtI2CRegister(0xA2, 5, 1), 9u);
  }
  session->link.handle = nullptr;
  EXPECT_EQ(session->ReadExtI2CRegister(0xA2, 5, nullptr), 2u);
  EXPECT_EQ(session->ReadExtI2CRegister(0xA2, 5, &value), 1u);
  EXPECT_EQ(session->WriteExtI2CRegister(0xA2, 5, 1), 1u);
  EXPECT_EQ(value, 0x77);
}

// ---- Command registers: addresses and values travel big-endian ----

TEST(CommandRegister, AddressGoesToPage88OnFirmwareBefore3) {
  ScriptedGateway driver;
  TestSession session(driver);
  session->identity.firmware_version = 0x02020000;
  driver.Expect(0x2223FC, "00000000 01000000 00008812 00000000",
                "00000000 01000000 00008812 000000a5");
  driver.ExpectEcho(0x2223FC, "00000000 02000000 00008812 000000fe");
  driver.Expect(0x2223FC, "00000000 11000000 00008812 00000003 000000",
                "00000000 11000000 00008812 00000003 010203");
  std::uint8_t value = 0;
  std::uint8_t block[3] = {};
  EXPECT_EQ(session->ReadCommandRegister(0x12, &value), kOk);
  EXPECT_EQ(session->WriteCommandRegister(0x12, 0xFE), kOk);
  EXPECT_EQ(session->ReadCommandBlock(0x12, 3, block), kOk);
  EXPECT_EQ(value, 0xA5);
  EXPECT_EQ(ToHex(block, 3), "010203");
}

TEST(CommandRegister, AddressGoesAsGivenFromFirmware3On) {
  ScriptedGateway driver;
  TestSession session(driver);
  session->identity.firmware_version = 0x03000000;
  driver.Expect(0x2223FC, "00000000 01000000 00000012 00000000",
                "00000000 01000000 00000012 000000a5");
  driver.ExpectEcho(0x2223FC, "00000000 02000000 00000012 000000fe");
  driver.Expect(0x2223FC, "00000000 11000000 00000012 00000003 000000",
                "00000000 11000000 00000012 00000003 010203");
  std::uint8_t value = 0;
  std::uint8_t block[3] = {};
  EXPECT_EQ(session->ReadCommandRegister(0x12, &value), kOk);
  EXPECT_EQ(session->WriteCommandRegister(0x12, 0xFE), kOk);
  EXPECT_EQ(session->ReadCommandBlock(0x12, 3, block), kOk);
  EXPECT_EQ(value, 0xA5);
  EXPECT_EQ(ToHex(block, 3), "010203");
}

TEST(CommandRegister, RemappingTouchesBits8To15OnlyAndOnlyAddsThem) {
  ScriptedGateway driver;
  TestSession session(driver);
  session->identity.firmware_version = 0x02FFFFFF;
  driver.ExpectEcho(0x2223FC, "00000000 01000000 1234def0 00000000");
  std::uint8_t value = 0xFF;
  EXPECT_EQ(session->ReadCommandRegister(0x123456F0, &value), kOk);
  EXPECT_EQ(value, 0);
}

TEST(CommandRegister, IgnoresTheDriversStatusWord) {
  ScriptedGateway driver;
  TestSession session(driver);
  driver.Expect(0x2223FC, "00000000 01000000 00000009 00000000",
                "05000080 01000000 00000009 00000018");
  driver.Expect(0x2223FC, "00000000 02000000 00000009 00000001", "05000080");
  std::uint8_t value = 0;
  EXPECT_EQ(session->ReadCommandRegister(9, &value), kOk);
  EXPECT_EQ(value, 0x18);
  EXPECT_EQ(session->WriteCommandRegister(9, 1), kOk);
}

TEST(CommandRegister, ReportsFailedRequestsAndARefusedBlock) {
  ScriptedGateway driver;
  TestSession session(driver);
  driver.ExpectFailure(0x2223FC, "00000000 01000000 00000009 00000000");
  driver.ExpectFailure(0x2223FC, "00000000 02000000 00000009 00000001");
  driver.ExpectFailure(0x2223FC, "00000000 11000000 00000009 00000002 0000");
  std::uint8_t value = 0x77;
  std::uint8_t block[2] = {0x77, 0x77};
  EXPECT_EQ(session->ReadCommandRegister(9, &value), 5u);
  EXPECT_EQ(session->WriteCommandRegister(9, 1), 5u);
  EXPECT_EQ(session->ReadCommandBlock(9, 2, block), 5u);
  {
    const Refusal refusal(FaultPoint::kAllocation);
    EXPECT_EQ(session->ReadCommandBlock(9, 2, block), 9u);
  }
  EXPECT_EQ(value, 0x77);
  EXPECT_EQ(ToHex(block, 2), "7777");
}

}  // namespace
}  // namespace ormidex::testing
