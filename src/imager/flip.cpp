// Mirroring the image.
#include "acquisition/reconfiguration.h"
#include "device/session.h"
#include "imager/registers.h"
#include "platform/memory.h"

namespace ormidex::device {

using namespace imager;

namespace {

std::uint8_t WithBit(std::uint8_t value, std::uint8_t bit, bool set) {
  return static_cast<std::uint8_t>(set ? value | bit : value & ~bit);
}

// The first-generation camera's controller mirrors too, but only full rows.
Status SendFlipRequest(const CameraSession& session, ThreeWordRecord& record, bool on) {
  record = ThreeWordRecord{};
  record.word2 = on && session.geometry.factor == 1 ? 1 : 0;
  return session.Exchange(CAM_IOCTL_SET_FLIP, record) ? kOk : kRequestFailed;
}

// Applies the horizontal flip to the register's value.
Status FlipHorizontally(CameraSession& session, bool on, ThreeWordRecord& record,
                        std::uint8_t* orientation) {
  Status status = kOk;
  if (session.IsSecondGeneration()) {
    *orientation = WithBit(*orientation, second::kHorizontalMirror, on);
  } else {
    *orientation = WithBit(*orientation, first::kHorizontalMirror, on);
    status = SendFlipRequest(session, record, on);
  }
  session.geometry.flip_horizontal = on ? 1 : 0;
  return status;
}

void FlipVertically(CameraSession& session, bool on, std::uint8_t* orientation) {
  if (session.IsSecondGeneration()) {
    *orientation = WithBit(*orientation, second::kVerticalFlip, on);
  } else {
    // Inverted sense, deliberate: this imager reads its array from below.
    *orientation = WithBit(*orientation, first::kVerticalUpright, !on);
  }
  session.geometry.flip_vertical = on ? 1 : 0;
}

// The column's parity depends on the mirror, so the position is written again. The
// stored position is moved first: the setter skips what has not changed.
Status RewritePosition(CameraSession& session) {
  const std::uint32_t column = session.geometry.column;
  const std::uint32_t row = session.geometry.row;
  ++session.geometry.column;
  ++session.geometry.row;
  return session.SetSubWindowPos(column, row);
}

}  // namespace

Status CameraSession::ImageFlip(std::int32_t horizontal, std::int32_t vertical) {
  if (!HasDevice()) return kNoCamera;
  const std::uint32_t address = IsSecondGeneration() ? second::kFlip : first::kOrientation;
  std::uint8_t orientation = 0;
  if (Status status = ReadRegister(address, &orientation); status != kOk) return status;
  platform::Buffer buffer(sizeof(ThreeWordRecord));
  if (!buffer) return kOutOfMemory;

  acquisition::StreamReconfiguration reconfiguration(*this);
  if (Status begun =
          horizontal != 0 ? reconfiguration.Begin() : reconfiguration.BeginWithoutStopping();
      begun != kOk) {
    return begun;
  }
  Status status = kOk;
  if (horizontal != 0) {
    auto& record = *reinterpret_cast<ThreeWordRecord*>(buffer.Bytes());
    status = FlipHorizontally(*this, horizontal > 0, record, &orientation);
  }
  if (vertical != 0) FlipVertically(*this, vertical > 0, &orientation);
  const Status written = WriteRegister(address, orientation, 0);
  if (status == kOk) status = written;
  const Status restarted = reconfiguration.RestartStream();
  if (status == kOk) status = restarted;
  reconfiguration.LeaveLock();
  if (IsSecondGeneration()) {
    const Status moved = RewritePosition(*this);
    if (status == kOk) status = moved;
  }
  reconfiguration.RestorePreview();
  return status;
}

Status CameraSession::GetImageFlip(std::uint32_t* horizontal, std::uint32_t* vertical) {
  if (!HasDevice()) return kNoCamera;
  if (horizontal == nullptr || vertical == nullptr) return kNullPointer;
  *horizontal = geometry.flip_horizontal;
  *vertical = geometry.flip_vertical;
  return kOk;
}

}  // namespace ormidex::device
