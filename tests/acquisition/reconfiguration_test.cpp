// How the setters treat a running stream and an attached preview: the order of
// messages and requests, and what a failure leaves behind.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "acquisition/reconfiguration.h"
#include "platform/event.h"
#include "platform/thread.h"
#include "support/fake_preview.h"
#include "support/lock_probe.h"
#include "support/register_script.h"
#include "support/second_generation_script.h"
#include "support/test_session.h"

namespace ormidex::testing {
namespace {

// A first-generation camera, streaming, with a running preview.
class Reconfiguration : public ::testing::Test {
 protected:
  Reconfiguration() { session_->stream.running.store(1); }

  void Suspends() { driver_.ExpectEvent("suspend"); }
  void Resumes() { driver_.ExpectEvent("resume"); }
  void RebuildsPreview() { driver_.ExpectEvent("geometry"); }
  void SetsMode(const std::string& reply = "") {
    driver_.Expect(0x222088, "00000000 00000000 02000000", reply);
  }
  void SetsTransferSize() { driver_.ExpectEcho(0x222010, "00000000 60000000 08000000"); }
  void TurnsTableOff() { driver_.ExpectEcho(0x222028, std::string(528, '0')); }
  void Sizes() {
    script_.Reads(1, 0);
    script_.Writes(1, 0);
    script_.WritesBlock(8, "503c");
    script_.WritesCommand(8, 80);
  }
  void StartFails() {
    driver_.ExpectFailure(0x222040, "00000000 80020000 e0010000 00b00400 00000000 00000000");
  }
  void Expect(bool running, bool suspended) {
    EXPECT_EQ(session_->stream.running.load() != 0, running);
    EXPECT_EQ(session_->preview.suspended.load() != 0, suspended);
    EXPECT_TRUE(IsFree(session_->stream_lock));
    EXPECT_TRUE(driver_.Done());
  }

  ScriptedGateway driver_;
  RegisterScript script_{driver_, 0x60};
  TestSession session_{driver_};
  FakePreview preview_{*session_, &driver_};
};

TEST_F(Reconfiguration, VideoModeSuspendsStopsChangesRestartsResumes) {
  Suspends();
  script_.Stops();
  SetsMode();
  script_.Starts();
  Resumes();
  EXPECT_EQ(session_->SetVideoMode(2), kOk);
  Expect(true, false);
}

TEST_F(Reconfiguration, WindowSizeRebuildsThePreviewBeforeTheRestart) {
  Suspends();
  script_.Stops();
  Sizes();
  RebuildsPreview();
  script_.Starts();
  Resumes();
  EXPECT_EQ(session_->SetSubWindowSize(1, 640, 480), kOk);
  Expect(true, false);
}

TEST_F(Reconfiguration, TransferSizeRebuildsThePreviewAfterTheRestart) {
  Suspends();
  script_.Stops();
  SetsTransferSize();
  script_.Starts();
  RebuildsPreview();
  Resumes();
  TurnsTableOff();
  EXPECT_EQ(session_->SetDataTransferSize(8), kOk);
  Expect(true, false);
}

// The clock changes with the preview suspended and the stream still running.
TEST_F(Reconfiguration, TransferSizeChangesTheClockBeforeItStopsTheStream) {
  session_->geometry.width = 320;
  session_->geometry.height = 240;
  Suspends();
  script_.WritesCommand(12, 1);
  script_.Writes(145, 0);
  script_.Stops();
  driver_.ExpectEcho(0x222010, "00000000 60000000 10000000");
  // 320 x 240 x 2 = 153600 = 0x25800.
  driver_.Expect(0x222040, "00000000 40010000 f0000000 00580200 00000000 00000000");
  RebuildsPreview();
  Resumes();
  TurnsTableOff();
  EXPECT_EQ(session_->SetDataTransferSize(16), kClockingChanged);
  Expect(true, false);
}

TEST_F(Reconfiguration, HorizontalFlipReadsItsRegisterBeforeThePreviewIsSuspended) {
  script_.Reads(1, 0x08);
  Suspends();
  script_.Stops();
  driver_.ExpectEcho(0x222100, "00000000 00000000 01000000");
  script_.Writes(1, 0x18);
  script_.Starts();
  Resumes();
  EXPECT_EQ(session_->ImageFlip(1, 0), kOk);
  Expect(true, false);
}

TEST_F(Reconfiguration, VerticalFlipSuspendsThePreviewOnly) {
  script_.Reads(1, 0x08);
  Suspends();
  script_.Writes(1, 0x00);
  Resumes();
  EXPECT_EQ(session_->ImageFlip(0, 1), kOk);
  Expect(true, false);
}

TEST_F(Reconfiguration, SecondGenerationFlipMovesTheWindowBeforeThePreviewResumes) {
  session_.MakeSecondGeneration();
  RegisterScript second(driver_, 0x66);
  second.Reads(87, 0);
  Suspends();
  second.Stops();
  second.Writes(87, 1);
  second.Starts();
  second.Pauses();
  second.WritesBlock(73, "0008");
  second.WritesBlock(69, "0010");
  second.Resumes();
  Resumes();
  EXPECT_EQ(session_->ImageFlip(1, 0), kOk);
  Expect(true, false);
}

// The camera's clock is not the preview's business.
TEST_F(Reconfiguration, ClockingLeavesThePreviewAlone) {
  session_.MakeSecondGeneration();
  RegisterScript second(driver_, 0x66);
  second.ReadsCommand(0, 0);
  second.Stops();
  second.ReadsPair(78, 0);
  second.ReadsPair(82, 650);
  second.Reads(95, 20);
  second.Reads(96, 30);
  second.WritesCommand(12, 1);
  ReadsTiming(second, {});
  second.WritesBlock(80, "01e1");
  second.Reads(78, 0);
  second.Writes(79, 0);
  second.Writes(78, 0x40);
  second.Starts();
  session_->identity.firmware_version = 0x03012200;
  EXPECT_EQ(session_->SetImagerClocking(1), kOk);
  Expect(true, false);
}

TEST_F(Reconfiguration, PositionLeavesThePreviewAlone) {
  script_.Pauses();
  script_.WritesBlock(4, "00050005");
  script_.Resumes();
  EXPECT_EQ(session_->SetSubWindowPos(1, 1), kOk);
  Expect(true, false);
}

// ---- A preview that was suspended before ----

TEST_F(Reconfiguration, SuspendedPreviewIsLeftAloneByTheVideoMode) {
  session_->preview.suspended.store(1);
  script_.Stops();
  SetsMode();
  script_.Starts();
  EXPECT_EQ(session_->SetVideoMode(2), kOk);
  Expect(true, true);
}

TEST_F(Reconfiguration, SuspendedPreviewIsOnlyRebuiltByTheWindowSize) {
  session_->preview.suspended.store(1);
  script_.Stops();
  Sizes();
  RebuildsPreview();
  script_.Starts();
  EXPECT_EQ(session_->SetSubWindowSize(1, 640, 480), kOk);
  Expect(true, true);
}

TEST_F(Reconfiguration, SuspendedPreviewIsSuspendedAgainAfterTheTransferSize) {
  session_->preview.suspended.store(1);
  script_.Stops();
  SetsTransferSize();
  script_.Starts();
  RebuildsPreview();
  Suspends();
  TurnsTableOff();
  EXPECT_EQ(session_->SetDataTransferSize(8), kOk);
  Expect(true, true);
}

TEST_F(Reconfiguration, SuspendedPreviewIsSuspendedAgainAfterAFlip) {
  session_->preview.suspended.store(1);
  script_.Reads(1, 0x08);
  script_.Writes(1, 0x00);
  Suspends();
  EXPECT_EQ(session_->ImageFlip(0, 1), kOk);
  Expect(true, true);
}

TEST_F(Reconfiguration, ADeafPreviewHoldsNothingUp) {
  preview_.deaf = true;
  Suspends();
  script_.Stops();
  SetsMode();
  script_.Starts();
  Resumes();
  EXPECT_EQ(session_->SetVideoMode(2), kOk);
}

TEST_F(Reconfiguration, AStoppedStreamIsNotStarted) {
  session_->stream.running.store(0);
  Suspends();
  SetsMode();
  Resumes();
  EXPECT_EQ(session_->SetVideoMode(2), kOk);
  Expect(false, false);
}

// ---- Failures: the lock is left, the stream stopped, the preview suspended ----

TEST_F(Reconfiguration, AFailedStopChangesNothing) {
  Suspends();
  driver_.ExpectFailure(0x222048, "");
  EXPECT_EQ(session_->SetVideoMode(2), kRequestFailed);
  EXPECT_EQ(session_->geometry.video_mode, 1u);
  Expect(true, true);
}

TEST_F(Reconfiguration, AFailedChangeOfTheVideoMode) {
  Suspends();
  script_.Stops();
  driver_.ExpectFailure(0x222088, "00000000 00000000 02000000");
  EXPECT_EQ(session_->SetVideoMode(2), kRequestFailed);
  Expect(false, true);
}

TEST_F(Reconfiguration, AFailedRestart) {
  Suspends();
  script_.Stops();
  SetsMode();
  StartFails();
  EXPECT_EQ(session_->SetVideoMode(2), kRequestFailed);
  Expect(false, true);
}

TEST_F(Reconfiguration, AnUnknownFactor) {
  Suspends();
  script_.Stops();
  script_.Reads(1, 0);
  EXPECT_EQ(session_->SetSubWindowSize(3, 640, 480), kOutOfRange);
  Expect(false, true);
}

TEST_F(Reconfiguration, AFailedWindowSize) {
  Suspends();
  script_.Stops();
  script_.Reads(1, 0);
  script_.Writes(1, 0);
  driver_.ExpectFailure(0x222004, "00000000 60000000 08000000 02000000 503c");
  EXPECT_EQ(session_->SetSubWindowSize(1, 640, 480), kRequestFailed);
  Expect(false, true);
}

TEST_F(Reconfiguration, AFailedRestartAfterTheWindowSize) {
  Suspends();
  script_.Stops();
  Sizes();
  RebuildsPreview();
  StartFails();
  EXPECT_EQ(session_->SetSubWindowSize(1, 640, 480), kRequestFailed);
  Expect(false, true);
}

TEST_F(Reconfiguration, AFailedTransferSize) {
  Suspends();
  script_.Stops();
  driver_.ExpectFailure(0x222010, "00000000 60000000 08000000");
  EXPECT_EQ(session_->SetDataTransferSize(8), kRequestFailed);
  Expect(false, true);
}

// Before the stream is stopped only the preview has been touched.
TEST_F(Reconfiguration, AFailedClockChangeBeforeTheTransferSize) {
  Suspends();
  driver_.ExpectFailure(0x2223FC, "00000000 02000000 0000000c 00000001");
  EXPECT_EQ(session_->SetDataTransferSize(16), kRequestFailed);
  Expect(true, true);
}

TEST_F(Reconfiguration, AFailedTableAfterTheTransferSizeComesTooLateToMatter) {
  Suspends();
  script_.Stops();
  SetsTransferSize();
  script_.Starts();
  RebuildsPreview();
  Resumes();
  driver_.ExpectFailure(0x222028, std::string(528, '0'));
  EXPECT_EQ(session_->SetDataTransferSize(8), kRequestFailed);
  Expect(true, false);
}

// A flip has no such exit: it restores all it can.
TEST_F(Reconfiguration, AFailedFlipStillRestoresStreamAndPreview) {
  script_.Reads(1, 0x08);
  Suspends();
  script_.Stops();
  driver_.ExpectEcho(0x222100, "00000000 00000000 01000000");
  driver_.ExpectFailure(0x222004, "ff000000 60000000 01000000 01000000 18000000");
  script_.Starts();
  Resumes();
  EXPECT_EQ(session_->ImageFlip(1, 0), kRequestFailed);
  Expect(true, false);
}

// ---- The lock ----

TEST_F(Reconfiguration, ItsLockMayBeEnteredAgainByItsHolder) {
  session_->stream_lock.Enter();
  session_->stream_lock.Enter();
  Suspends();
  script_.Stops();
  SetsMode();
  script_.Starts();
  Resumes();
  EXPECT_EQ(session_->SetVideoMode(2), kOk);
  {
    LockProbe probe(session_->stream_lock);
    session_->stream_lock.Leave();
    EXPECT_FALSE(probe.TakenWithin(20));
    session_->stream_lock.Leave();
    EXPECT_TRUE(probe.TakenWithin(10000));
  }
  Expect(true, false);
}

TEST_F(Reconfiguration, NestsInsideAnother) {
  Suspends();
  script_.Stops();
  // Inside, the stream is stopped and the preview suspended already.
  SetsMode();
  script_.Starts();
  Resumes();
  acquisition::StreamReconfiguration outer(*session_);
  EXPECT_EQ(outer.Begin(), kOk);
  EXPECT_EQ(session_->SetVideoMode(2), kOk);
  EXPECT_EQ(outer.RestartStream(), kOk);
  outer.LeaveLock();
  outer.RestorePreview();
  Expect(true, false);
}

// Held from before the stop until after the restart.
class HeldLock : public ::testing::Test {};

TEST_F(HeldLock, KeepsOthersOutUntilTheRestart) {
  // Looks, at every request, whether another thread can have the lock.
  class Watcher : public ScriptedGateway {
   public:
    bool Control(device::DriverHandle handle, const device::DriverRequest& request,
                 std::uint32_t* returned) override {
      if (request.code != 0x222028) {
        if (probe == nullptr) probe = std::make_unique<LockProbe>(session->stream_lock);
        EXPECT_FALSE(probe->TakenWithin(5)) << request.code;
      }
      return ScriptedGateway::Control(handle, request, returned);
    }
    device::CameraSession* session = nullptr;
    std::unique_ptr<LockProbe> probe;
  };
  Watcher driver;
  RegisterScript script(driver, 0x60);
  TestSession session(driver);
  driver.session = &*session;
  session->stream.running.store(1);
  script.Stops();
  driver.ExpectEcho(0x222010, "00000000 60000000 08000000");
  script.Starts();
  driver.ExpectEcho(0x222028, std::string(528, '0'));
  EXPECT_EQ(session->SetDataTransferSize(8), kOk);
  EXPECT_TRUE(driver.probe->TakenWithin(10000));
  driver.probe.reset();
}

}  // namespace
}  // namespace ormidex::testing
