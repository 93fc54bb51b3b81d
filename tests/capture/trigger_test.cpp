// Triggered capture: arming, delivery through the callback, and stopping.
#include <gtest/gtest.h>

#include <atomic>
#include <vector>

#include "capture/fake_preview.h"
#include "capture/frame_gateway.h"
#include "capture/threads.h"
#include "platform/fault_points.h"
#include "support/test_session.h"

namespace ormidex::testing {
namespace {

using namespace device;

constexpr char kStart[] = "0x222040 [24] 00000000 80020000 e0010000 00b00400 00000000 00000000";
constexpr char kPlainArm[] =
    "0x2220A4 [32] 00000000 01000000 10270000 00000000 00000000 00000000 00000000 00000000";
constexpr char kLeave[] =
    "0x2220A4 [32] 00000000 00000000 00000000 00000000 00000000 00000000 00000000 00000000";
constexpr char kStop[] = "0x222048 [0]";
constexpr char kMode0[] = "0x222088 [12] 00000000 00000000 00000000";
constexpr char kMode1[] = "0x222088 [12] 00000000 00000000 01000000";

using Requests = std::vector<std::string>;

struct Delivery {
  std::atomic<int> frames{0};
  std::atomic<void*> handle{nullptr};
  std::atomic<void*> buffer{nullptr};
  std::atomic<int> first_byte{-1};
};
Delivery delivery;

std::uint32_t ORMIDEX_CALLBACK OnFrame(void* handle, void* buffer) {
  delivery.handle.store(handle);
  delivery.buffer.store(buffer);
  delivery.first_byte.store(*static_cast<std::uint8_t*>(buffer));
  delivery.frames.fetch_add(1);
  return 0xFFFFFFFFu;  // ignored
}

class Trigger : public ::testing::Test {
 protected:
  Trigger() : session(driver) {
    session->geometry.video_mode = 0;
    delivery.frames.store(0);
    delivery.handle.store(nullptr);
    delivery.buffer.store(nullptr);
  }
  ~Trigger() override {
    platform::ClearFaults();
    if (session->IsTriggerActive()) session->StopTriggerMode();
  }

  Status Arm(std::uint32_t convert = 0, std::uint32_t algorithm = 1) {
    return session->ReturnFrameAfterTrigger(10.0f, 0, 0.0f, 0, 0.0f, 0.0f, OnFrame, convert,
                                            raw.data(), rgb.data(), algorithm);
  }
  bool SendFrame() {
    const int before = delivery.frames.load();
    driver.Trigger();
    return WaitUntil([before] { return delivery.frames.load() > before; });
  }

  FrameGateway driver;
  TestSession session;
  std::vector<std::uint8_t> raw = std::vector<std::uint8_t>(640 * 480);
  std::vector<std::uint8_t> rgb = std::vector<std::uint8_t>(640 * 480 * 3);
};

TEST_F(Trigger, ArmsWithTheLongRecordAndStopsWithThirtyTwoBytes) {
  driver.command_registers[3] = 0x42;
  EXPECT_EQ(session->ReturnFrameAfterTrigger(20.5f, 1, 10.25f, 2, 5.5f, -0.5f, OnFrame, 0,
                                             raw.data(), nullptr, 1),
            kOk);
  EXPECT_TRUE(session->IsTriggerActive());
  EXPECT_EQ(session->StopTriggerMode(), kOk);
  EXPECT_FALSE(session->IsTriggerActive());
  EXPECT_EQ(
      driver.Sent(),
      (Requests{kStart,
                "0x2220A4 [32] 00000000 01000000 14500000 01000000 0a280000 00000002 0000157c "
                "fffffe0c",
                "0x2223FC [16] 00000000 01000000 00000003 00000000",
                "0x2223FC [16] 00000000 02000000 00000003 00000043",
                "0x2223FC [16] 00000000 02000000 00000003 00000042", kLeave, kStop}));
}

TEST_F(Trigger, ReducedFirmwareGetsTwentyBytesToArmAndThirtyTwoToLeave) {
  session->identity.firmware_version = 0x034D0000;
  EXPECT_EQ(session->ReturnFrameAfterTrigger(20.5f, 1, 10.25f, 1, 5.5f, -0.5f, OnFrame, 0,
                                             raw.data(), nullptr, 1),
            kOk);
  EXPECT_EQ(session->StopTriggerMode(), kOk);
  const Requests sent = driver.Sent();
  EXPECT_EQ(sent[1], "0x2220A4 [20] 00000000 01000000 14500000 01000000 0a280000");
  EXPECT_EQ(sent[5], kLeave);
}

TEST_F(Trigger, TimesAreNotScaledBeforeFirmware3) {
  session->identity.firmware_version = 0x02020000;
  EXPECT_EQ(session->ReturnFrameAfterTrigger(20.9f, 1, 10.25f, 1, 5.5f, -2.9f, OnFrame, 0,
                                             raw.data(), nullptr, 1),
            kOk);
  EXPECT_EQ(
      driver.Sent()[1],
      "0x2220A4 [32] 00000000 01000000 14000000 01000000 0a000000 00000001 00000005 fffffffe");
}

// The comparison is with 0x30000000, so no known firmware uses register 10.
TEST_F(Trigger, StoppingPulsesRegister3BelowVersion30000000AndRegister10FromThere) {
  const struct {
    std::uint32_t version;
    const char* address;
  } cases[] = {{0x02020000u, "00008803"},
               {0x03000000u, "00000003"},
               {0x2FFFFFFFu, "00000003"},
               {0x30000000u, "0000000a"},
               {0xFFFF0000u, "0000000a"}};
  for (const auto& item : cases) {
    session->identity.firmware_version = item.version;
    ASSERT_EQ(Arm(), kOk);
    driver.ClearRequests();
    EXPECT_EQ(session->StopTriggerMode(), kOk);
    const std::string address = item.address;
    const Requests sent = driver.Sent();
    ASSERT_GE(sent.size(), 3u);
    EXPECT_EQ(sent[0], "0x2223FC [16] 00000000 01000000 " + address + " 00000000");
    EXPECT_EQ(sent[1], "0x2223FC [16] 00000000 02000000 " + address + " 00000001");
    EXPECT_EQ(sent[2], "0x2223FC [16] 00000000 02000000 " + address + " 00000000");
  }
}

TEST_F(Trigger, TheCallbackGetsTheHandleAndTheRawBuffer) {
  ASSERT_EQ(Arm(), kOk);
  driver.frame_byte = 0x5A;
  ASSERT_TRUE(SendFrame());
  EXPECT_EQ(delivery.handle.load(), &*session);
  EXPECT_EQ(delivery.buffer.load(), raw.data());
  EXPECT_EQ(delivery.first_byte.load(), 0x5A);
}

TEST_F(Trigger, FramesGoOnUntilStopped) {
  ASSERT_EQ(Arm(), kOk);
  for (int i = 0; i < 5; ++i) ASSERT_TRUE(SendFrame());
  ASSERT_EQ(session->StopTriggerMode(), kOk);
  const int frames = delivery.frames.load();
  driver.Trigger();
  platform::SleepMilliseconds(30);
  EXPECT_EQ(delivery.frames.load(), frames);
}

TEST_F(Trigger, ConvertsColourFramesIntoTheOutputBuffer) {
  session->geometry.width = 4;
  session->geometry.height = 4;
  session->RecomputeFrameSizes();
  driver.frame_byte = 0x77;
  ASSERT_EQ(Arm(1, 1), kOk);
  ASSERT_TRUE(SendFrame());
  ASSERT_EQ(session->StopTriggerMode(), kOk);
  EXPECT_EQ(delivery.buffer.load(), rgb.data());
  // A flat mosaic is a flat grey picture of 4 x 4 pixels, and nothing behind it.
  EXPECT_EQ(std::vector<std::uint8_t>(rgb.begin(), rgb.begin() + 48),
            std::vector<std::uint8_t>(48, 0x77));
  EXPECT_EQ(rgb[48], 0);
}

TEST_F(Trigger, ConvertsMonochromeFramesOf8And16Bits) {
  session->identity.imager_type = kImagerMono;
  session->geometry.width = 2;
  session->geometry.height = 1;
  for (const std::uint32_t bytes : {1u, 2u}) {
    session->geometry.bytes_per_pixel = bytes;
    session->RecomputeFrameSizes();
    driver.frame_byte = static_cast<std::uint8_t>(0x30 + bytes);
    ASSERT_EQ(Arm(1, 1), kOk);
    ASSERT_TRUE(SendFrame());
    ASSERT_EQ(session->StopTriggerMode(), kOk);
    EXPECT_EQ(std::vector<std::uint8_t>(rgb.begin(), rgb.begin() + 6),
              std::vector<std::uint8_t>(6, driver.frame_byte));
  }
}

TEST_F(Trigger, AFailedReadIsNoFrameAndTheWorkerGoesOn) {
  driver.read_timeout_ms.store(1);
  ASSERT_EQ(Arm(), kOk);
  ASSERT_TRUE(WaitUntil([this] { return driver.reads_failed.load() >= 3; }));
  EXPECT_EQ(delivery.frames.load(), 0);
  driver.read_timeout_ms.store(1000);
  EXPECT_TRUE(SendFrame());
}

TEST_F(Trigger, AFrameThatArrivesAfterTheStopIsNotDelivered) {
  driver.read_timeout_ms.store(5000);
  ASSERT_EQ(Arm(), kOk);
  ASSERT_TRUE(WaitUntil([this] { return driver.reads_waiting.load() == 1; }));
  Threads other;
  std::atomic<Status> stopped{kGeneralFailure};
  other.Start([&] { stopped.store(session->StopTriggerMode()); });
  // The register is pulsed once the worker has been told to stop.
  ASSERT_TRUE(WaitUntil([this] { return driver.Sent().back().rfind("0x2223FC", 0) == 0; }));
  EXPECT_TRUE(session->IsTriggerActive()) << "the stop waits for the pending read";
  driver.Trigger();
  ASSERT_TRUE(other.Join());
  EXPECT_EQ(stopped.load(), kOk);
  EXPECT_EQ(delivery.frames.load(), 0);
  EXPECT_FALSE(session->IsTriggerActive());
}

TEST_F(Trigger, StoppingFromAnotherThreadThanTheOneThatArmed) {
  ASSERT_EQ(Arm(), kOk);
  ASSERT_TRUE(SendFrame());
  Threads other;
  std::atomic<Status> stopped{kGeneralFailure};
  other.Start([&] { stopped.store(session->StopTriggerMode()); });
  ASSERT_TRUE(other.Join());
  EXPECT_EQ(stopped.load(), kOk);
  EXPECT_EQ(Arm(), kOk) << "and it can be armed again";
}

TEST_F(Trigger, StoppingFromTwoThreadsAtOnce) {
  ASSERT_EQ(Arm(), kOk);
  Threads others;
  std::atomic<int> stopped{0};
  for (int i = 0; i < 2; ++i) {
    others.Start([&] {
      if (session->StopTriggerMode() == kOk) stopped.fetch_add(1);
    });
  }
  ASSERT_TRUE(others.Join());
  EXPECT_EQ(stopped.load(), 2);
}

TEST_F(Trigger, ArmingFromTwoThreadsAtOnceStartsOneWorker) {
  Threads others;
  std::atomic<int> armed{0};
  std::atomic<int> refused{0};
  for (int i = 0; i < 2; ++i) {
    others.Start([&] { (Arm() == kOk ? armed : refused).fetch_add(1); });
  }
  ASSERT_TRUE(others.Join());
  EXPECT_EQ(armed.load(), 1);
  EXPECT_EQ(refused.load(), 1);
}

TEST_F(Trigger, StoppingWithoutAnArmedTriggerSendsTheRecordAndReturns0) {
  EXPECT_EQ(session->StopTriggerMode(), kOk);
  EXPECT_EQ(driver.Sent(), (Requests{kLeave, kStop}));
}

// The stream counts as not running before a capture that never was.
TEST_F(Trigger, StoppingWithoutAnyCaptureStopsARunningStream) {
  session->stream.running.store(1);
  EXPECT_EQ(session->StopTriggerMode(), kOk);
  EXPECT_EQ(session->stream.running.load(), 0u);
}

TEST_F(Trigger, ARefusedStopRecordIs5AndTheRestIsDoneAllTheSame) {
  session->geometry.video_mode = 1;
  ASSERT_EQ(Arm(), kOk);
  driver.fail_codes.insert(CAM_IOCTL_TRIGGER_MODE);
  driver.ClearRequests();
  EXPECT_EQ(session->StopTriggerMode(), kRequestFailed);
  const Requests sent = driver.Sent();
  ASSERT_GE(sent.size(), 3u);
  EXPECT_EQ(Requests(sent.end() - 3, sent.end()), (Requests{kLeave, kStop, kMode1}));
  EXPECT_EQ(session->geometry.video_mode, 1u);
  driver.fail_codes.clear();
}

TEST_F(Trigger, AnUnreadableRegisterIsNotWrittenAndTheStopGoesOn) {
  ASSERT_EQ(Arm(), kOk);
  driver.ClearRequests();
  driver.fail_codes.insert(CAM_IOCTL_COMMAND_REGISTER);
  EXPECT_EQ(session->StopTriggerMode(), kOk);
  EXPECT_EQ(driver.Sent(),
            (Requests{"0x2223FC [16] 00000000 01000000 00000003 00000000", kLeave, kStop}));
}

TEST_F(Trigger, SavesAndRestoresStreamVideoModeAndPreview) {
  session->geometry.video_mode = 1;
  session->stream.running.store(1);
  FakePreview preview(*session);
  ASSERT_EQ(Arm(), kOk);
  EXPECT_EQ(driver.Sent(), (Requests{kStop, kMode0, kStart, kPlainArm}));
  EXPECT_EQ(session->preview.suspended.load(), 1u);
  driver.ClearRequests();
  EXPECT_EQ(session->StopTriggerMode(), kOk);
  const Requests sent = driver.Sent();
  ASSERT_GE(sent.size(), 4u);
  EXPECT_EQ(Requests(sent.end() - 4, sent.end()), (Requests{kLeave, kStop, kMode1, kStart}));
  EXPECT_EQ(session->stream.running.load(), 1u);
  EXPECT_EQ(session->geometry.video_mode, 1u);
  EXPECT_EQ(session->preview.suspended.load(), 0u);
}

TEST_F(Trigger, APausedPreviewStaysPausedAfterwards) {
  FakePreview preview(*session);
  session->preview.suspended.store(1);
  ASSERT_EQ(Arm(), kOk);
  EXPECT_TRUE(preview.messages.empty());
  EXPECT_EQ(session->StopTriggerMode(), kOk);
  EXPECT_EQ(session->preview.suspended.load(), 1u);
}

TEST_F(Trigger, ARefusedStartReturnsItsStatusBeforeAnythingIsArmed) {
  driver.fail_codes.insert(CAM_IOCTL_START_STREAM);
  EXPECT_EQ(Arm(), kRequestFailed);
  EXPECT_EQ(driver.Sent(), (Requests{kStart}));
  EXPECT_FALSE(session->IsTriggerActive());
}

TEST_F(Trigger, ARefusedArmingLeavesStreamModeAndPreviewUntilTheStop) {
  session->geometry.video_mode = 1;
  FakePreview preview(*session);
  driver.fail_codes.insert(CAM_IOCTL_TRIGGER_MODE);
  EXPECT_EQ(Arm(), kRequestFailed);
  EXPECT_EQ(driver.Sent(), (Requests{kMode0, kStart, kPlainArm}));
  EXPECT_EQ(session->stream.running.load(), 1u);
  EXPECT_EQ(session->geometry.video_mode, 0u);
  EXPECT_EQ(session->preview.suspended.load(), 1u);
  EXPECT_FALSE(session->IsTriggerActive());

  driver.fail_codes.clear();
  driver.ClearRequests();
  EXPECT_EQ(session->StopTriggerMode(), kOk);
  EXPECT_EQ(driver.Sent(), (Requests{kLeave, kStop, kMode1}));
  EXPECT_EQ(session->preview.suspended.load(), 0u);
}

TEST_F(Trigger, WithoutAStopEventTheStatusIs10AndTheLockIsFree) {
  platform::RefuseOnceAfter(platform::FaultPoint::kEventCreate, 0);
  EXPECT_EQ(Arm(), kGeneralFailure);
  EXPECT_FALSE(session->IsTriggerActive());
  Threads other;
  other.Start([&] { session->StopTriggerMode(); });
  EXPECT_TRUE(other.Join());
  EXPECT_EQ(Arm(), kOk);
}

TEST_F(Trigger, WithoutAWorkerThreadTheStatusIs10AndNothingIsArmed) {
  platform::RefuseOnceAfter(platform::FaultPoint::kThreadStart, 0);
  EXPECT_EQ(Arm(), kGeneralFailure);
  EXPECT_FALSE(session->IsTriggerActive());
  EXPECT_EQ(session->StopTriggerMode(), kOk);
}

TEST_F(Trigger, ChecksComeInOrder) {
  const auto arm = [this](float exposure, std::uint32_t flag1, float time1, std::uint32_t flag2,
                          float a, float b, std::uint32_t convert, void* in, void* out,
                          std::uint32_t algorithm) {
    return session->ReturnFrameAfterTrigger(exposure, flag1, time1, flag2, a, b, OnFrame, convert,
                                            in, out, algorithm);
  };
  void* handle = session->link.handle;
  session->trigger.active.store(1);
  session->link.handle = nullptr;
  EXPECT_EQ(arm(0, 1, 1, 1, 1, 1, 1, nullptr, nullptr, 6), kNoCamera);
  session->link.handle = handle;
  EXPECT_EQ(arm(0, 1, 1, 1, 1, 1, 1, nullptr, nullptr, 6), kWrongState);
  session->trigger.active.store(0);
  EXPECT_EQ(arm(0, 1, 1, 1, 1, 1, 1, nullptr, nullptr, 6), kNullPointer);
  EXPECT_EQ(arm(0, 1, 1, 1, 1, 1, 1, raw.data(), nullptr, 6), kNullPointer);
  EXPECT_EQ(arm(1, 1, 2, 0, 0, 0, 1, raw.data(), rgb.data(), 1), kOutOfRange);
  EXPECT_EQ(arm(0, 0, 0, 0, 0, 0, 1, raw.data(), rgb.data(), 1), kOutOfRange);
  EXPECT_EQ(arm(1, 0, 0, 1, 2, 0, 1, raw.data(), rgb.data(), 1), kOutOfRange);
  EXPECT_EQ(arm(1, 0, 0, 1, 1, 0.5f, 1, raw.data(), rgb.data(), 1), kOutOfRange);
  EXPECT_TRUE(driver.Sent().empty());
}

TEST_F(Trigger, AlgorithmCodesAreCheckedEvenWithoutConversion) {
  for (std::uint32_t code = 0; code < 300; ++code) {
    const bool accepted = code <= 5 || (code >= 16 && code <= 18) || code == 255;
    driver.read_timeout_ms.store(0);
    const Status status = Arm(0, code);
    EXPECT_EQ(status, accepted ? kOk : kOutOfRange) << code;
    if (status == kOk) {
      session->StopTriggerMode();
    }
  }
}

TEST_F(Trigger, ANullCallbackIsNotCalled) {
  driver.read_timeout_ms.store(1000);
  ASSERT_EQ(session->ReturnFrameAfterTrigger(1, 0, 0, 0, 0, 0, nullptr, 0, raw.data(), nullptr, 1),
            kOk);
  driver.Trigger();
  EXPECT_TRUE(WaitUntil([this] { return driver.reads_waiting.load() == 1; }));
}

TEST_F(Trigger, ClosingWhileArmedWaitsForTheWorker) {
  session->command.active_workers.store(0);
  driver.read_timeout_ms.store(50);
  ASSERT_EQ(Arm(), kOk);
  ASSERT_TRUE(SendFrame());
  EXPECT_EQ(session->Teardown(), kOk);
  EXPECT_FALSE(session->IsTriggerActive());
  EXPECT_EQ(driver.reads_waiting.load(), 0);
  EXPECT_EQ(driver.closed, 1);
}

std::uint32_t ORMIDEX_CALLBACK OnFrameSlowly(void*, void*) {
  delivery.handle.store(nullptr);
  delivery.frames.fetch_add(1);
  platform::SleepMilliseconds(100);
  delivery.handle.store(&delivery);
  return 0;
}

TEST_F(Trigger, ClosingWhileACallbackRunsWaitsForItsEnd) {
  ASSERT_EQ(
      session->ReturnFrameAfterTrigger(1, 0, 0, 0, 0, 0, OnFrameSlowly, 0, raw.data(), nullptr, 1),
      kOk);
  ASSERT_TRUE(SendFrame());
  EXPECT_EQ(session->Teardown(), kOk);
  EXPECT_EQ(delivery.handle.load(), &delivery);
}

}  // namespace
}  // namespace ormidex::testing
