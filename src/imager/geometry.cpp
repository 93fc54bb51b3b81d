// Sub-window position and size, and the frame sizes that follow from them.
#include "acquisition/reconfiguration.h"
#include "device/session.h"
#include "imager/formulas.h"
#include "imager/registers.h"
#include "platform/memory.h"
#include "preview/preview_window.h"

namespace ormidex::device {

using namespace imager;

namespace {

std::uint8_t HighByte(std::uint32_t value) { return static_cast<std::uint8_t>(value >> 8); }
std::uint8_t LowByte(std::uint32_t value) { return static_cast<std::uint8_t>(value); }

// The imager's colour pattern starts at an even row, and at an even or odd column
// depending on the mirror, so an odd position is rounded down to even.
Status MoveSecondGeneration(CameraSession& session, std::uint32_t column, std::uint32_t row) {
  const std::uint32_t row_value = (row + second::kRowOffset) & ~1u;
  std::uint32_t column_value = column + second::kColumnOffset;
  column_value = session.geometry.flip_horizontal != 0 ? column_value & ~1u : column_value | 1u;
  if (Status status = session.WriteRegisterPair(second::kWindowColumn, column_value);
      status != kOk) {
    return status;
  }
  if (Status status = session.WriteRegisterPair(second::kWindowRow, row_value); status != kOk) {
    return status;
  }
  session.geometry.column = (column_value & ~1u) - second::kColumnOffset;
  session.geometry.row = row_value - second::kRowOffset;
  return kOk;
}

Status MoveFirstGeneration(CameraSession& session, std::uint32_t column, std::uint32_t row) {
  const std::uint32_t c = column + first::kPositionOffset;
  const std::uint32_t r = row + first::kPositionOffset;
  const std::uint8_t bytes[4] = {HighByte(c), LowByte(c), HighByte(r), LowByte(r)};
  if (Status status = session.WriteMultRegister(first::kWindowPosition, 4, bytes, 0);
      status != kOk) {
    return status;
  }
  session.geometry.column = column;
  session.geometry.row = row;
  return kOk;
}

// A pause of the stream that is not required to succeed.
void SendPause(const CameraSession& session, ControlCode code) {
  const std::uint8_t record[kPauseRecordBytes] = {};
  session.Control(code, record, sizeof(record), nullptr, 0);
}

}  // namespace

Status CameraSession::SetSubWindowPos(std::uint32_t column, std::uint32_t row) {
  if (!HasDevice()) return kNoCamera;
  if (geometry.width * geometry.factor + column > kArrayWidth ||
      geometry.height * geometry.factor + row > kArrayHeight) {
    return kOutOfRange;
  }
  if (column == geometry.column && row == geometry.row) return kOk;
  SendPause(*this, CAM_IOCTL_PAUSE_STREAM);
  const Status status = IsSecondGeneration() ? MoveSecondGeneration(*this, column, row)
                                             : MoveFirstGeneration(*this, column, row);
  SendPause(*this, CAM_IOCTL_RESUME_STREAM);
  return status;
}

namespace {

// Puts the factor into the sub-sampling bits and keeps the register's others.
Status SetSubSampling(CameraSession& session, std::uint32_t factor) {
  const bool newer = session.IsSecondGeneration();
  const std::uint32_t address = newer ? second::kSubSampling : first::kOrientation;
  std::uint8_t value = 0;
  if (Status status = session.ReadRegister(address, &value); status != kOk) return status;
  std::uint32_t bits = 0;
  switch (factor) {
    case 1:
      bits = 0;
      break;
    case 2:
      bits = newer ? 5 : 2;
      break;
    case 4:
      bits = newer ? 10 : 6;
      break;
    default:
      return kOutOfRange;
  }
  const std::uint32_t mask = newer ? second::kSubSamplingMask : first::kSubSamplingMask;
  value = static_cast<std::uint8_t>((value & ~mask) | bits);
  if (Status status = session.WriteRegister(address, value, 0); status != kOk) return status;
  session.geometry.factor = factor;
  return kOk;
}

Status WritePair(CameraSession& session, std::uint32_t address, std::uint8_t* pair,
                 std::uint32_t high, std::uint32_t low) {
  pair[0] = LowByte(high);
  pair[1] = LowByte(low);
  return session.WriteMultRegister(address, 2, pair, 0);
}

struct WindowSize {
  std::uint32_t width = 0;  // before sub-sampling
  std::uint32_t height = 0;
};

Status ResizeFirstGeneration(CameraSession& session, std::uint32_t factor, WindowSize wanted,
                             std::uint8_t* pair, WindowSize* set) {
  if (session.geometry.flip_horizontal != 0) {
    ThreeWordRecord record;
    record.word2 = factor == 1 ? 1 : 0;
    if (!session.Exchange(CAM_IOCTL_SET_FLIP, record)) return kRequestFailed;
  }
  const std::uint32_t width_code = SizeCode(wanted.width, factor);
  const std::uint32_t height_code = SizeCode(wanted.height, factor);
  *set = {width_code * 8, height_code * 8};
  return WritePair(session, first::kWindowSize, pair, width_code, height_code);
}

// A changed window changes the shortest row, so the exposure is set anew.
Status RestoreExposureTime(CameraSession& session) {
  float milliseconds = session.exposure.last_exposure_time;
  if (session.exposure.continuous_auto != 0) {
    if (Status status = session.GetExposureTime(&milliseconds); status != kOk) return status;
  }
  return session.SetExposureTime(milliseconds, 0);
}

Status ResizeSecondGeneration(CameraSession& session, std::uint32_t factor, WindowSize wanted,
                              std::uint8_t* pair, WindowSize* set) {
  const std::uint32_t width = SizeCode(wanted.width, factor) * 8u - 1;
  const std::uint32_t height = SizeCode(wanted.height, factor) * 8u - 1;
  if (Status status =
          WritePair(session, second::kFrameHeight, pair, HighByte(height), LowByte(height));
      status != kOk) {
    return status;
  }
  if (Status status =
          WritePair(session, second::kFrameWidth, pair, HighByte(width), LowByte(width));
      status != kOk) {
    return status;
  }
  *set = {width + 1, height + 1};
  return RestoreExposureTime(session);
}

// Everything between stopping and restarting the stream.
Status Resize(CameraSession& session, std::uint32_t factor, WindowSize wanted, std::uint8_t* pair) {
  if (Status status = SetSubSampling(session, factor); status != kOk) return status;
  WindowSize set;
  const Status status = session.IsSecondGeneration()
                            ? ResizeSecondGeneration(session, factor, wanted, pair, &set)
                            : ResizeFirstGeneration(session, factor, wanted, pair, &set);
  if (status != kOk) return status;
  const int shift = factor == 4 ? 2 : factor == 2 ? 1 : 0;
  session.geometry.width = set.width >> shift;
  session.geometry.height = set.height >> shift;
  if (session.HasCommandRegisterMap3()) {
    return session.WriteCommandRegister(8, LowByte(session.geometry.width / 8));
  }
  return kOk;
}

}  // namespace

Status CameraSession::SetSubWindowSize(std::uint32_t factor, std::uint32_t width,
                                       std::uint32_t height) {
  if (!HasDevice()) return kNoCamera;
  if (height < kMinimumHeight || width < kMinimumWidth) return kOutOfRange;
  if (IsTriggerActive()) return kWrongState;
  if (geometry.row + height > kArrayHeight || geometry.column + width > kArrayWidth) {
    return kOutOfRange;
  }
  platform::Buffer pair(2);
  if (!pair) return kOutOfMemory;

  acquisition::StreamReconfiguration reconfiguration(*this);
  if (Status status = reconfiguration.Begin(); status != kOk) return status;
  if (Status status = Resize(*this, factor, {width, height}, pair.Bytes()); status != kOk) {
    return status;
  }
  RecomputeFrameSizes();
  NotifyPreviewGeometry();
  if (Status status = reconfiguration.RestartStream(); status != kOk) return status;
  reconfiguration.LeaveLock();
  if (reconfiguration.PausedPreview()) {
    ResetPreviewWindow();
    NotifyPreview(0);
  }
  return kOk;
}

Status CameraSession::SetSubWindow(std::uint32_t factor, std::uint32_t column, std::uint32_t row,
                                   std::uint32_t width, std::uint32_t height) {
  if (!HasDevice()) return kNoCamera;
  if (IsTriggerActive()) return kWrongState;
  if (column + width > kArrayWidth || row + height > kArrayHeight) return kOutOfRange;
  // Whichever comes first must itself leave the window inside the array.
  const bool position_first = geometry.height * geometry.factor + row <= kArrayHeight &&
                              geometry.width * geometry.factor + column <= kArrayWidth;
  if (position_first) {
    const Status status = SetSubWindowPos(column, row);
    return status != kOk ? status : SetSubWindowSize(factor, width, height);
  }
  const Status status = SetSubWindowSize(factor, width, height);
  return status != kOk ? status : SetSubWindowPos(column, row);
}

Status CameraSession::GetSubWindowPos(std::uint32_t* column, std::uint32_t* row) {
  if (!HasDevice()) return kNoCamera;
  if (column == nullptr || row == nullptr) return kNullPointer;
  *column = geometry.column;
  *row = geometry.row;
  return kOk;
}

Status CameraSession::GetSubWindowSize(std::uint32_t* factor, std::uint32_t* width,
                                       std::uint32_t* height) {
  if (!HasDevice()) return kNoCamera;
  if (factor == nullptr || width == nullptr || height == nullptr) return kNullPointer;
  *factor = geometry.factor;
  *width = geometry.width * geometry.factor;
  *height = geometry.height * geometry.factor;
  return kOk;
}

Status CameraSession::GetSubWindow(std::uint32_t* factor, std::uint32_t* column, std::uint32_t* row,
                                   std::uint32_t* width, std::uint32_t* height) {
  if (!HasDevice()) return kNoCamera;
  if (factor == nullptr || column == nullptr || row == nullptr) return kNullPointer;
  if (Status status = GetSubWindowSize(factor, width, height); status != kOk) return status;
  return GetSubWindowPos(column, row);
}

void CameraSession::RecomputeFrameSizes() {
  geometry.frame_bytes = geometry.bytes_per_pixel * geometry.height * geometry.width;
  geometry.rgb_bytes = geometry.width * geometry.height * 3;
  bitmap_header.width = geometry.width;
  bitmap_header.height = static_cast<std::int32_t>(geometry.height);
  bitmap_header.image_bytes = geometry.rgb_bytes;
}

}  // namespace ormidex::device
