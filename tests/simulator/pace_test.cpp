// When frames arrive.
#include "platform/timer.h"
#include "simulator/background_read.h"

namespace ormidex::simulator {
namespace {

using Frame = std::vector<std::uint8_t>;
constexpr std::uint32_t kPixels = 640 * 480;
// 579 rows of 693 clocks at 16 MHz, in whole microseconds.
constexpr Microseconds kFrame = 25077;

// A camera of the second generation on a clock that stands still. Its time-out is
// 0, so that a read tells at once whether a frame is there.
class Pace : public testing::Test {
 protected:
  void StartCamera(const char* keys = "scene=grey:9,timeout=0") {
    client_.reset();  // before the simulator that it belongs to
    simulator_ = MakeSimulator(keys, &clock_);
    client_ = std::make_unique<DriverClient>(*simulator_);
    client_->PrepareSecond();
    ASSERT_TRUE(client_->SetVideoMode(1));
    ASSERT_TRUE(client_->Start(640, 480));
  }
  bool HasFrame() { return client_->ReadFrame(&frame_); }
  SimulatedCamera& Sim() { return simulator_->Camera(0); }

  VirtualClock clock_;
  std::unique_ptr<Simulator> simulator_;
  std::unique_ptr<DriverClient> client_;
  Frame frame_ = Frame(kPixels);
};

TEST_F(Pace, AFrameArrivesAfterItsPeriodAndNotBefore) {
  StartCamera();
  clock_.Advance(kFrame - 1);
  EXPECT_FALSE(HasFrame());
  clock_.Advance(1);
  EXPECT_TRUE(HasFrame());
  EXPECT_FALSE(HasFrame());
  clock_.Advance(kFrame);
  EXPECT_TRUE(HasFrame());
}

TEST_F(Pace, TheDriverKeepsTheNewestTwoFrames) {
  StartCamera();
  clock_.Advance(10 * kFrame);
  EXPECT_TRUE(HasFrame());
  EXPECT_TRUE(HasFrame());
  EXPECT_FALSE(HasFrame());
}

TEST_F(Pace, AFlushDropsWhatNobodyHasRead) {
  StartCamera();
  clock_.Advance(3 * kFrame);
  EXPECT_TRUE(client_->Request(device::CAM_IOCTL_FLUSH));
  EXPECT_FALSE(HasFrame());
  clock_.Advance(kFrame);
  EXPECT_TRUE(HasFrame());
}

TEST_F(Pace, FrameCountersStartBelowTheirWrapAndCountEveryFrame) {
  StartCamera();
  device::FrameNumberRecord record;
  record.bus_address = 0x66;
  ASSERT_TRUE(client_->Exchange(device::CAM_IOCTL_GET_FRAME_NUMBER, &record));
  EXPECT_EQ(record.frame_counter, 0xFA);
  EXPECT_EQ(record.counters[0], 0xFFFFFFFAu);
  clock_.Advance(7 * kFrame);  // six frames to the wrap
  ASSERT_TRUE(HasFrame());
  ASSERT_TRUE(client_->Exchange(device::CAM_IOCTL_GET_FRAME_NUMBER, &record));
  EXPECT_EQ(record.status, 0u);
  EXPECT_EQ(record.frame_counter, 1);
  EXPECT_EQ(record.counters[0], 1u);
  EXPECT_EQ(record.counters[1], 0xFFFFFFFBu);  // one was taken
}

TEST_F(Pace, ALongPauseOfTheHostCostsNoTimeAndIsCounted) {
  StartCamera();
  clock_.Advance(Microseconds{1000000} * kFrame);
  ASSERT_TRUE(HasFrame());
  device::FrameNumberRecord record;
  ASSERT_TRUE(client_->Exchange(device::CAM_IOCTL_GET_FRAME_NUMBER, &record));
  EXPECT_EQ(record.counters[0], 1000000u - 6u);
}

TEST_F(Pace, FollowsTheClockTheExposureAndTheGeometry) {
  StartCamera();
  EXPECT_NEAR(Sim().FrameMicroseconds(), 579 * 693 / 16.0, 0.01);
  ASSERT_TRUE(client_->WriteCommandRegister(12, 1));  // 8 MHz
  EXPECT_NEAR(Sim().FrameMicroseconds(), 579 * 693 / 8.0, 0.01);
  ASSERT_TRUE(client_->WriteCommandRegister(12, 128));  // 24 MHz
  EXPECT_NEAR(Sim().FrameMicroseconds(), 579 * 693 / 24.0, 0.01);
  client_->SetSecondExposure(2000);  // longer than the frame length
  EXPECT_NEAR(Sim().FrameMicroseconds(), 2000 * 693 / 24.0, 0.01);
  EXPECT_NEAR(Sim().ExposureMicroseconds(), 2000 * 693 / 24.0, 0.01);
  client_->SetSecondExposure(10);  // the frame length rules
  EXPECT_NEAR(Sim().FrameMicroseconds(), 579 * 693 / 24.0, 0.01);
  client_->WriteRegisters(0x66, 80, {0, 1});  // and below it the rows to be read
  EXPECT_NEAR(Sim().FrameMicroseconds(), 481 * 693 / 24.0, 0.01);
}

TEST_F(Pace, OfTheFirstGenerationFollowsRowsAndSubSampling) {
  simulator_ = MakeSimulator("generation=1", &clock_);
  DriverClient client(*simulator_);
  client.PrepareFirst();
  EXPECT_NEAR(Sim().FrameMicroseconds(), 482 * 1664 / 16.0, 0.01);
  EXPECT_NEAR(Sim().ExposureMicroseconds(), 479 * 1664 / 16.0, 0.01);
  client.WriteRegisters(0x60, 1, {0x0A});
  EXPECT_NEAR(Sim().FrameMicroseconds(), 242 * 960 / 16.0, 0.01);
  client.WriteRegisters(0x60, 1, {0x0E});
  EXPECT_NEAR(Sim().FrameMicroseconds(), 122 * 608 / 16.0, 0.01);
}

TEST_F(Pace, NoFramesArriveWhilePaused) {
  StartCamera();
  ASSERT_TRUE(client_->Request(device::CAM_IOCTL_PAUSE_STREAM));
  clock_.Advance(5 * kFrame);
  EXPECT_FALSE(HasFrame());
  ASSERT_TRUE(client_->Request(device::CAM_IOCTL_RESUME_STREAM));
  clock_.Advance(kFrame - 1);
  EXPECT_FALSE(HasFrame());
  clock_.Advance(1);
  EXPECT_TRUE(HasFrame());
}

TEST_F(Pace, AStoppedStreamGivesNoFrame) {
  StartCamera();
  clock_.Advance(2 * kFrame);
  EXPECT_TRUE(client_->Stop());
  EXPECT_FALSE(HasFrame());
}

TEST_F(Pace, NoVideoModeGivesNoFrame) {
  StartCamera();
  ASSERT_TRUE(client_->SetVideoMode(0));
  clock_.Advance(5 * kFrame);
  EXPECT_FALSE(HasFrame());
}

TEST_F(Pace, AReadWaitsForItsFrame) {
  StartCamera("timeout=4000");
  BackgroundRead read(*simulator_, client_->Handle(), kPixels);
  AwaitWaiting(clock_, 1);
  clock_.Advance(kFrame);
  EXPECT_TRUE(read.Succeeded());
}

TEST_F(Pace, AReadWithoutAFrameEndsWithTheTimeOut) {
  StartCamera("timeout=4000");
  ASSERT_TRUE(client_->SetVideoMode(0));
  BackgroundRead read(*simulator_, client_->Handle(), kPixels);
  AwaitWaiting(clock_, 1);
  clock_.Advance(3999999);
  AwaitWaiting(clock_, 1);
  clock_.Advance(1);
  EXPECT_FALSE(read.Succeeded());
}

TEST_F(Pace, StoppingTheStreamEndsAPendingReadAtOnce) {
  StartCamera("timeout=4000");
  BackgroundRead read(*simulator_, client_->Handle(), kPixels);
  AwaitWaiting(clock_, 1);
  EXPECT_TRUE(client_->Stop());
  EXPECT_FALSE(read.Succeeded());
}

TEST_F(Pace, PullingTheCameraEndsAPendingReadAtOnce) {
  StartCamera("timeout=4000");
  BackgroundRead read(*simulator_, client_->Handle(), kPixels);
  AwaitWaiting(clock_, 1);
  Sim().Unplug();
  EXPECT_FALSE(read.Succeeded());
}

TEST_F(Pace, SeveralReadsGetAFrameEach) {
  StartCamera("timeout=4000");
  BackgroundRead first(*simulator_, client_->Handle(), kPixels);
  BackgroundRead second(*simulator_, client_->Handle(), kPixels);
  AwaitWaiting(clock_, 2);
  clock_.Advance(2 * kFrame);
  EXPECT_TRUE(first.Succeeded());
  EXPECT_TRUE(second.Succeeded());
}

TEST(FastPace, GivesFramesAtOnceAndTheSameInEveryRun) {
  const char* text = "pace=fast,noise=3,scene=grey:80";
  for (int run = 0; run < 2; ++run) {
    const auto one = MakeSimulator(text);
    const auto two = MakeSimulator(text);
    DriverClient first(*one);
    DriverClient second(*two);
    for (DriverClient* client : {&first, &second}) {
      client->PrepareSecond();
      client->SetVideoMode(1);
      client->Start(640, 480);
    }
    Frame a(kPixels);
    Frame b(kPixels);
    for (int i = 0; i < 5; ++i) {
      ASSERT_TRUE(first.ReadFrame(&a));
      ASSERT_TRUE(second.ReadFrame(&b));
      ASSERT_EQ(a, b);
    }
  }
}

TEST(RealPace, TakesAtLeastThePeriodsOfItsFrames) {
  const auto simulator = MakeSimulator("1");
  DriverClient client(*simulator);
  client.PrepareSecond();
  client.SetVideoMode(1);
  Frame frame(kPixels);
  const std::uint64_t before = platform::MonotonicMicroseconds();
  client.Start(640, 480);
  ASSERT_TRUE(client.ReadFrame(&frame));
  ASSERT_TRUE(client.ReadFrame(&frame));
  EXPECT_GE(platform::MonotonicMicroseconds() - before, 2 * kFrame);
}

}  // namespace
}  // namespace ormidex::simulator
