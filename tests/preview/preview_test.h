// A camera session with frames, on a screen without windows.
#ifndef ORMIDEX_TESTS_PREVIEW_PREVIEW_TEST_H_
#define ORMIDEX_TESTS_PREVIEW_PREVIEW_TEST_H_

#include <gtest/gtest.h>

#include "device/session.h"
#include "platform/critical_section.h"
#include "platform/fault_points.h"
#include "preview/fake_window.h"
#include "preview/frame_source.h"
#include "preview/preview_window.h"
#include "support/test_session.h"

namespace ormidex::testing {

class PreviewTest : public ::testing::Test {
 protected:
  PreviewTest() : session(camera) {
    session->bitmap_header.header_bytes = sizeof(session->bitmap_header);
    session->bitmap_header.planes = 1;
    session->bitmap_header.bits_per_pixel = 24;
    UseFrame(64, 48);
  }
  ~PreviewTest() override {
    platform::ClearFaults();
    session->trigger.active.store(0);
    session->StopPreview();
  }

  void UseFrame(std::uint32_t width, std::uint32_t height) {
    session->geometry.width = width;
    session->geometry.height = height;
    session->RecomputeFrameSizes();
  }
  void UseMonochrome(std::uint32_t bytes_per_pixel) {
    session->identity.imager_type = device::kImagerMono;
    session->geometry.bytes_per_pixel = bytes_per_pixel;
    session->RecomputeFrameSizes();
  }

  Status Start(std::uint32_t width = 320, std::uint32_t height = 240) {
    return session->StartPreview("Preview", 0, 10, 20, width, height, nullptr, 0);
  }
  void StartAndSeeFrames() {
    ASSERT_EQ(Start(), kOk);
    ASSERT_TRUE(SeesFrames(3));
  }
  // `count` more images reach the window.
  bool SeesFrames(int count) {
    const int wanted = screen.draws.load() + count;
    return Eventually([&] { return screen.draws.load() >= wanted; });
  }
  // As many images altogether have reached the window.
  bool HasShown(int count) {
    return Eventually([&] { return screen.draws.load() >= count; });
  }
  // No image reaches the window for a while.
  bool IsQuiet() {
    const int before = screen.draws.load();
    platform::SleepMilliseconds(60);
    return screen.draws.load() == before;
  }
  void Send(std::uint32_t message, std::uintptr_t first = 0) {
    session->preview.window.load()->SendMessageSync(message, first, 0);
  }
  void UseOverlay(device::OverlayCallback callback) {
    platform::ScopedLock lock(session->image_lock);
    session->overlay.preview = callback;
  }

  FrameSource camera;
  FakeScreen screen;
  TestSession session;
};

}  // namespace ormidex::testing

#endif  // ORMIDEX_TESTS_PREVIEW_PREVIEW_TEST_H_
