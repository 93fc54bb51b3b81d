// Scripted and seeded faults.
#include <algorithm>

#include "simulator/background_read.h"

namespace ormidex::simulator {
namespace {

using Frame = std::vector<std::uint8_t>;
constexpr std::uint32_t kPixels = 640 * 480;

void StartStreaming(DriverClient& client) {
  client.PrepareSecond();
  ASSERT_TRUE(client.SetVideoMode(1));
  ASSERT_TRUE(client.Start(640, 480));
}

TEST(Faults, FailEveryRequestWithACode) {
  const auto simulator = MakeSimulator("fault=fail:set-timeout");
  DriverClient client(*simulator);
  EXPECT_FALSE(client.SetTimeout(1));
  EXPECT_FALSE(client.SetTimeout(1));
  EXPECT_EQ(client.ReadRegister(0x66, 15), 0x50);
  EXPECT_EQ(simulator->Camera(0).TimeoutMilliseconds(), 4000u);
  simulator->Camera(0).ClearFaults();
  EXPECT_TRUE(client.SetTimeout(1));
}

TEST(Faults, FailTheNthRequestWithACodeOrOfAll) {
  const auto simulator = MakeSimulator("fault=fail:set-timeout:2;fault=fail:any:3");
  DriverClient client(*simulator, 0);
  EXPECT_TRUE(client.SetTimeout(1));
  EXPECT_EQ(client.ReadRegister(0x66, 15), 0x50);
  EXPECT_FALSE(client.SetTimeout(2));
  EXPECT_TRUE(client.SetTimeout(3));
  DriverClient other(*simulator, 1);
  EXPECT_TRUE(other.SetTimeout(1));
  EXPECT_EQ(other.ReadRegister(0x66, 15), 0x50);
  EXPECT_EQ(other.ReadRegister(0x66, 15), -1);
  EXPECT_EQ(other.ReadRegister(0x66, 15), 0x50);
}

TEST(Faults, AnswerAGivenStatusWord) {
  const auto simulator = MakeSimulator("fault=status:read-registers:0x80000011");
  DriverClient client(*simulator);
  EXPECT_EQ(client.ReadRegister(0x66, 15), 0x50);
  EXPECT_EQ(client.Status(), 0x80000011u);
  EXPECT_TRUE(client.WriteRegisters(0x66, 1, {9}));
  EXPECT_EQ(client.Status(), 0u);
}

TEST(Faults, AWriteThatIsAnsweredWithAnErrorHasNoEffect) {
  const auto simulator =
      MakeSimulator("fault=status:write-registers:0x80000005:1,fault=status:any:1:2");
  DriverClient client(*simulator);
  EXPECT_TRUE(client.WriteRegisters(0x66, 1, {9}));
  EXPECT_EQ(client.Status(), 0x80000005u);
  EXPECT_EQ(simulator->Camera(0).ImagerRegister(1), 14);
  EXPECT_TRUE(client.WriteRegisters(0x66, 1, {9}));  // the other success word
  EXPECT_EQ(client.Status(), 1u);
  EXPECT_EQ(simulator->Camera(0).ImagerRegister(1), 9);
}

TEST(Faults, ReturnFewerBytes) {
  const auto simulator = MakeSimulator("pace=fast,fault=short:read-frame:1000:2");
  DriverClient client(*simulator);
  StartStreaming(client);
  Frame frame(kPixels);
  EXPECT_TRUE(client.ReadFrame(&frame));
  EXPECT_EQ(client.Returned(), kPixels);
  EXPECT_TRUE(client.ReadFrame(&frame));
  EXPECT_EQ(client.Returned(), 1000u);
}

TEST(Faults, DeliverAFrameLate) {
  VirtualClock clock;
  const auto simulator = MakeSimulator("fault=late:300:1", &clock);
  DriverClient client(*simulator);
  StartStreaming(client);
  clock.Advance(50000);
  BackgroundRead read(*simulator, client.Handle(), kPixels);
  AwaitWaiting(clock, 1);  // although a frame is there
  clock.Advance(299999);
  AwaitWaiting(clock, 1);
  clock.Advance(1);
  EXPECT_TRUE(read.Succeeded());
}

TEST(Faults, AFrameLaterThanTheTimeOutIsAFailedRead) {
  const auto simulator = MakeSimulator("pace=fast,timeout=200,fault=late:300:1");
  DriverClient client(*simulator);
  StartStreaming(client);
  Frame frame(kPixels);
  EXPECT_FALSE(client.ReadFrame(&frame));
  EXPECT_TRUE(client.ReadFrame(&frame));
}

TEST(Faults, AFrameThatNeverComesFailsAfterTheTimeOut) {
  VirtualClock clock;
  const auto simulator = MakeSimulator("timeout=500,fault=never:1", &clock);
  DriverClient client(*simulator);
  StartStreaming(client);
  clock.Advance(100000);
  BackgroundRead read(*simulator, client.Handle(), kPixels);
  AwaitWaiting(clock, 1);
  clock.Advance(499999);
  AwaitWaiting(clock, 1);
  clock.Advance(1);
  EXPECT_FALSE(read.Succeeded());
  Frame frame(kPixels);
  EXPECT_TRUE(client.ReadFrame(&frame));
}

TEST(Faults, RandomOnesAreTheSameForTheSameSeed) {
  const auto outcomes = [](const char* text) {
    const auto simulator = MakeSimulator(text);
    DriverClient client(*simulator);
    std::string result;
    for (int i = 0; i < 1000; ++i) result += client.ReadRegister(0x66, 15) < 0 ? 'x' : '.';
    return result;
  };
  const std::string once = outcomes("seed=3,fault=random:100");
  EXPECT_EQ(once, outcomes("seed=3,fault=random:100"));
  EXPECT_NE(once, outcomes("seed=4,fault=random:100"));
  const auto failures = std::count(once.begin(), once.end(), 'x');
  EXPECT_GT(failures, 50);
  EXPECT_LT(failures, 160);
}

TEST(Faults, ABusyCameraIsListedAndNotOpened) {
  const auto simulator = MakeSimulator("fault=busy;fault=busy:2");
  PathCollector collector;
  simulator->Enumerate(collector);
  ASSERT_EQ(collector.paths.size(), 2u);
  for (int attempt = 1; attempt <= 3; ++attempt) {
    const auto open = [&](std::size_t index) {
      return simulator->Open(collector.paths[index].c_str(), device::DriverShare::kShared);
    };
    EXPECT_EQ(open(0), nullptr);
    EXPECT_EQ(open(1) != nullptr, attempt == 3);
  }
}

TEST(Faults, AnUnpluggedCameraFailsEveryRequestAndIsNotListed) {
  const auto simulator = MakeSimulator("1");
  DriverClient client(*simulator);
  EXPECT_TRUE(client.WriteRegisters(0x66, 1, {40}));
  simulator->Camera(0).Unplug();
  EXPECT_EQ(client.ReadRegister(0x66, 15), -1);
  EXPECT_FALSE(client.SetTimeout(1));
  PathCollector collector;
  EXPECT_EQ(simulator->Enumerate(collector), device::EnumerationResult::kEmptyCategory);
  EXPECT_EQ(simulator->Open(client.Path().c_str(), device::DriverShare::kShared), nullptr);
}

TEST(Faults, AReplacedPlugStartsTheCameraAnewAndNeedsANewHandle) {
  const auto simulator = MakeSimulator("1");
  DriverClient client(*simulator);
  EXPECT_TRUE(client.WriteRegisters(0x66, 1, {40}));
  simulator->Camera(0).Unplug();
  simulator->Camera(0).Replug();
  EXPECT_EQ(client.ReadRegister(0x66, 15), -1);
  const device::DriverHandle stale = client.Handle();
  ASSERT_TRUE(client.Open(device::DriverShare::kExclusive));  // nobody holds the new one
  EXPECT_EQ(client.ReadRegister(0x66, 1), 14);
  EXPECT_TRUE(simulator->Close(stale));
  EXPECT_EQ(simulator->Open(client.Path().c_str(), device::DriverShare::kShared), nullptr);
}

TEST(Faults, AScriptPullsThePlugAndPutsItBack) {
  const auto simulator = MakeSimulator("fault=unplug:3:2");
  DriverClient client(*simulator);
  EXPECT_EQ(client.ReadRegister(0x66, 15), 0x50);
  EXPECT_EQ(client.ReadRegister(0x66, 15), 0x50);
  EXPECT_EQ(client.ReadRegister(0x66, 15), -1);  // pulled
  EXPECT_EQ(client.ReadRegister(0x66, 15), -1);  // first attempt
  client.Close();
  EXPECT_TRUE(client.Open());  // second attempt: it is back
  EXPECT_EQ(client.ReadRegister(0x66, 15), 0x50);
}

}  // namespace
}  // namespace ormidex::simulator
