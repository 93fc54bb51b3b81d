// The whole open sequence of each kind of camera, through the exports.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "device/opening_transcripts.h"
#include "device/session.h"
#include "ormidex.h"
#include "support/process_environment.h"

namespace ormidex::testing {
namespace {

std::vector<std::string> RequestsOf(const Transcript& transcript) {
  std::vector<std::string> requests;
  for (const OpeningStep& step : transcript) requests.push_back(step.request);
  return requests;
}

class OpeningTranscript : public ::testing::Test {
 protected:
  OpeningTranscript() : environment(driver) {}
  ~OpeningTranscript() override {
    if (handle != nullptr) OrmidexUninitialize(&handle);
  }

  // Opens camera 0 and compares what was sent.
  void OpenAndCompare(const Transcript& transcript) {
    ASSERT_EQ(OrmidexInitialize("Torvenal(tm) 1394 Camera", 0, &handle), 0u);
    const std::vector<std::string> sent = driver.Requests();
    const std::vector<std::string> expected = RequestsOf(transcript);
    for (std::size_t i = 0; i < sent.size() && i < expected.size(); ++i) {
      ASSERT_EQ(sent[i], expected[i]) << "request " << i;
    }
    EXPECT_EQ(sent.size(), expected.size());
  }
  device::CameraSession& Session() { return *static_cast<device::CameraSession*>(handle); }
  OrmidexUInt32 Get(OrmidexStatus(ORMIDEX_CALL* getter)(OrmidexHandle, OrmidexUInt32*)) {
    OrmidexUInt32 value = 0xBAD;
    EXPECT_EQ(getter(handle, &value), 0u);
    return value;
  }

  ModelGateway driver;
  ProcessEnvironment environment;
  OrmidexHandle handle = nullptr;
};

TEST_F(OpeningTranscript, FirstGenerationColourWithFirmware2) {
  MakeFirstGeneration(driver);
  driver.firmware = 0x02020500;
  driver.command_registers[0x8804] = 0x00;
  driver.command_registers[0x8807] = 0xFF;
  OpenAndCompare(FirstGenerationTranscript({.firmware3 = false}));
  EXPECT_EQ(Get(OrmidexGetImagerType), 2u);
  EXPECT_EQ(Get(OrmidexGetRedGain), 11u);
  EXPECT_EQ(Get(OrmidexGetGreenGain), 12u);
  EXPECT_EQ(Get(OrmidexGetBlueGain), 13u);
}

TEST_F(OpeningTranscript, FirstGenerationColourWithFirmware3) {
  MakeFirstGeneration(driver);
  driver.firmware = 0x03000000;
  driver.command_registers[0x0F] = 0xA5;
  OpenAndCompare(FirstGenerationTranscript({}));
  EXPECT_EQ(Get(OrmidexGetImagerClocking), 0u);
  EXPECT_EQ(Get(OrmidexGetVideoMode), 1u);
  EXPECT_EQ(Get(OrmidexGetDataTransferSize), 8u);
  EXPECT_EQ(Get(OrmidexGetTimeout), 4000u);
  EXPECT_EQ(Get(OrmidexGetSerialNumber), 0x12345u);
  EXPECT_EQ(Get(OrmidexGetSoftwareVersion), 0x03000000u);
  char name[81] = {};
  EXPECT_EQ(OrmidexGetImagerName(handle, name), 0u);
  EXPECT_STREQ(name, "Imager0");
  OrmidexUInt32 window[5] = {};
  EXPECT_EQ(OrmidexGetSubWindow(handle, &window[0], &window[1], &window[2], &window[3], &window[4]),
            0u);
  EXPECT_EQ(window[0], 1u);
  EXPECT_EQ(window[1], 0u);
  EXPECT_EQ(window[2], 0u);
  EXPECT_EQ(window[3], 640u);
  EXPECT_EQ(window[4], 480u);
}

TEST_F(OpeningTranscript, FirstGenerationMonochrome) {
  MakeFirstGeneration(driver);
  driver.firmware = 0x03000000;
  driver.command_registers[0x09] = 0x08;
  OpenAndCompare(FirstGenerationTranscript({.monochrome = true}));
  EXPECT_EQ(Get(OrmidexGetImagerType), 1u);
  EXPECT_EQ(Get(OrmidexGetMonoGain), 0u);
}

TEST_F(OpeningTranscript, FirmwareVariantMIsMonochromeWithoutFlagsAndGpo) {
  MakeFirstGeneration(driver);
  driver.firmware = 0x034D0100;
  OpenAndCompare(FirstGenerationTranscript({.firmware_variant = true, .monochrome = true}));
  EXPECT_EQ(Get(OrmidexGetImagerType), 1u);
}

TEST_F(OpeningTranscript, FirmwareVariantCOfTheColourName) {
  MakeFirstGeneration(driver);
  driver.firmware = 0x02430000;
  driver.type_name = "Torvenal(tm) - VSN4410C";
  driver.command_registers[0x8807] = 0xFF;
  OpenAndCompare(FirstGenerationTranscript({.firmware3 = false, .firmware_variant = true}));
  EXPECT_EQ(Get(OrmidexGetImagerType), 2u);
}

TEST_F(OpeningTranscript, SecondGenerationColourWithFirmware3122) {
  MakeSecondGeneration(driver);
  driver.firmware = 0x03012200;
  OpenAndCompare(SecondGenerationTranscript());
  EXPECT_EQ(Get(OrmidexGetImagerType), 2u);
  EXPECT_EQ(Get(OrmidexGetRedGain), 31u);
  EXPECT_EQ(Get(OrmidexGetBlueGain), 32u);
  EXPECT_EQ(Get(OrmidexGetGreenGain), 22u) << "(21 + 24) / 2, rounded down";
  EXPECT_EQ(Get(OrmidexGetLightSource), 1u);
}

TEST_F(OpeningTranscript, SecondGenerationColourWithFirmware300) {
  MakeSecondGeneration(driver);
  driver.firmware = 0x03000000;
  OpenAndCompare(SecondGenerationTranscriptOfFirmware300());
}

TEST_F(OpeningTranscript, SecondGenerationColourWithTheLastOfTheOlderFirmware) {
  MakeSecondGeneration(driver);
  driver.firmware = 0x030121FF;
  OpenAndCompare(SecondGenerationTranscriptOfFirmware300());
}

TEST_F(OpeningTranscript, SecondGenerationMonochrome) {
  MakeSecondGeneration(driver);
  driver.firmware = 0x03012200;
  driver.command_registers[0x09] = 0x08;
  OpenAndCompare(SecondGenerationMonochromeTranscript());
  EXPECT_EQ(Get(OrmidexGetImagerType), 1u);
  EXPECT_EQ(Get(OrmidexGetMonoGain), 0u);
}

TEST_F(OpeningTranscript, ControllerWithTheLetterJIsClockedAt12MHz) {
  MakeSecondGeneration(driver);
  driver.firmware = 0x03012200;
  driver.command_registers[0] = 0x4A;
  driver.registers[79] = 0x8D;  // 397 rows
  OpenAndCompare(SecondGenerationTranscriptAt12MHz());
  EXPECT_EQ(Get(OrmidexGetImagerClocking), 0x81u);
}

TEST_F(OpeningTranscript, WhereTheDriverListsTheCamerasTheListComesFirst) {
  frame::SetOperatingSystemKindForTesting(2);
  MakeFirstGeneration(driver);
  driver.firmware = 0x03000000;
  driver.command_registers[0x0F] = 0xA5;
  driver.device_list = "cam0\n";
  std::string list = "0x2223CC [1024]";
  for (int i = 0; i < 256; ++i) list += " 00000000";
  Transcript transcript = FirstGenerationTranscript({});
  transcript.insert(transcript.begin(), {list, 1});
  OpenAndCompare(transcript);
}

TEST_F(OpeningTranscript, FirmwareBefore20205IsNotAskedForItsValues) {
  MakeFirstGeneration(driver);
  driver.firmware = 0x020204FF;
  driver.command_registers[0x8807] = 0xFF;
  Transcript transcript = FirstGenerationTranscript({.firmware3 = false});
  transcript.erase(transcript.begin() + 2);
  OpenAndCompare(transcript);
}

TEST_F(OpeningTranscript, FirmwareBefore20201HasNoWidthBit) {
  MakeFirstGeneration(driver);
  driver.firmware = 0x02020000;
  driver.command_registers[0x8807] = 0xFE;
  Transcript transcript = FirstGenerationTranscript({.firmware3 = false});
  transcript.erase(transcript.begin() + 10, transcript.begin() + 12);
  transcript.erase(transcript.begin() + 2);
  OpenAndCompare(transcript);
}

// ---- What opening leaves behind ----

struct PhaseRow {
  std::uint8_t orientation;  // camera register 1
  std::uint32_t phase;
};

class OpeningBayerPhase : public OpeningTranscript,
                          public ::testing::WithParamInterface<PhaseRow> {};

TEST_P(OpeningBayerPhase, FollowsBits3And4OfRegister1) {
  MakeFirstGeneration(driver);
  driver.stuck_registers[1] = GetParam().orientation;
  ASSERT_EQ(OrmidexInitialize("", 0, &handle), 0u);
  EXPECT_EQ(Session().geometry.bayer_phase, GetParam().phase);
}
INSTANTIATE_TEST_SUITE_P(EveryCase, OpeningBayerPhase,
                         ::testing::Values(PhaseRow{0xE7, 0}, PhaseRow{0x08, 0}, PhaseRow{0x10, 1},
                                           PhaseRow{0xF7, 1}, PhaseRow{0x18, 2},
                                           PhaseRow{0xFF, 2}));

TEST_F(OpeningTranscript, SecondGenerationKeepsBayerPhase0) {
  MakeSecondGeneration(driver);
  driver.stuck_registers[1] = 0x18;
  ASSERT_EQ(OrmidexInitialize("", 0, &handle), 0u);
  EXPECT_EQ(Session().geometry.bayer_phase, 0u);
}

TEST_F(OpeningTranscript, TheWarningOfACmyImagerComesOnceForEachOpening) {
  MakeSecondGeneration(driver);
  driver.command_registers[0x09] = 0x10;
  for (std::size_t openings = 1; openings <= 2; ++openings) {
    ASSERT_EQ(OrmidexInitialize("", 0, &handle), 0u);
    EXPECT_EQ(environment.Messages().size(), openings);
    EXPECT_EQ(OrmidexUninitialize(&handle), 0u);
  }
}

TEST_F(OpeningTranscript, TheSessionIsReadyForItsWorkers) {
  MakeFirstGeneration(driver);
  ASSERT_EQ(OrmidexInitialize("", 0, &handle), 0u);
  device::CameraSession& session = Session();
  EXPECT_EQ(session.bitmap_header.header_bytes, 40u);
  EXPECT_EQ(session.bitmap_header.planes, 1u);
  EXPECT_EQ(session.bitmap_header.bits_per_pixel, 24u);
  EXPECT_EQ(session.bitmap_header.compression, 0u);
  EXPECT_EQ(session.command.active_workers.load(), 0u);
  EXPECT_EQ(session.overlay.preview, nullptr);
  EXPECT_EQ(session.overlay.saving, nullptr);
  EXPECT_EQ(session.open.imager_mode, 1u);
  EXPECT_TRUE(session.command.channel_event.Wait(0)) << "the channel is free at first";
  EXPECT_FALSE(session.command.cancel_event.Wait(0));
  EXPECT_FALSE(session.command.done_event.Wait(0));
  EXPECT_EQ(session.stream.running.load(), 0u);
}

TEST_F(OpeningTranscript, AColourCameraKeepsTheMonoGainThatNoCameraHas) {
  MakeFirstGeneration(driver);
  ASSERT_EQ(OrmidexInitialize("", 0, &handle), 0u);
  EXPECT_EQ(Session().gains.mono, 65535u);
}

}  // namespace
}  // namespace ormidex::testing
