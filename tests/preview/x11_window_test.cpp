// The preview's window on a real X11 display; the test's display is the one that
// DISPLAY names, of any depth.
#include <dirent.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "ormidex.h"
#include "preview/preview_window.h"
#include "preview/still_picture.h"
#include "preview/x11_screen.h"
#include "support/test_session.h"

namespace ormidex::testing {
namespace {

constexpr std::uint32_t kPopup = 0x80000000u;
constexpr std::uint32_t kChild = 0x40000000u;
constexpr std::uint32_t kOverlapped = 0x00CF0000u;

// The display that the environment names, or another for a while.
class DisplayName {
 public:
  explicit DisplayName(const char* name) : former_(std::getenv("DISPLAY")) {
    setenv("DISPLAY", name, 1);
  }
  ~DisplayName() { setenv("DISPLAY", former_.c_str(), 1); }
  DisplayName(const DisplayName&) = delete;
  DisplayName& operator=(const DisplayName&) = delete;

 private:
  std::string former_;
};

class X11Preview : public ::testing::Test {
 protected:
  X11Preview() : session(camera) {
    session->bitmap_header.header_bytes = sizeof(session->bitmap_header);
    session->bitmap_header.bits_per_pixel = 24;
    session->bitmap_header.planes = 1;
    session->geometry.width = 64;
    session->geometry.height = 48;
    session->RecomputeFrameSizes();
    camera.frame_interval_ms.store(5);
  }
  void SetUp() override { ASSERT_TRUE(screen.IsThere()) << "no display"; }
  ~X11Preview() override { session->StopPreview(); }

  void Start(std::uint32_t width, std::uint32_t height, std::uint32_t style = kOverlapped,
             xcb_window_t parent = 0) {
    ASSERT_EQ(session->StartPreview("A preview", style, 30, 40, width, height,
                                    reinterpret_cast<void*>(std::uintptr_t{parent}), 0),
              kOk);
    const xcb_window_t where = (style & kChild) != 0 ? parent : screen.Root();
    window = screen.Find("A preview", where);
    ASSERT_NE(window, 0u);
  }
  bool IsShown() {
    const X11Screen::Rectangle size = screen.Geometry(window);
    std::vector<std::uint32_t> expected;
    for (const Colour& colour : ExpectedPicture(*session, size.width, size.height)) {
      expected.push_back(screen.PixelOf(colour.red, colour.green, colour.blue));
    }
    return Eventually([&] { return screen.Pixels(window) == expected; }, 3000);
  }
  bool ThreadsEnd() {
    return Eventually([&] {
      const int frames = camera.frames.load();
      platform::SleepMilliseconds(50);
      return camera.frames.load() == frames;
    });
  }
  std::vector<int> Geometry() const {
    const X11Screen::Rectangle rectangle = screen.Geometry(window);
    return {rectangle.x, rectangle.y, rectangle.width, rectangle.height};
  }

  X11Screen screen;
  StillPicture camera;
  TestSession session;
  xcb_window_t window = 0;
};

// ---- Pixels ------------------------------------------------------------------

TEST_F(X11Preview, ShowsTheConvertedFramePixelForPixel) {
  Start(0xFFFFFFFFu, 0);
  EXPECT_EQ(Geometry(), (std::vector<int>{30, 40, 64, 48}));
  EXPECT_TRUE(IsShown());
}

TEST_F(X11Preview, RepeatsPixelsInALargerWindow) {
  Start(201, 151);
  EXPECT_TRUE(IsShown());
}

TEST_F(X11Preview, LeavesPixelsOutInASmallerWindow) {
  Start(37, 21);
  EXPECT_TRUE(IsShown());
}

TEST_F(X11Preview, ShowsWideColour) {
  session->geometry.bytes_per_pixel = 2;
  session->RecomputeFrameSizes();
  Start(100, 75);
  EXPECT_TRUE(IsShown());
}

TEST_F(X11Preview, ShowsMonochromeInBothWidths) {
  session->identity.imager_type = device::kImagerMono;
  for (const std::uint32_t bytes : {1u, 2u}) {
    session->geometry.bytes_per_pixel = bytes;
    session->RecomputeFrameSizes();
    Start(100, 75);
    EXPECT_TRUE(IsShown()) << bytes;
    EXPECT_EQ(session->StopPreview(), kOk);
  }
}

TEST_F(X11Preview, ShowsAFullFrameInAWindowOfItsSize) {
  session->geometry.width = 1280;
  session->geometry.height = 1024;
  session->RecomputeFrameSizes();
  Start(0xFFFFFFFFu, 0);
  EXPECT_TRUE(IsShown());
}

TEST_F(X11Preview, FollowsTheUserWhoResizesTheWindow) {
  Start(64, 48);
  ASSERT_TRUE(IsShown());
  screen.Move(window, 10, 10, 150, 90);
  EXPECT_TRUE(IsShown());
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  EXPECT_EQ(session->GetPreviewWindowSize(&width, &height), kOk);
  EXPECT_EQ(width, 150u);
  EXPECT_EQ(height, 90u);
}

TEST_F(X11Preview, ChangesTheAlgorithmFromTheNextFrameOn) {
  Start(64, 48);
  ASSERT_TRUE(IsShown());
  ASSERT_EQ(session->SetPreviewColorConversion(0), kOk);
  EXPECT_TRUE(IsShown());
}

TEST_F(X11Preview, RepaintsTheSnapshotWhileSuspended) {
  Start(100, 75);
  ASSERT_TRUE(IsShown());
  ASSERT_EQ(session->PausePreview(1), kOk);
  screen.Iconify(window, true);
  platform::SleepMilliseconds(100);
  screen.Iconify(window, false);
  EXPECT_TRUE(IsShown());
}

// ---- Places ------------------------------------------------------------------

TEST_F(X11Preview, SetMovesAndSizesTheClientArea) {
  Start(64, 48);
  const OrmidexRect rectangle = {200, 100, 420, 250};
  EXPECT_EQ(session->SetPreviewWindow(&rectangle), kOk);
  EXPECT_EQ(Geometry(), (std::vector<int>{200, 100, 220, 150}));
  std::uint32_t x = 0;
  std::uint32_t y = 0;
  EXPECT_EQ(session->GetPreviewWindowPos(&x, &y), kOk);
  EXPECT_EQ(x, 200u);
  EXPECT_EQ(y, 100u);
  EXPECT_TRUE(IsShown());
}

TEST_F(X11Preview, ResetKeepsTheCornerAndTakesTheFramesSize) {
  Start(300, 200);
  EXPECT_EQ(session->ResetPreviewWindow(), kOk);
  EXPECT_EQ(Geometry(), (std::vector<int>{30, 40, 64, 48}));
}

// The application names the client area; a manager's frame comes on top.
TEST_F(X11Preview, AddsTheBordersOfAWindowManager) {
  Start(64, 48);
  screen.SetFrame(window, 3, 3, 20, 4);
  const OrmidexRect rectangle = {200, 100, 300, 180};
  EXPECT_EQ(session->SetPreviewWindow(&rectangle), kOk);
  EXPECT_EQ(Geometry(), (std::vector<int>{200, 100, 100, 80}));
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  EXPECT_EQ(session->GetPreviewWindowSize(&width, &height), kOk);
  EXPECT_EQ(width, 100u);
  EXPECT_EQ(height, 80u);
  // The borders are remembered for other windows.
  screen.SetFrame(window, 0, 0, 0, 0);
  EXPECT_EQ(session->SetPreviewWindow(&rectangle), kOk);
}

TEST_F(X11Preview, AWindowOffTheScreenGoesOnAndComesBack) {
  Start(64, 48);
  ASSERT_TRUE(IsShown());
  const OrmidexRect away = {-5000, -4000, -4900, -3900};
  EXPECT_EQ(session->SetPreviewWindow(&away), kOk);
  const int frames = camera.frames.load();
  EXPECT_TRUE(Eventually([&] { return camera.frames.load() > frames + 5; }));
  std::uint32_t x = 0;
  std::uint32_t y = 0;
  EXPECT_EQ(session->GetPreviewWindowPos(&x, &y), kOk);
  EXPECT_EQ(static_cast<std::int32_t>(x), -5000);
  EXPECT_EQ(static_cast<std::int32_t>(y), -4000);
  const OrmidexRect back = {10, 10, 110, 90};
  EXPECT_EQ(session->SetPreviewWindow(&back), kOk);
  EXPECT_TRUE(IsShown());
}

TEST_F(X11Preview, IsNotLargerThan1330By1074WithItsBorders) {
  Start(64, 48);
  screen.SetFrame(window, 5, 5, 20, 4);
  const OrmidexRect huge = {0, 0, 3000, 3000};
  EXPECT_EQ(session->SetPreviewWindow(&huge), kOk);
  EXPECT_EQ(Geometry(), (std::vector<int>{0, 0, 1320, 1050}));
  screen.SetFrame(window, 0, 0, 0, 0);
  EXPECT_EQ(session->SetPreviewWindow(&huge), kOk);
  EXPECT_EQ(Geometry(), (std::vector<int>{0, 0, 1330, 1074}));
}

TEST_F(X11Preview, AWindowThatCannotBePulledLargerIsNotLimited) {
  Start(64, 48, kPopup);
  const OrmidexRect huge = {0, 0, 1500, 1200};
  EXPECT_EQ(session->SetPreviewWindow(&huge), kOk);
  EXPECT_EQ(Geometry(), (std::vector<int>{0, 0, 1500, 1200}));
}

TEST_F(X11Preview, AMinimisedWindowHasNoClientAreaAndComesBack) {
  Start(64, 48);
  ASSERT_TRUE(IsShown());
  const OrmidexRect rectangle = {70, 80, 134, 128};
  ASSERT_EQ(session->SetPreviewWindow(&rectangle), kOk);
  screen.Iconify(window, true);
  std::uint32_t width = 9;
  std::uint32_t height = 9;
  EXPECT_EQ(session->GetPreviewWindowSize(&width, &height), kOk);
  EXPECT_EQ(width, 0u);
  EXPECT_EQ(height, 0u);
  std::uint32_t x = 0;
  std::uint32_t y = 0;
  EXPECT_EQ(session->GetPreviewWindowPos(&x, &y), kOk);
  EXPECT_EQ(session->PausePreview(1), kOk);
  EXPECT_EQ(session->PausePreview(0), kOk);
  EXPECT_EQ(session->ResetPreviewWindow(), kOk);
  screen.Iconify(window, false);
  EXPECT_EQ(Geometry(), (std::vector<int>{70, 80, 64, 48}));
  EXPECT_TRUE(IsShown());
}

TEST_F(X11Preview, ResetBringsAMaximisedWindowToTheOriginLastSet) {
  Start(64, 48);
  const OrmidexRect rectangle = {70, 80, 170, 180};
  ASSERT_EQ(session->SetPreviewWindow(&rectangle), kOk);
  screen.Move(window, 0, 0, 1200, 900);
  screen.MarkMaximised(window);
  std::uint32_t x = 9;
  std::uint32_t y = 9;
  EXPECT_EQ(session->GetPreviewWindowPos(&x, &y), kOk);
  EXPECT_EQ(x, 0u);
  EXPECT_EQ(y, 0u);
  EXPECT_EQ(session->ResetPreviewWindow(), kOk);
  EXPECT_EQ(Geometry(), (std::vector<int>{70, 80, 64, 48}));
}

// ---- Parents and ends --------------------------------------------------------

TEST_F(X11Preview, AChildLivesInItsParentsCoordinates) {
  const xcb_window_t parent = screen.CreateParent(500, 400);
  Start(64, 48, kChild, parent);
  EXPECT_EQ(Geometry(), (std::vector<int>{30, 40, 64, 48}));
  EXPECT_TRUE(IsShown());
  std::uint32_t x = 0;
  std::uint32_t y = 0;
  EXPECT_EQ(session->GetPreviewWindowPos(&x, &y), kOk);
  EXPECT_EQ(x, 30u);
  EXPECT_EQ(y, 40u);
  EXPECT_EQ(session->ResetPreviewWindow(), kOk);
  EXPECT_EQ(Geometry(), (std::vector<int>{30, 40, 64, 48}));
  EXPECT_EQ(session->StopPreview(), kOk);
  screen.Destroy(parent);
}

TEST_F(X11Preview, GoesWithItsParentAndTheExportsSaySo) {
  const xcb_window_t parent = screen.CreateParent(500, 400);
  Start(64, 48, kChild, parent);
  ASSERT_TRUE(IsShown());
  screen.Destroy(parent);
  ASSERT_TRUE(ThreadsEnd());
  EXPECT_EQ(session->PausePreview(1), kGeneralFailure);
  std::uint32_t x = 0;
  std::uint32_t y = 0;
  EXPECT_EQ(session->GetPreviewWindowPos(&x, &y), kGeneralFailure);
  EXPECT_EQ(session->GetPreviewWindowSize(&x, &y), kOk);
  EXPECT_EQ(session->ResetPreviewWindow(), kGeneralFailure);
  EXPECT_EQ(session->StopPreview(), kNoCamera);
  Start(64, 48);
  EXPECT_TRUE(IsShown());
}

TEST_F(X11Preview, AParentThatDoesNotExistMakesIt7) {
  EXPECT_EQ(session->StartPreview("A preview", kChild, 0, 0, 64, 48,
                                  reinterpret_cast<void*>(std::uintptr_t{0x12345}), 0),
            kOutOfRange);
  EXPECT_EQ(session->preview.window.load(), nullptr);
}

TEST_F(X11Preview, AWindowThatTheUserKillsEndsQuietly) {
  Start(64, 48);
  ASSERT_TRUE(IsShown());
  screen.Kill(window);
  ASSERT_TRUE(ThreadsEnd());
  EXPECT_EQ(session->PausePreview(1), kGeneralFailure);
  EXPECT_EQ(session->StopPreview(), kNoCamera);
}

TEST_F(X11Preview, WithoutADisplayItIs7) {
  for (const char* name : {"", ":987", "nonsense"}) {
    const DisplayName display(name);
    EXPECT_EQ(session->StartPreview("A preview", 0, 0, 0, 64, 48, nullptr, 0), kOutOfRange) << name;
  }
}

// A display server of the test's own.
class Server {
 public:
  Server() {
    int ends[2];
    if (pipe(ends) != 0) return;
    process_ = fork();
    if (process_ == 0) {
      const std::string end = std::to_string(ends[1]);
      execlp("Xvfb", "Xvfb", "-displayfd", end.c_str(), "-screen", "0", "400x300x24", "-noreset",
             "-nolisten", "tcp", nullptr);
      _exit(127);
    }
    close(ends[1]);
    char digits[16] = {};
    const bool started = read(ends[0], digits, sizeof(digits) - 1) > 0;
    close(ends[0]);
    if (started) std::snprintf(name_, sizeof(name_), ":%d", std::atoi(digits));
  }
  ~Server() { Kill(); }
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;
  const char* name() const { return name_; }
  void Kill() {
    if (process_ > 0) {
      kill(process_, SIGKILL);
      waitpid(process_, nullptr, 0);
    }
    process_ = -1;
  }

 private:
  pid_t process_ = -1;
  char name_[16] = {};
};

TEST_F(X11Preview, ADisplayThatGoesAwayTakesThePreviewAndNotTheApplication) {
  Server server;
  ASSERT_STRNE(server.name(), "");
  {
    const DisplayName display(server.name());
    ASSERT_EQ(session->StartPreview("A preview", 0, 0, 0, 64, 48, nullptr, 0), kOk);
  }
  ASSERT_TRUE(Eventually([&] { return camera.frames.load() > 10; }));
  server.Kill();
  ASSERT_TRUE(ThreadsEnd());
  EXPECT_EQ(session->PausePreview(1), kGeneralFailure);
  std::uint32_t x = 0;
  std::uint32_t y = 0;
  EXPECT_EQ(session->GetPreviewWindowPos(&x, &y), kGeneralFailure);
  const OrmidexRect rectangle = {1, 2, 30, 40};
  EXPECT_EQ(session->SetPreviewWindow(&rectangle), kOk);
  EXPECT_EQ(session->StopPreview(), kNoCamera);
}

// ---- Leaks -------------------------------------------------------------------

int EntriesOf(const char* folder) {
  DIR* directory = opendir(folder);
  if (directory == nullptr) return -1;
  int count = 0;
  while (readdir(directory) != nullptr) ++count;
  closedir(directory);
  return count;
}

TEST_F(X11Preview, StartedAndStoppedFiftyTimesItKeepsNoThreadAndNoFile) {
  Start(64, 48);  // the timer's thread and the client library stay
  ASSERT_EQ(session->StopPreview(), kOk);
  const int files = EntriesOf("/proc/self/fd");
  int threads = 0;
  ASSERT_TRUE(Eventually([&] { return (threads = EntriesOf("/proc/self/task")) <= 5; }));
  for (int i = 0; i < 50; ++i) {
    Start(64, 48);
    ASSERT_EQ(session->StopPreview(), kOk);
  }
  EXPECT_EQ(EntriesOf("/proc/self/fd"), files);
  EXPECT_TRUE(Eventually([&] { return EntriesOf("/proc/self/task") <= threads; }));
}

}  // namespace
}  // namespace ormidex::testing
