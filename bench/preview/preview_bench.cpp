// How many of a camera's frames the preview shows: 1280 x 1024, bilinear, drawn
// onto a surface that costs nothing.
//
// No simulated imager reads out a full frame 60 times a second, so the camera is one
// that runs as fast as it is asked, behind a driver that asks 60 times a second and,
// as drivers do, keeps the two newest frames.
#include <benchmark/benchmark.h>

#include <atomic>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "device/driver_protocol.h"
#include "device/session.h"
#include "platform/thread.h"
#include "platform/timer.h"
#include "platform/window.h"
#include "simulator/simulator.h"

namespace ormidex {
namespace {

constexpr std::uint64_t kFramePeriodUs = 1'000'000 / 60;

class NullWindow : public platform::NativeWindow {
 public:
  explicit NullWindow(platform::WindowHandler& handler) : handler_(handler) {}
  ~NullWindow() override { Destroy(); }
  bool Destroy() override {
    if (there_) handler_.OnDestroy();
    there_ = false;
    return true;
  }
  void SendMessageSync(std::uint32_t message, std::uintptr_t first,
                       std::uintptr_t second) override {
    handler_.OnMessage(message, first, second);
  }
  bool ReadPlacement(platform::WindowPlacement*) override { return false; }
  bool ReadClientSize(std::int32_t*, std::int32_t*) override { return false; }
  bool ReadWindowSize(std::int32_t*, std::int32_t*) override { return false; }
  void Place(const platform::WindowRect&) override {}
  void ShowNormal() override {}
  bool AcquireContext() override { return true; }
  void ReleaseContext() override {}
  void Draw(const platform::WindowImage&, std::int32_t, std::int32_t) override {
    draws.fetch_add(1);
  }
  static inline std::atomic<int> draws{0};

 private:
  platform::WindowHandler& handler_;
  bool there_ = true;
};

platform::NativeWindow* CreateNullWindow(const platform::WindowArguments&,
                                         platform::WindowHandler& handler) {
  auto* window = new NullWindow(handler);
  return handler.OnCreate(*window) ? window : nullptr;
}

// Delivers one frame of the camera behind it 60 times a second.
class PacedDriver : public device::DriverGateway {
 public:
  explicit PacedDriver(device::DriverGateway& camera) : camera_(camera) {}

  device::DriverHandle Open(const char* path, device::DriverShare share) override {
    return camera_.Open(path, share);
  }
  bool Close(device::DriverHandle handle) override { return camera_.Close(handle); }
  device::EnumerationResult Enumerate(device::DeviceVisitor& visitor) override {
    return camera_.Enumerate(visitor);
  }
  bool Control(device::DriverHandle handle, const device::DriverRequest& request,
               std::uint32_t* returned) override {
    if (request.code != device::CAM_IOCTL_READ_FRAME) {
      return camera_.Control(handle, request, returned);
    }
    // The picture is exposed once: its making is the simulator's cost.
    if (picture_.size() != request.out_bytes) {
      picture_.resize(request.out_bytes);
      const device::DriverRequest first = {request.code, nullptr, 0, picture_.data(),
                                           request.out_bytes};
      if (!camera_.Control(handle, first, returned)) return false;
      start_ = platform::MonotonicMicroseconds();
      taken_ = 0;
    }
    WaitForFrame();
    std::memcpy(request.out, picture_.data(), picture_.size());
    *returned = request.out_bytes;
    return true;
  }

 private:
  std::int64_t FramesDue() const {
    return static_cast<std::int64_t>((platform::MonotonicMicroseconds() - start_) / kFramePeriodUs);
  }
  void WaitForFrame() {
    if (FramesDue() > taken_ + 2) taken_ = FramesDue() - 2;  // older ones are lost
    while (FramesDue() <= taken_) platform::SleepMilliseconds(1);
    ++taken_;
  }

  device::DriverGateway& camera_;
  std::vector<std::uint8_t> picture_;
  std::uint64_t start_ = 0;
  std::int64_t taken_ = 0;
};

void PreviewOf60FramesASecond(benchmark::State& state) {
  std::string error;
  const auto simulator = simulator::Simulator::Create("pace=fast", &error);
  PacedDriver driver(*simulator);
  device::ReplaceGatewayForTesting(&driver);
  platform::ReplaceWindowFactoryForTesting(&CreateNullWindow);
  device::CameraSession* session = device::CameraSession::Create();
  session->Open("Torvenal(tm) 1394 Camera", 0);
  session->SetSubWindow(1, 0, 0, 1280, 1024);
  session->SetPreviewColorConversion(static_cast<std::uint32_t>(state.range(0)));
  const Status status = session->StartPreview("", 0, 0, 0, 1280, 1024, nullptr, 0);
  if (status != kOk) state.SkipWithError("the preview did not start");
  platform::SleepMilliseconds(500);
  for (auto _ : state) {
    const int before = NullWindow::draws.load();
    const std::uint64_t start = platform::MonotonicMicroseconds();
    platform::SleepMilliseconds(5000);
    const double seconds =
        static_cast<double>(platform::MonotonicMicroseconds() - start) / 1'000'000.0;
    state.counters["displayed_per_second"] =
        static_cast<double>(NullWindow::draws.load() - before) / seconds;
    state.counters["reported_per_second"] = static_cast<double>(session->preview.frame_rate.load());
  }
  session->Teardown();
  device::CameraSession::FreeStorage(session);
  platform::ReplaceWindowFactoryForTesting(nullptr);
  device::ReplaceGatewayForTesting(nullptr);
}
BENCHMARK(PreviewOf60FramesASecond)
    ->ArgName("code")
    ->Arg(1)
    ->Iterations(1)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace ormidex
