// Colour and monochrome gains, request by request.
#include <gtest/gtest.h>

#include <cstdint>

#include "support/register_script.h"
#include "support/test_session.h"

namespace ormidex::testing {
namespace {

using device::CameraSession;
using Setter = Status (CameraSession::*)(std::uint32_t);
using Getter = Status (CameraSession::*)(std::uint32_t*);

struct Gain {
  const char* name;
  Setter set;
  Getter get;
  std::uint32_t imager_type;
};
constexpr Gain kGains[] = {
    {"red", &CameraSession::SetRedGain, &CameraSession::GetRedGain, device::kImagerColour},
    {"green", &CameraSession::SetGreenGain, &CameraSession::GetGreenGain, device::kImagerColour},
    {"blue", &CameraSession::SetBlueGain, &CameraSession::GetBlueGain, device::kImagerColour},
    {"mono", &CameraSession::SetMonoGain, &CameraSession::GetMonoGain, device::kImagerMono},
};

TEST(FirstGenerationGains, GoToRegisters20To22) {
  ScriptedGateway driver;
  TestSession session(driver);
  driver.Expect(0x222004, "ff000000 60000000 14000000 01000000 01000000", "00000000");
  driver.Expect(0x222004, "ff000000 60000000 15000000 01000000 02000000", "00000000");
  driver.Expect(0x222004, "ff000000 60000000 16000000 01000000 3f000000", "00000000");
  EXPECT_EQ(session->SetRedGain(1), kOk);
  EXPECT_EQ(session->SetGreenGain(2), kOk);
  EXPECT_EQ(session->SetBlueGain(63), kOk);
}

TEST(FirstGenerationGains, MonoWritesOneBlockOfThree) {
  ScriptedGateway driver;
  TestSession session(driver);
  session->identity.imager_type = device::kImagerMono;
  driver.Expect(0x222004, "00000000 60000000 14000000 03000000 2a2a2a", "00000000");
  EXPECT_EQ(session->SetMonoGain(42), kOk);
}

TEST(SecondGenerationGains, GoToRegisters0To3) {
  ScriptedGateway driver;
  RegisterScript script(driver, 0x66);
  TestSession session(driver);
  session.MakeSecondGeneration();
  script.Writes(1, 10);
  script.Writes(0, 20);
  script.Writes(3, 20);
  script.Writes(2, 30);
  EXPECT_EQ(session->SetRedGain(10), kOk);
  EXPECT_EQ(session->SetGreenGain(20), kOk);
  EXPECT_EQ(session->SetBlueGain(30), kOk);
}

TEST(SecondGenerationGains, MonoWritesOneBlockOfFour) {
  ScriptedGateway driver;
  TestSession session(driver);
  session.MakeSecondGeneration();
  session->identity.imager_type = device::kImagerMono;
  driver.Expect(0x222004, "00000000 66000000 00000000 04000000 3f3f3f3f", "00000000");
  EXPECT_EQ(session->SetMonoGain(63), kOk);
}

TEST(Gains, SettingTheSameGainTwiceWritesOnce) {
  ScriptedGateway driver;
  RegisterScript script(driver, 0x60);
  TestSession session(driver);
  script.Writes(20, 7);
  EXPECT_EQ(session->SetRedGain(7), kOk);
  EXPECT_EQ(session->SetRedGain(7), kOk);
}

TEST(Gains, ZeroOnAFreshSessionWritesNothing) {
  ScriptedGateway driver;
  TestSession session(driver);
  for (const Gain& gain : kGains) {
    session->identity.imager_type = gain.imager_type;
    EXPECT_EQ(((*session).*gain.set)(0), kOk) << gain.name;
  }
}

TEST(Gains, Above63AreOutOfRange) {
  ScriptedGateway driver;
  TestSession session(driver);
  for (const Gain& gain : kGains) {
    session->identity.imager_type = gain.imager_type;
    EXPECT_EQ(((*session).*gain.set)(64), kOutOfRange) << gain.name;
    EXPECT_EQ(((*session).*gain.set)(0xFFFFFFFFu), kOutOfRange) << gain.name;
  }
}

TEST(Gains, OfTheOtherImagerTypeAreNotSupportedWhateverTheValue) {
  ScriptedGateway driver;
  TestSession session(driver);
  for (const Gain& gain : kGains) {
    for (std::uint32_t type : {0u, 1u, 2u}) {
      if (type == gain.imager_type) continue;
      session->identity.imager_type = type;
      std::uint32_t value = 99;
      EXPECT_EQ(((*session).*gain.set)(1), kNotSupported) << gain.name;
      EXPECT_EQ(((*session).*gain.set)(64), kNotSupported) << gain.name;
      EXPECT_EQ(((*session).*gain.get)(&value), kNotSupported) << gain.name;
      EXPECT_EQ(value, 99u);
    }
  }
}

TEST(Gains, GettersReturnTheStoredValueWithoutARequest) {
  ScriptedGateway driver;
  TestSession session(driver);
  session->gains.red = 11;
  session->gains.green = 12;
  session->gains.blue = 13;
  session->gains.mono = 14;
  std::uint32_t expected = 11;
  for (const Gain& gain : kGains) {
    session->identity.imager_type = gain.imager_type;
    std::uint32_t value = 0;
    EXPECT_EQ(((*session).*gain.get)(&value), kOk) << gain.name;
    EXPECT_EQ(value, expected++) << gain.name;
  }
}

TEST(Gains, GettersTestThePointerFirst) {
  ScriptedGateway driver;
  TestSession session(driver);
  session->link.handle = nullptr;
  session->identity.imager_type = device::kImagerUnknown;
  for (const Gain& gain : kGains) {
    std::uint32_t value = 0;
    EXPECT_EQ(((*session).*gain.get)(nullptr), kNullPointer) << gain.name;
    EXPECT_EQ(((*session).*gain.get)(&value), kNoCamera) << gain.name;
    EXPECT_EQ(((*session).*gain.set)(64), kNoCamera) << gain.name;
  }
}

TEST(Gains, AreStoredOnlyWhenTheCameraTookThem) {
  ScriptedGateway driver;
  TestSession session(driver);
  driver.ExpectFailure(0x222004, "ff000000 60000000 14000000 01000000 05000000");
  EXPECT_EQ(session->SetRedGain(5), kRequestFailed);
  EXPECT_EQ(session->gains.red, 0u);
  driver.Expect(0x222004, "ff000000 60000000 14000000 01000000 05000000", "02000080");
  EXPECT_EQ(session->SetRedGain(5), kDriverCondition);
  EXPECT_EQ(session->gains.red, 0u);
}

TEST(SecondGenerationGains, AFailedFirstGreenLeavesTheSecondAlone) {
  ScriptedGateway driver;
  RegisterScript script(driver, 0x66);
  TestSession session(driver);
  session.MakeSecondGeneration();
  driver.ExpectFailure(0x222004, "ff000000 66000000 00000000 01000000 05000000");
  EXPECT_EQ(session->SetGreenGain(5), kRequestFailed);
  script.Writes(0, 5);
  driver.ExpectFailure(0x222004, "ff000000 66000000 03000000 01000000 05000000");
  EXPECT_EQ(session->SetGreenGain(5), kRequestFailed);
  EXPECT_EQ(session->gains.green, 0u);
}

}  // namespace
}  // namespace ormidex::testing
