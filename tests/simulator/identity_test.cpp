// Being found, opened and asked who one is.
#include "simulator/driver_client.h"

namespace ormidex::simulator {
namespace {

TEST(SimulatorEnumeration, OffersEachCameraUnderTheFriendlyNameWithItsOwnPath) {
  const auto simulator = MakeSimulator("3");
  PathCollector collector;
  EXPECT_EQ(simulator->Enumerate(collector), device::EnumerationResult::kListed);
  ASSERT_EQ(collector.names.size(), 3u);
  for (const std::string& name : collector.names) EXPECT_EQ(name, "Torvenal(tm) 1394 Camera");
  EXPECT_NE(collector.paths[0], collector.paths[1]);
  EXPECT_NE(collector.paths[1], collector.paths[2]);
}

TEST(SimulatorEnumeration, WithoutCamerasTheCategoryIsEmpty) {
  const auto simulator = MakeSimulator("0");
  PathCollector collector;
  EXPECT_EQ(simulator->Enumerate(collector), device::EnumerationResult::kEmptyCategory);
  EXPECT_EQ(simulator->Open("Torvenal(tm) 1394 Camera", device::DriverShare::kExclusive), nullptr);
}

TEST(SimulatorEnumeration, DriverListsItsDevicesInLinesOfOneLength) {
  const auto simulator = MakeSimulator("2");
  device::DriverHandle driver =
      simulator->Open("Torvenal(tm) 1394 Camera", device::DriverShare::kExclusive);
  ASSERT_NE(driver, nullptr);
  char text[device::kDeviceListBytes] = {};
  std::uint32_t returned = 0;
  ASSERT_TRUE(simulator->Control(
      driver, {device::CAM_IOCTL_ENUMERATE, text, sizeof text, text, sizeof text}, &returned));
  const std::string list(text, returned);
  const std::size_t line = list.find('\n') + 1;
  ASSERT_GT(line, 1u);
  EXPECT_EQ(returned, 2 * line);
  EXPECT_EQ(list.back(), '\n');
  EXPECT_TRUE(simulator->Close(driver));
  const std::string path = "//./" + list.substr(line, line - 1);
  EXPECT_NE(simulator->Open(path.c_str(), device::DriverShare::kExclusive), nullptr);
}

TEST(SimulatorSharing, AnExclusiveHandleKeepsOthersOut) {
  const auto simulator = MakeSimulator("1");
  DriverClient first(*simulator);
  EXPECT_EQ(simulator->Open(first.Path().c_str(), device::DriverShare::kExclusive), nullptr);
  device::DriverHandle second = simulator->Open(first.Path().c_str(), device::DriverShare::kShared);
  EXPECT_NE(second, nullptr);
  simulator->Close(second);
  first.Close();
  EXPECT_TRUE(first.Open(device::DriverShare::kExclusive));
  EXPECT_EQ(simulator->Open(first.Path().c_str(), device::DriverShare::kShared), nullptr);
  first.Close();
  EXPECT_TRUE(first.Open());
}

TEST(SimulatorSharing, AClosedHandleAnswersNothing) {
  const auto simulator = MakeSimulator("1");
  device::DriverHandle handle = simulator->Open("//./ormidex-sim-00", device::DriverShare::kShared);
  ASSERT_NE(handle, nullptr);
  EXPECT_TRUE(simulator->Close(handle));
  EXPECT_FALSE(simulator->Close(handle));
  std::uint32_t returned = 1;
  EXPECT_FALSE(
      simulator->Control(handle, {device::CAM_IOCTL_FLUSH, nullptr, 0, nullptr, 0}, &returned));
  EXPECT_EQ(returned, 0u);
}

TEST(SimulatorIdentity, FirmwareSerialAndNamesAreThoseDescribed) {
  const auto simulator =
      MakeSimulator("firmware=0x03000102,serial=0xCAFE0001,type-name=Odd Camera,name=On a stick");
  DriverClient client(*simulator);
  device::ThreeWordRecord record = {7, 1, 0};
  ASSERT_TRUE(client.Words(device::CAM_IOCTL_GET_FIRMWARE_VERSION, &record));
  EXPECT_EQ(record.status, 0u);
  EXPECT_EQ(record.word2, 0x03000102u);
  EXPECT_EQ(client.Returned(), 12u);
  ASSERT_TRUE(client.Words(device::CAM_IOCTL_GET_HARDWARE_WORD, &record));
  EXPECT_EQ(record.word2, 0xCAFE0001u);
  char name[device::kNameStringBytes];
  ASSERT_TRUE(client.Request(device::CAM_IOCTL_GET_NAME_STRING_1, nullptr, 0, name, sizeof name));
  EXPECT_STREQ(name, "On a stick");
  ASSERT_TRUE(client.Request(device::CAM_IOCTL_GET_NAME_STRING_2, nullptr, 0, name, sizeof name));
  EXPECT_STREQ(name, "Odd Camera");
}

TEST(SimulatorIdentity, EveryCameraHasItsOwnSerial) {
  const auto simulator = MakeSimulator("2");
  DriverClient first(*simulator, 0);
  DriverClient second(*simulator, 1);
  device::ThreeWordRecord a = {0, 1, 0};
  device::ThreeWordRecord b = {0, 1, 0};
  ASSERT_TRUE(first.Words(device::CAM_IOCTL_GET_HARDWARE_WORD, &a));
  ASSERT_TRUE(second.Words(device::CAM_IOCTL_GET_HARDWARE_WORD, &b));
  EXPECT_NE(a.word2, 0u);
  EXPECT_NE(a.word2, b.word2);
}

TEST(SimulatorIdentity, FirstGenerationAnswersAt0x60With0x30) {
  const auto simulator = MakeSimulator("generation=1");
  DriverClient client(*simulator);
  EXPECT_EQ(client.ReadRegister(0x60, 0), 0x30);
  EXPECT_EQ(client.Status(), 0u);
  EXPECT_EQ(client.ReadRegister(0x66, 0x0F), -1);
}

TEST(SimulatorIdentity, SecondGenerationAnswersAt0x66With0x50) {
  const auto simulator = MakeSimulator("1");
  DriverClient client(*simulator);
  EXPECT_EQ(client.ReadRegister(0x60, 0), -1);
  EXPECT_EQ(client.ReadRegister(0x66, 0x0F), 0x50);
}

TEST(SimulatorIdentity, ImagerFlagsStandInRegister9OfNewerFirmware) {
  const auto simulator = MakeSimulator("imager=mono,filter=cmy,oscillator=external;imager=colour");
  EXPECT_EQ(DriverClient(*simulator, 0).ReadCommandRegister(9), 0x19);
  EXPECT_EQ(DriverClient(*simulator, 1).ReadCommandRegister(9), 0x00);
}

TEST(SimulatorIdentity, OlderFirmwareHasItsRegistersInThePage0x88) {
  const auto simulator = MakeSimulator("generation=1,imager=mono,firmware=0x02020500");
  DriverClient client(*simulator);
  EXPECT_EQ(client.ReadCommandRegister(0x8804), 0x08);
  EXPECT_EQ(client.ReadCommandRegister(0x0004), -1);
  EXPECT_EQ(DriverClient(*MakeSimulator("1")).ReadCommandRegister(0x8809), -1);
}

}  // namespace
}  // namespace ormidex::simulator
