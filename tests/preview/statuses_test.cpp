// What each preview operation answers, check by check.
#include "ormidex.h"
#include "preview/preview_test.h"
#include "support/faults.h"

namespace ormidex::testing {
namespace {

constexpr std::uint32_t kSizeOfFrame = 0xFFFFFFFFu;

class Statuses : public PreviewTest {};

// ---- Start -------------------------------------------------------------------

TEST_F(Statuses, StartWithoutATitleIs2EvenWithoutADevice) {
  session->link.handle = nullptr;
  EXPECT_EQ(session->StartPreview(nullptr, 0, 0, 0, 64, 48, nullptr, 0), 2u);
  session->link.handle = &camera;
}

TEST_F(Statuses, StartWithoutADeviceIs1EvenWithAnArmedTrigger) {
  session->trigger.active.store(1);
  session->link.handle = nullptr;
  EXPECT_EQ(Start(), 1u);
  session->link.handle = &camera;
}

TEST_F(Statuses, StartWithAnArmedTriggerIs13AndStartsNoStream) {
  session->trigger.active.store(1);
  EXPECT_EQ(Start(), 13u);
  EXPECT_EQ(camera.starts.load(), 0);
}

TEST_F(Statuses, StartInVideoMode0Is13AndStartsNoStream) {
  session->geometry.video_mode = 0;
  EXPECT_EQ(Start(), 13u);
  EXPECT_EQ(camera.starts.load(), 0);
  EXPECT_EQ(screen.windows_created, 0);
}

TEST_F(Statuses, StartStartsAStoppedStream) {
  EXPECT_EQ(Start(), 0u);
  EXPECT_EQ(camera.starts.load(), 1);
  EXPECT_EQ(session->stream.running.load(), 1u);
}

TEST_F(Statuses, StartLeavesARunningStreamAlone) {
  session->stream.running.store(1);
  EXPECT_EQ(Start(), 0u);
  EXPECT_EQ(camera.starts.load(), 0);
}

TEST_F(Statuses, StartReturnsTheStatusOfAStreamThatDoesNotStart) {
  camera.refuses_start.store(true);
  EXPECT_EQ(Start(), 5u);
  EXPECT_EQ(screen.windows_created, 0);
}

TEST_F(Statuses, StartWithoutAWindowIs7AndTheStreamRunsOn) {
  screen.refuses_windows = true;
  EXPECT_EQ(Start(), 7u);
  EXPECT_EQ(session->preview.window.load(), nullptr);
  EXPECT_EQ(session->stream.running.load(), 1u);
}

TEST_F(Statuses, StartPassesItsArgumentsToTheWindow) {
  int parent = 0;
  ASSERT_EQ(session->StartPreview("A title", 0x10CF0000, 12, 34, 64, 48, &parent, 77), 0u);
  EXPECT_EQ(screen.title, "A title");
  EXPECT_EQ(screen.arguments.style, 0x10CF0000u);
  EXPECT_EQ(screen.arguments.x, 12);
  EXPECT_EQ(screen.arguments.y, 34);
  EXPECT_EQ(screen.arguments.parent, &parent);
  EXPECT_EQ(screen.arguments.identifier, 77u);
}

TEST_F(Statuses, StartRecordsThePositionOnlyWhenItSucceeds) {
  screen.refuses_windows = true;
  EXPECT_EQ(Start(), 7u);
  EXPECT_EQ(session->preview.started_x, 0u);
  screen.refuses_windows = false;
  EXPECT_EQ(Start(), 0u);
  EXPECT_EQ(session->preview.started_x, 10u);
  EXPECT_EQ(session->preview.started_y, 20u);
}

TEST_F(Statuses, StartingTwiceResumesRatherThanOpensASecondWindow) {
  StartAndSeeFrames();
  ASSERT_EQ(session->PausePreview(1), 0u);
  EXPECT_EQ(Start(), 0u);
  EXPECT_EQ(screen.windows_created, 1);
  EXPECT_EQ(session->preview.suspended.load(), 0u);
  EXPECT_TRUE(SeesFrames(2));
}

TEST_F(Statuses, StartingTwiceRestartsAStreamThatWasStopped) {
  StartAndSeeFrames();
  ASSERT_EQ(session->StopVideoStream(), 0u);
  EXPECT_EQ(Start(), 0u);
  EXPECT_EQ(camera.starts.load(), 2);
}

// ---- Stop --------------------------------------------------------------------

TEST_F(Statuses, StopWithoutADeviceIs1) {
  session->link.handle = nullptr;
  EXPECT_EQ(session->StopPreview(), 1u);
  session->link.handle = &camera;
}

TEST_F(Statuses, StopWithoutAPreviewIs11) { EXPECT_EQ(session->StopPreview(), 11u); }

TEST_F(Statuses, StopLeavesTheStreamRunning) {
  StartAndSeeFrames();
  EXPECT_EQ(session->StopPreview(), 0u);
  EXPECT_EQ(session->stream.running.load(), 1u);
  EXPECT_EQ(camera.stops.load(), 0);
  EXPECT_EQ(session->preview.window.load(), nullptr);
  EXPECT_EQ(screen.windows_alive, 0);
}

TEST_F(Statuses, StopOfAWindowThatIsNotDestroyedIs1AndThePreviewIsGoneAllTheSame) {
  StartAndSeeFrames();
  screen.refuses_destruction = true;
  EXPECT_EQ(session->StopPreview(), 1u);
  EXPECT_EQ(session->preview.window.load(), nullptr);
  EXPECT_EQ(session->StopPreview(), 11u);
}

// ---- Pause -------------------------------------------------------------------

TEST_F(Statuses, PauseWithoutADeviceIs1) {
  session->link.handle = nullptr;
  EXPECT_EQ(session->PausePreview(1), 1u);
  session->link.handle = &camera;
}

TEST_F(Statuses, PauseWithoutAPreviewIs11EvenInTriggerMode) {
  session->trigger.active.store(1);
  EXPECT_EQ(session->PausePreview(0), 11u);
}

TEST_F(Statuses, ResumeInTriggerModeIs13AndNothingIsSent) {
  StartAndSeeFrames();
  ASSERT_EQ(session->PausePreview(1), 0u);
  session->trigger.active.store(1);
  EXPECT_EQ(session->PausePreview(0), 13u);
  EXPECT_EQ(session->preview.suspended.load(), 1u);
}

TEST_F(Statuses, SuspendInTriggerModeIsDone) {
  StartAndSeeFrames();
  session->trigger.active.store(1);
  EXPECT_EQ(session->PausePreview(1), 0u);
  EXPECT_EQ(session->preview.suspended.load(), 1u);
}

TEST_F(Statuses, AResumeThatFindsNoThreadIs10AndALaterOneSucceeds) {
  StartAndSeeFrames();
  ASSERT_EQ(session->PausePreview(1), 0u);
  for (int granted = 0; granted < 2; ++granted) {
    const Refusal refusal(platform::FaultPoint::kThreadStart, granted);
    EXPECT_EQ(session->PausePreview(0), 10u) << granted;
    EXPECT_EQ(session->preview.suspended.load(), 1u);
    EXPECT_TRUE(IsQuiet());
  }
  EXPECT_EQ(session->PausePreview(0), 0u);
  EXPECT_TRUE(SeesFrames(2));
}

TEST_F(Statuses, OnAWindowThatHasGoneSuspendIs10AndResumeIs0) {
  StartAndSeeFrames();
  screen.DestroyWithParent();
  EXPECT_EQ(session->PausePreview(1), 10u);
  EXPECT_EQ(session->PausePreview(0), 0u);
}

// ---- Colour conversion -------------------------------------------------------

TEST_F(Statuses, ConversionWithoutADeviceIs1) {
  session->link.handle = nullptr;
  EXPECT_EQ(session->SetPreviewColorConversion(1), 1u);
  session->link.handle = &camera;
}

TEST_F(Statuses, ConversionOnAMonochromeCameraIs12WhateverTheOption) {
  UseMonochrome(1);
  EXPECT_EQ(session->SetPreviewColorConversion(1), 12u);
  EXPECT_EQ(session->SetPreviewColorConversion(6), 12u);
}

TEST_F(Statuses, ConversionTakes0To5And16To18And255) {
  for (std::uint32_t option = 0; option < 300; ++option) {
    const bool valid = option < 6 || (option > 15 && option < 19) || option == 255;
    session->preview.conversion.store(1000);
    EXPECT_EQ(session->SetPreviewColorConversion(option), valid ? 0u : 7u) << option;
    EXPECT_EQ(session->preview.conversion.load(), valid ? option : 1000u) << option;
  }
  EXPECT_EQ(session->SetPreviewColorConversion(0xFFFFFFFFu), 7u);
}

// ---- Position and size -------------------------------------------------------

TEST_F(Statuses, PositionAndSizeCheckDeviceThenPointersThenPreview) {
  std::uint32_t value = 0;
  session->link.handle = nullptr;
  EXPECT_EQ(session->GetPreviewWindowPos(nullptr, nullptr), 1u);
  EXPECT_EQ(session->GetPreviewWindowSize(nullptr, nullptr), 1u);
  session->link.handle = &camera;
  EXPECT_EQ(session->GetPreviewWindowPos(nullptr, &value), 2u);
  EXPECT_EQ(session->GetPreviewWindowPos(&value, nullptr), 2u);
  EXPECT_EQ(session->GetPreviewWindowSize(nullptr, &value), 2u);
  EXPECT_EQ(session->GetPreviewWindowSize(&value, nullptr), 2u);
  EXPECT_EQ(session->GetPreviewWindowPos(&value, &value), 11u);
  EXPECT_EQ(session->GetPreviewWindowSize(&value, &value), 11u);
}

TEST_F(Statuses, PositionOfAWindowThatHidesItsPlacementIs10) {
  ASSERT_EQ(Start(), 0u);
  screen.hides_placement = true;
  std::uint32_t x = 0;
  std::uint32_t y = 0;
  EXPECT_EQ(session->GetPreviewWindowPos(&x, &y), 10u);
}

TEST_F(Statuses, PositionFollowsTheShowState) {
  ASSERT_EQ(Start(), 0u);
  screen.placement = {1, 101, 102, 103, 104, {105, 106, 207, 208}};
  struct Row {
    std::uint32_t show_state, x, y;
  };
  for (const Row row : {Row{0, 105, 106}, Row{1, 105, 106}, Row{2, 101, 102}, Row{3, 103, 104},
                        Row{4, 105, 106}, Row{6, 105, 106}}) {
    screen.placement.show_state = row.show_state;
    std::uint32_t x = 0;
    std::uint32_t y = 0;
    EXPECT_EQ(session->GetPreviewWindowPos(&x, &y), 0u);
    EXPECT_EQ(x, row.x) << row.show_state;
    EXPECT_EQ(y, row.y) << row.show_state;
  }
}

TEST_F(Statuses, APositionLeftOfTheScreenComesAsTwosComplement) {
  ASSERT_EQ(Start(), 0u);
  screen.placement.normal = {-5, -7, 100, 100};
  std::uint32_t x = 0;
  std::uint32_t y = 0;
  EXPECT_EQ(session->GetPreviewWindowPos(&x, &y), 0u);
  EXPECT_EQ(x, 0xFFFFFFFBu);
  EXPECT_EQ(y, 0xFFFFFFF9u);
}

TEST_F(Statuses, SizeIsThatOfTheClientArea) {
  ASSERT_EQ(Start(320, 240), 0u);
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  EXPECT_EQ(session->GetPreviewWindowSize(&width, &height), 0u);
  EXPECT_EQ(width, 320u);
  EXPECT_EQ(height, 240u);
}

TEST_F(Statuses, OnAWindowThatHasGonePositionIs10AndSizeIsNothing) {
  ASSERT_EQ(Start(), 0u);
  screen.DestroyWithParent();
  std::uint32_t x = 9;
  std::uint32_t y = 9;
  EXPECT_EQ(session->GetPreviewWindowPos(&x, &y), 10u);
  EXPECT_EQ(session->GetPreviewWindowSize(&x, &y), 0u);
  EXPECT_EQ(x, 0u);
  EXPECT_EQ(y, 0u);
}

// ---- Placing -----------------------------------------------------------------

TEST_F(Statuses, PlacingChecksDeviceThenRectangleThenPreview) {
  const OrmidexRect rectangle = {1, 2, 3, 4};
  session->link.handle = nullptr;
  EXPECT_EQ(session->SetPreviewWindow(nullptr), 1u);
  session->link.handle = &camera;
  EXPECT_EQ(session->SetPreviewWindow(nullptr), 2u);
  EXPECT_EQ(session->SetPreviewWindow(&rectangle), 11u);
}

TEST_F(Statuses, PlacingRemembersTheOriginWithoutAPreview) {
  const OrmidexRect rectangle = {-30, 40, 70, 140};
  EXPECT_EQ(session->SetPreviewWindow(&rectangle), 11u);
  EXPECT_EQ(session->preview.origin_x, 0xFFFFFFE2u);
  EXPECT_EQ(session->preview.origin_y, 40u);
}

TEST_F(Statuses, PlacingIs0WhateverTheWindowDid) {
  ASSERT_EQ(Start(), 0u);
  const OrmidexRect rectangle = {1, 2, 101, 102};
  screen.hides_placement = true;
  EXPECT_EQ(session->SetPreviewWindow(&rectangle), 0u);
  screen.DestroyWithParent();
  EXPECT_EQ(session->SetPreviewWindow(&rectangle), 0u);
}

TEST_F(Statuses, ResetChecksDeviceThenPreviewThenPlacement) {
  session->link.handle = nullptr;
  EXPECT_EQ(session->ResetPreviewWindow(), 1u);
  session->link.handle = &camera;
  EXPECT_EQ(session->ResetPreviewWindow(), 11u);
  ASSERT_EQ(Start(), 0u);
  screen.hides_placement = true;
  EXPECT_EQ(session->ResetPreviewWindow(), 10u);
}

// ---- Failures of creation ----------------------------------------------------

class Creation : public PreviewTest {
 protected:
  void ExpectNothingLeft() {
    EXPECT_EQ(session->preview.window.load(), nullptr);
    EXPECT_EQ(screen.windows_alive, 0);
    EXPECT_TRUE(IsQuiet());
    // The camera goes on, and a second attempt succeeds.
    EXPECT_EQ(session->stream.running.load(), 1u);
    EXPECT_EQ(Start(), 0u);
    EXPECT_TRUE(SeesFrames(2));
    EXPECT_EQ(session->StopPreview(), 0u);
  }
};

TEST_F(Creation, EachOfTheFourEventsThatIsRefusedMakesIt7) {
  for (int granted = 0; granted < 4; ++granted) {
    {
      const Refusal refusal(platform::FaultPoint::kEventCreate, granted);
      EXPECT_EQ(Start(), 7u) << granted;
      EXPECT_FALSE(platform::RefusalPending(platform::FaultPoint::kEventCreate));
    }
    ExpectNothingLeft();
  }
}

// The saved header, the raw buffer, the display buffer and the display header. (The
// stream runs already: starting it takes memory too.)
TEST_F(Creation, EachOfTheFourBuffersThatIsRefusedMakesIt7) {
  session->stream.running.store(1);
  for (int granted = 0; granted < 4; ++granted) {
    {
      const Refusal refusal(platform::FaultPoint::kAllocation, granted);
      EXPECT_EQ(Start(), 7u) << granted;
      EXPECT_FALSE(platform::RefusalPending(platform::FaultPoint::kAllocation));
    }
    ExpectNothingLeft();
  }
}

TEST_F(Creation, WithoutADrawingContextItIs7) {
  screen.refuses_contexts = true;
  EXPECT_EQ(Start(), 7u);
  screen.refuses_contexts = false;
  ExpectNothingLeft();
}

TEST_F(Creation, EachOfTheTwoThreadsThatIsRefusedMakesIt7) {
  for (int granted = 0; granted < 2; ++granted) {
    {
      const Refusal refusal(platform::FaultPoint::kThreadStart, granted);
      EXPECT_EQ(Start(), 7u) << granted;
    }
    ExpectNothingLeft();
  }
}

TEST_F(Creation, WithoutATimerItIs7) {
  {
    const Refusal refusal(platform::FaultPoint::kTimerStart);
    EXPECT_EQ(Start(), 7u);
  }
  ExpectNothingLeft();
}

TEST_F(Creation, ClearsTheSuspendedFlagAndTheFrameRateOfAnEarlierPreview) {
  session->preview.suspended.store(1);
  session->preview.frame_rate.store(25.0f);
  ASSERT_EQ(Start(), 0u);
  EXPECT_EQ(session->preview.suspended.load(), 0u);
  EXPECT_EQ(session->preview.frame_rate.load(), 0.0f);
}

TEST_F(Creation, TakesTheContextBeforePlacingAndGivesItBackAtTheEnd) {
  ASSERT_EQ(Start(), 0u);
  ASSERT_EQ(session->StopPreview(), 0u);
  EXPECT_EQ(screen.calls,
            (std::vector<std::string>{"acquire context", "place", "destroy", "release context"}));
}

// ---- Window size at the start ------------------------------------------------

class StartSize : public PreviewTest {
 protected:
  std::vector<std::int32_t> ClientSize(std::uint32_t width, std::uint32_t height) {
    EXPECT_EQ(Start(width, height), 0u);
    return {screen.client_width, screen.client_height};
  }
};

TEST_F(StartSize, IsTheOneGiven) {
  EXPECT_EQ(ClientSize(123, 45), (std::vector<std::int32_t>{123, 45}));
}

// Sub-sampled by 2, the sub-window of 128 x 96 makes a frame of 64 x 48.
TEST_F(StartSize, IsTheFramesWhenTheWidthSaysSo) {
  session->geometry.factor = 2;
  EXPECT_EQ(ClientSize(kSizeOfFrame, 45), (std::vector<std::int32_t>{64, 48}));
}

TEST_F(StartSize, IsTheFramesWhenTheHeightSaysSo) {
  session->geometry.factor = 4;
  EXPECT_EQ(ClientSize(45, kSizeOfFrame), (std::vector<std::int32_t>{64, 48}));
}

}  // namespace
}  // namespace ormidex::testing
