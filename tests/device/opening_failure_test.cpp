// Openings that fail: each request in turn, each refusal of the system.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "device/opening_transcripts.h"
#include "device/session.h"
#include "ormidex.h"
#include "support/faults.h"
#include "support/process_environment.h"

namespace ormidex::testing {
namespace {

using platform::FaultPoint;

struct OpeningCase {
  const char* name;
  void (*make)(ModelGateway&);
  Transcript (*transcript)();
};

void MakeColour2(ModelGateway& driver) {
  MakeFirstGeneration(driver);
  driver.firmware = 0x02020500;
  driver.command_registers[0x8807] = 0xFF;
}
void MakeColour3(ModelGateway& driver) {
  MakeFirstGeneration(driver);
  driver.firmware = 0x03000000;
  driver.command_registers[0x0F] = 0xA5;
}
void MakeMonochrome(ModelGateway& driver) {
  MakeColour3(driver);
  driver.command_registers[0x09] = 0x08;
}
void MakeVariantM(ModelGateway& driver) {
  MakeFirstGeneration(driver);
  driver.firmware = 0x034D0100;
}
void MakeSecondColour(ModelGateway& driver) {
  MakeSecondGeneration(driver);
  driver.firmware = 0x03012200;
}

// A second-generation camera waits for a frame in each of its many openings, so only
// one of that kind is here.
const OpeningCase kCases[] = {
    {"FirstGenerationFirmware2", MakeColour2,
     [] { return FirstGenerationTranscript({.firmware3 = false}); }},
    {"FirstGenerationFirmware3", MakeColour3, [] { return FirstGenerationTranscript({}); }},
    {"FirstGenerationMonochrome", MakeMonochrome,
     [] { return FirstGenerationTranscript({.monochrome = true}); }},
    {"FirmwareVariantM", MakeVariantM,
     [] { return FirstGenerationTranscript({.firmware_variant = true, .monochrome = true}); }},
    {"SecondGenerationColour", MakeSecondColour, SecondGenerationTranscript},
};

class OpeningFailure : public ::testing::TestWithParam<OpeningCase> {};

// Opens, checks the handle against the status, and closes what was opened.
OrmidexStatus OpenAndClose(ModelGateway& driver) {
  OrmidexHandle handle = &driver;
  const OrmidexStatus status = OrmidexInitialize("Torvenal(tm) 1394 Camera", 0, &handle);
  if (status != 0) {
    EXPECT_EQ(handle, nullptr);
    EXPECT_EQ(driver.closed, 0) << "a failed opening leaves the device open";
    return status;
  }
  EXPECT_NE(handle, nullptr);
  EXPECT_EQ(OrmidexUninitialize(&handle), 0u);
  EXPECT_EQ(driver.closed, 1);
  return status;
}

TEST_P(OpeningFailure, OfEachRequestInTurnGivesItsStatusAndEndsTheSequence) {
  const Transcript transcript = GetParam().transcript();
  for (std::size_t n = 0; n < transcript.size(); ++n) {
    SCOPED_TRACE("request " + std::to_string(n) + ": " + transcript[n].request);
    ModelGateway driver;
    GetParam().make(driver);
    driver.fail_request = static_cast<int>(n);
    const ProcessEnvironment environment(driver);
    EXPECT_EQ(OpenAndClose(driver), transcript[n].status_if_it_fails);
    const std::vector<std::string> sent = driver.Requests();
    ASSERT_GT(sent.size(), n);
    for (std::size_t i = 0; i <= n; ++i) ASSERT_EQ(sent[i], transcript[i].request);
  }
}

TEST_P(OpeningFailure, OfEachAllocationInTurnIsAStatusAndHangsNothing) {
  for (int n = 0;; ++n) {
    SCOPED_TRACE("allocation " + std::to_string(n));
    ModelGateway driver;
    GetParam().make(driver);
    const ProcessEnvironment environment(driver);
    const Refusal refusal(FaultPoint::kAllocation, n);
    const OrmidexStatus status = OpenAndClose(driver);
    if (platform::RefusalPending(FaultPoint::kAllocation)) {
      EXPECT_GT(n, 10) << "the sequence allocates for most of its requests";
      EXPECT_EQ(status, 0u);
      return;
    }
    switch (n) {
      case 0:  // the record
        EXPECT_EQ(status, 1u);
        EXPECT_TRUE(driver.opened_paths.empty());
        break;
      case 1:  // serial number
      case 2:  // firmware version
        EXPECT_EQ(status, 9u);
        break;
      case 3:  // the camera's own clocking values
        EXPECT_EQ(status, 0u);
        break;
      case 4:  // the probe, which then finds no first-generation imager
        EXPECT_EQ(status, driver.bus_address == 0x60 ? 5u : 0u);
        break;
      default:
        EXPECT_TRUE(status == 9 || status == 0) << status;
    }
  }
}

TEST_P(OpeningFailure, OfAnEventIsNotNoticed) {
  for (int n = 0; n < 3; ++n) {
    ModelGateway driver;
    GetParam().make(driver);
    const ProcessEnvironment environment(driver);
    const Refusal refusal(FaultPoint::kEventCreate, n);
    EXPECT_EQ(OpenAndClose(driver), 0u);
    EXPECT_FALSE(platform::RefusalPending(FaultPoint::kEventCreate));
  }
}

INSTANTIATE_TEST_SUITE_P(EveryKind, OpeningFailure, ::testing::ValuesIn(kCases),
                         [](const auto& kind) { return std::string(kind.param.name); });

// ---- Answers instead of failures ----

class OpeningAnswer : public ::testing::Test {
 protected:
  OpeningAnswer() : environment(driver) { MakeColour3(driver); }
  ModelGateway driver;
  ProcessEnvironment environment;
};

TEST_F(OpeningAnswer, StatusWordsOfIdentityAndVideoModeEndTheSequence) {
  for (const std::uint32_t code : {0x222024u, 0x222018u, 0x222088u}) {
    driver.status_words = {{code, 0x80000003u}};
    EXPECT_EQ(OpenAndClose(driver), 12u);
    EXPECT_EQ(driver.Requests().back().substr(0, 8), code == 0x222024   ? "0x222024"
                                                     : code == 0x222018 ? "0x222018"
                                                                        : "0x222088");
    driver.ClearRequests();
  }
}

TEST_F(OpeningAnswer, StatusWordOfTheLookupTableEndsTheSequence) {
  driver.status_words = {{0x222028, 0x80000005u}};
  EXPECT_EQ(OpenAndClose(driver), 7u);
}

TEST_F(OpeningAnswer, StatusWordsThatAreNeverReadDoNotMatter) {
  for (const std::uint32_t code : {0x222010u, 0x22202Cu, 0x222100u, 0x2223FCu}) {
    driver.status_words[code] = 0x80000012u;
  }
  EXPECT_EQ(OpenAndClose(driver), 0u);
}

TEST_F(OpeningAnswer, AnImagerThatIsNotAcceptedEndsTheSequence) {
  driver.registers[0] = 0x31;
  EXPECT_EQ(OpenAndClose(driver), 8u);
}

TEST_F(OpeningAnswer, ASecondOpeningAfterAFailedOneSucceeds) {
  driver.fail_request = 0;
  EXPECT_EQ(OpenAndClose(driver), 5u);
  driver.fail_request = -1;
  EXPECT_EQ(OpenAndClose(driver), 0u);
  EXPECT_EQ(driver.opened_paths.size(), 2u);
  EXPECT_EQ(driver.closed, 1) << "the first device stays open";
}

TEST_F(OpeningAnswer, AClockRefusedByARegisterStatusIsTriedAt12MHz) {
  // Register writes answer 0x80000005, out of range, so that both clocks fail.
  driver.status_words = {{0x222004, 0x80000005u}};
  EXPECT_EQ(OpenAndClose(driver), 7u);
  const std::vector<std::string> sent = driver.Requests();
  ASSERT_GE(sent.size(), 2u);
  EXPECT_EQ(sent[sent.size() - 2], "0x2223FC [16] 00000000 02000000 0000000c 00000081");
}

// ---- Closing ----

TEST_F(OpeningAnswer, ADeviceThatCannotBeClosedStillGivesTheHandleBack) {
  OrmidexHandle handle = nullptr;
  ASSERT_EQ(OrmidexInitialize("", 0, &handle), 0u);
  driver.close_fails = true;
  EXPECT_EQ(OrmidexUninitialize(&handle), 3u);
  EXPECT_EQ(handle, nullptr);
  EXPECT_EQ(OrmidexUninitialize(&handle), 1u);
  EXPECT_EQ(driver.closed, 1);
}

TEST_F(OpeningAnswer, ClosingARunningStreamStopsIt) {
  OrmidexHandle handle = nullptr;
  ASSERT_EQ(OrmidexInitialize("", 0, &handle), 0u);
  EXPECT_EQ(OrmidexStartVideoStream(handle), 0u);
  driver.ClearRequests();
  EXPECT_EQ(OrmidexUninitialize(&handle), 0u);
  EXPECT_EQ(driver.Requests(), std::vector<std::string>{"0x222048 [0]"});
}

TEST_F(OpeningAnswer, ClosingAnIdleCameraSendsNothing) {
  OrmidexHandle handle = nullptr;
  ASSERT_EQ(OrmidexInitialize("", 0, &handle), 0u);
  driver.ClearRequests();
  EXPECT_EQ(OrmidexUninitialize(&handle), 0u);
  EXPECT_TRUE(driver.Requests().empty());
}

}  // namespace
}  // namespace ormidex::testing
