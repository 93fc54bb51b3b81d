// Stills as literal requests.
#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "capture/fake_preview.h"
#include "capture/threads.h"
#include "support/model_gateway.h"
#include "support/scripted_gateway.h"
#include "support/test_session.h"

namespace ormidex::testing {
namespace {

using namespace device;

// 640 x 480, 8 bits.
constexpr char kStart[] = "00000000 80020000 e0010000 00b00400 00000000 00000000";
constexpr char kPlainStill[] =
    "00000000 10270000 00000000 00000000 00000000 00000000 00000000";  // 10 ms

class StillFrame : public ::testing::Test {
 protected:
  StillFrame() : session(driver) { session->geometry.video_mode = 0; }

  Status Capture(float exposure = 10.0f) {
    return session->ReturnStillFrame(frame.data(), exposure, 0, 0.0f, 0, 0.0f, 0.0f);
  }

  ScriptedGateway driver;
  TestSession session;
  std::vector<std::uint8_t> frame = std::vector<std::uint8_t>(640 * 480);
};

TEST_F(StillFrame, SendsTheLongRecordWithTheLastThreeWordsBigEndian) {
  driver.Expect(0x222040, kStart);
  driver.ExpectEcho(0x2220A0, "00000000 14500000 01000000 0a280000 00000002 0000157c fffffe0c");
  driver.Expect(0x222045, "", "0102fe");
  driver.Expect(0x222048, "");
  EXPECT_EQ(session->ReturnStillFrame(frame.data(), 20.5f, 1, 10.25f, 2, 5.5f, -0.5f), kOk);
  EXPECT_EQ(frame[0], 1);
  EXPECT_EQ(frame[2], 0xFE);
  EXPECT_EQ(session->stream.running.load(), 0u);
}

TEST_F(StillFrame, SendsSixteenBytesToTheReducedFirmwareVariants) {
  for (const std::uint32_t version : {0x034D0000u, 0x03430001u}) {
    session->identity.firmware_version = version;
    driver.Expect(0x222040, kStart);
    driver.ExpectEcho(0x2220A0, "00000000 14500000 01000000 0a280000");
    driver.Expect(0x222045, "");
    driver.Expect(0x222048, "");
    EXPECT_EQ(session->ReturnStillFrame(frame.data(), 20.5f, 1, 10.25f, 1, 5.5f, -0.5f), kOk);
  }
}

TEST_F(StillFrame, TruncatesUnscaledTimesForFirmwareBefore3) {
  session->identity.firmware_version = 0x02FFFFFF;
  driver.Expect(0x222040, kStart);
  driver.ExpectEcho(0x2220A0, "00000000 14000000 01000000 0a000000 00000001 00000005 fffffffe");
  driver.Expect(0x222045, "");
  driver.Expect(0x222048, "");
  EXPECT_EQ(session->ReturnStillFrame(frame.data(), 20.9f, 1, 10.25f, 1, 5.5f, -2.9f), kOk);
}

TEST_F(StillFrame, LeavesARunningStreamRunning) {
  session->stream.running.store(1);
  driver.ExpectEcho(0x2220A0, kPlainStill);
  driver.Expect(0x222045, "");
  EXPECT_EQ(Capture(), kOk);
  EXPECT_EQ(session->stream.running.load(), 1u);
}

TEST_F(StillFrame, PassesThroughVideoMode0AndBack) {
  session->geometry.video_mode = 1;
  driver.ExpectEcho(0x222088, "00000000 00000000 00000000");
  driver.Expect(0x222040, kStart);
  driver.ExpectEcho(0x2220A0, kPlainStill);
  driver.Expect(0x222045, "");
  driver.Expect(0x222048, "");
  driver.ExpectEcho(0x222088, "00000000 00000000 01000000");
  EXPECT_EQ(Capture(), kOk);
  EXPECT_EQ(session->geometry.video_mode, 1u);
}

TEST_F(StillFrame, InVideoMode1WithTheStreamOnChangesTheModeWithTheStreamOff) {
  session->geometry.video_mode = 1;
  session->stream.running.store(1);
  driver.Expect(0x222048, "");
  driver.ExpectEcho(0x222088, "00000000 00000000 00000000");
  driver.Expect(0x222040, kStart);
  driver.ExpectEcho(0x2220A0, kPlainStill);
  driver.Expect(0x222045, "");
  driver.Expect(0x222048, "");
  driver.ExpectEcho(0x222088, "00000000 00000000 01000000");
  driver.Expect(0x222040, kStart);
  EXPECT_EQ(Capture(), kOk);
  EXPECT_EQ(session->stream.running.load(), 1u);
}

TEST_F(StillFrame, LeavesVideoMode2Alone) {
  session->geometry.video_mode = 2;
  driver.Expect(0x222040, kStart);
  driver.ExpectEcho(0x2220A0, kPlainStill);
  driver.Expect(0x222045, "");
  driver.Expect(0x222048, "");
  EXPECT_EQ(Capture(), kOk);
  EXPECT_EQ(session->geometry.video_mode, 2u);
}

TEST_F(StillFrame, ARefusedStillRequestIs5AndEverythingIsRestored) {
  session->geometry.video_mode = 1;
  driver.ExpectEcho(0x222088, "00000000 00000000 00000000");
  driver.Expect(0x222040, kStart);
  driver.ExpectFailure(0x2220A0, kPlainStill);
  driver.Expect(0x222048, "");
  driver.ExpectEcho(0x222088, "00000000 00000000 01000000");
  EXPECT_EQ(Capture(), kRequestFailed);
}

TEST_F(StillFrame, ARefusedFrameReadIs5AndEverythingIsRestored) {
  session->geometry.video_mode = 1;
  driver.ExpectEcho(0x222088, "00000000 00000000 00000000");
  driver.Expect(0x222040, kStart);
  driver.ExpectEcho(0x2220A0, kPlainStill);
  driver.ExpectFailure(0x222045, "");
  driver.Expect(0x222048, "");
  driver.ExpectEcho(0x222088, "00000000 00000000 01000000");
  EXPECT_EQ(Capture(), kRequestFailed);
}

TEST_F(StillFrame, ARefusedStartReturnsAtOnceInVideoMode0AndLeavesTheLock) {
  session->geometry.video_mode = 1;
  driver.ExpectEcho(0x222088, "00000000 00000000 00000000");
  driver.ExpectFailure(0x222040, kStart);
  EXPECT_EQ(Capture(), kRequestFailed);
  EXPECT_EQ(session->geometry.video_mode, 0u);
  driver.Expect(0x222048, "");
  Threads other;
  std::atomic<Status> stopped{kGeneralFailure};
  other.Start([&] { stopped.store(session->StopVideoStream()); });
  ASSERT_TRUE(other.Join()) << "the stream lock is still held";
  EXPECT_EQ(stopped.load(), kOk);
}

TEST_F(StillFrame, TheDriversStatusWordIsNotLookedAt) {
  driver.Expect(0x222040, kStart);
  driver.Expect(0x2220A0, kPlainStill, "05000080");
  driver.Expect(0x222045, "");
  driver.Expect(0x222048, "");
  EXPECT_EQ(Capture(), kOk);
}

TEST_F(StillFrame, ReadsTheFrameSizeOf16BitFrames) {
  session->geometry.bytes_per_pixel = 2;
  session->RecomputeFrameSizes();
  frame.resize(640 * 480 * 2);
  driver.Expect(0x222040, "00000000 80020000 e0010000 00600900 00000000 00000000");
  driver.ExpectEcho(0x2220A0, kPlainStill);
  driver.Expect(0x222045, "", std::string(std::size_t{640} * 480 * 2 * 2, '7'));
  driver.Expect(0x222048, "");
  EXPECT_EQ(Capture(), kOk);
  EXPECT_EQ(frame.back(), 0x77);
}

TEST_F(StillFrame, ChecksComeInOrder) {
  float a_time = 11.0f;
  session->trigger.active.store(1);
  // Everything is wrong at once; each check that is put right uncovers the next.
  void* handle = session->link.handle;
  session->link.handle = nullptr;
  EXPECT_EQ(session->ReturnStillFrame(nullptr, 10.0f, 1, 10.5f, 1, a_time, 0.5f), kNoCamera);
  session->link.handle = handle;
  EXPECT_EQ(session->ReturnStillFrame(nullptr, 10.0f, 1, 10.5f, 1, a_time, 0.5f), kNullPointer);
  EXPECT_EQ(session->ReturnStillFrame(frame.data(), 10.0f, 1, 10.5f, 1, a_time, 0.5f), kWrongState);
  session->trigger.active.store(0);
  EXPECT_EQ(session->ReturnStillFrame(frame.data(), 10.0f, 1, 10.5f, 0, 0.0f, 0.0f), kOutOfRange);
  EXPECT_EQ(session->ReturnStillFrame(frame.data(), 10.0f, 0, 0.0f, 1, a_time, 0.0f), kOutOfRange);
  EXPECT_EQ(session->ReturnStillFrame(frame.data(), 10.0f, 0, 0.0f, 1, 1.0f, 0.5f), kOutOfRange);
}

TEST_F(StillFrame, TimesOfOutputsThatAreOffAreNotChecked) {
  driver.Expect(0x222040, kStart);
  driver.ExpectEcho(0x2220A0, "00000000 10270000 00000000 204e0000 00000000 00004e20 000001f4");
  driver.Expect(0x222045, "");
  driver.Expect(0x222048, "");
  EXPECT_EQ(session->ReturnStillFrame(frame.data(), 10.0f, 0, 20.0f, 0, 20.0f, 0.5f), kOk);
}

TEST_F(StillFrame, AcceptsOutputTimesEqualToTheExposureAndAnExposureOf0) {
  session->stream.running.store(1);
  driver.ExpectEcho(0x2220A0, "00000000 10270000 01000000 10270000 00000001 00002710 00000000");
  driver.Expect(0x222045, "");
  EXPECT_EQ(session->ReturnStillFrame(frame.data(), 10.0f, 1, 10.0f, 1, 10.0f, 0.0f), kOk);
  driver.ExpectEcho(0x2220A0, "00000000 00000000 00000000 00000000 00000000 00000000 00000000");
  driver.Expect(0x222045, "");
  EXPECT_EQ(Capture(0.0f), kOk);
}

TEST_F(StillFrame, HugeAndUndefinedTimesStayDefinedRequests) {
  session->stream.running.store(1);
  driver.ExpectEcho(0x2220A0, "00000000 ffffffff 00000000 00000000 00000000 00000000 00000000");
  driver.Expect(0x222045, "");
  EXPECT_EQ(Capture(1e30f), kOk);
  driver.ExpectEcho(0x2220A0, "00000000 00000000 00000000 00000000 00000000 00000000 00000000");
  driver.Expect(0x222045, "");
  EXPECT_EQ(Capture(std::numeric_limits<float>::quiet_NaN()), kOk);
}

TEST(StillFramePreview, ARunningPreviewIsPausedBeforeAndResumedAfterwards) {
  ModelGateway driver;
  TestSession session(driver);
  FakePreview preview(*session);
  std::vector<std::uint8_t> frame(640 * 480);
  EXPECT_EQ(session->ReturnStillFrame(frame.data(), 1.0f, 0, 0, 0, 0, 0), kOk);
  EXPECT_EQ(preview.messages.front(), 1u);
  EXPECT_EQ(preview.messages.back(), 0u);
  EXPECT_EQ(session->preview.suspended.load(), 0u);
}

TEST(StillFramePreview, APausedPreviewStaysPaused) {
  ModelGateway driver;
  TestSession session(driver);
  session->geometry.video_mode = 0;
  FakePreview preview(*session);
  session->preview.suspended.store(1);
  std::vector<std::uint8_t> frame(640 * 480);
  EXPECT_EQ(session->ReturnStillFrame(frame.data(), 1.0f, 0, 0, 0, 0, 0), kOk);
  EXPECT_EQ(preview.messages, (std::vector<std::uintptr_t>{1}));
}

TEST(StillFramePreview, AFailedStartLeavesThePreviewPaused) {
  ModelGateway driver;
  driver.fail_codes.insert(CAM_IOCTL_START_STREAM);
  TestSession session(driver);
  FakePreview preview(*session);
  std::vector<std::uint8_t> frame(640 * 480);
  EXPECT_EQ(session->ReturnStillFrame(frame.data(), 1.0f, 0, 0, 0, 0, 0), kRequestFailed);
  EXPECT_EQ(session->preview.suspended.load(), 1u);
}

TEST(StillFrameThreads, StillsOfSeveralThreadsDoNotMix) {
  ModelGateway driver;
  TestSession session(driver);
  session->geometry.video_mode = 0;
  std::atomic<int> failures{0};
  {
    Threads threads;
    for (int i = 0; i < 4; ++i) {
      threads.Start([&] {
        std::vector<std::uint8_t> frame(640 * 480);
        for (int round = 0; round < 20; ++round) {
          const Status status = session->ReturnStillFrame(frame.data(), 1.0f, 0, 0, 0, 0, 0);
          if (status != kOk || frame.back() != 0x80) failures.fetch_add(1);
        }
      });
    }
  }
  EXPECT_EQ(failures.load(), 0);
  // Each still is followed by its own frame read.
  const std::vector<std::string> sent = driver.Requests();
  for (std::size_t i = 0; i < sent.size(); ++i) {
    if (sent[i].rfind("0x2220A0", 0) == 0) {
      ASSERT_LT(i + 1, sent.size());
      EXPECT_EQ(sent[i + 1], "0x222045 [0]");
    }
  }
}

}  // namespace
}  // namespace ormidex::testing
