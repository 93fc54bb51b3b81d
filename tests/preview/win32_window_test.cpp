// The preview's window on the system's own desktop. The test's thread owns the
// windows and handles their messages, as an application's main thread does.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "ormidex.h"
#include "platform/timer.h"
#include "preview/preview_window.h"
#include "preview/still_picture.h"
#include "support/test_session.h"

namespace ormidex::testing {
namespace {

constexpr std::uint32_t kVisiblePopup = WS_POPUP | WS_VISIBLE;
constexpr std::uint32_t kVisibleOverlapped = WS_OVERLAPPEDWINDOW | WS_VISIBLE;

void HandleMessages() {
  MSG message;
  while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
    TranslateMessage(&message);
    DispatchMessageA(&message);
  }
}

// Eventually, while messages are handled.
template <typename Condition>
bool EventuallyOnScreen(Condition condition) {
  for (int i = 0; i < 500; ++i) {
    HandleMessages();
    if (condition()) return true;
    platform::SleepMilliseconds(10);
  }
  return false;
}

class Win32Preview : public ::testing::Test {
 protected:
  static void SetUpTestSuite() { platform::RegisterPreviewClass(GetModuleHandleA(nullptr)); }
  static void TearDownTestSuite() {
    HandleMessages();
    platform::UnregisterPreviewClass();
  }
  Win32Preview() : session(camera) {
    session->bitmap_header.header_bytes = sizeof(session->bitmap_header);
    session->bitmap_header.bits_per_pixel = 24;
    session->bitmap_header.planes = 1;
    session->geometry.width = 64;
    session->geometry.height = 48;
    session->RecomputeFrameSizes();
    camera.frame_interval_ms.store(5);
  }
  ~Win32Preview() override {
    session->StopPreview();
    HandleMessages();
  }

  void Start(std::uint32_t width, std::uint32_t height, std::uint32_t style = kVisiblePopup,
             HWND parent = nullptr) {
    ASSERT_EQ(session->StartPreview("A preview", style, 30, 40, width, height, parent, 0), kOk);
    window = (style & WS_CHILD) != 0
                 ? FindWindowExA(parent, nullptr, platform::PreviewClassName(), "A preview")
                 : FindWindowA(platform::PreviewClassName(), "A preview");
    ASSERT_NE(window, nullptr);
  }
  std::vector<int> ClientArea() const {
    RECT client = {};
    POINT corner = {};
    GetClientRect(window, &client);
    ClientToScreen(window, &corner);
    return {static_cast<int>(corner.x), static_cast<int>(corner.y), static_cast<int>(client.right),
            static_cast<int>(client.bottom)};
  }
  // The client area's pixels as they are on the screen, rows from the top.
  std::vector<Colour> Photograph() const {
    const std::vector<int> area = ClientArea();
    const HDC screen = GetDC(nullptr);
    const HDC copy = CreateCompatibleDC(screen);
    BITMAPINFO info = {};
    info.bmiHeader = {sizeof(BITMAPINFOHEADER), area[2], -area[3], 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* bits = nullptr;
    const HBITMAP bitmap = CreateDIBSection(screen, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    const HGDIOBJ former = SelectObject(copy, bitmap);
    BitBlt(copy, 0, 0, area[2], area[3], screen, area[0], area[1], SRCCOPY);
    GdiFlush();
    std::vector<Colour> pixels;
    const auto* bytes = static_cast<const std::uint8_t*>(bits);
    for (int i = 0; i < area[2] * area[3]; ++i, bytes += 4) {
      pixels.push_back({bytes[2], bytes[1], bytes[0]});
    }
    SelectObject(copy, former);
    DeleteObject(bitmap);
    DeleteDC(copy);
    ReleaseDC(nullptr, screen);
    return pixels;
  }
  bool IsShown() {
    const std::vector<int> area = ClientArea();
    const std::vector<Colour> expected = ExpectedPicture(*session, area[2], area[3]);
    return EventuallyOnScreen([&] {
      const std::vector<Colour> seen = Photograph();
      for (std::size_t i = 0; i < seen.size(); ++i) {
        if (seen[i].red != expected[i].red || seen[i].green != expected[i].green ||
            seen[i].blue != expected[i].blue) {
          return false;
        }
      }
      return seen.size() == expected.size();
    });
  }
  bool ThreadsEnd() {
    return EventuallyOnScreen([&] {
      const int frames = camera.frames.load();
      platform::SleepMilliseconds(50);
      return camera.frames.load() == frames;
    });
  }

  StillPicture camera;
  TestSession session;
  HWND window = nullptr;
};

// ---- Pixels ------------------------------------------------------------------

TEST_F(Win32Preview, ShowsTheConvertedFramePixelForPixel) {
  Start(0xFFFFFFFFu, 0);
  EXPECT_EQ(ClientArea(), (std::vector<int>{30, 40, 64, 48}));
  EXPECT_TRUE(IsShown());
}

TEST_F(Win32Preview, RepeatsPixelsInALargerWindow) {
  Start(192, 144);
  EXPECT_TRUE(IsShown());
}

TEST_F(Win32Preview, ShowsMonochromeInBothWidths) {
  session->identity.imager_type = device::kImagerMono;
  for (const std::uint32_t bytes : {1u, 2u}) {
    session->geometry.bytes_per_pixel = bytes;
    session->RecomputeFrameSizes();
    Start(128, 96);
    EXPECT_TRUE(IsShown()) << bytes;
    EXPECT_EQ(session->StopPreview(), kOk);
  }
}

TEST_F(Win32Preview, RepaintsTheSnapshotWhileSuspended) {
  Start(128, 96);
  ASSERT_TRUE(IsShown());
  ASSERT_EQ(session->PausePreview(1), kOk);
  ShowWindow(window, SW_HIDE);
  HandleMessages();
  ShowWindow(window, SW_SHOW);
  InvalidateRect(window, nullptr, FALSE);
  EXPECT_TRUE(IsShown());
}

// ---- Messages ----------------------------------------------------------------

TEST_F(Win32Preview, UnderstandsItsThreeMessages) {
  Start(64, 48);
  SendMessageA(window, 0x401, 5, 0);
  EXPECT_EQ(session->preview.suspended.load(), 1u);
  session->geometry.width = 32;
  session->RecomputeFrameSizes();
  SendMessageA(window, 0x402, 0, 0);
  SendMessageA(window, 0x401, 0, 0);
  EXPECT_EQ(session->preview.suspended.load(), 0u);
  EXPECT_TRUE(IsShown());
  const std::int32_t rectangle[4] = {100, 110, 196, 206};
  SendMessageA(window, 0x403, reinterpret_cast<WPARAM>(rectangle), 0);
  EXPECT_EQ(ClientArea(), (std::vector<int>{100, 110, 96, 96}));
}

TEST_F(Win32Preview, CannotBePulledLargerThan1330By1074) {
  Start(64, 48);
  MINMAXINFO limits = {};
  SendMessageA(window, WM_GETMINMAXINFO, 0, reinterpret_cast<LPARAM>(&limits));
  EXPECT_EQ(limits.ptMaxTrackSize.x, 1330);
  EXPECT_EQ(limits.ptMaxTrackSize.y, 1074);
}

TEST_F(Win32Preview, SaysThatItsBackgroundIsErased) {
  Start(64, 48);
  const HDC context = GetDC(window);
  EXPECT_NE(SendMessageA(window, WM_ERASEBKGND, reinterpret_cast<WPARAM>(context), 0), 0);
  ReleaseDC(window, context);
}

TEST_F(Win32Preview, HasNoExtendedStyleAndTheGivenOne) {
  Start(64, 48, WS_CHILD | WS_VISIBLE, GetDesktopWindow());
  EXPECT_EQ(GetWindowLongA(window, GWL_EXSTYLE), 0);
  EXPECT_NE(GetWindowLongA(window, GWL_STYLE) & WS_CHILD, 0);
}

// ---- Places ------------------------------------------------------------------

TEST_F(Win32Preview, TheClientAreaOfAFramedWindowGetsTheWantedSize) {
  Start(320, 240, kVisibleOverlapped);
  EXPECT_EQ(ClientArea()[2], 320);
  EXPECT_EQ(ClientArea()[3], 240);
  const OrmidexRect rectangle = {50, 60, 50 + 400, 60 + 300};
  EXPECT_EQ(session->SetPreviewWindow(&rectangle), kOk);
  RECT outer = {};
  GetWindowRect(window, &outer);
  EXPECT_EQ(outer.left, 50);
  EXPECT_EQ(outer.top, 60);
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  EXPECT_EQ(session->GetPreviewWindowSize(&width, &height), kOk);
  EXPECT_EQ(width, 400u);
  EXPECT_EQ(height, 300u);
  EXPECT_EQ(session->ResetPreviewWindow(), kOk);
  EXPECT_EQ(ClientArea()[2], 64 > GetSystemMetrics(SM_CXMINTRACK) ? 64 : ClientArea()[2]);
  EXPECT_EQ(ClientArea()[3], 48);
}

TEST_F(Win32Preview, AMinimisedWindowReportsItsIconAndComesBack) {
  Start(64, 48);
  const OrmidexRect rectangle = {70, 80, 134, 128};
  ASSERT_EQ(session->SetPreviewWindow(&rectangle), kOk);
  ShowWindow(window, SW_MINIMIZE);
  HandleMessages();
  WINDOWPLACEMENT placement = {};
  placement.length = sizeof(placement);
  GetWindowPlacement(window, &placement);
  ASSERT_EQ(placement.showCmd, 2u);
  std::uint32_t x = 0;
  std::uint32_t y = 0;
  EXPECT_EQ(session->GetPreviewWindowPos(&x, &y), kOk);
  EXPECT_EQ(static_cast<LONG>(x), placement.ptMinPosition.x);
  EXPECT_EQ(static_cast<LONG>(y), placement.ptMinPosition.y);
  EXPECT_EQ(session->PausePreview(1), kOk);
  EXPECT_EQ(session->PausePreview(0), kOk);
  EXPECT_EQ(session->ResetPreviewWindow(), kOk);
  ShowWindow(window, SW_RESTORE);
  EXPECT_TRUE(IsShown());
  EXPECT_EQ(ClientArea()[2], 64);
  EXPECT_EQ(ClientArea()[3], 48);
}

TEST_F(Win32Preview, ResetBringsAMaximisedWindowToTheOriginLastSet) {
  Start(300, 200, kVisibleOverlapped);
  const OrmidexRect rectangle = {70, 80, 370, 280};
  ASSERT_EQ(session->SetPreviewWindow(&rectangle), kOk);
  ShowWindow(window, SW_MAXIMIZE);
  HandleMessages();
  WINDOWPLACEMENT placement = {};
  placement.length = sizeof(placement);
  GetWindowPlacement(window, &placement);
  ASSERT_EQ(placement.showCmd, 3u);
  std::uint32_t x = 0;
  std::uint32_t y = 0;
  EXPECT_EQ(session->GetPreviewWindowPos(&x, &y), kOk);
  EXPECT_EQ(static_cast<LONG>(x), placement.ptMaxPosition.x);
  EXPECT_EQ(static_cast<LONG>(y), placement.ptMaxPosition.y);
  session->geometry.width = 320;
  session->geometry.height = 240;
  session->RecomputeFrameSizes();
  EXPECT_EQ(session->ResetPreviewWindow(), kOk);
  HandleMessages();
  GetWindowPlacement(window, &placement);
  EXPECT_EQ(placement.showCmd, 1u);
  EXPECT_EQ(placement.rcNormalPosition.left, 70);
  EXPECT_EQ(placement.rcNormalPosition.top, 80);
  session->geometry.width = 64;
  session->geometry.height = 48;
  session->RecomputeFrameSizes();
}

TEST_F(Win32Preview, AWindowOffTheScreenGoesOnAndComesBack) {
  Start(64, 48);
  const OrmidexRect away = {-5000, -4000, -4936, -3952};
  EXPECT_EQ(session->SetPreviewWindow(&away), kOk);
  const int frames = camera.frames.load();
  EXPECT_TRUE(EventuallyOnScreen([&] { return camera.frames.load() > frames + 5; }));
  const OrmidexRect back = {10, 10, 74, 58};
  EXPECT_EQ(session->SetPreviewWindow(&back), kOk);
  EXPECT_TRUE(IsShown());
}

// ---- Ends --------------------------------------------------------------------

TEST_F(Win32Preview, GoesWithItsParentAndTheExportsSaySo) {
  const HWND parent = CreateWindowExA(0, "STATIC", "", kVisiblePopup, 20, 20, 400, 300, nullptr,
                                      nullptr, GetModuleHandleA(nullptr), nullptr);
  Start(64, 48, WS_CHILD | WS_VISIBLE, parent);
  EXPECT_EQ(ClientArea(), (std::vector<int>{50, 60, 64, 48}));
  ASSERT_TRUE(IsShown());
  DestroyWindow(parent);
  EXPECT_TRUE(ThreadsEnd());
  EXPECT_EQ(session->PausePreview(1), kGeneralFailure);
  std::uint32_t x = 0;
  std::uint32_t y = 0;
  EXPECT_EQ(session->GetPreviewWindowPos(&x, &y), kGeneralFailure);
  EXPECT_EQ(session->GetPreviewWindowSize(&x, &y), kOk);
  EXPECT_EQ(session->StopPreview(), kNoCamera);
  Start(64, 48);
  EXPECT_TRUE(IsShown());
}

TEST_F(Win32Preview, AWindowThatIsToldToCloseEndsQuietly) {
  Start(64, 48);
  SendMessageA(window, WM_CLOSE, 0, 0);
  EXPECT_FALSE(IsWindow(window));
  EXPECT_TRUE(ThreadsEnd());
  EXPECT_EQ(session->StopPreview(), kNoCamera);
}

TEST_F(Win32Preview, AParentThatDoesNotExistMakesIt7) {
  EXPECT_EQ(session->StartPreview("A preview", WS_CHILD, 0, 0, 64, 48,
                                  reinterpret_cast<void*>(std::uintptr_t{0x7771}), 0),
            kOutOfRange);
  EXPECT_EQ(session->preview.window.load(), nullptr);
}

TEST_F(Win32Preview, WithoutItsClassItIs7) {
  platform::UnregisterPreviewClass();
  EXPECT_EQ(session->StartPreview("A preview", 0, 0, 0, 64, 48, nullptr, 0), kOutOfRange);
  platform::RegisterPreviewClass(GetModuleHandleA(nullptr));
}

struct OtherThread {
  device::CameraSession* session;
  Status status = 99;
  std::atomic<bool> done{false};
};

// A window can be destroyed by its own thread only; the preview is gone all the same.
TEST_F(Win32Preview, StoppedByAnotherThreadItIs1AndTheWindowGoesByItself) {
  Start(64, 48);
  OtherThread other{&*session};
  ASSERT_TRUE(platform::StartThread(
      [](void* argument) {
        auto* self = static_cast<OtherThread*>(argument);
        self->status = self->session->StopPreview();
        self->done.store(true);
      },
      &other));
  ASSERT_TRUE(EventuallyOnScreen([&] { return other.done.load(); }));
  EXPECT_EQ(other.status, kNoCamera);
  EXPECT_EQ(session->preview.window.load(), nullptr);
  EXPECT_TRUE(ThreadsEnd());
  EXPECT_TRUE(EventuallyOnScreen([&] { return !IsWindow(window); }));
}

TEST_F(Win32Preview, AWindowWhoseThreadHasEndedIsStoppedWith1) {
  OtherThread other{&*session};
  ASSERT_TRUE(platform::StartThread(
      [](void* argument) {
        auto* self = static_cast<OtherThread*>(argument);
        self->status =
            self->session->StartPreview("A preview", kVisiblePopup, 0, 0, 64, 48, nullptr, 0);
        self->done.store(true);
      },
      &other));
  ASSERT_TRUE(EventuallyOnScreen([&] { return other.done.load(); }));
  ASSERT_EQ(other.status, kOk);
  ASSERT_TRUE(EventuallyOnScreen(
      [&] { return FindWindowA(platform::PreviewClassName(), "A preview") == nullptr; }));
  EXPECT_EQ(session->StopPreview(), kNoCamera);
  EXPECT_TRUE(ThreadsEnd());
}

// The next handle's number: freed numbers are given out again first.
std::uintptr_t NextHandle() {
  const HANDLE handle = CreateEventA(nullptr, FALSE, FALSE, nullptr);
  CloseHandle(handle);
  return reinterpret_cast<std::uintptr_t>(handle);
}

TEST_F(Win32Preview, StartedAndStoppedAgainAndAgainItKeepsNoHandle) {
  constexpr int kTimes = 15;
  const auto start_and_stop = [&] {
    Start(64, 48);
    ASSERT_EQ(session->StopPreview(), kOk);
    HandleMessages();
  };
  start_and_stop();
  platform::SleepMilliseconds(200);
  const std::uintptr_t before = NextHandle();
  for (int i = 0; i < kTimes; ++i) start_and_stop();
  platform::SleepMilliseconds(200);
  // One kept handle each time would move the number by 4 each time.
  EXPECT_LT(NextHandle(), before + 4 * kTimes);
}

}  // namespace
}  // namespace ormidex::testing
