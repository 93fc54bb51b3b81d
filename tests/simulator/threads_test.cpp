// Any thread may do anything at any time.
#include <atomic>

#include "platform/thread.h"
#include "simulator/driver_client.h"

namespace ormidex::simulator {
namespace {

constexpr int kWorkers = 4;
constexpr int kRounds = 200;

struct Shared {
  Simulator* simulator = nullptr;
  DriverClient* client = nullptr;
  std::atomic<int> next{0};
  std::atomic<int> ended{0};
  std::atomic<int> frames{0};
  platform::Event done;
};

// One handle, used by all: records differ, so a mixed-up answer shows.
void Work(void* argument) {
  auto* shared = static_cast<Shared*>(argument);
  const int mine = shared->next++;
  const device::DriverHandle handle = shared->client->Handle();
  std::vector<std::uint8_t> frame(640 * 480);
  for (int round = 0; round < kRounds; ++round) {
    std::uint32_t returned = 0;
    device::ThreeWordRecord record = {0, 1, 0};
    EXPECT_TRUE(shared->simulator->Control(
        handle, {device::CAM_IOCTL_GET_HARDWARE_WORD, &record, 12, &record, 12}, &returned));
    EXPECT_EQ(record.word2, 0x00052001u);
    std::uint8_t block[20] = {0,
                              0,
                              0,
                              0,
                              0xA0,
                              0,
                              0,
                              0,
                              static_cast<std::uint8_t>(mine),
                              0,
                              0,
                              0,
                              1,
                              0,
                              0,
                              0,
                              static_cast<std::uint8_t>(round)};
    EXPECT_TRUE(shared->simulator->Control(
        handle, {device::CAM_IOCTL_WRITE_REGISTERS, block, 17, block, 17}, &returned));
    block[16] = 0;
    EXPECT_TRUE(shared->simulator->Control(
        handle, {device::CAM_IOCTL_READ_REGISTERS, block, 17, block, 17}, &returned));
    EXPECT_EQ(block[16], static_cast<std::uint8_t>(round));
    if (round % 20 != mine) continue;
    const bool read = shared->simulator->Control(
        handle, {device::CAM_IOCTL_READ_FRAME, nullptr, 0, frame.data(), 640 * 480}, &returned);
    shared->frames += read && returned == 640 * 480;
  }
  if (++shared->ended == kWorkers) shared->done.Signal();
}

TEST(SimulatorThreads, ShareOneHandleWithoutMixingTheirAnswers) {
  const auto simulator = MakeSimulator("pace=fast,scene=grey:50");
  DriverClient client(*simulator);
  client.PrepareSecond();
  client.SetVideoMode(1);
  client.Start(640, 480);
  Shared shared;
  shared.simulator = simulator.get();
  shared.client = &client;
  ASSERT_TRUE(shared.done.Create(false));
  for (int i = 0; i < kWorkers; ++i) ASSERT_TRUE(platform::StartThread(Work, &shared));
  ASSERT_TRUE(shared.done.Wait(120000));
  EXPECT_EQ(shared.frames, kWorkers * kRounds / 20);
  shared.done.Close();
}

void OpenAndClose(void* argument) {
  auto* shared = static_cast<Shared*>(argument);
  std::vector<std::uint8_t> frame(640 * 480);
  for (int round = 0; round < kRounds; ++round) {
    device::DriverHandle handle =
        shared->simulator->Open("//./ormidex-sim-00", device::DriverShare::kShared);
    std::uint32_t returned = 0;
    shared->simulator->Control(
        handle, {device::CAM_IOCTL_READ_FRAME, nullptr, 0, frame.data(), 640 * 480}, &returned);
    if (handle != nullptr) shared->simulator->Close(handle);
  }
  if (++shared->ended == kWorkers) shared->done.Signal();
}

TEST(SimulatorThreads, SurviveThePlugBeingPulledAndPutBack) {
  const auto simulator = MakeSimulator("pace=fast,scene=grey:50");
  Shared shared;
  shared.simulator = simulator.get();
  ASSERT_TRUE(shared.done.Create(false));
  for (int i = 0; i < kWorkers; ++i) ASSERT_TRUE(platform::StartThread(OpenAndClose, &shared));
  while (!shared.done.Wait(0)) {
    simulator->Camera(0).Unplug();
    simulator->Camera(0).Replug();
    platform::SleepMilliseconds(0);
  }
  EXPECT_EQ(simulator->OpenHandles(), 0);
  DriverClient client(*simulator);
  EXPECT_EQ(client.ReadRegister(0x66, 15), 0x50);
  shared.done.Close();
}

}  // namespace
}  // namespace ormidex::simulator
