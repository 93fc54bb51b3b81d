// Where the window goes: borders measured, remembered and added.
#include "ormidex.h"
#include "preview/frame_rate.h"
#include "preview/preview_test.h"

namespace ormidex::testing {
namespace {

using Sides = std::vector<std::int32_t>;

class Placement : public PreviewTest {
 protected:
  Sides LastPlace() const {
    const platform::WindowRect& place = screen.places.back();
    return {place.left, place.top, place.right, place.bottom};
  }
};

// x 10, y 20, client 320 x 240; borders 8 and 27.
TEST_F(Placement, AtTheStartTheClientAreaGetsTheWantedSize) {
  ASSERT_EQ(Start(320, 240), 0u);
  EXPECT_EQ(LastPlace(), (Sides{10, 20, 338, 287}));
}

TEST_F(Placement, SetGivesTheClientAreaTheRectanglesSize) {
  ASSERT_EQ(Start(), 0u);
  screen.border_width = 16;
  screen.border_height = 39;
  const OrmidexRect rectangle = {-100, 50, 540, 530};
  EXPECT_EQ(session->SetPreviewWindow(&rectangle), 0u);
  EXPECT_EQ(LastPlace(), (Sides{-100, 50, 556, 569}));
}

TEST_F(Placement, OfAMinimisedWindowUsesTheBordersLastMeasured) {
  screen.border_width = 6;
  screen.border_height = 25;
  ASSERT_EQ(Start(), 0u);
  screen.placement.show_state = platform::kShowMinimised;
  screen.border_width = 160;  // of its icon
  screen.border_height = 31;
  const OrmidexRect rectangle = {0, 0, 100, 50};
  EXPECT_EQ(session->SetPreviewWindow(&rectangle), 0u);
  EXPECT_EQ(LastPlace(), (Sides{0, 0, 106, 75}));
}

TEST_F(Placement, OfAMinimisedWindowUsesTheBordersThatAnotherPreviewMeasured) {
  screen.border_width = 4;
  screen.border_height = 23;
  ASSERT_EQ(Start(), 0u);
  ASSERT_EQ(session->StopPreview(), 0u);
  screen.placement.show_state = platform::kShowMinimised;
  screen.border_width = 160;
  screen.border_height = 31;
  ASSERT_EQ(Start(320, 240), 0u);
  EXPECT_EQ(LastPlace(), (Sides{10, 20, 334, 283}));
}

TEST_F(Placement, ResetShowsTheFrameOneToOneWhereANormalWindowIs) {
  ASSERT_EQ(Start(320, 240), 0u);
  screen.placement.normal = {200, 100, 528, 367};
  EXPECT_EQ(session->ResetPreviewWindow(), 0u);
  EXPECT_EQ(LastPlace(), (Sides{200, 100, 200 + 64 + 8, 100 + 48 + 27}));
  // The origin it used is remembered.
  EXPECT_EQ(session->preview.origin_x, 200u);
  EXPECT_EQ(session->preview.origin_y, 100u);
  EXPECT_EQ(screen.calls.back(), "place");
}

TEST_F(Placement, ResetTakesTheOriginLastSetWhenTheShowStateHasBit1) {
  const OrmidexRect rectangle = {30, 40, 130, 140};
  ASSERT_EQ(Start(320, 240), 0u);
  ASSERT_EQ(session->SetPreviewWindow(&rectangle), 0u);
  for (const std::uint32_t show_state : {2u, 3u, 6u, 7u, 10u, 11u}) {
    screen.placement.show_state = show_state;
    screen.placement.normal = {200, 100, 528, 367};
    EXPECT_EQ(session->ResetPreviewWindow(), 0u);
    EXPECT_EQ(screen.places.back().left, 30) << show_state;
    EXPECT_EQ(screen.places.back().top, 40) << show_state;
  }
  for (const std::uint32_t show_state : {0u, 1u, 4u, 5u, 8u, 9u}) {
    screen.placement.show_state = show_state;
    screen.placement.normal = {200, 100, 528, 367};
    EXPECT_EQ(session->ResetPreviewWindow(), 0u);
    EXPECT_EQ(screen.places.back().left, 200) << show_state;
    EXPECT_EQ(screen.places.back().top, 100) << show_state;
    session->preview.origin_x = 30;
    session->preview.origin_y = 40;
  }
}

TEST_F(Placement, ResetBringsAMaximisedWindowBackAndLeavesAMinimisedOne) {
  ASSERT_EQ(Start(), 0u);
  screen.placement.show_state = platform::kShowMinimised;
  EXPECT_EQ(session->ResetPreviewWindow(), 0u);
  EXPECT_EQ(screen.calls.back(), "place");
  screen.placement.show_state = platform::kShowMaximised;
  EXPECT_EQ(session->ResetPreviewWindow(), 0u);
  EXPECT_EQ(screen.calls.back(), "show normal");
}

TEST(FrameRate, IsFramesTimes1000OverTheElapsedMilliseconds) {
  EXPECT_EQ(preview::FrameRate(60.0f, 1000.0), 60.0f);
  EXPECT_EQ(preview::FrameRate(30.0f, 500.0), 60.0f);
  EXPECT_EQ(preview::FrameRate(7.0f, 2000.0), 3.5f);
  EXPECT_EQ(preview::FrameRate(0.0f, 1000.0), 0.0f);
}

TEST(FrameRate, IsZeroWhenNoTimeHasPassed) { EXPECT_EQ(preview::FrameRate(5.0f, 0.0), 0.0f); }

// The clock wraps after 49.7 days.
TEST(FrameRate, IsZeroWhenTheClockHasWrapped) {
  EXPECT_EQ(preview::FrameRate(5.0f, 500.0 - 4294967000.0), 0.0f);
}

class MeasuredRate : public PreviewTest {};

// A camera of about 100 frames a second; the reads alone take 10 ms each.
TEST_F(MeasuredRate, IsReportedAfterASecond) {
  camera.frame_interval_ms.store(10);
  ASSERT_EQ(Start(), 0u);
  EXPECT_EQ(session->preview.frame_rate.load(), 0.0f);
  ASSERT_TRUE(Eventually([&] { return session->preview.frame_rate.load() > 0.0f; }, 3000));
  EXPECT_LE(session->preview.frame_rate.load(), 101.0f);
  std::uint32_t rate = 0;
  EXPECT_EQ(session->GetCurrentFrameRate(&rate), 0u);
  EXPECT_EQ(rate, static_cast<std::uint32_t>(session->preview.frame_rate.load()));
}

TEST_F(MeasuredRate, FallsToZeroWhileNothingIsDrawn) {
  camera.frame_interval_ms.store(5);
  ASSERT_EQ(Start(), 0u);
  ASSERT_TRUE(Eventually([&] { return session->preview.frame_rate.load() > 0.0f; }, 3000));
  ASSERT_EQ(session->PausePreview(1), 0u);
  EXPECT_TRUE(Eventually([&] { return session->preview.frame_rate.load() == 0.0f; }, 4000));
}

}  // namespace
}  // namespace ormidex::testing
