// Stills and triggered frames.
#include "simulator/background_read.h"

namespace ormidex::simulator {
namespace {

using Frame = std::vector<std::uint8_t>;
constexpr std::uint32_t kPixels = 640 * 480;
constexpr Microseconds kReadout = 20790;  // 480 rows of 693 clocks at 16 MHz

// A camera that runs, but exposes only when asked.
class Capture : public testing::Test {
 protected:
  void StartCamera(const char* keys) {
    client_.reset();  // before the simulator that it belongs to
    simulator_ = MakeSimulator(keys, &clock_);
    client_ = std::make_unique<DriverClient>(*simulator_);
    if (Sim().Description().generation == 2) {
      client_->PrepareSecond();
    } else {
      client_->PrepareFirst();
    }
    ASSERT_TRUE(client_->SetTimeout(0));
    ASSERT_TRUE(client_->Start(640, 480));
  }
  bool Still(std::uint32_t exposure, std::uint32_t bytes = sizeof(device::StillRecord)) {
    device::StillRecord record;
    record.status = 99;
    record.timing.exposure = exposure;
    return client_->Request(device::CAM_IOCTL_STILL_FRAME, &record, bytes, &record, bytes) &&
           record.status == 0;
  }
  bool Trigger(std::uint32_t operation, std::uint32_t exposure,
               std::uint32_t bytes = sizeof(device::TriggerRecord)) {
    device::TriggerRecord record;
    record.operation = operation;
    record.timing.exposure = exposure;
    return client_->Request(device::CAM_IOCTL_TRIGGER_MODE, &record, bytes, &record, bytes);
  }
  bool HasFrame() { return client_->ReadFrame(&frame_); }
  SimulatedCamera& Sim() { return simulator_->Camera(0); }

  VirtualClock clock_;
  std::unique_ptr<Simulator> simulator_;
  std::unique_ptr<DriverClient> client_;
  Frame frame_ = Frame(kPixels);
};

TEST_F(Capture, AStillHasTheExposureAskedInMicroseconds) {
  StartCamera("scene=grey:100");
  ASSERT_TRUE(Still(12550));  // half of the nominal 25.1 ms
  clock_.Advance(12550 + kReadout - 1);
  EXPECT_FALSE(HasFrame());
  clock_.Advance(1);
  ASSERT_TRUE(HasFrame());
  EXPECT_EQ(frame_[0], 50);
  clock_.Advance(1000000);
  EXPECT_FALSE(HasFrame());  // one still, one frame
}

TEST_F(Capture, OlderFirmwareCountsAStillInMilliseconds) {
  StartCamera("scene=grey:100,generation=1,firmware=0x02020001");
  ASSERT_TRUE(Still(25));  // half of the nominal 49.8 ms
  clock_.Advance(1000000);
  ASSERT_TRUE(HasFrame());
  EXPECT_NEAR(frame_[0], 50, 1);
}

TEST_F(Capture, TheShortRecordsOfTheVariantsAreUnderstood) {
  StartCamera("scene=grey:100,firmware=0x034D0000");
  ASSERT_TRUE(Still(25100, device::kStillRecordShortBytes));
  clock_.Advance(1000000);
  EXPECT_TRUE(HasFrame());
  EXPECT_TRUE(Trigger(1, 1000, device::kTriggerRecordShortBytes));
  EXPECT_TRUE(Sim().Armed());
  EXPECT_FALSE(Trigger(0, 0, device::kTriggerRecordShortBytes - 4));
}

TEST_F(Capture, AStillNeedsARunningStream) {
  StartCamera("1");
  client_->Stop();
  EXPECT_FALSE(Still(1000));
}

TEST_F(Capture, AStillInVideoModeInterruptsTheStream) {
  StartCamera("scene=grey:100");
  ASSERT_TRUE(client_->SetVideoMode(1));
  clock_.Advance(60000);  // two frames wait
  ASSERT_TRUE(Still(50200));
  clock_.Advance(50200 + kReadout);
  ASSERT_TRUE(HasFrame());
  EXPECT_EQ(frame_[0], 200);
  clock_.Advance(26000);
  ASSERT_TRUE(HasFrame());  // and the stream goes on
  EXPECT_EQ(frame_[0], 100);
}

TEST_F(Capture, AHardwareTriggerReleasesFramesAtItsRate) {
  StartCamera("scene=grey:100,trigger=hardware:5");
  ASSERT_TRUE(Trigger(1, 12550));
  clock_.Advance(200000 + 12550 + kReadout - 1);
  EXPECT_FALSE(HasFrame());
  clock_.Advance(1);
  ASSERT_TRUE(HasFrame());
  EXPECT_EQ(frame_[0], 50);
  EXPECT_FALSE(HasFrame());
  clock_.Advance(200000);
  EXPECT_TRUE(HasFrame());
  EXPECT_EQ(Sim().MissedTriggers(), 0u);
}

TEST_F(Capture, HardwareEdgesDuringAFrameAreMissed) {
  StartCamera("trigger=hardware:100");
  ASSERT_TRUE(Trigger(1, 15000));  // 35790 us for a frame, an edge each 10000 us
  // Frames start at 10000, 50000 and 90000; three edges pass during each.
  clock_.Advance(90000 + 1);
  EXPECT_EQ(Sim().MissedTriggers(), 6u);
  EXPECT_TRUE(HasFrame());
  EXPECT_TRUE(HasFrame());
  EXPECT_FALSE(HasFrame());
}

TEST_F(Capture, ASoftwareSourceWaitsForTheCamera) {
  StartCamera("trigger=software:100");
  ASSERT_TRUE(Trigger(1, 15000));
  // The first at 10000, then one after the other: done at 45790 and 81580.
  clock_.Advance(81580);
  EXPECT_EQ(Sim().MissedTriggers(), 0u);
  EXPECT_TRUE(HasFrame());
  EXPECT_TRUE(HasFrame());
  EXPECT_FALSE(HasFrame());
}

TEST_F(Capture, ATestMayFireTheTrigger) {
  StartCamera("trigger=software");
  EXPECT_FALSE(Sim().FireTrigger());  // not armed
  ASSERT_TRUE(Trigger(1, 1000));
  clock_.Advance(1000000);
  EXPECT_FALSE(HasFrame());
  EXPECT_TRUE(Sim().FireTrigger());
  EXPECT_FALSE(Sim().FireTrigger());  // busy
  clock_.Advance(1000 + kReadout);
  EXPECT_TRUE(HasFrame());
  ASSERT_TRUE(Trigger(0, 0));
  EXPECT_FALSE(Sim().FireTrigger());
}

TEST_F(Capture, APulseOnTheTriggerRegisterReleasesAFrame) {
  struct Case {
    const char* keys;
    std::uint32_t address;
  };
  for (const Case& test : {Case{"trigger=software", 10}, Case{"trigger=software", 3},
                           Case{"trigger=software,generation=1,firmware=0x02020001", 0x8803}}) {
    StartCamera(test.keys);
    ASSERT_TRUE(Trigger(1, 1));
    ASSERT_TRUE(client_->WriteCommandRegister(test.address, 1));
    ASSERT_TRUE(client_->WriteCommandRegister(test.address, 0));
    clock_.Advance(100000);
    EXPECT_TRUE(HasFrame()) << test.address;
    EXPECT_FALSE(HasFrame());
  }
}

TEST_F(Capture, AnArmedCameraDoesNotRunFreely) {
  StartCamera("trigger=software");
  ASSERT_TRUE(client_->SetVideoMode(1));
  ASSERT_TRUE(Trigger(1, 1000));
  clock_.Advance(1000000);
  EXPECT_FALSE(HasFrame());
  ASSERT_TRUE(Trigger(0, 0));
  clock_.Advance(1000000);
  EXPECT_TRUE(HasFrame());
}

TEST_F(Capture, ATriggerEndsAPendingRead) {
  StartCamera("trigger=software");
  ASSERT_TRUE(client_->SetTimeout(4000));
  ASSERT_TRUE(Trigger(1, 1000));
  BackgroundRead read(*simulator_, client_->Handle(), kPixels);
  AwaitWaiting(clock_, 1);
  EXPECT_TRUE(Sim().FireTrigger());
  clock_.Advance(1000 + kReadout);
  EXPECT_TRUE(read.Succeeded());
}

TEST(FastCapture, ATriggerFromOutsideEndsAPendingReadToo) {
  const auto simulator = MakeSimulator("pace=fast,trigger=software,timeout=60000");
  DriverClient client(*simulator);
  client.PrepareSecond();
  ASSERT_TRUE(client.Start(640, 480));
  device::TriggerRecord record;
  record.operation = 1;
  record.timing.exposure = 1000;
  ASSERT_TRUE(client.Exchange(device::CAM_IOCTL_TRIGGER_MODE, &record));
  BackgroundRead read(*simulator, client.Handle(), kPixels);
  while (simulator->Camera(0).Traffic(device::CAM_IOCTL_READ_FRAME).requests == 0) {
    platform::SleepMilliseconds(1);
  }
  EXPECT_TRUE(simulator->Camera(0).FireTrigger());
  EXPECT_TRUE(read.Succeeded());
}

}  // namespace
}  // namespace ormidex::simulator
