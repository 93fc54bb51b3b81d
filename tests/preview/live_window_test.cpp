// The two threads, their buffers, overlays and the snapshot.
#include <cstdio>

#include "device/callbacks.h"
#include "platform/timer.h"
#include "preview/preview_test.h"
#include "support/faults.h"
#include "support/quickest.h"

namespace ormidex::testing {
namespace {

bool IsAll(const std::vector<std::uint8_t>& bytes, std::uint8_t value) {
  for (const std::uint8_t byte : bytes) {
    if (byte != value) return false;
  }
  return !bytes.empty();
}

std::uint32_t Word(const DrawnImage& drawn, std::size_t offset) {
  std::uint32_t word = 0;
  std::memcpy(&word, drawn.header.data() + offset, sizeof(word));
  return word;
}

std::uint16_t HalfWord(const DrawnImage& drawn, std::size_t offset) {
  std::uint16_t word = 0;
  std::memcpy(&word, drawn.header.data() + offset, sizeof(word));
  return word;
}

// What the overlay callback of a test saw; the callback has no user data.
struct OverlayCalls {
  std::atomic<int> calls{0};
  std::atomic<std::uint32_t> format{0};
  std::atomic<std::uint32_t> width{0};
  std::atomic<std::uint32_t> height{0};
  std::atomic<void*> handle{nullptr};
  void Clear() { calls.store(0), format.store(0), width.store(0), height.store(0); }
};
OverlayCalls overlay;

// Paints the first byte of what it is shown.
std::uint32_t ORMIDEX_CALLBACK MarkFirstByte(void* handle, void* image, std::uint32_t width,
                                             std::uint32_t height, std::uint32_t format) {
  overlay.calls.fetch_add(1);
  overlay.handle.store(handle);
  overlay.width.store(width);
  overlay.height.store(height);
  overlay.format.store(format);
  *static_cast<std::uint8_t*>(image) = 0xEE;
  return 0;
}

class Live : public PreviewTest {
 protected:
  Live() { overlay.Clear(); }
};

// ---- What is drawn -----------------------------------------------------------

TEST_F(Live, ColourFramesAreDrawnAs24BitsWithTheSessionsHeader) {
  camera.fixed_byte.store(0x50);
  StartAndSeeFrames();
  const DrawnImage drawn = screen.LastDrawn();
  EXPECT_EQ(drawn.image.bits_per_pixel, 24u);
  EXPECT_EQ(drawn.image.width, 64);
  EXPECT_EQ(drawn.image.height, 48);
  EXPECT_EQ(drawn.destination_width, 320);
  EXPECT_EQ(drawn.destination_height, 240);
  EXPECT_EQ(Word(drawn, 0), 40u);
  EXPECT_EQ(Word(drawn, 4), 64u);
  EXPECT_EQ(Word(drawn, 8), 48u);
  EXPECT_EQ(HalfWord(drawn, 12), 1u);
  EXPECT_EQ(HalfWord(drawn, 14), 24u);
  EXPECT_EQ(Word(drawn, 20), 64u * 48 * 3);
  EXPECT_TRUE(IsAll(drawn.pixels, 0x50));
  EXPECT_EQ(camera.last_read_bytes.load(), 64u * 48);
}

TEST_F(Live, WideColourFramesShowTheirHighBytes) {
  session->geometry.bytes_per_pixel = 2;
  session->RecomputeFrameSizes();
  camera.fixed_byte.store(0x37);  // samples of 0x3737
  StartAndSeeFrames();
  EXPECT_TRUE(IsAll(screen.LastDrawn().pixels, 0x37));
  EXPECT_EQ(camera.last_read_bytes.load(), 64u * 48 * 2);
}

TEST_F(Live, WideMonochromeFramesAreDrawnAs24Bits) {
  UseMonochrome(2);
  camera.fixed_byte.store(0x21);
  StartAndSeeFrames();
  const DrawnImage drawn = screen.LastDrawn();
  EXPECT_EQ(drawn.image.bits_per_pixel, 24u);
  EXPECT_EQ(HalfWord(drawn, 14), 24u);
  EXPECT_TRUE(IsAll(drawn.pixels, 0x21));
}

TEST_F(Live, MonochromeFramesAreDrawnAs8BitsWithAGreyTable) {
  UseMonochrome(1);
  camera.fixed_byte.store(0x99);
  StartAndSeeFrames();
  const DrawnImage drawn = screen.LastDrawn();
  EXPECT_EQ(drawn.image.bits_per_pixel, 8u);
  EXPECT_EQ(HalfWord(drawn, 14), 8u);
  ASSERT_EQ(drawn.header.size(), 1064u);
  for (std::uint32_t i = 0; i < 256; ++i) {
    EXPECT_EQ(Word(drawn, 40 + 4 * i), i * 0x010101u);
  }
  EXPECT_TRUE(IsAll(drawn.pixels, 0x99));
}

TEST_F(Live, ADifferentWindowSizeIsUsedFromTheNextImageOn) {
  StartAndSeeFrames();
  screen.Resize(33, 44);
  ASSERT_TRUE(SeesFrames(2));
  const DrawnImage drawn = screen.LastDrawn();
  EXPECT_EQ(drawn.destination_width, 33);
  EXPECT_EQ(drawn.destination_height, 44);
}

TEST_F(Live, FailedReadsAreTriedAgainUntilOneSucceeds) {
  camera.failures_left.store(25);
  StartAndSeeFrames();
  EXPECT_EQ(camera.failed_reads.load(), 25);
}

TEST_F(Live, AnImageIsNeverHalfOfOneFrameAndHalfOfAnother) {
  camera.frame_interval_ms.store(0);
  StartAndSeeFrames();
  for (int i = 0; i < 100; ++i) {
    ASSERT_TRUE(SeesFrames(1));
    const DrawnImage drawn = screen.LastDrawn();
    ASSERT_TRUE(IsAll(drawn.pixels, drawn.pixels[0]));
  }
}

// ---- Overlays ----------------------------------------------------------------

TEST_F(Live, TheOverlaySees24BitImagesWithFormat3) {
  UseOverlay(&MarkFirstByte);
  camera.fixed_byte.store(0x10);
  StartAndSeeFrames();
  EXPECT_EQ(overlay.format.load(), 3u);
  EXPECT_EQ(overlay.width.load(), 64u);
  EXPECT_EQ(overlay.height.load(), 48u);
  EXPECT_EQ(overlay.handle.load(), static_cast<void*>(&*session));
  // It draws into what is shown: the first byte is the lowest row's left end.
  EXPECT_EQ(screen.LastDrawn().pixels[0], 0xEE);
  EXPECT_EQ(screen.LastDrawn().pixels[1], 0x10);
}

TEST_F(Live, TheOverlaySeesWideMonochromeImagesWithFormat3) {
  UseMonochrome(2);
  UseOverlay(&MarkFirstByte);
  StartAndSeeFrames();
  EXPECT_EQ(overlay.format.load(), 3u);
}

// The raw frame is top-down: its first byte becomes the top row's left end, which
// is the last row of the bitmap.
TEST_F(Live, TheOverlaySeesTheRawMonochromeFrameWithFormat1Once) {
  UseMonochrome(1);
  UseOverlay(&MarkFirstByte);
  camera.fixed_byte.store(0x10);
  camera.frames_left.store(5);
  ASSERT_EQ(Start(), kOk);
  ASSERT_TRUE(HasShown(5));
  EXPECT_EQ(overlay.format.load(), 1u);
  EXPECT_EQ(overlay.calls.load(), 5);  // by the thread that grabs, and by no other
  const DrawnImage drawn = screen.LastDrawn();
  EXPECT_EQ(drawn.pixels[0], 0x10);
  EXPECT_EQ(drawn.pixels[64 * 47], 0xEE);
}

TEST_F(Live, TheOverlayIsExchangedWhileThePreviewRuns) {
  camera.frame_interval_ms.store(0);
  camera.fixed_byte.store(0x10);
  StartAndSeeFrames();
  for (int i = 0; i < 100; ++i) {
    UseOverlay(i % 2 == 0 ? &MarkFirstByte : nullptr);
    if (i % 10 == 0) {
      ASSERT_TRUE(SeesFrames(1));
    }
  }
  UseOverlay(nullptr);
  const int calls = overlay.calls.load();
  ASSERT_TRUE(SeesFrames(5));
  EXPECT_EQ(overlay.calls.load(), calls);
  EXPECT_EQ(screen.LastDrawn().pixels[0], 0x10);
  UseOverlay(&MarkFirstByte);
  ASSERT_TRUE(SeesFrames(5));
  EXPECT_EQ(screen.LastDrawn().pixels[0], 0xEE);
}

// ---- Suspension, resumption and painting -------------------------------------

TEST_F(Live, SuspendStopsReadingAndDrawing) {
  StartAndSeeFrames();
  ASSERT_EQ(session->PausePreview(1), kOk);
  const int frames = camera.frames.load();
  EXPECT_TRUE(IsQuiet());
  EXPECT_EQ(camera.frames.load(), frames);
}

TEST_F(Live, SuspendingTwiceThenResumingOnceResumes) {
  StartAndSeeFrames();
  EXPECT_EQ(session->PausePreview(1), kOk);
  EXPECT_EQ(session->PausePreview(1), kOk);
  EXPECT_EQ(session->PausePreview(0), kOk);
  EXPECT_EQ(session->preview.suspended.load(), 0u);
  EXPECT_TRUE(SeesFrames(3));
}

TEST_F(Live, ResumingARunningPreviewChangesNothing) {
  StartAndSeeFrames();
  EXPECT_EQ(session->PausePreview(0), kOk);
  EXPECT_TRUE(SeesFrames(3));
}

TEST_F(Live, AnyNonZeroFlagSuspends) {
  StartAndSeeFrames();
  EXPECT_EQ(session->PausePreview(0x80000000u), kOk);
  EXPECT_EQ(session->preview.suspended.load(), 1u);
}

TEST_F(Live, PaintingWhileFramesFlowDrawsNothing) {
  camera.frames_left.store(3);
  ASSERT_EQ(Start(), kOk);
  ASSERT_TRUE(HasShown(3));
  for (int i = 0; i < 5; ++i) screen.Expose();
  EXPECT_TRUE(IsQuiet());
  EXPECT_EQ(screen.draws.load(), 3);
}

TEST_F(Live, PaintingWhileSuspendedShowsTheSnapshot) {
  camera.fixed_byte.store(0x40);
  StartAndSeeFrames();
  ASSERT_EQ(session->PausePreview(1), kOk);
  const DrawnImage shown = screen.LastDrawn();
  for (int painted = 1; painted <= 3; ++painted) {
    const int draws = screen.draws.load();
    screen.Expose();
    EXPECT_EQ(screen.draws.load(), draws + 1);
    EXPECT_TRUE(IsAll(screen.LastDrawn().pixels, 0x40));
    EXPECT_EQ(screen.LastDrawn().header, shown.header);
    EXPECT_NE(screen.LastDrawn().image.pixels, shown.image.pixels);  // a copy
  }
  // A later suspension takes a new one.
  camera.fixed_byte.store(0x70);
  ASSERT_EQ(session->PausePreview(0), kOk);
  const int frames = camera.frames.load();
  ASSERT_TRUE(Eventually([&] { return camera.frames.load() > frames + 3; }));
  ASSERT_EQ(session->PausePreview(1), kOk);
  screen.Expose();
  EXPECT_TRUE(IsAll(screen.LastDrawn().pixels, 0x70));
}

TEST_F(Live, PaintingASuspendedMonochromePreviewUsesItsGreyTable) {
  UseMonochrome(1);
  StartAndSeeFrames();
  ASSERT_EQ(session->PausePreview(1), kOk);
  const DrawnImage shown = screen.LastDrawn();
  screen.Expose();
  EXPECT_EQ(screen.LastDrawn().image.bits_per_pixel, 8u);
  EXPECT_EQ(screen.LastDrawn().header, shown.header);
}

TEST_F(Live, PaintingCallsTheOverlayOnTheSnapshot) {
  StartAndSeeFrames();
  ASSERT_EQ(session->PausePreview(1), kOk);
  UseOverlay(&MarkFirstByte);
  screen.Expose();
  EXPECT_EQ(overlay.calls.load(), 1);
  EXPECT_EQ(overlay.format.load(), 3u);
  EXPECT_EQ(screen.LastDrawn().pixels[0], 0xEE);
}

TEST_F(Live, PaintingCallsTheOverlayOnAMonochromeSnapshotWithFormat1) {
  UseMonochrome(1);
  StartAndSeeFrames();
  ASSERT_EQ(session->PausePreview(1), kOk);
  UseOverlay(&MarkFirstByte);
  screen.Expose();
  EXPECT_EQ(overlay.format.load(), 1u);
}

// A still capture switches the video off with the preview suspended before; here the
// preview runs, and painting must not be left to a stream that shows nothing.
TEST_F(Live, PaintingInVideoMode0DrawsTheSnapshotOnceThereIsOne) {
  camera.frames_left.store(3);
  ASSERT_EQ(Start(), kOk);
  ASSERT_TRUE(HasShown(3));
  session->geometry.video_mode = 0;
  screen.Expose();
  EXPECT_TRUE(IsQuiet());
  ASSERT_EQ(session->PausePreview(1), kOk);
  ASSERT_EQ(session->PausePreview(0), kOk);
  const int draws = screen.draws.load();
  screen.Expose();
  EXPECT_EQ(screen.draws.load(), draws + 1);
  session->geometry.video_mode = 1;
}

TEST_F(Live, WithoutMemoryForASnapshotThePreviewIsSuspendedAllTheSame) {
  StartAndSeeFrames();
  {
    const Refusal refusal(platform::FaultPoint::kAllocation);
    EXPECT_EQ(session->PausePreview(1), kOk);
  }
  const int draws = screen.draws.load();
  screen.Expose();
  EXPECT_EQ(screen.draws.load(), draws);
  EXPECT_EQ(session->PausePreview(0), kOk);
  EXPECT_TRUE(SeesFrames(2));
}

// ---- Geometry ----------------------------------------------------------------

TEST_F(Live, AGeometryMessageGivesNewBuffersAndHeader) {
  StartAndSeeFrames();
  ASSERT_EQ(session->PausePreview(1), kOk);
  UseFrame(128, 32);
  Send(preview::kMessageGeometry);
  ASSERT_EQ(session->PausePreview(0), kOk);
  ASSERT_TRUE(SeesFrames(3));
  const DrawnImage drawn = screen.LastDrawn();
  EXPECT_EQ(drawn.image.width, 128);
  EXPECT_EQ(drawn.image.height, 32);
  EXPECT_EQ(Word(drawn, 4), 128u);
  EXPECT_EQ(Word(drawn, 8), 32u);
  EXPECT_EQ(camera.last_read_bytes.load(), 128u * 32);
}

TEST_F(Live, AfterAGeometryMessageTheSnapshotKeepsItsOwnSize) {
  StartAndSeeFrames();
  ASSERT_EQ(session->PausePreview(1), kOk);
  const DrawnImage shown = screen.LastDrawn();
  UseFrame(128, 32);
  Send(preview::kMessageGeometry);
  screen.Expose();
  EXPECT_EQ(screen.LastDrawn().image.width, 64);
  EXPECT_EQ(screen.LastDrawn().pixels, shown.pixels);
}

TEST_F(Live, AGeometryMessageToARunningPreviewIsSafeToo) {
  camera.frame_interval_ms.store(0);
  StartAndSeeFrames();
  for (int i = 0; i < 200; ++i) Send(preview::kMessageGeometry);
  EXPECT_TRUE(SeesFrames(3));
}

TEST_F(Live, WithoutMemoryForNewBuffersResumeIs10UntilThereIsSome) {
  StartAndSeeFrames();
  ASSERT_EQ(session->PausePreview(1), kOk);
  for (int granted = 0; granted < 3; ++granted) {
    const Refusal refusal(platform::FaultPoint::kAllocation, granted);
    Send(preview::kMessageGeometry);
    EXPECT_EQ(session->PausePreview(0), kGeneralFailure) << granted;
    EXPECT_EQ(session->PausePreview(1), kOk);
  }
  Send(preview::kMessageGeometry);
  EXPECT_EQ(session->PausePreview(0), kOk);
  EXPECT_TRUE(SeesFrames(2));
}

TEST_F(Live, ARunningPreviewWithoutMemoryForNewBuffersCanStillBeSuspendedAndStopped) {
  StartAndSeeFrames();
  {
    const Refusal refusal(platform::FaultPoint::kAllocation, 1);
    Send(preview::kMessageGeometry);
  }
  EXPECT_TRUE(IsQuiet());
  EXPECT_EQ(session->PausePreview(1), kOk);
  screen.Expose();
  EXPECT_EQ(session->StopPreview(), kOk);
}

TEST_F(Live, UnknownMessagesChangeNothing) {
  StartAndSeeFrames();
  Send(0x400);
  Send(0x404, 1);
  EXPECT_TRUE(SeesFrames(2));
  EXPECT_EQ(session->preview.suspended.load(), 0u);
}

// ---- The end of the window ---------------------------------------------------

TEST_F(Live, AWindowThatGoesWithItsParentEndsTheThreads) {
  StartAndSeeFrames();
  screen.DestroyWithParent();
  EXPECT_TRUE(IsQuiet());
  const int frames = camera.frames.load();
  platform::SleepMilliseconds(30);
  EXPECT_EQ(camera.frames.load(), frames);
  EXPECT_EQ(session->StopPreview(), kNoCamera);
  EXPECT_EQ(Start(), kOk);
  EXPECT_TRUE(SeesFrames(2));
}

// ---- Latencies ---------------------------------------------------------------

class Latency : public PreviewTest {
 protected:
  void Stop() { EXPECT_EQ(session->StopPreview(), kOk); }
};

// A camera of some 60 frames a second: 16 ms and what the scheduler adds.
TEST_F(Latency, StopReturnsWithin50MillisecondsWhileFramesFlow) {
  camera.frame_interval_ms.store(16);
  EXPECT_LT(QuickestMicroseconds(
                50'000, [&] { StartAndSeeFrames(); }, [&] { Stop(); }),
            50'000u);
}

TEST_F(Latency, StopWaitsForASilentCamerasReadAndNotForItsNext) {
  camera.silence_ms.store(400);
  const auto fall_silent = [&] {
    const int failed = camera.failed_reads.load();
    camera.frames_left.store(3);
    ASSERT_EQ(Start(), kOk);
    ASSERT_TRUE(Eventually([&] { return camera.failed_reads.load() > failed; }));
  };
  EXPECT_LT(QuickestMicroseconds(1'000'000, fall_silent, [&] { Stop(); }), 1'000'000u);
}

}  // namespace
}  // namespace ormidex::testing
