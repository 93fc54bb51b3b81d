// The live preview: a window, a thread that grabs and converts frames, a thread
// that draws them, and a timer that measures the frame rate.
//
// The two threads hand one display buffer back and forth: it belongs to the grab
// thread from buffer-free to frame-ready and to the render thread from frame-ready
// to buffer-free. The raw buffer is the grab thread's alone. Both threads take the
// session's image lock around overlay callbacks, and no other lock.
#ifndef ORMIDEX_PREVIEW_LIVE_WINDOW_H_
#define ORMIDEX_PREVIEW_LIVE_WINDOW_H_

#include <atomic>
#include <cstdint>

#include "device/session.h"
#include "platform/event.h"
#include "platform/memory.h"
#include "platform/thread.h"
#include "platform/timer.h"
#include "platform/window.h"
#include "preview/preview_window.h"

namespace ormidex::preview {

class LiveWindow final : public PreviewWindow, private platform::WindowHandler {
 public:
  // The rectangle is the wanted client area, in parent coordinates.
  LiveWindow(device::CameraSession& session, const platform::WindowRect& rectangle);
  ~LiveWindow() override;

  // Creates the window and everything behind it; false when anything fails, and
  // nothing is then left behind.
  bool Create(const platform::WindowArguments& arguments);

  bool DestroyWindow() override;
  void SendMessageSync(std::uint32_t message, std::uintptr_t first, std::uintptr_t second) override;
  bool ReadPlacement(platform::WindowPlacement* placement) override;
  bool ReadClientSize(std::int32_t* width, std::int32_t* height) override;
  void ShowNormal() override;

 private:
  // How frames look, fixed from one allocation of the buffers to the next.
  struct Format {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint32_t raw_bytes = 0;
    std::uint32_t rgb_bytes = 0;
    bool mono = false;
    bool wide = false;  // 16-bit samples
    bool IsMono8() const { return mono && !wide; }
    std::uint32_t HeaderBytes() const;
    // Of the image that overlay callbacks see.
    std::uint32_t OverlayFormat() const { return IsMono8() ? 1 : 3; }
  };

  bool OnCreate(platform::NativeWindow& window) override;
  void OnMessage(std::uint32_t message, std::uintptr_t first, std::uintptr_t second) override;
  void OnPaint() override;
  void OnSize(std::int32_t width, std::int32_t height) override;
  void OnDestroy() override;

  bool CreateEvents();
  bool AllocateBuffers();
  void FillHeader();
  void Place();
  void Suspend();
  void Resume();
  void RebuildBuffers();

  bool StartThreads();
  bool ThreadsRun() const { return grab_stopped_.load() == 0; }
  bool StartOne(platform::ThreadEntry entry, std::atomic<std::uint32_t>& stopped);
  void StopThreads();
  static void RunGrab(void* self);
  static void RunRender(void* self);
  static void OnTick(void* self);
  void Grab();
  void Render();
  bool GrabFrame();
  bool ReadRawFrame();
  void ConvertFrame();
  void ReverseRows();
  void CallOverlay(void* image);
  platform::WindowImage ImageOf(const platform::Buffer& header, const Format& format,
                                const platform::Buffer& pixels) const;
  void DrawFrame();
  void MeasureFrameRate();

  device::CameraSession& session_;
  platform::NativeWindow* window_ = nullptr;
  platform::WindowRect rectangle_;

  Format format_;
  platform::Buffer raw_;
  platform::Buffer display_;
  platform::Buffer header_;

  Format saved_format_;
  platform::Buffer saved_header_;
  platform::Buffer snapshot_;

  platform::Event frame_ready_;
  platform::Event buffer_free_;
  platform::Event grab_quit_;
  platform::Event render_quit_;
  std::atomic<std::uint32_t> grab_stopped_{1};
  std::atomic<std::uint32_t> render_stopped_{1};

  std::atomic<std::int32_t> destination_width_{0};
  std::atomic<std::int32_t> destination_height_{0};
  // Counted by the render thread, taken by the timer; a count that falls between
  // the two is lost and not missed.
  std::atomic<float> displayed_frames_{0.0f};
  double last_tick_ = 0.0;
  platform::TimerId timer_ = 0;
};

}  // namespace ormidex::preview

#endif  // ORMIDEX_PREVIEW_LIVE_WINDOW_H_
