// A simulated camera changes while its preview runs.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "device/session.h"
#include "platform/memory.h"
#include "platform/timer.h"
#include "preview/fake_window.h"
#include "preview/frame_source.h"
#include "simulator/simulator.h"
#include "support/process_environment.h"
#include "support/quickest.h"

namespace ormidex::testing {
namespace {

class Reconfiguration : public ::testing::Test {
 protected:
  void Open(const char* description) {
    std::string error;
    simulator_ = simulator::Simulator::Create(description, &error);
    ASSERT_EQ(error, "");
    environment_ = std::make_unique<ProcessEnvironment>(*simulator_);
    session_ = device::CameraSession::Create();
    ASSERT_EQ(session_->Open("Torvenal(tm) 1394 Camera", 0), kOk);
    ASSERT_EQ(session_->SetSubWindow(1, 0, 0, 64, 48), kOk);
    ASSERT_EQ(StartPreview(), kOk);
    ASSERT_TRUE(ShowsFrames());
  }
  Status StartPreview() { return session_->StartPreview("", 0, 0, 0, 0xFFFFFFFFu, 0, nullptr, 0); }
  ~Reconfiguration() override {
    if (session_ == nullptr) return;
    session_->Teardown();
    device::CameraSession::FreeStorage(session_);
  }
  bool ShowsFrames() {
    const int wanted = screen_.draws.load() + 2;
    return Eventually([&] { return screen_.draws.load() >= wanted; }, 20000);
  }
  // The next image has the frame's size throughout.
  void ExpectShownAsSet() {
    ASSERT_TRUE(ShowsFrames());
    const DrawnImage drawn = screen_.LastDrawn();
    EXPECT_EQ(drawn.image.width, static_cast<std::int32_t>(session_->geometry.width));
    EXPECT_EQ(drawn.image.height, static_cast<std::int32_t>(session_->geometry.height));
    std::uint32_t header_width = 0;
    std::memcpy(&header_width, drawn.header.data() + 4, 4);
    EXPECT_EQ(header_width, session_->geometry.width);
    EXPECT_EQ(screen_.client_width, static_cast<std::int32_t>(session_->geometry.width));
    EXPECT_EQ(screen_.client_height, static_cast<std::int32_t>(session_->geometry.height));
  }
  void Change(std::uint32_t times) {
    for (std::uint32_t i = 0; i < times; ++i) {
      const std::uint32_t factor = 1u << (i % 3);
      const std::uint32_t width = (32 + 8 * (i % 7)) * factor;
      const std::uint32_t height = (8 + 8 * (i % 5)) * factor;
      ASSERT_EQ(session_->SetSubWindow(factor, i % 64, i % 32, width, height), kOk) << i;
      const Status status = session_->SetDataTransferSize(i % 2 == 0 ? 16 : 8);
      ASSERT_TRUE(status == kOk || status == kClockingChanged) << i << ": " << status;
      ASSERT_EQ(session_->preview.suspended.load(), 0u) << i;
      if (i % 50 == 0) ExpectShownAsSet();
    }
    ExpectShownAsSet();
  }

  FakeScreen screen_;
  std::unique_ptr<simulator::Simulator> simulator_;
  std::unique_ptr<ProcessEnvironment> environment_;
  device::CameraSession* session_ = nullptr;
};

TEST_F(Reconfiguration, AThousandGeometryAndTransferChangesInARow) {
  Open("pace=fast,scene=grey:90");
  Change(1000);
}

TEST_F(Reconfiguration, TwoHundredChangesOfAMonochromeFirstGenerationCamera) {
  Open("pace=fast,scene=grey:90,generation=1,imager=mono");
  Change(200);
}

TEST_F(Reconfiguration, FlipAndVideoModeAndStillsResumeThePreview) {
  Open("pace=fast,scene=grey:90");
  for (int i = 0; i < 10; ++i) {
    ASSERT_EQ(session_->ImageFlip(i % 2 == 0 ? 1 : -1, i % 3 == 0 ? 1 : -1), kOk);
    ASSERT_EQ(session_->preview.suspended.load(), 0u);
    ExpectShownAsSet();
    platform::Buffer still(session_->geometry.frame_bytes);
    ASSERT_EQ(session_->ReturnStillFrame(still.Bytes(), 1.0f, 0, 0, 0, 0, 0), kOk);
    ASSERT_EQ(session_->preview.suspended.load(), 0u);
    ExpectShownAsSet();
  }
}

TEST_F(Reconfiguration, APreviewSuspendedByTheApplicationStaysSuspended) {
  Open("pace=fast,scene=grey:90");
  ASSERT_EQ(session_->PausePreview(1), kOk);
  EXPECT_EQ(session_->SetSubWindow(1, 0, 0, 96, 64), kOk);
  EXPECT_EQ(session_->preview.suspended.load(), 1u);
  EXPECT_EQ(screen_.client_width, 64);  // and keeps its size
  EXPECT_EQ(session_->SetDataTransferSize(8), kOk);
  EXPECT_EQ(session_->preview.suspended.load(), 1u);
  EXPECT_EQ(session_->PausePreview(0), kOk);
  ASSERT_TRUE(ShowsFrames());
  EXPECT_EQ(screen_.LastDrawn().image.width, 96);
}

std::uint32_t ORMIDEX_CALLBACK CountFrame(void*, void*) { return 0; }

TEST_F(Reconfiguration, TheTriggerSuspendsThePreviewAndGivesItBack) {
  Open("pace=fast,scene=grey:90");
  platform::Buffer raw(session_->geometry.frame_bytes);
  ASSERT_EQ(session_->ReturnFrameAfterTrigger(1.0f, 0, 0, 0, 0, 0, &CountFrame, 0, raw.Bytes(),
                                              nullptr, 1),
            kOk);
  EXPECT_EQ(session_->preview.suspended.load(), 1u);
  EXPECT_EQ(session_->PausePreview(0), kWrongState);
  EXPECT_EQ(session_->StopTriggerMode(), kOk);
  EXPECT_EQ(session_->preview.suspended.load(), 0u);
  EXPECT_TRUE(ShowsFrames());
}

// The driver's time-out is the longest that a stop can take.
TEST_F(Reconfiguration, StopReturnsAtTheDriversTimeOutWhenNoFrameComes) {
  Open("pace=real,scene=grey:90,timeout=300");
  ASSERT_EQ(session_->SetTimeout(300), kOk);
  const auto silence = [&] {
    if (session_->preview.window.load() == nullptr) {
      ASSERT_EQ(session_->PauseVideoStream(0), kOk);
      ASSERT_EQ(StartPreview(), kOk);
      ASSERT_TRUE(ShowsFrames());
    }
    ASSERT_EQ(session_->PauseVideoStream(1), kOk);
    platform::SleepMilliseconds(100);
  };
  const auto stop = [&] { EXPECT_EQ(session_->StopPreview(), kOk); };
  EXPECT_LT(QuickestMicroseconds(1'000'000, silence, stop), 1'000'000u);
}

}  // namespace
}  // namespace ormidex::testing
