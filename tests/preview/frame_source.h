// A driver that delivers frames: all of one byte each, the frame's number.
#ifndef ORMIDEX_TESTS_PREVIEW_FRAME_SOURCE_H_
#define ORMIDEX_TESTS_PREVIEW_FRAME_SOURCE_H_

#include <atomic>
#include <cstring>

#include "device/driver_gateway.h"
#include "device/driver_protocol.h"
#include "platform/thread.h"

namespace ormidex::testing {

class FrameSource : public device::DriverGateway {
 public:
  std::atomic<int> frame_interval_ms{1};
  std::atomic<int> fixed_byte{-1};    // 0 to 255: every frame consists of it
  std::atomic<int> frames_left{-1};   // negative: no end
  std::atomic<int> silence_ms{20};    // how long a read without a frame waits before it fails
  std::atomic<int> failures_left{0};  // reads that fail before the next frame
  std::atomic<bool> refuses_start{false};

  std::atomic<int> frames{0};
  std::atomic<int> failed_reads{0};
  std::atomic<int> starts{0};
  std::atomic<int> stops{0};
  std::atomic<int> other_requests{0};
  std::atomic<std::uint32_t> last_read_bytes{0};

  device::DriverHandle Open(const char*, device::DriverShare) override { return this; }
  bool Close(device::DriverHandle) override { return true; }
  device::EnumerationResult Enumerate(device::DeviceVisitor&) override {
    return device::EnumerationResult::kEmptyCategory;
  }
  bool Control(device::DriverHandle, const device::DriverRequest& request,
               std::uint32_t* returned) override {
    *returned = request.out_bytes;
    switch (request.code) {
      case device::CAM_IOCTL_READ_FRAME:
        return ReadFrame(request);
      case device::CAM_IOCTL_START_STREAM:
        if (refuses_start.load()) return false;
        starts.fetch_add(1);
        return true;
      case device::CAM_IOCTL_STOP_STREAM:
        stops.fetch_add(1);
        return true;
      default:
        other_requests.fetch_add(1);
        return true;
    }
  }

 private:
  bool ReadFrame(const device::DriverRequest& request) {
    last_read_bytes.store(request.out_bytes);
    if (failures_left.load() > 0) {
      failures_left.fetch_sub(1);
      failed_reads.fetch_add(1);
      return false;
    }
    if (frames_left.load() == 0) {
      platform::SleepMilliseconds(static_cast<std::uint32_t>(silence_ms.load()));
      failed_reads.fetch_add(1);
      return false;
    }
    if (frames_left.load() > 0) frames_left.fetch_sub(1);
    platform::SleepMilliseconds(static_cast<std::uint32_t>(frame_interval_ms.load()));
    const int number = frames.fetch_add(1) + 1;
    const int fixed = fixed_byte.load();
    std::memset(request.out, fixed >= 0 ? fixed : number & 0xFF, request.out_bytes);
    return true;
  }
};

// Looks every millisecond until the condition holds; false after the time-out.
template <typename Condition>
bool Eventually(Condition condition, int timeout_ms = 5000) {
  for (int waited = 0; waited < timeout_ms; ++waited) {
    if (condition()) return true;
    platform::SleepMilliseconds(1);
  }
  return condition();
}

}  // namespace ormidex::testing

#endif  // ORMIDEX_TESTS_PREVIEW_FRAME_SOURCE_H_
