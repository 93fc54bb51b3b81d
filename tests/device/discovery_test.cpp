// Counting and finding cameras for each kind of operating system, through the
// exports.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "device/discovery.h"
#include "ormidex.h"
#include "support/faults.h"
#include "support/model_gateway.h"
#include "support/process_environment.h"

namespace ormidex::testing {
namespace {

using device::DriverShare;
using Names = std::vector<std::string>;

constexpr char kFriendly[] = "Torvenal(tm) 1394 Camera";

class Discovery : public ::testing::Test {
 protected:
  Discovery() : environment(driver) {
    // A first-generation camera, so that an opening that is to succeed does.
    driver.bus_address = 0x60;
    driver.registers[0] = 0x30;
  }
  void UseKind(std::uint32_t kind) { frame::SetOperatingSystemKindForTesting(kind); }

  // The count, or the status with its sign turned when it is not 0.
  int Count(const char* name = kFriendly) {
    OrmidexUInt32 count = 99;
    const OrmidexStatus status = OrmidexGetNumberDevices(name, &count);
    if (status != 0) {
      EXPECT_EQ(count, 0u);
      return -static_cast<int>(status);
    }
    return static_cast<int>(count);
  }
  // Status of opening; an opened camera is closed again.
  OrmidexStatus Open(OrmidexUInt32 index, const char* name = kFriendly) {
    OrmidexHandle handle = &driver;
    const OrmidexStatus status = OrmidexInitialize(name, index, &handle);
    EXPECT_EQ(handle == nullptr, status != 0);
    if (status == 0) {
      char text[81] = {};
      EXPECT_EQ(OrmidexGetImagerName(handle, text), 0u);
      imager_name = text;
      EXPECT_EQ(OrmidexUninitialize(&handle), 0u);
      EXPECT_EQ(handle, nullptr);
    }
    return status;
  }

  ModelGateway driver;
  ProcessEnvironment environment;
  std::string imager_name;
};

// ---- Both ways ----

TEST_F(Discovery, AnyTypeNameBecomesTheFriendlyName) {
  for (const char* name :
       {"QV-H520 Series Imaging Module", "Torvenal(tm) Imaging Module", "\\\\.\\QV1394CAM",
        "\\\\.\\QV-H520", "Torvenal(tm) 1394 Camera", "", "Some other camera"}) {
    EXPECT_STREQ(device::ResolveDeviceTypeName(name), "Torvenal(tm) 1394 Camera") << name;
  }
}

TEST_F(Discovery, AnyTypeNameCountsTheCamerasOfTheFriendlyName) {
  driver.friendly_names = {"Other", kFriendly, kFriendly};
  EXPECT_EQ(Count("Some unknown name"), 2);
  EXPECT_EQ(Count("Other"), 2);
}

TEST_F(Discovery, NullTypeNameIsRefusedAfterTheCountWasCleared) {
  OrmidexUInt32 count = 99;
  EXPECT_EQ(OrmidexGetNumberDevices(nullptr, &count), 2u);
  EXPECT_EQ(count, 0u);
}

TEST_F(Discovery, OpeningWithANullTypeNameIsRefusedForEveryKind) {
  for (const std::uint32_t kind : {0u, 1u, 2u, 3u, 4u}) {
    UseKind(kind);
    EXPECT_EQ(Open(0, nullptr), 2u);
  }
  EXPECT_TRUE(driver.opened_paths.empty());
}

TEST_F(Discovery, UnknownKindsOfSystemAreRefused) {
  for (const std::uint32_t kind : {0u, 4u}) {
    UseKind(kind);
    EXPECT_EQ(Count(), -15);
    EXPECT_EQ(Open(0), 15u);
  }
  EXPECT_TRUE(driver.opened_paths.empty());
}

TEST_F(Discovery, ARecordThatCannotBeAllocatedIsNoCamera) {
  const Refusal refusal(platform::FaultPoint::kAllocation);
  EXPECT_EQ(Open(0), 1u);
  EXPECT_TRUE(driver.opened_paths.empty());
}

// ---- The system's enumerator: kinds 1 and 3 ----

class EnumeratedDiscovery : public Discovery, public ::testing::WithParamInterface<std::uint32_t> {
 protected:
  void SetUp() override { UseKind(GetParam()); }
};
INSTANTIATE_TEST_SUITE_P(Kinds, EnumeratedDiscovery, ::testing::Values(1u, 3u));

TEST_P(EnumeratedDiscovery, CountsTheDevicesOfTheNameOnly) {
  driver.friendly_names = {kFriendly, "Web Camera", "torvenal(tm) 1394 camera", kFriendly, "?"};
  EXPECT_EQ(Count(), 2);
  EXPECT_TRUE(driver.opened_paths.empty());
  EXPECT_TRUE(driver.Requests().empty());
}

TEST_P(EnumeratedDiscovery, CountingNeedsNoDevicePath) {
  driver.friendly_names = {std::string(kFriendly) + "!", kFriendly};
  EXPECT_EQ(Count(), 2);
}

TEST_P(EnumeratedDiscovery, AnEmptyCategoryHasNoCameraAndIsNoErrorForCounting) {
  driver.friendly_names.clear();
  EXPECT_EQ(Count(), 0);
  EXPECT_EQ(Open(0), 1u);
}

TEST_P(EnumeratedDiscovery, AnEnumeratorThatCannotBeCreatedIsAnError) {
  driver.enumerator_available = false;
  EXPECT_EQ(Count(), -4);
  EXPECT_EQ(Open(0), 1u);
}

TEST_P(EnumeratedDiscovery, OpensTheIndexThMatchingDeviceShared) {
  driver.friendly_names = {"Web Camera", kFriendly, "?", kFriendly, kFriendly};
  EXPECT_EQ(Open(2), 0u);
  EXPECT_EQ(driver.opened_paths, Names{"path4"});
  EXPECT_EQ(driver.opened_shares, std::vector<DriverShare>{DriverShare::kShared});
  EXPECT_EQ(imager_name, "Imager2");
}

TEST_P(EnumeratedDiscovery, AnIndexPastTheLastMatchingCameraIsNotThere) {
  driver.friendly_names = {kFriendly, "Web Camera", kFriendly};
  EXPECT_EQ(Open(2), 3u);
  EXPECT_EQ(Open(0xFFFFFFFF), 3u);
  EXPECT_TRUE(driver.opened_paths.empty());
}

TEST_P(EnumeratedDiscovery, AnUnreadableDevicePathEndsTheWalkEvenBeforeTheIndex) {
  driver.friendly_names = {std::string(kFriendly) + "!", kFriendly};
  EXPECT_EQ(Open(1), 1u);
  driver.friendly_names = {kFriendly, std::string(kFriendly) + "!"};
  EXPECT_EQ(Open(0), 0u);
  EXPECT_EQ(Open(1), 1u);
  driver.friendly_names = {"Web Camera!", kFriendly};
  EXPECT_EQ(Open(0), 0u) << "the path of a device of another name is not asked for";
}

TEST_P(EnumeratedDiscovery, ADeviceThatCannotBeOpenedIsNoCamera) {
  driver.open_fails = true;
  EXPECT_EQ(Open(0), 1u);
  EXPECT_EQ(driver.opened_paths.size(), 1u);
  EXPECT_EQ(driver.closed, 0);
}

// ---- The driver's own list: kind 2 ----

class ListedDiscovery : public Discovery {
 protected:
  void SetUp() override {
    UseKind(2);
    driver.device_list = kThreeCameras;
  }
  static constexpr char kThreeCameras[] = "QV-H520-000\nQV-H520-001\nQV-H520-002\n";
};

TEST_F(ListedDiscovery, OpensTheFriendlyNameItselfExclusively) {
  EXPECT_EQ(Count(), 3);
  EXPECT_EQ(driver.opened_paths, Names{"Torvenal(tm) 1394 Camera"});
  EXPECT_EQ(driver.opened_shares, std::vector<DriverShare>{DriverShare::kExclusive});
  EXPECT_EQ(driver.closed, 1);
}

TEST_F(ListedDiscovery, AnotherNameWouldBecomeTheLegacyPath) {
  EXPECT_STREQ(device::ResolveDriverName("Torvenal(tm) 1394 Camera"), "Torvenal(tm) 1394 Camera");
  EXPECT_STREQ(device::ResolveDriverName("Other"), "\\\\.\\QV1394CAM");
}

TEST_F(ListedDiscovery, TheListIsAskedForWith1024BytesBothWays) {
  EXPECT_EQ(Count(), 3);
  const std::vector<std::string> requests = driver.Requests();
  ASSERT_EQ(requests.size(), 1u);
  EXPECT_EQ(requests[0].substr(0, 27), "0x2223CC [1024] 00000000 00");
}

TEST_F(ListedDiscovery, WholeLinesAreCounted) {
  driver.device_list = "ab\ncd\nef\ng";
  EXPECT_EQ(Count(), 3);
  driver.device_list = "ab\ncd\nef\ngh";
  EXPECT_EQ(Count(), 3);
  driver.device_list = "ab\n";
  EXPECT_EQ(Count(), 1);
  driver.device_list = "\n\n\n";
  EXPECT_EQ(Count(), 3);
}

TEST_F(ListedDiscovery, AListWithoutALineFeedHasNoCamera) {
  for (const char* list : {"", "QV-H520-000"}) {
    driver.device_list = list;
    EXPECT_EQ(Count(), 0);
    EXPECT_EQ(Open(0), 1u);
  }
  EXPECT_EQ(driver.opened_paths.size(), 4u);
  EXPECT_EQ(driver.closed, 4);
}

TEST_F(ListedDiscovery, AMachineWithoutTheDriverHasNoCameraAndIsNoErrorForCounting) {
  driver.open_fails = true;
  EXPECT_EQ(Count(), 0);
  EXPECT_EQ(Open(0), 1u);
  EXPECT_TRUE(driver.Requests().empty());
}

TEST_F(ListedDiscovery, AFailedListRequestIsNoErrorForCountingAndClosesTheDriver) {
  driver.fail_codes.insert(0x2223CC);
  EXPECT_EQ(Count(), 0);
  EXPECT_EQ(driver.closed, 1);
  EXPECT_EQ(Open(0), 1u);
  EXPECT_EQ(driver.closed, 2);
}

TEST_F(ListedDiscovery, OpensThePathMadeOfTheIndexThLine) {
  EXPECT_EQ(Open(1), 0u);
  EXPECT_EQ(driver.opened_paths, (Names{"Torvenal(tm) 1394 Camera", "//./QV-H520-001"}));
  EXPECT_EQ(driver.opened_shares,
            (std::vector<DriverShare>{DriverShare::kExclusive, DriverShare::kExclusive}));
  EXPECT_EQ(driver.closed, 2) << "the driver after the list, the camera at the end";
  EXPECT_EQ(imager_name, "Imager1");
}

TEST_F(ListedDiscovery, AnIndexPastTheListIsNotThereAndClosesTheDriver) {
  EXPECT_EQ(Open(3), 3u);
  EXPECT_EQ(Open(0xFFFFFFFF), 3u);
  EXPECT_EQ(driver.opened_paths.size(), 2u);
  EXPECT_EQ(driver.closed, 2);
}

TEST_F(ListedDiscovery, ALastNameWithoutItsLineFeedCanBeOpenedThoughItIsNotCounted) {
  driver.device_list = "aa\nbb\ncc";
  EXPECT_EQ(Count(), 2);
  EXPECT_EQ(Open(2), 0u);
  EXPECT_EQ(driver.opened_paths.back(), "//./cc");
  driver.device_list = "aa\nbb\nc";
  EXPECT_EQ(Open(2), 3u);
}

class SecondOpenFails : public ModelGateway {
 public:
  device::DriverHandle Open(const char* path, DriverShare share) override {
    open_fails = !opened_paths.empty();
    return ModelGateway::Open(path, share);
  }
};

TEST(ListedDiscoveryOfALostCamera, ADeviceThatCannotBeOpenedIsNoCamera) {
  SecondOpenFails driver;
  const ProcessEnvironment environment(driver, 2);
  driver.device_list = "cam0\n";
  OrmidexHandle handle = nullptr;
  EXPECT_EQ(OrmidexInitialize("", 0, &handle), 1u);
  EXPECT_EQ(driver.opened_paths, (Names{"Torvenal(tm) 1394 Camera", "//./cam0"}));
  EXPECT_EQ(driver.closed, 1);
}

}  // namespace
}  // namespace ormidex::testing
