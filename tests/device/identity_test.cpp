// Who the camera is: the identity requests, the check of the imager, and the
// exports that report identity.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "ormidex.h"
#include "support/faults.h"
#include "support/process_environment.h"
#include "support/scripted_gateway.h"
#include "support/test_session.h"

namespace ormidex::testing {
namespace {

using namespace device;
using platform::FaultPoint;

std::string TextAsHex(const std::string& text) { return ToHex(text.c_str(), text.size() + 1); }

const std::string kProbeFirst = "00000000 60000000 00000000 01000000 00000000";
const std::string kProbeSecond = "00000000 66000000 0f000000 01000000 00000000";
const std::string kFlags3 = "00000000 01000000 00000009 00000000";
const std::string kFlags2 = "00000000 01000000 00008804 00000000";
constexpr char kWarning[] =
    "(no title): Warning: You are still using a CMY imager.  Please get upgraded to RGB.";

class Identity : public ::testing::Test {
 protected:
  Identity() : environment(driver), session(driver) {
    session->identity.firmware_version = 0x03000000;
    session->identity.imager_type = 0;
    session->link.bus_address = 0;
  }
  void ExpectNames(const std::string& type_name) {
    driver.Expect(0x222030, "", TextAsHex("Some camera"));
    driver.Expect(0x222034, "", TextAsHex(type_name));
  }
  void ExpectFlags(std::uint8_t flags) {
    driver.Expect(0x2223FC, kFlags3, "00000000 01000000 00000009 000000" + ToHex(&flags, 1));
  }
  void ExpectSignature(const std::string& request, const std::string& byte) {
    driver.Expect(0x222000, request, request.substr(0, 36) + byte + "000000");
  }
  void ExpectSecondGeneration() {
    driver.ExpectFailure(0x222000, kProbeFirst);
    ExpectSignature(kProbeSecond, "50");
  }
  // Names, flags and signature of an accepted first-generation camera.
  Status CheckWithFlags(const std::string& type_name, std::uint8_t flags) {
    ExpectNames(type_name);
    ExpectFlags(flags);
    ExpectSignature(kProbeFirst, "30");
    return session->ReadIdentityStrings();
  }

  ScriptedGateway driver;
  ProcessEnvironment environment;
  TestSession session;
};

TEST_F(Identity, MonochromeNameNeedsNoFlags) {
  ExpectNames("Torvenal(tm) - VSN4410");
  ExpectSignature(kProbeFirst, "30");
  EXPECT_EQ(session->ReadIdentityStrings(), kOk);
  EXPECT_EQ(session->identity.imager_type, 1u);
  EXPECT_EQ(session->link.bus_address, 0x60u);
  EXPECT_EQ(session->identity.second_generation, 0u);
}

TEST_F(Identity, ColourNameNeedsNoFlags) {
  ExpectNames("Torvenal(tm) - VSN4410C");
  ExpectSignature(kProbeFirst, "30");
  EXPECT_EQ(session->ReadIdentityStrings(), kOk);
  EXPECT_EQ(session->identity.imager_type, 2u);
}

TEST_F(Identity, OtherKnownNamesTakeTheTypeFromBit3OfTheFlags) {
  for (const char* name :
       {"Torvenal(tm) - QV-H520", "Torvenal(tm) 1394 Camera", "Arlen Imaging Module"}) {
    EXPECT_EQ(CheckWithFlags(name, 0x08), kOk) << name;
    EXPECT_EQ(session->identity.imager_type, 1u) << name;
    EXPECT_EQ(CheckWithFlags(name, 0xF7), kOk) << name;
    EXPECT_EQ(session->identity.imager_type, 2u) << name;
  }
}

TEST_F(Identity, KnownNameWhoseFlagsCannotBeReadIsColour) {
  ExpectNames("Torvenal(tm) 1394 Camera");
  driver.ExpectFailure(0x2223FC, kFlags3);
  ExpectSignature(kProbeFirst, "30");
  EXPECT_EQ(session->ReadIdentityStrings(), kOk);
  EXPECT_EQ(session->identity.imager_type, 2u);
}

TEST_F(Identity, UnknownNameTakesTheTypeFromTheFlagsToo) {
  EXPECT_EQ(CheckWithFlags("Something Else", 0x08), kOk);
  EXPECT_EQ(session->identity.imager_type, 1u);
  EXPECT_EQ(CheckWithFlags("torvenal(tm) - vsn4410c", 0x00), kOk) << "names match case and all";
  EXPECT_EQ(session->identity.imager_type, 2u);
}

TEST_F(Identity, UnknownNameWhoseFlagsCannotBeReadIsNotAccepted) {
  session->identity.imager_type = 2;
  ExpectNames("Something Else");
  driver.ExpectFailure(0x2223FC, kFlags3);
  EXPECT_EQ(session->ReadIdentityStrings(), 8u);
  EXPECT_EQ(session->identity.imager_type, 0u);
  EXPECT_EQ(session->link.bus_address, 0x60u);
}

TEST_F(Identity, FlagsOfOlderFirmwareStandInCommandRegister4) {
  session->identity.firmware_version = 0x02FFFFFF;
  ExpectNames("Torvenal(tm) 1394 Camera");
  driver.Expect(0x2223FC, kFlags2, "00000000 01000000 00008804 00000008");
  ExpectSignature(kProbeFirst, "30");
  EXPECT_EQ(session->ReadIdentityStrings(), kOk);
  EXPECT_EQ(session->identity.imager_type, 1u);
}

TEST_F(Identity, FirmwareVariantsMAndCAreMonochromeUnlessTheNameSaysColour) {
  for (const std::uint32_t firmware : {0x034D0000u, 0x03430000u, 0x024D1234u}) {
    session->identity.firmware_version = firmware;
    session->identity.imager_type = 0;
    ExpectNames("Torvenal(tm) 1394 Camera");
    ExpectSignature(kProbeFirst, "30");
    EXPECT_EQ(session->ReadIdentityStrings(), kOk);
    EXPECT_EQ(session->identity.imager_type, 1u);
  }
  ExpectNames("Something Else");  // the flags are not read, so they cannot fail
  ExpectSignature(kProbeFirst, "30");
  EXPECT_EQ(session->ReadIdentityStrings(), kOk);
  EXPECT_EQ(session->identity.imager_type, 1u);
  session->identity.imager_type = 2;
  ExpectNames("Torvenal(tm) 1394 Camera");
  ExpectSignature(kProbeFirst, "30");
  EXPECT_EQ(session->ReadIdentityStrings(), kOk);
  EXPECT_EQ(session->identity.imager_type, 2u);
}

TEST_F(Identity, FirstGenerationWithAnotherSignatureIsRejected) {
  ExpectNames("Torvenal(tm) - VSN4410C");
  ExpectSignature(kProbeFirst, "31");
  EXPECT_EQ(session->ReadIdentityStrings(), 8u);
}

TEST_F(Identity, SecondGenerationAnswersAtItsOwnAddress) {
  ExpectNames("Torvenal(tm) 1394 Camera");
  ExpectFlags(0x00);
  ExpectSecondGeneration();
  EXPECT_EQ(session->ReadIdentityStrings(), kOk);
  EXPECT_EQ(session->identity.second_generation, 1u);
  EXPECT_EQ(session->link.bus_address, 0x66u);
  EXPECT_EQ(session->identity.imager_type, 2u);
  EXPECT_TRUE(environment.Messages().empty());
}

TEST_F(Identity, AStatusWordThatIsNoSuccessAlsoSendsTheProbeToTheSecondAddress) {
  ExpectNames("Torvenal(tm) - VSN4410C");
  driver.Expect(0x222000, kProbeFirst, "05000080 60000000 00000000 01000000 30000000");
  ExpectSignature(kProbeSecond, "50");
  EXPECT_EQ(session->ReadIdentityStrings(), kOk);
  EXPECT_EQ(session->identity.second_generation, 1u);
}

TEST_F(Identity, SecondGenerationWithAnotherSignatureIsRejected) {
  ExpectNames("Torvenal(tm) - VSN4410C");
  driver.ExpectFailure(0x222000, kProbeFirst);
  ExpectSignature(kProbeSecond, "30");
  EXPECT_EQ(session->ReadIdentityStrings(), 8u);
  EXPECT_EQ(session->identity.second_generation, 0u);
  EXPECT_EQ(session->link.bus_address, 0x66u);
}

TEST_F(Identity, ImagerThatAnswersNowhereStaysFirstGenerationAtTheSecondAddress) {
  ExpectNames("Torvenal(tm) - VSN4410C");
  driver.ExpectFailure(0x222000, kProbeFirst);
  driver.ExpectFailure(0x222000, kProbeSecond);
  EXPECT_EQ(session->ReadIdentityStrings(), kOk);
  EXPECT_EQ(session->identity.second_generation, 0u);
  EXPECT_EQ(session->link.bus_address, 0x66u);
}

TEST_F(Identity, SecondGenerationColourImagerWithCmyFilterWarnsOnceAndIsAccepted) {
  ExpectNames("Torvenal(tm) 1394 Camera");
  ExpectFlags(0x10);
  ExpectSecondGeneration();
  EXPECT_EQ(session->ReadIdentityStrings(), kOk);
  EXPECT_EQ(environment.Messages(), std::vector<std::string>{kWarning});
}

TEST_F(Identity, NoWarningForMonochromeOrFirstGenerationImagers) {
  ExpectNames("Torvenal(tm) 1394 Camera");
  ExpectFlags(0x18);
  ExpectSecondGeneration();
  EXPECT_EQ(session->ReadIdentityStrings(), kOk);
  EXPECT_EQ(CheckWithFlags("Torvenal(tm) 1394 Camera", 0x10), kOk);
  EXPECT_TRUE(environment.Messages().empty());
}

TEST_F(Identity, NameStringsAreClearedBeforeTheyAreRead) {
  std::memset(session->identity.device_description, 'x', 260);
  std::memset(session->identity.device_type_name, 'x', 260);
  driver.ExpectFailure(0x222030, "");
  EXPECT_EQ(session->ReadIdentityStrings(), 5u);
  EXPECT_STREQ(session->identity.device_description, "");
  EXPECT_STREQ(session->identity.device_type_name, "");
  driver.Expect(0x222030, "", TextAsHex("d"));
  driver.ExpectFailure(0x222034, "");
  EXPECT_EQ(session->ReadIdentityStrings(), 5u);
}

TEST_F(Identity, NamesThatFillTheirBufferStayTerminated) {
  driver.Expect(0x222030, "", std::string(2 * 260, '4'));
  driver.Expect(0x222034, "", std::string(2 * 260, '4'));
  ExpectFlags(0x08);
  ExpectSignature(kProbeFirst, "30");
  EXPECT_EQ(session->ReadIdentityStrings(), kOk);
  EXPECT_EQ(std::strlen(session->identity.device_type_name), 259u);
}

TEST_F(Identity, RequestsReportFailureAllocationAndDevice) {
  std::uint32_t chip = 0x77;
  session->link.bus_address = 0x60;
  session->identity.serial_number = 0x77;
  session->identity.firmware_version = 0x77;
  driver.ExpectFailure(0x222024, "00000000 01000000 00000000");
  driver.ExpectFailure(0x222018, "00000000 01000000 00000000");
  driver.ExpectFailure(0x222020, "00000000 60000000 00000000");
  EXPECT_EQ(session->ReadSerialNumber(), 5u);
  EXPECT_EQ(session->ReadFirmwareVersion(), 5u);
  EXPECT_EQ(session->GetImagerChipId(&chip), 5u);
  for (auto read : {&CameraSession::ReadSerialNumber, &CameraSession::ReadFirmwareVersion}) {
    const Refusal refusal(FaultPoint::kAllocation);
    EXPECT_EQ((*session.operator->().*read)(), 9u);
  }
  {
    const Refusal refusal(FaultPoint::kAllocation);
    EXPECT_EQ(session->GetImagerChipId(&chip), 9u);
  }
  session->link.handle = nullptr;
  EXPECT_EQ(session->ReadSerialNumber(), 1u);
  EXPECT_EQ(session->ReadFirmwareVersion(), 1u);
  EXPECT_EQ(session->ReadIdentityStrings(), 1u);
  EXPECT_EQ(session->GetImagerChipId(&chip), 1u);
  EXPECT_EQ(session->GetImagerChipId(nullptr), 2u);
  EXPECT_EQ(chip, 0x77u);
  EXPECT_EQ(session->identity.serial_number, 0x77u);
  EXPECT_EQ(session->identity.firmware_version, 0x77u);
}

// ---- What the session reports ----

TEST_F(Identity, SerialNumberAndVersionOfZeroReadAsNoCamera) {
  std::uint32_t value = 7;
  session->identity.serial_number = 0x12345;
  EXPECT_EQ(session->GetSerialNumber(&value), kOk);
  EXPECT_EQ(value, 0x12345u);
  EXPECT_EQ(session->GetSoftwareVersion(&value), kOk);
  EXPECT_EQ(value, 0x03000000u);
  session->identity.serial_number = 0;
  session->identity.firmware_version = 0;
  EXPECT_EQ(session->GetSerialNumber(&value), 1u);
  EXPECT_EQ(session->GetSoftwareVersion(&value), 1u);
  EXPECT_EQ(session->GetSerialNumber(nullptr), 2u);
  EXPECT_EQ(session->GetSoftwareVersion(nullptr), 2u);
  session->link.handle = nullptr;
  EXPECT_EQ(session->GetSerialNumber(nullptr), 1u);
  EXPECT_EQ(session->GetSoftwareVersion(nullptr), 1u);
}

TEST_F(Identity, ImagerTypeIsReportedAsItIs) {
  std::uint32_t type = 7;
  for (const std::uint32_t known : {0u, 1u, 2u}) {
    session->identity.imager_type = known;
    EXPECT_EQ(session->GetImagerType(&type), kOk);
    EXPECT_EQ(type, known);
  }
  EXPECT_EQ(session->GetImagerType(nullptr), 2u);
  session->link.handle = nullptr;
  EXPECT_EQ(session->GetImagerType(nullptr), 1u);
}

TEST_F(Identity, ImagerNameTakes80CharactersAndRefuses81) {
  const std::string longest(80, 'n');
  char name[82];
  std::memset(name, 'x', sizeof(name));
  EXPECT_EQ(session->SetImagerName(longest.c_str()), kOk);
  EXPECT_EQ(session->SetImagerName((longest + "n").c_str()), 7u);
  EXPECT_EQ(session->GetImagerName(name), kOk);
  EXPECT_EQ(std::string(name), longest);
  EXPECT_EQ(name[81], 'x');
  EXPECT_EQ(session->SetImagerName("b"), kOk);
  EXPECT_EQ(session->GetImagerName(name), kOk);
  EXPECT_STREQ(name, "b");
}

TEST_F(Identity, ImagerNameChecksDeviceThenPointer) {
  char name[81];
  EXPECT_EQ(session->SetImagerName(nullptr), 2u);
  EXPECT_EQ(session->GetImagerName(nullptr), 2u);
  session->link.handle = nullptr;
  EXPECT_EQ(session->SetImagerName(nullptr), 1u);
  EXPECT_EQ(session->GetImagerName(nullptr), 1u);
  EXPECT_EQ(session->GetImagerName(name), 1u);
}

TEST_F(Identity, LockValueNeedsFirmware3) {
  std::uint32_t value = 7;
  session->identity.firmware_version = 0x02FFFFFF;
  EXPECT_EQ(session->GetLockValue(&value), 12u);
  EXPECT_EQ(value, 7u);
  session->identity.firmware_version = 0x03000000;
  driver.Expect(0x2223FC, "00000000 01000000 0000ffff 00000000",
                "00000000 01000000 0000ffff 000000a5");
  EXPECT_EQ(session->GetLockValue(&value), kOk);
  EXPECT_EQ(value, 0xA5u);
}

TEST_F(Identity, LockValueIsClearedEvenWhenItCannotBeRead) {
  std::uint32_t value = 7;
  driver.ExpectFailure(0x2223FC, "00000000 01000000 0000ffff 00000000");
  EXPECT_EQ(session->GetLockValue(&value), 5u);
  EXPECT_EQ(value, 0u);
  session->link.handle = nullptr;
  EXPECT_EQ(session->GetLockValue(nullptr), 2u);
  EXPECT_EQ(session->GetLockValue(&value), 1u);
}

TEST_F(Identity, ExternalOscillatorIsBit0OfTheFlags) {
  std::uint32_t external = 7;
  ExpectFlags(0xFF);
  EXPECT_EQ(session->IsExtOscillator(&external), kOk);
  EXPECT_EQ(external, 1u);
  ExpectFlags(0xFE);
  EXPECT_EQ(session->IsExtOscillator(&external), kOk);
  EXPECT_EQ(external, 0u);
  session->identity.firmware_version = 0x02000000;
  driver.Expect(0x2223FC, kFlags2, "00000000 01000000 00008804 00000001");
  EXPECT_EQ(session->IsExtOscillator(&external), kOk);
  EXPECT_EQ(external, 1u);
}

TEST_F(Identity, ExternalOscillatorRefusesASecondGenerationImagerBeforeAnythingElse) {
  session.MakeSecondGeneration();
  EXPECT_EQ(session->IsExtOscillator(nullptr), 12u);
  session->link.handle = nullptr;
  EXPECT_EQ(session->IsExtOscillator(nullptr), 12u);
}

TEST_F(Identity, ExternalOscillatorReportsPointerDeviceAndFailedRequest) {
  std::uint32_t external = 7;
  driver.ExpectFailure(0x2223FC, kFlags3);
  EXPECT_EQ(session->IsExtOscillator(&external), 5u);
  EXPECT_EQ(external, 7u);
  session->link.handle = nullptr;
  EXPECT_EQ(session->IsExtOscillator(nullptr), 2u);
  EXPECT_EQ(session->IsExtOscillator(&external), 1u);
}

// ---- Hardware version ----

class HardwareVersion : public Identity {
 protected:
  void ExpectBlock(const std::string& words) {
    driver.Expect(0x2223FC,
                  "00000000 07000000 00000000 00000000 00000000 00000000 00000000 00000000",
                  "00000000 07000000" + words + "00000000");
  }
  // The description of a camera with this model byte and model text "H520".
  std::string DescriptionOf(const std::string& model_byte) {
    ExpectBlock("000000" + model_byte + "00000001 48353230 03000000 00000001");
    EXPECT_EQ(session->GetHardwareVersion(&info), kOk);
    return info.description;
  }
  OrmidexHardwareVersion info = {};
};

TEST_F(HardwareVersion, WordsComeBigEndianAndAreGivenAsHexadecimalText) {
  ExpectBlock("0000001b 0abcdef0 48353230 03012200 000a0b10");
  EXPECT_EQ(session->GetHardwareVersion(&info), kOk);
  EXPECT_STREQ(info.model, "1b");
  EXPECT_STREQ(info.serialNumber, "abcdef0");
  EXPECT_STREQ(info.modelText, "H520");
  EXPECT_STREQ(info.firmwareVersion, "3.1.22.0");
  EXPECT_STREQ(info.hardwareRevision, "0.a.b.10");
  EXPECT_STREQ(info.description, "Torvenal 1394 Camera (Monochrome EC)");
  EXPECT_EQ(info.imagerGeneration, 1u);
}

TEST_F(HardwareVersion, WidestNumbersFit) {
  ExpectBlock("ffffffff ffffffff 48353230 ffffffff ffffffff");
  EXPECT_EQ(session->GetHardwareVersion(&info), kOk);
  EXPECT_STREQ(info.model, "ffffffff");
  EXPECT_STREQ(info.firmwareVersion, "ff.ff.ff.ff");
}

TEST_F(HardwareVersion, ImagerGenerationStandsLast) {
  session.MakeSecondGeneration();
  ExpectBlock("00000000 00000001 48353230 03000000 00000001");
  EXPECT_EQ(session->GetHardwareVersion(&info), kOk);
  EXPECT_EQ(info.imagerGeneration, 2u);
}

TEST_F(HardwareVersion, DescriptionFromFirmware202On) {
  session->identity.firmware_version = 0x02020000;
  EXPECT_EQ(DescriptionOf("04"), "Torvenal 1394 Camera (Color)");
  EXPECT_EQ(DescriptionOf("05"), "Torvenal 1394 Camera (Monochrome)");
  EXPECT_EQ(DescriptionOf("02"), "Torvenal 1394 Camera (Color EC)");
  EXPECT_EQ(DescriptionOf("03"), "Torvenal 1394 Camera (Monochrome EC)");
}

TEST_F(HardwareVersion, DescriptionOfOlderFirmware) {
  session->identity.firmware_version = 0x0201FFFF;
  EXPECT_EQ(DescriptionOf("00"), "QV-H520 Series Color with IFE Module");
  EXPECT_EQ(DescriptionOf("01"), "QV-H520 Series Monochrome with IFE Module");
  EXPECT_EQ(DescriptionOf("02"), "QV-H520 Series Color EC with IFE Module");
  EXPECT_EQ(DescriptionOf("04"), "QV-H520 Series Color Module");
  EXPECT_EQ(DescriptionOf("07"), "QV-H520 Series Monochrome EC Module");
}

TEST_F(HardwareVersion, OfFirmwareVariantsComesFromTheSession) {
  session->identity.firmware_version = 0x024D0102;
  session->identity.serial_number = 0x12345;
  session->identity.imager_type = 2;
  driver.Expect(0x2223FC, "00000000 01000000 00008801 00000000",
                "00000000 01000000 00008801 00000007");
  EXPECT_EQ(session->GetHardwareVersion(&info), kOk);
  EXPECT_STREQ(info.model, "1");
  EXPECT_STREQ(info.serialNumber, "12345");
  EXPECT_STREQ(info.modelText, "036A");
  EXPECT_STREQ(info.firmwareVersion, "2.4d.1.2");
  EXPECT_STREQ(info.hardwareRevision, "0.0.0.7");
}

TEST_F(HardwareVersion, OfFirmwareVariantsCallsAMonochromeImagerColorAndTheReverse) {
  session->identity.firmware_version = 0x034D0000;
  for (int i = 0; i < 2; ++i) {
    driver.ExpectEcho(0x2223FC, "00000000 01000000 00000001 00000000");
  }
  session->identity.imager_type = 1;
  EXPECT_EQ(session->GetHardwareVersion(&info), kOk);
  EXPECT_STREQ(info.model, "0");
  EXPECT_STREQ(info.description, "Torvenal 1394 Camera (Color)");
  session->identity.imager_type = 2;
  EXPECT_EQ(session->GetHardwareVersion(&info), kOk);
  EXPECT_STREQ(info.description, "Torvenal 1394 Camera (Monochrome)");
}

TEST_F(HardwareVersion, ReportsPointerDeviceAndFailedRequest) {
  driver.ExpectFailure(0x2223FC,
                       "00000000 07000000 00000000 00000000 00000000 00000000 00000000 00000000");
  EXPECT_EQ(session->GetHardwareVersion(&info), 5u);
  session->link.handle = nullptr;
  EXPECT_EQ(session->GetHardwareVersion(nullptr), 2u);
  EXPECT_EQ(session->GetHardwareVersion(&info), 1u);
}

}  // namespace
}  // namespace ormidex::testing
