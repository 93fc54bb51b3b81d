#include "preview/live_window.h"

#include <cstring>

#include "files/state.h"
#include "preview/frame_rate.h"

namespace ormidex::preview {

namespace {

constexpr std::uint32_t kInfoHeaderBytes = sizeof(files::BitmapInfoHeader);
constexpr std::uint32_t kGreyHeaderBytes = kInfoHeaderBytes + 256 * 4;
static_assert(kGreyHeaderBytes == 1064);

constexpr std::uint32_t kFrameRatePeriodMs = 1000;

// Border sizes last measured, for windows that are minimised when they are placed.
// Shared by all preview windows of the process: they look alike.
constinit std::atomic<std::int32_t> remembered_border_width{0};
constinit std::atomic<std::int32_t> remembered_border_height{0};

}  // namespace

std::uint32_t LiveWindow::Format::HeaderBytes() const {
  return IsMono8() ? kGreyHeaderBytes : kInfoHeaderBytes;
}

LiveWindow::LiveWindow(device::CameraSession& session, const platform::WindowRect& rectangle)
    : session_(session), rectangle_(rectangle) {}

LiveWindow::~LiveWindow() { delete window_; }

// OnCreate has kept the window by the time this returns; a window that was not
// created is no longer there to be kept.
bool LiveWindow::Create(const platform::WindowArguments& arguments) {
  if (platform::CreateNativeWindow(arguments, *this) != nullptr) return true;
  window_ = nullptr;
  return false;
}

// What a failure leaves behind goes in OnDestroy, which follows it.
bool LiveWindow::OnCreate(platform::NativeWindow& window) {
  window_ = &window;
  if (!CreateEvents()) return false;
  saved_header_ = platform::Buffer(kGreyHeaderBytes);
  if (!saved_header_ || !window.AcquireContext() || !AllocateBuffers()) return false;
  session_.preview.suspended.store(0);
  if (!StartThreads()) return false;
  session_.preview.frame_rate.store(0.0f);
  displayed_frames_.store(0.0f);
  Place();
  // Given back at once, deliberately: the fine resolution costs every program of the
  // machine power, and the preview is paced by the camera.
  platform::BeginFineTimerResolution();
  platform::EndFineTimerResolution();
  last_tick_ = platform::TickMilliseconds();
  timer_ = platform::StartPeriodicTimer(kFrameRatePeriodMs, &OnTick, this);
  return timer_ != 0;
}

bool LiveWindow::CreateEvents() {
  return frame_ready_.Create(false) && buffer_free_.Create(true) && grab_quit_.Create(false) &&
         render_quit_.Create(false);
}

bool LiveWindow::AllocateBuffers() {
  const auto& geometry = session_.geometry;
  format_ = {geometry.width,
             geometry.height,
             geometry.frame_bytes,
             geometry.rgb_bytes,
             session_.identity.imager_type == device::kImagerMono,
             geometry.bytes_per_pixel != 1};
  // First all of the old, so that the new finds their room.
  raw_ = {};
  display_ = {};
  header_ = {};
  raw_ = platform::Buffer(format_.raw_bytes);
  display_ = platform::Buffer(format_.rgb_bytes);
  header_ = platform::Buffer(format_.HeaderBytes());
  if (!raw_ || !display_ || !header_) return false;
  FillHeader();
  return true;
}

void LiveWindow::FillHeader() {
  files::BitmapInfoHeader header = session_.bitmap_header;
  if (format_.IsMono8()) {
    header.bits_per_pixel = 8;
    std::uint8_t* entry = header_.Bytes() + kInfoHeaderBytes;
    for (int grey = 0; grey < 256; ++grey, entry += 4) std::memset(entry, grey, 3);
  }
  std::memcpy(header_.Bytes(), &header, sizeof(header));
}

bool LiveWindow::DestroyWindow() { return window_ != nullptr && window_->Destroy(); }

void LiveWindow::SendMessageSync(std::uint32_t message, std::uintptr_t first,
                                 std::uintptr_t second) {
  window_->SendMessageSync(message, first, second);
}

bool LiveWindow::ReadPlacement(platform::WindowPlacement* placement) {
  return window_->ReadPlacement(placement);
}

bool LiveWindow::ReadClientSize(std::int32_t* width, std::int32_t* height) {
  return window_->ReadClientSize(width, height);
}

void LiveWindow::ShowNormal() { window_->ShowNormal(); }

// ---- Messages ----------------------------------------------------------------

void LiveWindow::OnMessage(std::uint32_t message, std::uintptr_t first, std::uintptr_t) {
  switch (message) {
    case kMessageSuspend:
      if (first != 0) {
        Suspend();
      } else {
        Resume();
      }
      break;
    case kMessageGeometry:
      RebuildBuffers();
      break;
    case kMessagePlace:
      std::memcpy(&rectangle_, reinterpret_cast<const void*>(first), sizeof(rectangle_));
      Place();
      break;
    default:
      break;
  }
}

// A snapshot that cannot be taken for want of memory leaves nothing to repaint; nor
// do buffers that an earlier rebuild found no memory for.
void LiveWindow::Suspend() {
  if (session_.preview.suspended.load() != 0) return;
  StopThreads();
  snapshot_ = {};
  if (display_ && header_) {
    saved_format_ = format_;
    std::memcpy(saved_header_.Bytes(), header_.Bytes(), format_.HeaderBytes());
    snapshot_ = platform::Buffer::Uncleared(format_.rgb_bytes);
    if (snapshot_) std::memcpy(snapshot_.Bytes(), display_.Bytes(), format_.rgb_bytes);
  }
  session_.preview.suspended.store(1);
}

void LiveWindow::Resume() {
  if (session_.preview.suspended.load() == 0) return;
  if (!raw_ || !display_ || !header_) return;
  if (StartThreads()) session_.preview.suspended.store(0);
}

// Setters suspend the preview before they change the geometry; a message that comes
// to a running preview all the same must not pull its buffers from under it.
void LiveWindow::RebuildBuffers() {
  const bool running = ThreadsRun();
  StopThreads();
  if (AllocateBuffers() && running) StartThreads();
}

void LiveWindow::Place() {
  platform::WindowPlacement placement;
  if (!window_->ReadPlacement(&placement)) return;
  if (placement.show_state != platform::kShowMinimised) {
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::int32_t client_width = 0;
    std::int32_t client_height = 0;
    if (window_->ReadWindowSize(&width, &height) &&
        window_->ReadClientSize(&client_width, &client_height)) {
      remembered_border_width.store(width - client_width);
      remembered_border_height.store(height - client_height);
    }
  }
  window_->Place({rectangle_.left, rectangle_.top,
                  rectangle_.right + remembered_border_width.load(),
                  rectangle_.bottom + remembered_border_height.load()});
}

void LiveWindow::OnSize(std::int32_t width, std::int32_t height) {
  destination_width_.store(width);
  destination_height_.store(height);
}

// While frames flow the render thread paints, and the stream decides when.
void LiveWindow::OnPaint() {
  if (session_.preview.suspended.load() == 0 && session_.geometry.video_mode != 0) return;
  if (!saved_header_ || !snapshot_) return;
  platform::ScopedLock lock(session_.image_lock);
  if (session_.overlay.preview != nullptr) {
    session_.overlay.preview(&session_, snapshot_.Bytes(), saved_format_.width,
                             saved_format_.height, saved_format_.OverlayFormat());
  }
  window_->Draw(ImageOf(saved_header_, saved_format_, snapshot_), destination_width_.load(),
                destination_height_.load());
}

void LiveWindow::OnDestroy() {
  if (timer_ != 0) platform::StopPeriodicTimer(timer_);
  timer_ = 0;
  StopThreads();
  frame_ready_.Close();
  buffer_free_.Close();
  grab_quit_.Close();
  render_quit_.Close();
  raw_ = {};
  display_ = {};
  snapshot_ = {};
  header_ = {};
  saved_header_ = {};
  if (window_ != nullptr) window_->ReleaseContext();
}

// ---- Threads -----------------------------------------------------------------

bool LiveWindow::StartThreads() {
  frame_ready_.Wait(0);
  buffer_free_.Wait(0);
  buffer_free_.Signal();
  if (StartOne(&RunGrab, grab_stopped_) && StartOne(&RunRender, render_stopped_)) return true;
  StopThreads();
  return false;
}

// A thread marks itself running as its first act, so this spins, deliberately
// without sleeping, for microseconds.
bool LiveWindow::StartOne(platform::ThreadEntry entry, std::atomic<std::uint32_t>& stopped) {
  if (stopped.load() == 0) return true;
  if (!platform::StartThread(entry, this)) return false;
  while (stopped.load() != 0) {
  }
  return true;
}

// The grab thread first: it may hold a frame that the render thread waits for. The
// extra signal wakes a thread that has nothing to do. A grab thread that sits in a
// frame read stays for as long as the driver makes it wait.
void LiveWindow::StopThreads() {
  if (ThreadsRun()) {
    grab_quit_.Signal();
    buffer_free_.Signal();
    while (grab_stopped_.load() == 0) {
    }
  }
  if (render_stopped_.load() == 0) {
    render_quit_.Signal();
    frame_ready_.Signal();
    while (render_stopped_.load() == 0) {
    }
  }
}

void LiveWindow::RunGrab(void* self) { static_cast<LiveWindow*>(self)->Grab(); }
void LiveWindow::RunRender(void* self) { static_cast<LiveWindow*>(self)->Render(); }
void LiveWindow::OnTick(void* self) { static_cast<LiveWindow*>(self)->MeasureFrameRate(); }

// Quit is looked at before the buffer is touched: a stop wakes this thread while the
// render thread may still be drawing.
void LiveWindow::Grab() {
  grab_stopped_.store(0);
  for (;;) {
    buffer_free_.Wait(platform::kWaitForever);
    if (grab_quit_.Wait(0) || !GrabFrame()) break;
    frame_ready_.Signal();
    if (grab_quit_.Wait(1)) break;
  }
  grab_stopped_.store(1);
}

bool LiveWindow::GrabFrame() {
  while (!ReadRawFrame()) {
    if (grab_quit_.Wait(1)) return false;
  }
  ConvertFrame();
  return true;
}

bool LiveWindow::ReadRawFrame() {
  return session_.Control(device::CAM_IOCTL_READ_FRAME, nullptr, 0, raw_.Bytes(),
                          format_.raw_bytes);
}

void LiveWindow::ConvertFrame() {
  const std::uint32_t option = session_.preview.conversion.load();
  if (format_.IsMono8()) {
    CallOverlay(raw_.Bytes());
    ReverseRows();
  } else if (format_.mono) {
    session_.ConvertMono16BppTo24Bpp(raw_.Bytes(), format_.width, format_.height, display_.Bytes());
  } else if (format_.wide) {
    session_.ConvertColor16BppTo24Bpp(raw_.Bytes(), format_.width, format_.height, display_.Bytes(),
                                      option);
  } else {
    session_.ConvertColor8BppTo24Bpp(raw_.Bytes(), format_.width, format_.height, display_.Bytes(),
                                     option);
  }
}

void LiveWindow::ReverseRows() {
  const std::size_t stride = format_.width;
  for (std::uint32_t row = 0; row < format_.height; ++row) {
    std::memcpy(display_.Bytes() + stride * row, raw_.Bytes() + stride * (format_.height - 1 - row),
                stride);
  }
}

void LiveWindow::CallOverlay(void* image) {
  platform::ScopedLock lock(session_.image_lock);
  if (session_.overlay.preview == nullptr) return;
  session_.overlay.preview(&session_, image, format_.width, format_.height,
                           format_.OverlayFormat());
}

// A stop wakes this thread as a frame would, and it draws once more what the display
// buffer holds: the grab thread has ended before, so nobody changes it.
void LiveWindow::Render() {
  render_stopped_.store(0);
  for (;;) {
    frame_ready_.Wait(platform::kWaitForever);
    DrawFrame();
    buffer_free_.Signal();
    displayed_frames_.store(displayed_frames_.load(std::memory_order_relaxed) + 1.0f);
    if (render_quit_.Wait(1)) break;
  }
  render_stopped_.store(1);
}

void LiveWindow::DrawFrame() {
  if (!format_.IsMono8()) CallOverlay(display_.Bytes());
  window_->Draw(ImageOf(header_, format_, display_), destination_width_.load(),
                destination_height_.load());
}

platform::WindowImage LiveWindow::ImageOf(const platform::Buffer& header, const Format& format,
                                          const platform::Buffer& pixels) const {
  return {header.Bytes(), pixels.Bytes(), static_cast<std::int32_t>(format.width),
          static_cast<std::int32_t>(format.height), format.IsMono8() ? 8u : 24u};
}

void LiveWindow::MeasureFrameRate() {
  const double this_tick = platform::TickMilliseconds();
  const float frames = displayed_frames_.load(std::memory_order_relaxed);
  session_.preview.frame_rate.store(FrameRate(frames, this_tick - last_tick_));
  displayed_frames_.store(0.0f);
  last_tick_ = this_tick;
}

}  // namespace ormidex::preview
