// Starting, stopping, pausing and reading the stream, request by request.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "platform/fault_points.h"
#include "support/fake_preview.h"
#include "support/scripted_gateway.h"
#include "support/test_session.h"

namespace ormidex::testing {
namespace {

class Stream : public ::testing::Test {
 protected:
  bool Running() { return session_->stream.running.load() != 0; }
  ScriptedGateway driver_;
  TestSession session_{driver_};
};

// 640, 480 and 307200 in words 1 to 3.
TEST_F(Stream, StartCarriesTheFrame) {
  driver_.Expect(0x222040, "00000000 80020000 e0010000 00b00400 00000000 00000000");
  EXPECT_EQ(session_->StartVideoStream(), kOk);
  EXPECT_TRUE(Running());
}

TEST_F(Stream, StartCarriesTwoBytesAPixel) {
  session_->geometry.width = 1280;
  session_->geometry.height = 1024;
  session_->geometry.bytes_per_pixel = 2;
  driver_.Expect(0x222040, "00000000 00050000 00040000 00002800 00000000 00000000");
  EXPECT_EQ(session_->StartVideoStream(), kOk);
}

TEST_F(Stream, StartingTwiceIsStatus13WithoutARequest) {
  driver_.Expect(0x222040, "00000000 80020000 e0010000 00b00400 00000000 00000000");
  EXPECT_EQ(session_->StartVideoStream(), kOk);
  EXPECT_EQ(session_->StartVideoStream(), kWrongState);
}

TEST_F(Stream, AFailedStartLeavesTheFlagClear) {
  driver_.ExpectFailure(0x222040, "00000000 80020000 e0010000 00b00400 00000000 00000000");
  EXPECT_EQ(session_->StartVideoStream(), kRequestFailed);
  EXPECT_FALSE(Running());
}

TEST_F(Stream, AStartWithoutMemoryIsStatus9) {
  platform::RefuseOnceAfter(platform::FaultPoint::kAllocation, 0);
  EXPECT_EQ(session_->StartVideoStream(), kOutOfMemory);
  platform::ClearFaults();
  EXPECT_FALSE(Running());
}

TEST_F(Stream, StartChecksTheStateBeforeMemory) {
  session_->stream.running.store(1);
  platform::RefuseOnceAfter(platform::FaultPoint::kAllocation, 0);
  EXPECT_EQ(session_->StartVideoStream(), kWrongState);
  platform::ClearFaults();
}

TEST_F(Stream, StopIsSentWhetherItRunsOrNot) {
  session_->stream.running.store(1);
  driver_.Expect(0x222048, "");
  EXPECT_EQ(session_->StopVideoStream(), kOk);
  EXPECT_FALSE(Running());
  driver_.Expect(0x222048, "");
  EXPECT_EQ(session_->StopVideoStream(), kOk);
}

TEST_F(Stream, AFailedStopKeepsTheFlag) {
  session_->stream.running.store(1);
  driver_.ExpectFailure(0x222048, "");
  EXPECT_EQ(session_->StopVideoStream(), kRequestFailed);
  EXPECT_TRUE(Running());
}

TEST_F(Stream, PauseAndResumeLeaveTheFlagSet) {
  session_->stream.running.store(1);
  driver_.Expect(0x222054, "00000000");
  EXPECT_EQ(session_->PauseVideoStream(1), kOk);
  EXPECT_TRUE(Running());
  driver_.Expect(0x222054, "00000000");
  EXPECT_EQ(session_->PauseVideoStream(0x80000000u), kOk);
  driver_.Expect(0x222058, "00000000");
  EXPECT_EQ(session_->PauseVideoStream(0), kOk);
  EXPECT_TRUE(Running());
}

TEST_F(Stream, AFailedPauseIsStatus5AndKeepsTheFlag) {
  session_->stream.running.store(1);
  driver_.ExpectFailure(0x222054, "00000000");
  EXPECT_EQ(session_->PauseVideoStream(1), kRequestFailed);
  driver_.ExpectFailure(0x222058, "00000000");
  EXPECT_EQ(session_->PauseVideoStream(0), kRequestFailed);
  EXPECT_TRUE(Running());
}

class Frame : public Stream {
 protected:
  Frame() {
    session_->geometry.width = 4;
    session_->geometry.height = 2;
    session_->stream.running.store(1);
  }
};

TEST_F(Frame, IsReadIntoTheCallersBuffer) {
  driver_.Expect(0x222045, "", "01020304 05060708");
  std::uint8_t frame[9] = {0, 0, 0, 0, 0, 0, 0, 0, 0xEE};
  EXPECT_EQ(session_->ReturnVideoData(8, frame), kOk);
  EXPECT_EQ(Bytes(frame, frame + 9), (Bytes{1, 2, 3, 4, 5, 6, 7, 8, 0xEE}));
}

TEST_F(Frame, OfSixteenBitsAt640By480NeedsExactly614400Bytes) {
  session_->geometry.width = 640;
  session_->geometry.height = 480;
  session_->geometry.bytes_per_pixel = 2;
  std::vector<std::uint8_t> frame(614400);
  EXPECT_EQ(session_->ReturnVideoData(307200, frame.data()), kOutOfRange);
  EXPECT_EQ(session_->ReturnVideoData(614399, frame.data()), kOutOfRange);
  EXPECT_EQ(session_->ReturnVideoData(614401, frame.data()), kOutOfRange);
  driver_.Expect(0x222045, "", "aa");
  EXPECT_EQ(session_->ReturnVideoData(614400, frame.data()), kOk);
}

// Null, then size 0, then the size, then the device, then the state.
TEST_F(Frame, ChecksInItsOwnOrder) {
  session_->link.handle = nullptr;
  session_->stream.running.store(0);
  std::uint8_t frame[8] = {};
  EXPECT_EQ(session_->ReturnVideoData(0, nullptr), kNullPointer);
  EXPECT_EQ(session_->ReturnVideoData(0, frame), kOutOfRange);
  EXPECT_EQ(session_->ReturnVideoData(7, frame), kOutOfRange);
  EXPECT_EQ(session_->ReturnVideoData(8, frame), kNoCamera);
  session_->link.handle = &driver_;
  EXPECT_EQ(session_->ReturnVideoData(7, frame), kOutOfRange);
  EXPECT_EQ(session_->ReturnVideoData(8, frame), kWrongState);
}

TEST_F(Frame, OfAnEmptyWindowIsOutOfRange) {
  session_->geometry.height = 0;
  std::uint8_t frame[8] = {};
  EXPECT_EQ(session_->ReturnVideoData(0, frame), kOutOfRange);
  EXPECT_EQ(session_->ReturnVideoData(8, frame), kOutOfRange);
}

TEST_F(Frame, NeedsAVideoMode) {
  session_->geometry.video_mode = 0;
  std::uint8_t frame[8] = {};
  EXPECT_EQ(session_->ReturnVideoData(8, frame), kWrongState);
  EXPECT_EQ(session_->FlushVideoData(), kWrongState);
}

TEST_F(Frame, AFailedReadIsStatus5) {
  driver_.ExpectFailure(0x222045, "");
  std::uint8_t frame[8] = {};
  EXPECT_EQ(session_->ReturnVideoData(8, frame), kRequestFailed);
  EXPECT_TRUE(Running());
}

TEST_F(Frame, FlushIsARequestWithoutBuffers) {
  driver_.Expect(0x222170, "");
  EXPECT_EQ(session_->FlushVideoData(), kOk);
  driver_.ExpectFailure(0x222170, "");
  EXPECT_EQ(session_->FlushVideoData(), kRequestFailed);
}

class Notification : public Stream {};

TEST_F(Notification, NeedsDeviceAndWindow) {
  EXPECT_EQ(session_->NotifyPreview(1), kNoPreview);
  EXPECT_EQ(session_->NotifyPreview(0), kNoPreview);
  session_->trigger.active.store(1);
  EXPECT_EQ(session_->NotifyPreview(0), kNoPreview);
  FakePreview preview(*session_);
  session_->link.handle = nullptr;
  EXPECT_EQ(session_->NotifyPreview(1), kNoCamera);
  EXPECT_TRUE(preview.messages.empty());
}

TEST_F(Notification, SuspendsAndResumes) {
  FakePreview preview(*session_);
  EXPECT_EQ(session_->NotifyPreview(7), kOk);
  EXPECT_EQ(session_->preview.suspended.load(), 1u);
  EXPECT_EQ(session_->NotifyPreview(0), kOk);
  EXPECT_EQ(session_->preview.suspended.load(), 0u);
  EXPECT_EQ(preview.messages, (std::vector<std::string>{"suspend", "resume"}));
}

TEST_F(Notification, OfADeafWindowIsStatus10) {
  FakePreview preview(*session_);
  preview.deaf = true;
  EXPECT_EQ(session_->NotifyPreview(1), kGeneralFailure);
  session_->preview.suspended.store(1);
  EXPECT_EQ(session_->NotifyPreview(0), kGeneralFailure);
  EXPECT_EQ(session_->NotifyPreview(1), kOk);  // suspended it is
}

TEST_F(Notification, SuspendsButNeverResumesWhileTheTriggerIsArmed) {
  FakePreview preview(*session_);
  session_->trigger.active.store(1);
  EXPECT_EQ(session_->NotifyPreview(0), kWrongState);
  EXPECT_TRUE(preview.messages.empty());
  EXPECT_EQ(session_->NotifyPreview(1), kOk);
  EXPECT_EQ(session_->NotifyPreview(0), kWrongState);
  EXPECT_EQ(preview.messages, (std::vector<std::string>{"suspend"}));
}

TEST_F(Notification, OfTheGeometryNeedsNoWindow) {
  session_->NotifyPreviewGeometry();
  FakePreview preview(*session_);
  session_->NotifyPreviewGeometry();
  EXPECT_EQ(preview.messages, (std::vector<std::string>{"geometry"}));
}

}  // namespace
}  // namespace ormidex::testing
