// Registers, the serial bus, output lines and the controller's commands.
#include "simulator/driver_client.h"

namespace ormidex::simulator {
namespace {

using device::BigEndian32;
using Bytes = std::vector<std::uint8_t>;

bool Command(DriverClient& client, Bytes* record) {
  const std::uint32_t size = static_cast<std::uint32_t>(record->size());
  return client.Request(device::CAM_IOCTL_COMMAND_REGISTER, record->data(), size, record->data(),
                        size);
}

// status, operation, then big-endian words.
Bytes CommandBytes(std::uint8_t operation, std::initializer_list<std::uint32_t> words) {
  Bytes bytes = {0xEE, 0xEE, 0xEE, 0xEE, operation, 0, 0, 0};
  for (const std::uint32_t word : words) {
    for (int shift = 24; shift >= 0; shift -= 8) {
      bytes.push_back(static_cast<std::uint8_t>(word >> shift));
    }
  }
  return bytes;
}

TEST(SimulatorRegisters, ABlockIsWrittenAndReadAtCountingAddresses) {
  const auto simulator = MakeSimulator("1");
  DriverClient client(*simulator);
  ASSERT_TRUE(client.WriteRegisters(0x66, 200, {1, 2, 3}));
  EXPECT_EQ(client.Status(), 0u);
  EXPECT_EQ(client.Returned(), 19u);
  EXPECT_EQ(client.ReadRegister(0x66, 200), 1);
  EXPECT_EQ(client.ReadRegister(0x66, 202), 3);
  Bytes block(16 + 3, 0);
  const device::RegisterBlockRecord record = {0, 0x66, 200, 3};
  std::memcpy(block.data(), &record, sizeof record);
  ASSERT_TRUE(client.Request(device::CAM_IOCTL_READ_REGISTERS, block.data(), 19, block.data(), 19));
  EXPECT_EQ(Bytes(block.begin() + 16, block.end()), (Bytes{1, 2, 3}));
}

TEST(SimulatorRegisters, ARegisterOutsideTheMapIsAnInvalidArgument) {
  const auto simulator = MakeSimulator("1");
  DriverClient client(*simulator);
  EXPECT_EQ(client.ReadRegister(0x66, 0x100), 0);
  EXPECT_EQ(client.Status(), 0x80000005u);
  EXPECT_TRUE(client.WriteRegisters(0x66, 0x12345, {1}));
  EXPECT_EQ(client.Status(), 0x80000005u);
}

TEST(SimulatorRegisters, ARecordShorterThanItSaysFails) {
  const auto simulator = MakeSimulator("1");
  DriverClient client(*simulator);
  Bytes block(20, 0);
  const device::RegisterBlockRecord record = {0, 0x66, 0, 5};
  std::memcpy(block.data(), &record, sizeof record);
  EXPECT_FALSE(
      client.Request(device::CAM_IOCTL_READ_REGISTERS, block.data(), 20, block.data(), 20));
  EXPECT_FALSE(client.Request(device::CAM_IOCTL_WRITE_REGISTERS, block.data(), 8, block.data(), 8));
  EXPECT_FALSE(client.Request(device::CAM_IOCTL_READ_REGISTERS));
  EXPECT_EQ(client.Returned(), 0u);
}

TEST(SimulatorRegisters, InAndOutMayBeDifferentBuffers) {
  const auto simulator = MakeSimulator("1");
  DriverClient client(*simulator);
  const device::ThreeWordRecord in = {9, 1, 0};
  device::ThreeWordRecord out = {};
  ASSERT_TRUE(client.Request(device::CAM_IOCTL_GET_FIRMWARE_VERSION, &in, 12, &out, 12));
  EXPECT_EQ(out.word1, 1u);
  EXPECT_EQ(out.word2, 0x03012305u);
  EXPECT_EQ(in.status, 9u);
}

TEST(SimulatorRegisters, TheMakersTrimValuesAreReadOnly) {
  const auto simulator = MakeSimulator("generation=1");
  DriverClient client(*simulator);
  const int first = client.ReadRegister(0x60, 0xFF00);
  EXPECT_EQ(first % 2, 1);
  EXPECT_LT(first, 49);
  EXPECT_TRUE(client.WriteRegisters(0x60, 0xFF00, {1}));
  EXPECT_EQ(client.ReadRegister(0x60, 0xFF00), first);
}

TEST(SimulatorRegisters, AMemoryAnswersAtBusAddressA0AndNobodyElsewhere) {
  const auto simulator = MakeSimulator("1");
  DriverClient client(*simulator);
  EXPECT_TRUE(client.WriteRegisters(0xA0, 0x10, {0x5A}));
  EXPECT_EQ(client.ReadRegister(0xA0, 0x10), 0x5A);
  EXPECT_EQ(client.ReadRegister(0x42, 0x10), -1);
  EXPECT_FALSE(client.WriteRegisters(0x42, 0x10, {1}));
}

TEST(SimulatorRegisters, TheIdentityRegisterCannotBeOverwritten) {
  const auto simulator = MakeSimulator("generation=1;imager-answer=0x51");
  DriverClient first(*simulator, 0);
  first.WriteRegisters(0x60, 0, {0x99});
  EXPECT_EQ(first.ReadRegister(0x60, 0), 0x30);
  EXPECT_EQ(DriverClient(*simulator, 1).ReadRegister(0x66, 15), 0x51);
}

TEST(SimulatorI2c, WhatIsWrittenToTheMemoryIsReadBack) {
  const auto simulator = MakeSimulator("1");
  DriverClient client(*simulator);
  // Memory 0xA0, from place 0x20: AA BB CC.
  Bytes write = {0, 0, 0, 0, 8, 0, 0, 0, 2, 5, 0xA0, 0x20, 0xAA, 0xBB, 0xCC, 0};
  ASSERT_TRUE(Command(client, &write));
  // Select place 0x21, then read two bytes.
  Bytes read = {0, 0, 0, 0, 8, 0, 0, 0, 3, 2, 0xA0, 0x21, 1, 3, 0xA1, 0, 0, 0};
  ASSERT_TRUE(Command(client, &read));
  EXPECT_EQ(read[15], 0xBB);
  EXPECT_EQ(read[16], 0xCC);
  EXPECT_EQ(client.ReadRegister(0xA0, 0x22), 0xCC);
}

TEST(SimulatorI2c, TheImagerIsOnTheBusToo) {
  const auto simulator = MakeSimulator("1");
  DriverClient client(*simulator);
  Bytes read = {0, 0, 0, 0, 8, 0, 0, 0, 3, 2, 0x66, 0x0F, 1, 2, 0x67, 0, 0};
  ASSERT_TRUE(Command(client, &read));
  EXPECT_EQ(read[15], 0x50);
}

TEST(SimulatorI2c, AStrangerOrAMalformedTransactionFails) {
  const auto simulator = MakeSimulator("1");
  DriverClient client(*simulator);
  Bytes stranger = {0, 0, 0, 0, 8, 0, 0, 0, 2, 2, 0x44, 0, 0};
  EXPECT_FALSE(Command(client, &stranger));
  Bytes too_long = {0, 0, 0, 0, 8, 0, 0, 0, 2, 9, 0xA0, 0, 0};
  EXPECT_FALSE(Command(client, &too_long));
  Bytes no_read_bit = {0, 0, 0, 0, 8, 0, 0, 0, 3, 2, 0xA0, 0, 1, 2, 0xA0, 0, 0};
  EXPECT_FALSE(Command(client, &no_read_bit));
}

TEST(SimulatorGpio, AWrittenPortIsReadBackByWritingZero) {
  const auto simulator = MakeSimulator("1");
  DriverClient client(*simulator);
  device::GpioRecord record;
  record.selector = BigEndian32(device::kGpioSelector);
  record.value = 0x34120000;  // 0x1234 big-endian
  ASSERT_TRUE(client.Exchange(device::CAM_IOCTL_GPIO, &record));
  EXPECT_EQ(simulator->Camera(0).Gpio(), 0x1234u);
  record.value = 0;
  ASSERT_TRUE(client.Exchange(device::CAM_IOCTL_GPIO, &record));
  EXPECT_EQ(record.value, 0x1234u);
}

TEST(SimulatorOutputs, BothLinesAreDrivenWithLevelAndDuration) {
  const auto simulator = MakeSimulator("1");
  DriverClient client(*simulator);
  Bytes first = CommandBytes(6, {1, 500});
  Bytes second = CommandBytes(9, {0, 0});
  ASSERT_TRUE(Command(client, &first));
  ASSERT_TRUE(Command(client, &second));
  EXPECT_EQ(simulator->Camera(0).Line(0).level, 1u);
  EXPECT_EQ(simulator->Camera(0).Line(0).duration, 500u);
  EXPECT_EQ(simulator->Camera(0).Line(1).times_set, 1u);
}

TEST(SimulatorOutputs, TheVariantsMAndCHaveNoLinesAndNoVersionBlock) {
  for (const char* text : {"generation=1,firmware=0x024D0001", "firmware=0x03430001"}) {
    const auto simulator = MakeSimulator(text);
    DriverClient client(*simulator);
    Bytes line = CommandBytes(6, {1, 0});
    EXPECT_FALSE(Command(client, &line)) << text;
    Bytes version = CommandBytes(7, {0, 0, 0, 0, 0, 0});
    EXPECT_FALSE(Command(client, &version)) << text;
  }
}

TEST(SimulatorCommands, TheVersionBlockHoldsFiveBigEndianWords) {
  const auto simulator = MakeSimulator("imager=mono,serial=0x00ABCDEF,firmware=0x03010203");
  DriverClient client(*simulator);
  Bytes record = CommandBytes(7, {0, 0, 0, 0, 0, 0});
  ASSERT_TRUE(Command(client, &record));
  EXPECT_EQ(client.Returned(), 32u);
  // bit 0: monochrome; serial; "036A"; firmware; model: monochrome without IFE.
  const Bytes expected = {0,   0,   0, 1, 0, 0xAB, 0xCD, 0xEF, '0', '3',
                          '6', 'A', 3, 1, 2, 3,    0,    0,    0,   5};
  EXPECT_EQ(Bytes(record.begin() + 8, record.begin() + 28), expected);
}

TEST(SimulatorCommands, SaturationIsKeptBySecondGenerationFrom03011101) {
  const auto simulator = MakeSimulator("firmware=0x03011101;firmware=0x03011100;generation=1");
  DriverClient client(*simulator, 0);
  Bytes set = CommandBytes(20, {77});
  ASSERT_TRUE(Command(client, &set));
  Bytes get = CommandBytes(21, {0});
  ASSERT_TRUE(Command(client, &get));
  EXPECT_EQ(get[11], 77);
  DriverClient older(*simulator, 1);
  EXPECT_FALSE(Command(older, &get));
  DriverClient first(*simulator, 2);
  EXPECT_FALSE(Command(first, &get));
}

TEST(SimulatorCommands, LightSourcesAre1To4OfTheSecondGeneration) {
  const auto simulator = MakeSimulator("1;generation=1");
  DriverClient client(*simulator, 0);
  Bytes four = CommandBytes(22, {4});
  EXPECT_TRUE(Command(client, &four));
  Bytes five = CommandBytes(22, {5});
  EXPECT_FALSE(Command(client, &five));
  Bytes none = CommandBytes(22, {0});
  EXPECT_FALSE(Command(client, &none));
  DriverClient first(*simulator, 1);
  EXPECT_FALSE(Command(first, &four));
}

TEST(SimulatorCommands, OnlyTheSecondGenerationHasContinuousAutoExposure) {
  const auto simulator = MakeSimulator("1;generation=1");
  DriverClient second(*simulator, 0);
  DriverClient first(*simulator, 1);
  Bytes on = CommandBytes(24, {1, 0});
  EXPECT_TRUE(Command(second, &on));
  EXPECT_FALSE(Command(first, &on));
}

TEST(SimulatorCommands, ABlockOfRegistersIsRead) {
  const auto simulator = MakeSimulator("1");
  DriverClient client(*simulator);
  ASSERT_TRUE(client.WriteCommandRegister(0x31, 0xAB));
  ASSERT_TRUE(client.WriteCommandRegister(0x32, 0x1CD));  // one byte wide
  Bytes record = CommandBytes(17, {0x31, 2});
  record.resize(18);
  ASSERT_TRUE(Command(client, &record));
  EXPECT_EQ(record[16], 0xAB);
  EXPECT_EQ(record[17], 0xCD);
  Bytes short_record = CommandBytes(17, {0x31, 2});
  EXPECT_FALSE(Command(client, &short_record));
}

TEST(SimulatorCommands, TheLockValueIsAtFFFFOfNewerFirmware) {
  const auto simulator = MakeSimulator("1");
  DriverClient client(*simulator);
  EXPECT_EQ(client.ReadCommandRegister(0xFFFF), 1);
  EXPECT_EQ(client.ReadCommandRegister(0xFFFE), -1);
}

TEST(SimulatorCommands, TheClockLetterIsInRegister0) {
  const auto simulator = MakeSimulator("clock-letter=J");
  EXPECT_EQ(DriverClient(*simulator).ReadCommandRegister(0), 'J');
}

TEST(SimulatorCommands, AnUnknownOperationOrControlCodeFails) {
  const auto simulator = MakeSimulator("1");
  DriverClient client(*simulator);
  Bytes unknown = CommandBytes(99, {0, 0});
  EXPECT_FALSE(Command(client, &unknown));
  EXPECT_FALSE(client.Request(0x222008));
}

TEST(SimulatorSettings, RefuseWhatTheCameraCannotDo) {
  const auto simulator = MakeSimulator("1");
  DriverClient client(*simulator);
  device::ThreeWordRecord record = {0, 0, 99};
  ASSERT_TRUE(client.Words(device::CAM_IOCTL_SET_VIDEO_MODE, &record));
  EXPECT_EQ(record.status, 0x80000005u);
  record = {0, 0x66, 12};
  ASSERT_TRUE(client.Words(device::CAM_IOCTL_SET_TRANSFER_SIZE, &record));
  EXPECT_EQ(record.status, 0x80000005u);
  record = {0, 0x60, 0};
  ASSERT_TRUE(client.Words(device::CAM_IOCTL_GET_IMAGER_CHIP_ID, &record));
  EXPECT_EQ(record.status, 0x80000005u);
  record = {0, 0x66, 0};
  ASSERT_TRUE(client.Words(device::CAM_IOCTL_GET_IMAGER_CHIP_ID, &record));
  EXPECT_EQ(record.status, 0u);
  EXPECT_NE(record.word2, 0u);
  device::LookupTable8Record table;
  table.depth = 9;
  ASSERT_TRUE(client.Exchange(device::CAM_IOCTL_LOAD_LOOKUP_TABLE, &table));
  EXPECT_EQ(table.status, 0x80000005u);
}

TEST(SimulatorSettings, AreCountedPerRequest) {
  const auto simulator = MakeSimulator("1");
  DriverClient client(*simulator);
  client.SetTimeout(1234);
  client.SetTimeout(4321);
  client.ReadRegister(0x60, 0);
  SimulatedCamera& camera = simulator->Camera(0);
  EXPECT_EQ(camera.TimeoutMilliseconds(), 4321u);
  EXPECT_EQ(camera.Traffic(device::CAM_IOCTL_SET_TIMEOUT).requests, 2u);
  EXPECT_EQ(camera.Traffic(device::CAM_IOCTL_SET_TIMEOUT).failed, 0u);
  EXPECT_EQ(camera.Traffic(device::CAM_IOCTL_READ_REGISTERS).failed, 1u);
  EXPECT_EQ(camera.TotalRequests(), 3u);
}

}  // namespace
}  // namespace ormidex::simulator
