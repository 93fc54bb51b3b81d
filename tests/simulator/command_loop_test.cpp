// The command channel's loop-back.
#include <algorithm>

#include "simulator/driver_client.h"

namespace ormidex::simulator {
namespace {

using Bytes = std::vector<std::uint8_t>;

// The status word of a write; -1 when the request fails.
std::int64_t Write(DriverClient& client, const Bytes& bytes) {
  device::CommandRecord record;
  record.byte_count = static_cast<std::uint8_t>(bytes.size());
  std::copy(bytes.begin(), bytes.end(), record.data);
  if (!client.Exchange(device::CAM_IOCTL_WRITE_COMMAND, &record)) return -1;
  return record.status;
}

// What a read of `count` bytes brings.
Bytes Read(DriverClient& client, std::uint8_t count) {
  device::CommandRecord record;
  record.status = 77;
  record.byte_count = count;
  EXPECT_TRUE(client.Exchange(device::CAM_IOCTL_READ_COMMAND, &record));
  EXPECT_EQ(record.status, 0u);
  return Bytes(record.data, record.data + record.byte_count);
}

TEST(CommandChannel, GivesBackWhatWasWrittenInOrder) {
  const auto simulator = MakeSimulator("1");
  DriverClient client(*simulator);
  EXPECT_EQ(Write(client, {1, 2, 3}), 0);
  EXPECT_EQ(Write(client, {4}), 0);
  EXPECT_EQ(Read(client, 2), (Bytes{1, 2}));
  EXPECT_EQ(Read(client, 96), (Bytes{3, 4}));
  EXPECT_EQ(Read(client, 96), Bytes());
}

TEST(CommandChannel, DeliversInPieces) {
  const auto simulator = MakeSimulator("command-piece=40");
  DriverClient client(*simulator);
  EXPECT_EQ(Write(client, Bytes(96, 7)), 0);
  EXPECT_EQ(Read(client, 96).size(), 40u);
  EXPECT_EQ(Read(client, 56).size(), 40u);
  EXPECT_EQ(Read(client, 16).size(), 16u);
}

TEST(CommandChannel, DeliversAfterADelay) {
  VirtualClock clock;
  const auto simulator = MakeSimulator("command-delay=5", &clock);
  DriverClient client(*simulator);
  EXPECT_EQ(Write(client, {9}), 0);
  clock.Advance(4999);
  EXPECT_EQ(Read(client, 1), Bytes());
  clock.Advance(1);
  EXPECT_EQ(Read(client, 1), Bytes{9});
}

TEST(CommandChannel, ADelayPassesOnTheFastClockToo) {
  const auto simulator = MakeSimulator("pace=fast,command-delay=2");
  DriverClient client(*simulator);
  EXPECT_EQ(Write(client, {9}), 0);
  int polls = 1;
  while (Read(client, 1).empty() && polls < 1000) ++polls;
  EXPECT_EQ(polls, 16);  // 2 ms at one bus cycle of 125 us for each look
}

TEST(CommandChannel, RefusesWritesAsToldTo) {
  const auto simulator = MakeSimulator("command-refuse=2;command-refuse=always");
  DriverClient client(*simulator, 0);
  EXPECT_NE(Write(client, {1}), 0);
  EXPECT_NE(Write(client, {1}), 0);
  EXPECT_EQ(Write(client, {1}), 0);
  DriverClient stubborn(*simulator, 1);
  for (int i = 0; i < 100; ++i) EXPECT_NE(Write(stubborn, {1}), 0);
  simulator->Camera(1).RefuseCommands(0);
  EXPECT_EQ(Write(stubborn, {1}), 0);
}

TEST(CommandChannel, RefusesWhatItHasNoRoomFor) {
  const auto simulator = MakeSimulator("1");
  DriverClient client(*simulator);
  for (int i = 0; i < 42; ++i) ASSERT_EQ(Write(client, Bytes(96, 1)), 0);
  EXPECT_NE(Write(client, Bytes(96, 1)), 0);  // 42 x 96 = 4032 of 4096
  EXPECT_EQ(Write(client, Bytes(64, 1)), 0);
}

TEST(CommandChannel, MayReportMoreThanWasAsked) {
  const auto simulator = MakeSimulator("fault=overrun:1");
  DriverClient client(*simulator);
  EXPECT_EQ(Read(client, 10).size(), 11u);
  EXPECT_EQ(Read(client, 10).size(), 0u);
}

TEST(CommandChannel, DoesNotExistBeforeFirmware3) {
  const auto simulator = MakeSimulator("generation=1,firmware=0x02FF0000");
  DriverClient client(*simulator);
  EXPECT_EQ(Write(client, {1}), -1);
}

TEST(CommandChannel, MoreThan96BytesAreAnInvalidArgument) {
  const auto simulator = MakeSimulator("1");
  DriverClient client(*simulator);
  device::CommandRecord record;
  record.byte_count = 97;
  ASSERT_TRUE(client.Exchange(device::CAM_IOCTL_WRITE_COMMAND, &record));
  EXPECT_EQ(record.status, 0x80000005u);
  record.byte_count = 97;
  ASSERT_TRUE(client.Exchange(device::CAM_IOCTL_READ_COMMAND, &record));
  EXPECT_EQ(record.status, 0x80000005u);
  EXPECT_EQ(record.byte_count, 0u);
}

}  // namespace
}  // namespace ormidex::simulator
