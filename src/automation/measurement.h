// What both control loops do with the camera: frames, statistics, the preview.
#ifndef ORMIDEX_AUTOMATION_MEASUREMENT_H_
#define ORMIDEX_AUTOMATION_MEASUREMENT_H_

#include <cstdint>

#include "automation/levels.h"
#include "automation/statistics.h"
#include "device/session.h"
#include "platform/memory.h"

namespace ormidex::automation {

// The part of the frame that a caller wants to be looked at, in pixels.
struct Region {
  bool given = false;  // false: the whole frame, and the rest means nothing
  std::uint32_t left = 0;
  std::uint32_t top = 0;
  std::uint32_t width = 0;
  std::uint32_t height = 0;

  // A region that is not given fits always.
  bool FitsInFrameOf(const device::CameraSession& session) const;
  // Sides become multiples of 4, at least 4, and the region moves back into the
  // frame.
  Region RoundedInFrameOf(const device::CameraSession& session) const;
};

// Frames of one run, all read into one buffer. The geometry is that of the run's
// beginning; a frame of another size is not read.
class FrameMeter {
 public:
  explicit FrameMeter(device::CameraSession& session);

  // False: memory is short.
  bool Allocate();
  void Flush() { session_.FlushVideoData(); }
  Status ReadFrame();
  // Reads and forgets, exposed as they were under an earlier setting or not at all.
  void SkipFrames(int count);

  // Of the last frame read. The part of the region outside the frame has no pixels.
  BayerSiteMeans Measure(const Region& region, std::uint32_t threshold8,
                         std::uint32_t* dark_count = nullptr,
                         std::uint32_t* clipped_count = nullptr) const;

  // Camera-side levels of the whole frame. A failed read is not noticed: what an
  // earlier read of the run has left is taken again, or zeros. Deliberate, the next
  // pass corrects it.
  ColourLevels ReadOlderStatistics();
  SiteLevels ReadNewerStatistics();

  std::uint32_t Pixels() const { return width_ * height_; }

 private:
  device::CameraSession& session_;
  std::uint32_t width_;
  std::uint32_t height_;
  std::uint32_t bytes_per_pixel_;
  platform::Buffer storage_;
  std::uint8_t* frame_ = nullptr;
  std::uint8_t block_[kLongStatisticsBytes] = {};
};

// Firmware before 2.2 sums nothing up.
bool LacksStatistics(const device::CameraSession& session);

// Sets or clears bits of a command register. The register is written whether or not
// it could be read.
void ChangeCommandRegister(device::CameraSession& session, std::uint32_t address, std::uint8_t keep,
                           std::uint8_t set);

// Keeps an attached preview off the stream. It resumes only when told to: some
// failures leave it suspended.
class PreviewSuspension {
 public:
  explicit PreviewSuspension(device::CameraSession& session) : session_(session) {}
  void Suspend();
  void Resume();

 private:
  device::CameraSession& session_;
  bool suspended_here_ = false;
};

}  // namespace ormidex::automation

#endif  // ORMIDEX_AUTOMATION_MEASUREMENT_H_
