#include "automation/measurement.h"

#include <algorithm>

namespace ormidex::automation {

namespace {

constexpr std::uint32_t kSideMin = 4;
constexpr std::uint32_t kSideMultiple = 4;

constexpr std::uint32_t kFirmwareWithStatistics = 0x02020000;

// Newer controllers: the register that chooses which count the next two show.
constexpr std::uint32_t kCountSelection = 2;
constexpr std::uint32_t kCountHigh = 6;
constexpr std::uint32_t kCountLow = 7;
constexpr std::uint8_t kSelectBright = 0x20;

// Whole cache lines make the vector kernels' loads cheap.
constexpr std::size_t kFrameAlignment = 64;

std::uint32_t RoundedSide(std::uint32_t side) {
  return std::max(side / kSideMultiple * kSideMultiple, kSideMin);
}

// 64 bits wide, so that no far-away start wraps back into the frame.
bool Overruns(std::uint32_t start, std::uint32_t length, std::uint32_t limit) {
  return std::uint64_t{start} + length > limit;
}

std::uint32_t MovedBack(std::uint32_t start, std::uint32_t length, std::uint32_t limit) {
  if (!Overruns(start, length, limit)) return start;
  return limit > length ? limit - length : 0;
}

std::uint32_t EndInFrame(std::uint32_t start, std::uint32_t length, std::uint32_t limit) {
  return Overruns(start, length, limit) ? limit : start + length;
}

}  // namespace

bool Region::FitsInFrameOf(const device::CameraSession& session) const {
  return !given || (!Overruns(left, width, session.geometry.width) &&
                    !Overruns(top, height, session.geometry.height));
}

Region Region::RoundedInFrameOf(const device::CameraSession& session) const {
  const std::uint32_t frame_width = session.geometry.width;
  const std::uint32_t frame_height = session.geometry.height;
  Region rounded = given ? *this : Region{false, 0, 0, frame_width, frame_height};
  rounded.width = RoundedSide(rounded.width);
  rounded.height = RoundedSide(rounded.height);
  rounded.left = MovedBack(rounded.left, rounded.width, frame_width);
  rounded.top = MovedBack(rounded.top, rounded.height, frame_height);
  return rounded;
}

FrameMeter::FrameMeter(device::CameraSession& session)
    : session_(session),
      width_(session.geometry.width),
      height_(session.geometry.height),
      bytes_per_pixel_(session.geometry.bytes_per_pixel) {}

bool FrameMeter::Allocate() {
  const std::size_t bytes = std::size_t{width_ * height_ * bytes_per_pixel_};
  if (bytes > SIZE_MAX - kFrameAlignment) return false;
  storage_ = platform::Buffer(bytes + kFrameAlignment);
  if (!storage_) return false;
  const auto address = reinterpret_cast<std::uintptr_t>(storage_.Bytes());
  frame_ = storage_.Bytes() + (kFrameAlignment - address % kFrameAlignment) % kFrameAlignment;
  return true;
}

Status FrameMeter::ReadFrame() {
  return session_.ReturnVideoData(width_ * height_ * bytes_per_pixel_, frame_);
}

void FrameMeter::SkipFrames(int count) {
  for (int i = 0; i < count; ++i) ReadFrame();
}

BayerSiteMeans FrameMeter::Measure(const Region& region, std::uint32_t threshold8,
                                   std::uint32_t* dark_count, std::uint32_t* clipped_count) const {
  const SiteRectangle rectangle{std::min(region.left, width_), std::min(region.top, height_),
                                EndInFrame(region.left, region.width, width_),
                                EndInFrame(region.top, region.height, height_)};
  std::uint32_t packed = 0;
  if (bytes_per_pixel_ * 8 == 8) {
    ComputeSiteMeans8(session_.geometry.bayer_phase, frame_, width_, rectangle, &packed, threshold8,
                      dark_count, clipped_count);
  } else {
    ComputeSiteMeans16(session_.geometry.bayer_phase, frame_, width_, rectangle, &packed,
                       threshold8 << 8, dark_count, clipped_count);
  }
  return BayerSiteMeans::FromPacked(packed);
}

ColourLevels FrameMeter::ReadOlderStatistics() {
  const std::uint32_t frame_bytes = width_ * height_ * bytes_per_pixel_;
  if (session_.HasCommandRegisterMap3()) {
    session_.ReadCommandBlock(kStatisticsRegister, kShortStatisticsBytes, block_);
    return LevelsFromShortStatistics(block_, frame_bytes);
  }
  session_.ReadCommandBlock(kStatisticsRegister, kLongStatisticsBytes, block_);
  return LevelsFromLongStatistics(block_, frame_bytes);
}

SiteLevels FrameMeter::ReadNewerStatistics() {
  ChangeCommandRegister(session_, kCountSelection, 0xFF, kSelectBright);
  // Controllers have always been asked for the count before the sums; it is of no
  // use here.
  std::uint8_t count = 0;
  session_.ReadCommandRegister(kCountHigh, &count);
  session_.ReadCommandRegister(kCountLow, &count);
  session_.ReadCommandBlock(kStatisticsRegister, kNewerStatisticsBytes, block_);
  return LevelsFromNewerStatistics(block_, Pixels());
}

bool LacksStatistics(const device::CameraSession& session) {
  return session.FirmwareGeneration() < kFirmwareWithStatistics;
}

void ChangeCommandRegister(device::CameraSession& session, std::uint32_t address, std::uint8_t keep,
                           std::uint8_t set) {
  std::uint8_t value = 0;
  session.ReadCommandRegister(address, &value);
  session.WriteCommandRegister(address, static_cast<std::uint8_t>((value & keep) | set));
}

void PreviewSuspension::Suspend() {
  if (session_.preview.window.load() == nullptr || session_.preview.suspended.load() != 0) return;
  session_.NotifyPreview(1);
  suspended_here_ = true;
}

void PreviewSuspension::Resume() {
  if (suspended_here_) session_.NotifyPreview(0);
  suspended_here_ = false;
}

}  // namespace ormidex::automation
