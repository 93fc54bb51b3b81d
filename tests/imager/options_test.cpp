// Gamma table, saturation and light source, request by request.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

#include "support/model_gateway.h"
#include "support/scripted_gateway.h"
#include "support/test_session.h"

namespace ormidex::testing {
namespace {

// Computed with Python: int((i / 255) ** g * 255 + 0.5), g the 32-bit float 2.2.
const char kTable22[] =
    "00000000000000000000000000000001010101010101010101020202020202020303030303040404"
    "0405050505060606060707070808080909090a0a0b0b0b0c0c0d0d0d0e0e0f0f1010111112121313"
    "141415161617171819191a1a1b1c1c1d1e1e1f202121222323242526272728292a2b2b2c2d2e2f30"
    "313132333435363738393a3b3c3d3e3f4041424344454647494a4b4c4d4e4f51525354555758595a"
    "5b5d5e5f616263646667696a6b6d6e6f717274757778797b7c7e7f8182848587898a8c8d8f919294"
    "9597999a9c9e9fa1a3a5a6a8aaacadafb1b3b5b6b8babcbec0c2c4c5c7c9cbcdcfd1d3d5d7d9dbdd"
    "dfe1e3e5e7eaeceef0f2f4f6f8fbfdff";

// With a toe: k = (1 / 255) ** g, o = (k / 51 - 51 ** -g) / (51 ** -g - 1), entries 0 to
// 5 int(i * k + 0.5), the others int(((i / 255) ** g * (o + 1) - o) * 255 + 0.5).
const char kTable045[] =
    "00000000000005090d1014171a1d1f222427292b2e30323436383a3c3e3f41434546484a4b4d4e50"
    "5153545657595a5b5d5e60616263656667686a6b6c6d6f7071727374757778797a7b7c7d7e7f8081"
    "82838485868788898a8b8c8d8e8f90919293949595969798999a9b9c9d9d9e9fa0a1a2a3a3a4a5a6"
    "a7a8a8a9aaabacacadaeafb0b0b1b2b3b3b4b5b6b6b7b8b9b9babbbcbcbdbebfbfc0c1c1c2c3c4c4"
    "c5c6c6c7c8c8c9cacacbcccccdcecfcfd0d1d1d2d2d3d4d4d5d6d6d7d8d8d9dadadbdbdcdddddedf"
    "dfe0e0e1e2e2e3e4e4e5e5e6e7e7e8e8e9eaeaebebececedeeeeefeff0f1f1f2f2f3f3f4f4f5f6f6"
    "f7f7f8f8f9fafafbfbfcfcfdfdfefeff";

std::string TableOff() { return std::string(528, '0'); }
std::string Table8(const std::string& entries) { return "00000000 08" + entries + "000000"; }

TEST(Gamma, OfOneOrZeroTurnsTheTableOff) {
  ScriptedGateway driver;
  TestSession session(driver);
  for (float gamma : {1.0f, 0.0f, -0.0f}) {
    driver.ExpectEcho(0x222028, TableOff());
    EXPECT_EQ(session->SetGamma(gamma), kOk);
    EXPECT_EQ(session->options.gamma, gamma);
  }
}

TEST(Gamma, LoadsAnEightBitTable) {
  ScriptedGateway driver;
  TestSession session(driver);
  driver.ExpectEcho(0x222028, Table8(kTable22));
  EXPECT_EQ(session->SetGamma(2.2f), kOk);
  float gamma = 0;
  EXPECT_EQ(session->GetGamma(&gamma), kOk);
  EXPECT_EQ(gamma, 2.2f);
}

TEST(Gamma, LoadsAnEightBitTableWithAToe) {
  ScriptedGateway driver;
  TestSession session(driver);
  driver.ExpectEcho(0x222028, Table8(kTable045));
  EXPECT_EQ(session->SetGamma(0.45f), kOk);
}

// Entries 0, 128, 256, 512, 1000 and 1023 of a 10-bit table, as they travel. Python:
// int((i * 64 / 65535) ** g * 65535 + 0.5).
TEST(Gamma, LoadsA1024EntryTableForSixteenBitTransfer) {
  ModelGateway driver;
  TestSession session(driver);
  session->geometry.bytes_per_pixel = 2;
  EXPECT_EQ(session->SetGamma(2.2f), kOk);
  ASSERT_EQ(driver.Requests().size(), 1u);
  const std::string request = driver.Requests()[0];
  const std::string head = "0x222028 [2056] ";
  ASSERT_EQ(request.substr(0, head.size()), head);
  const Bytes record = FromHex(request.substr(head.size()));
  ASSERT_EQ(record.size(), 2056u);
  EXPECT_EQ(Bytes(record.begin(), record.begin() + 6), (Bytes{0, 0, 0, 0, 10, 0}));
  const struct {
    std::size_t index;
    std::uint32_t value;
  } entries[] = {{0, 0},       {16, 7},       {128, 676},   {256, 3104},
                 {512, 14263}, {1000, 62205}, {1023, 65396}};
  for (const auto& entry : entries) {
    EXPECT_EQ(record[6 + 2 * entry.index] + 256u * record[7 + 2 * entry.index], entry.value);
  }
  EXPECT_EQ(Bytes(record.begin() + 2054, record.end()), (Bytes{0, 0}));
}

TEST(Gamma, BelowZeroOrNotANumberIsOutOfRange) {
  ScriptedGateway driver;
  TestSession session(driver);
  session->options.gamma = 1.5f;
  for (float gamma : {-0.001f, -1e30f, -std::numeric_limits<float>::infinity(), std::nanf("")}) {
    EXPECT_EQ(session->SetGamma(gamma), kOutOfRange) << gamma;
  }
  EXPECT_EQ(session->options.gamma, 1.5f);
}

TEST(Gamma, IsStoredEvenWhenTheRequestFails) {
  ScriptedGateway driver;
  TestSession session(driver);
  driver.ExpectFailure(0x222028, Table8(kTable22));
  EXPECT_EQ(session->SetGamma(2.2f), kRequestFailed);
  EXPECT_EQ(session->options.gamma, 2.2f);
  driver.ExpectFailure(0x222028, TableOff());
  EXPECT_EQ(session->SetGamma(1.0f), kRequestFailed);
  EXPECT_EQ(session->options.gamma, 1.0f);
}

TEST(Gamma, ReturnsTheDriversAnswerMapped) {
  ScriptedGateway driver;
  TestSession session(driver);
  driver.Expect(0x222028, TableOff(), "03000080");
  EXPECT_EQ(session->SetGamma(1.0f), kNotSupported);
  driver.Expect(0x222028, Table8(kTable22), "10000080");
  EXPECT_EQ(session->SetGamma(2.2f), kGeneralFailure);
}

TEST(Gamma, SurvivesExtremeValues) {
  ModelGateway driver;
  TestSession session(driver);
  for (std::uint32_t bytes : {1u, 2u}) {
    session->geometry.bytes_per_pixel = bytes;
    for (float gamma :
         {1e-45f, 1e-20f, 1e-5f, 1e5f, 3e38f, std::numeric_limits<float>::infinity()}) {
      EXPECT_EQ(session->SetGamma(gamma), kOk) << gamma;
    }
  }
}

TEST(Gamma, ReadNeedsDeviceAndPointer) {
  ScriptedGateway driver;
  TestSession session(driver);
  float gamma = 0;
  EXPECT_EQ(session->GetGamma(nullptr), kNullPointer);
  session->link.handle = nullptr;
  EXPECT_EQ(session->GetGamma(&gamma), kNoCamera);
  EXPECT_EQ(session->SetGamma(-1), kNoCamera);
}

class Saturation : public ::testing::Test {
 protected:
  void Firmware(std::uint32_t version) { session_->identity.firmware_version = version; }
  ScriptedGateway driver_;
  TestSession session_{driver_};
};

TEST_F(Saturation, IsNotSupportedBeforeFirmware0202) {
  std::uint32_t value = 0;
  for (std::uint32_t version : {0u, 0x02010000u, 0x0201FFFFu}) {
    Firmware(version);
    EXPECT_EQ(session_->SetSaturation(1), kNotSupported);
    EXPECT_EQ(session_->GetSaturation(&value), kNotSupported);
  }
}

TEST_F(Saturation, IsCommandRegister6BeforeFirmware3) {
  for (std::uint32_t version : {0x02020000u, 0x02FFFFFFu}) {
    Firmware(version);
    driver_.ExpectEcho(0x2223FC, "00000000 02000000 00008806 00000078");
    EXPECT_EQ(session_->SetSaturation(0x45678), kOk);
    driver_.Expect(0x2223FC, "00000000 01000000 00008806 00000000",
                   "00000000 01000000 00008806 12345678");
    std::uint32_t value = 0;
    EXPECT_EQ(session_->GetSaturation(&value), kOk);
    EXPECT_EQ(value, 0x78u);
  }
}

TEST_F(Saturation, IsCommandRegister14FromFirmware3) {
  Firmware(0x03000000);
  driver_.ExpectEcho(0x2223FC, "00000000 02000000 0000000e 000000ff");
  EXPECT_EQ(session_->SetSaturation(255), kOk);
  driver_.Expect(0x2223FC, "00000000 01000000 0000000e 00000000",
                 "00000000 01000000 0000000e 00000037");
  std::uint32_t value = 0;
  EXPECT_EQ(session_->GetSaturation(&value), kOk);
  EXPECT_EQ(value, 0x37u);
}

TEST_F(Saturation, IsAnOperationOfItsOwnForNewerSecondGenerationCameras) {
  session_.MakeSecondGeneration();
  Firmware(0x03011101);
  driver_.ExpectEcho(0x2223FC, "00000000 14000000 12345678");
  EXPECT_EQ(session_->SetSaturation(0x12345678), kOk);
  driver_.Expect(0x2223FC, "00000000 15000000 00000000", "00000000 15000000 00012345");
  std::uint32_t value = 0;
  EXPECT_EQ(session_->GetSaturation(&value), kOk);
  EXPECT_EQ(value, 0x12345u);
}

TEST_F(Saturation, StaysARegisterForOlderFirmwareAndTheFirstGeneration) {
  session_.MakeSecondGeneration();
  Firmware(0x03011100);
  driver_.ExpectEcho(0x2223FC, "00000000 02000000 0000000e 00000001");
  EXPECT_EQ(session_->SetSaturation(1), kOk);
  session_->identity.second_generation = 0;
  Firmware(0x03FFFFFF);
  driver_.ExpectEcho(0x2223FC, "00000000 02000000 0000000e 00000001");
  EXPECT_EQ(session_->SetSaturation(1), kOk);
}

TEST_F(Saturation, LeavesTheValueAloneWhenARequestFails) {
  Firmware(0x03000000);
  std::uint32_t value = 99;
  driver_.ExpectFailure(0x2223FC, "00000000 01000000 0000000e 00000000");
  EXPECT_EQ(session_->GetSaturation(&value), kRequestFailed);
  session_.MakeSecondGeneration();
  Firmware(0x03011101);
  driver_.ExpectFailure(0x2223FC, "00000000 15000000 00000000");
  EXPECT_EQ(session_->GetSaturation(&value), kRequestFailed);
  EXPECT_EQ(value, 99u);
}

TEST_F(Saturation, IgnoresTheDriversStatusWord) {
  Firmware(0x03000000);
  driver_.Expect(0x2223FC, "00000000 02000000 0000000e 00000001", "05000080");
  EXPECT_EQ(session_->SetSaturation(1), kOk);
  session_.MakeSecondGeneration();
  Firmware(0x03011101);
  driver_.Expect(0x2223FC, "00000000 14000000 00000001", "05000080");
  EXPECT_EQ(session_->SetSaturation(1), kOk);
}

TEST_F(Saturation, NeedsDeviceAndPointer) {
  EXPECT_EQ(session_->GetSaturation(nullptr), kNullPointer);
  session_->link.handle = nullptr;
  Firmware(0);
  std::uint32_t value = 0;
  EXPECT_EQ(session_->SetSaturation(1), kNoCamera);
  EXPECT_EQ(session_->GetSaturation(&value), kNoCamera);
}

TEST(LightSource, IsSentAndStored) {
  ScriptedGateway driver;
  TestSession session(driver);
  session.MakeSecondGeneration();
  std::uint32_t source = 0;
  EXPECT_EQ(session->GetLightSource(&source), kOk);
  EXPECT_EQ(source, 1u);
  for (const char* record : {"00000000 16000000 00000001", "00000000 16000000 00000002",
                             "00000000 16000000 00000003", "00000000 16000000 00000004"}) {
    driver.ExpectEcho(0x2223FC, record);
  }
  for (std::uint32_t wanted = 1; wanted <= 4; ++wanted) {
    EXPECT_EQ(session->SetLightSource(wanted), kOk);
    EXPECT_EQ(session->GetLightSource(&source), kOk);
    EXPECT_EQ(source, wanted);
  }
}

TEST(LightSource, OutsideOneToFourIsOutOfRange) {
  ScriptedGateway driver;
  TestSession session(driver);
  session.MakeSecondGeneration();
  for (std::uint32_t source : {0u, 5u, 0xFFFFFFFFu}) {
    EXPECT_EQ(session->SetLightSource(source), kOutOfRange);
  }
}

TEST(LightSource, IsNotStoredWhenTheRequestFails) {
  ScriptedGateway driver;
  TestSession session(driver);
  session.MakeSecondGeneration();
  driver.ExpectFailure(0x2223FC, "00000000 16000000 00000003");
  EXPECT_EQ(session->SetLightSource(3), kRequestFailed);
  EXPECT_EQ(session->options.light_source, 1u);
}

TEST(LightSource, ChecksTheGenerationBeforeTheDevice) {
  ScriptedGateway driver;
  TestSession session(driver);
  EXPECT_EQ(session->SetLightSource(0), kNotSupported);
  session->link.handle = nullptr;
  EXPECT_EQ(session->SetLightSource(1), kNotSupported);
  session.MakeSecondGeneration();
  EXPECT_EQ(session->SetLightSource(0), kNoCamera);
  std::uint32_t source = 0;
  EXPECT_EQ(session->GetLightSource(&source), kNoCamera);
}

TEST(LightSource, ReadNeedsAPointer) {
  ScriptedGateway driver;
  TestSession session(driver);
  EXPECT_EQ(session->GetLightSource(nullptr), kNullPointer);
}

}  // namespace
}  // namespace ormidex::testing
