// A simulated camera in a running session, and a record of what a control loop saw
// and set.
#ifndef ORMIDEX_TESTS_AUTOMATION_LOOP_CAMERA_H_
#define ORMIDEX_TESTS_AUTOMATION_LOOP_CAMERA_H_

#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "automation/levels.h"
#include "automation/site_means.h"
#include "device/driver_gateway.h"
#include "device/driver_protocol.h"
#include "device/session.h"
#include "frame/startup.h"
#include "simulator/create.h"

namespace ormidex::automation {

// One change of a setting: the levels it was decided by, and its new values.
struct LoopPass {
  SiteLevels levels;
  std::vector<std::uint8_t> setting;  // register bytes; empty: nothing was set any more
};

class LoopCamera : public device::DriverGateway {
 public:
  // Keys as in ORMIDEX_SIMULATOR, without the pace.
  explicit LoopCamera(const std::string& keys)
      : simulator_(simulator::CreateFromDescription((keys + ",pace=fast").c_str(), &error_)) {
    frame::SetOperatingSystemKindForTesting(1);
    session_ = device::CameraSession::Create();
    session_->link.gateway = this;
  }
  ~LoopCamera() override {
    session_->Teardown();
    device::CameraSession::FreeStorage(session_);
  }
  LoopCamera(const LoopCamera&) = delete;
  LoopCamera& operator=(const LoopCamera&) = delete;

  // Opens the camera and starts its stream; false when anything fails.
  bool Start(std::uint32_t width, std::uint32_t height, std::uint32_t bits) {
    if (simulator_ == nullptr) return false;
    if (session_->Open("Torvenal(tm) 1394 Camera", 0) != kOk) return false;
    if (session_->SetSubWindow(1, 0, 0, width, height) != kOk) return false;
    // 16 bits are too much for the clock that cameras are opened with.
    const Status status = bits == 8 ? kOk : session_->SetDataTransferSize(bits);
    if (status != kOk && status != kClockingChanged) return false;
    return session_->StartVideoStream() == kOk;
  }

  device::CameraSession* operator->() { return session_; }

  // The region that the recorded levels are of.
  void Watch(const SiteRectangle& rectangle) { watched_ = rectangle; }
  void WatchWholeFrame() { watched_ = {0, 0, session_->geometry.width, session_->geometry.height}; }

  // What has been recorded since the last call, closed by the last frame's levels.
  std::vector<LoopPass> TakePasses() {
    passes_.push_back({LastLevels(), {}});
    return std::exchange(passes_, {});
  }
  // Of a frame that shows the present settings.
  SiteLevels Measure() {
    std::vector<std::uint8_t> frame(session_->geometry.frame_bytes);
    session_->FlushVideoData();
    for (int i = 0; i < 4; ++i) {
      session_->ReturnVideoData(static_cast<std::uint32_t>(frame.size()), frame.data());
    }
    return LastLevels();
  }
  const std::string& Error() const { return error_; }

  device::DriverHandle Open(const char* path, device::DriverShare share) override {
    return simulator_->Open(path, share);
  }
  bool Close(device::DriverHandle handle) override { return simulator_->Close(handle); }
  device::EnumerationResult Enumerate(device::DeviceVisitor& visitor) override {
    return simulator_->Enumerate(visitor);
  }
  bool Control(device::DriverHandle handle, const device::DriverRequest& request,
               std::uint32_t* returned) override {
    if (request.code == device::CAM_IOCTL_WRITE_REGISTERS) NoteWrite(request);
    if (!simulator_->Control(handle, request, returned)) return false;
    if (request.code == device::CAM_IOCTL_READ_FRAME) {
      const auto* bytes = static_cast<const std::uint8_t*>(request.out);
      frame_.assign(bytes, bytes + request.out_bytes);
    }
    return true;
  }

 private:
  // Exposure values, exposure rows (their last byte) and colour gains.
  void NoteWrite(const device::DriverRequest& request) {
    device::RegisterBlockRecord record;
    std::memcpy(&record, request.in, sizeof(record));
    const auto* data = static_cast<const std::uint8_t*>(request.in) + sizeof(record);
    const bool older_setting = (record.register_address == 18 && record.byte_count == 2) ||
                               (record.register_address == 20 && record.byte_count == 3);
    const bool newer_setting =
        record.register_address == 78 || (record.register_address == 0 && record.byte_count == 4);
    if (session_->IsSecondGeneration() ? newer_setting : older_setting) {
      passes_.push_back({LastLevels(), {data, data + record.byte_count}});
    }
  }
  SiteLevels LastLevels() const {
    if (frame_.empty()) return {};
    std::uint32_t packed = 0;
    const auto means =
        session_->geometry.bytes_per_pixel == 1 ? ComputeSiteMeans8 : ComputeSiteMeans16;
    means(session_->geometry.bayer_phase, frame_.data(), session_->geometry.width, watched_,
          &packed, 0, nullptr, nullptr);
    return SiteLevels::FromMeans(BayerSiteMeans::FromPacked(packed));
  }

  std::string error_;
  std::unique_ptr<device::DriverGateway> simulator_;
  device::CameraSession* session_;
  SiteRectangle watched_;
  std::vector<std::uint8_t> frame_;
  std::vector<LoopPass> passes_;
};

}  // namespace ormidex::automation

#endif  // ORMIDEX_TESTS_AUTOMATION_LOOP_CAMERA_H_
