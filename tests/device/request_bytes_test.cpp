// The requests of settings and of the stream as literal bytes.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "support/scripted_gateway.h"
#include "support/test_session.h"

namespace ormidex::testing {
namespace {

using namespace device;

class RequestBytes : public ::testing::Test {
 protected:
  RequestBytes() : session(driver) {}
  ScriptedGateway driver;
  TestSession session;
};

TEST_F(RequestBytes, TransferSizeCarriesBusAddressAndBitsAndItsStatusWordIsIgnored) {
  driver.Expect(0x222010, "00000000 60000000 08000000", "05000080");
  driver.Expect(0x222028, std::string(2 * 264, '0'));
  EXPECT_EQ(session->SetDataTransferSize(8), kOk);
}

TEST_F(RequestBytes, TransferOf16BitsAt8MHz) {
  session->exposure.clocking = 1;
  driver.Expect(0x222010, "00000000 60000000 10000000");
  driver.Expect(0x222028, std::string(2 * 264, '0'));
  EXPECT_EQ(session->SetDataTransferSize(16), kOk);
}

TEST_F(RequestBytes, LookupTableOffIs264ClearBytes) {
  driver.Expect(0x222028, std::string(2 * 264, '0'));
  EXPECT_EQ(session->SetGamma(1.0f), kOk);
}

// Gamma 1 would turn the table off, so the straight line is approached by the next
// single-precision number: every entry is its own index (within half a unit).
constexpr float kNearlyOne = 1.00000012f;

TEST_F(RequestBytes, LookupTableOf8BitsHasDepth8And256EntriesFromByte5) {
  std::string entries;
  for (int i = 0; i < 256; ++i) {
    const auto entry = static_cast<std::uint8_t>(i);
    entries += ToHex(&entry, 1);
  }
  driver.Expect(0x222028, "00000000 08" + entries + "000000");
  EXPECT_EQ(session->SetGamma(kNearlyOne), kOk);
}

TEST_F(RequestBytes, LookupTableOf10BitsHasDepth10And1024WordsFromByte6) {
  session->geometry.bytes_per_pixel = 2;
  std::string entries;
  for (int i = 0; i < 1024; ++i) {
    const std::uint8_t entry[2] = {static_cast<std::uint8_t>(i * 64),
                                   static_cast<std::uint8_t>(i * 64 >> 8)};
    entries += ToHex(entry, 2);
  }
  driver.Expect(0x222028, "00000000 0a00" + entries + "0000");
  EXPECT_EQ(session->SetGamma(kNearlyOne), kOk);
}

TEST_F(RequestBytes, VideoModeTravelsInTheThirdWord) {
  driver.ExpectEcho(0x222088, "00000000 00000000 02000000");
  EXPECT_EQ(session->SetVideoMode(2), kOk);
}

TEST_F(RequestBytes, StartCarriesWidthHeightAndFrameBytesInTheMiddleOf24) {
  // 640 = 0x280, 480 = 0x1e0, 640 x 480 x 2 = 614400 = 0x96000
  session->geometry.bytes_per_pixel = 2;
  driver.Expect(0x222040, "00000000 80020000 e0010000 00600900 00000000 00000000");
  EXPECT_EQ(session->StartVideoStream(), kOk);
}

TEST_F(RequestBytes, StopPauseAndResume) {
  session->stream.running.store(1);
  driver.Expect(0x222054, "00000000");
  driver.Expect(0x222058, "00000000");
  driver.Expect(0x222048, "");
  EXPECT_EQ(session->PauseVideoStream(1), kOk);
  EXPECT_EQ(session->PauseVideoStream(0), kOk);
  EXPECT_EQ(session->StopVideoStream(), kOk);
}

TEST_F(RequestBytes, AFrameComesStraightIntoTheCallersBuffer) {
  session->stream.running.store(1);
  session->geometry.width = 4;
  session->geometry.height = 2;
  driver.Expect(0x222045, "", "01020304 05060708");
  std::uint8_t frame[8] = {};
  EXPECT_EQ(session->ReturnVideoData(8, frame), kOk);
  EXPECT_EQ(ToHex(frame, 8), "01020304 05060708");
}

TEST_F(RequestBytes, FlipIsTurnedOnForFullRowsOnly) {
  const std::string read = "00000000 60000000 01000000 01000000 00000000";
  driver.ExpectEcho(0x222000, read);
  driver.ExpectEcho(0x222100, "00000000 00000000 01000000");
  driver.Expect(0x222004, "ff000000 60000000 01000000 01000000 10000000", "00000000");
  EXPECT_EQ(session->ImageFlip(1, 0), kOk);
  session->geometry.factor = 2;
  driver.ExpectEcho(0x222000, read);
  driver.ExpectEcho(0x222100, "00000000 00000000 00000000");
  driver.Expect(0x222004, "ff000000 60000000 01000000 01000000 10000000", "00000000");
  EXPECT_EQ(session->ImageFlip(1, 0), kOk);
}

TEST_F(RequestBytes, NameStringsAskFor260Bytes) {
  driver.Expect(0x222030, "", "4100");
  driver.Expect(0x222034, "",
                // "Torvenal(tm) - VSN4410"
                "546f7276 656e616c 28746d29 202d2056 534e3434 313000");
  driver.Expect(0x222000, "00000000 60000000 00000000 01000000 00000000",
                "00000000 60000000 00000000 01000000 30000000");
  EXPECT_EQ(session->ReadIdentityStrings(), kOk);
  EXPECT_STREQ(session->identity.device_description, "A");
  EXPECT_STREQ(session->identity.device_type_name, "Torvenal(tm) - VSN4410");
}

TEST_F(RequestBytes, SaturationOfASecondGenerationImagerHasOperationsOfItsOwn) {
  session.MakeSecondGeneration();
  session->identity.firmware_version = 0x03011101;
  driver.ExpectEcho(0x2223FC, "00000000 14000000 00000180");
  driver.Expect(0x2223FC, "00000000 15000000 00000000", "00000000 15000000 00000180");
  std::uint32_t saturation = 0;
  EXPECT_EQ(session->SetSaturation(0x180), kOk);
  EXPECT_EQ(session->GetSaturation(&saturation), kOk);
  EXPECT_EQ(saturation, 0x180u);
}

TEST_F(RequestBytes, LightSource) {
  session.MakeSecondGeneration();
  driver.ExpectEcho(0x2223FC, "00000000 16000000 00000004");
  EXPECT_EQ(session->SetLightSource(4), kOk);
}

// The records of stills, triggers and commands, as their layouts place each word.
template <typename Record>
std::string Hex(const Record& record) {
  return ToHex(&record, sizeof(record));
}

CaptureTiming NumberedTiming() {
  CaptureTiming timing;
  timing.exposure = 1;
  timing.first_output_flag = 2;
  timing.first_output_time = 3;
  timing.second_output_flag = BigEndian32(4);
  timing.second_output_time_a = BigEndian32(5);
  timing.second_output_time_b = BigEndian32(6);
  return timing;
}

TEST(RecordLayout, StillHasThreeLittleEndianWordsThenThreeBigEndian) {
  StillRecord record;
  record.timing = NumberedTiming();
  EXPECT_EQ(Hex(record), "00000000 01000000 02000000 03000000 00000004 00000005 00000006");
  EXPECT_EQ(kStillRecordShortBytes, 16u);
}

TEST(RecordLayout, TriggerHasItsOperationBeforeTheTimingOfAStill) {
  TriggerRecord record;
  record.operation = 1;
  record.timing = NumberedTiming();
  EXPECT_EQ(Hex(record), "00000000 01000000 01000000 02000000 03000000 00000004 00000005 00000006");
  EXPECT_EQ(kTriggerRecordShortBytes, 20u);
}

TEST(RecordLayout, CommandHasACountByteAnd96DataBytes) {
  CommandRecord record;
  record.byte_count = 0x60;
  record.data[0] = 0xAA;
  record.data[95] = 0xBB;
  std::string zeros;
  for (int i = 0; i < 22; ++i) zeros += "00000000 ";
  EXPECT_EQ(Hex(record), "00000000 60000000 aa000000 " + zeros + "000000bb");
}

TEST(RecordLayout, TheSwapOfABigEndianWordIsItsOwnInverse) {
  const BigEndian32 word(0x01020304);
  EXPECT_EQ(ToHex(&word, 4), "01020304");
  EXPECT_EQ(word.Value(), 0x01020304u);
}

}  // namespace
}  // namespace ormidex::testing
