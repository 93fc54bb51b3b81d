// Exposure value, exposure time and exposure gain.
#include "device/session.h"
#include "imager/formulas.h"
#include "imager/registers.h"

namespace ormidex::device {

using namespace imager;

Status CameraSession::GetExposure(std::uint32_t* value) {
  if (!HasDevice()) return kNoCamera;
  if (value == nullptr) return kNullPointer;
  if (IsSecondGeneration()) return kNotSupported;
  std::uint8_t low = 0;
  std::uint8_t high = 0;
  if (Status status = ReadRegister(first::kExposureLow, &low); status != kOk) return status;
  if (Status status = ReadRegister(first::kExposureHigh, &high); status != kOk) return status;
  *value = high * 256u + low;
  return kOk;
}

Status CameraSession::SetExposure(std::uint32_t value) {
  if (!HasDevice()) return kNoCamera;
  if (IsSecondGeneration()) return kNotSupported;
  return WriteRegisterPair(first::kExposureHigh, value);
}

Status CameraSession::GetExposureGain(float* gain) {
  if (!IsSecondGeneration()) return kNotSupported;
  if (!HasDevice()) return kNoCamera;
  if (gain == nullptr) return kNullPointer;
  std::uint8_t control = 0;
  if (Status status = ReadRegister(second::kGainControl, &control); status != kOk) return status;
  if ((control & second::kGainModeMask) != second::kGainManual) return kWrongState;
  std::uint8_t code = 0;
  const Status status = ReadRegister(second::kExposureGain, &code);
  *gain = status == kOk ? ExposureGainFromCode(code) : -1.0f;
  return status;
}

Status CameraSession::SetExposureGain(float gain) {
  if (!IsSecondGeneration()) return kNotSupported;
  if (!HasDevice()) return kNoCamera;
  if (!(gain >= kExposureGainMin && gain <= kExposureGainMax)) return kOutOfRange;
  std::uint8_t control = 0;
  if (Status status = ReadRegister(second::kGainControl, &control); status != kOk) return status;
  control = static_cast<std::uint8_t>((control & ~second::kGainModeMask) | second::kGainManual);
  if (Status status = WriteRegister(second::kGainControl, control, 0); status != kOk) {
    return status;
  }
  return WriteRegister(second::kExposureGain, CodeFromExposureGain(gain), 0);
}

namespace {

// Blanking counts, read as the imager's formulas need them: 95, then 96.
Status ReadBlanking(CameraSession& session, ImagerTiming* timing) {
  std::uint8_t a = 0;
  std::uint8_t b = 0;
  if (Status status = session.ReadRegister(second::kBlankingA, &a); status != kOk) return status;
  if (Status status = session.ReadRegister(second::kBlankingB, &b); status != kOk) return status;
  timing->blanking_a = a;
  timing->blanking_b = b;
  return kOk;
}

Status ReadMinimumRowLength(CameraSession& session, std::uint32_t* length) {
  RowLengthInput input;
  if (Status status = session.ReadRegisterPair(second::kFrameWidth, 0x3F, &input.width_register);
      status != kOk) {
    return status;
  }
  if (Status status = session.ReadRegisterPair(second::kFrameHeight, 0x3F, &input.height_register);
      status != kOk) {
    return status;
  }
  std::uint8_t decimation = 0;
  if (Status status = session.ReadRegister(second::kSubSampling, &decimation); status != kOk) {
    return status;
  }
  const std::uint32_t code = decimation & 3u;
  input.divisor = code == 0 ? 1 : code == 1 ? 2 : 4;
  input.bytes_per_pixel = session.geometry.bytes_per_pixel;
  input.firmware_version = session.identity.firmware_version;
  const PixelClock* clock = FindPixelClock(session.exposure.clocking);
  if (clock == nullptr) {
    *length = session.geometry.width + 10;
    return kOk;
  }
  input.megahertz = clock->megahertz;
  *length = MinimumRowLength(input);
  return kOk;
}

// Shortest frame, in rows, for the window that the imager reads.
Status ReadMinimumFrameLength(CameraSession& session, std::uint32_t* rows) {
  std::uint32_t frame_length = 0;  // read for the imager's sake, its value is not needed
  if (Status status = session.ReadRegisterPair(second::kFrameLength, 0xFF, &frame_length);
      status != kOk) {
    return status;
  }
  std::uint32_t height = 0;
  if (Status status = session.ReadRegisterPair(second::kFrameHeight, 0x3F, &height);
      status != kOk) {
    return status;
  }
  const std::uint32_t factor = session.geometry.factor != 0 ? session.geometry.factor : 1;
  *rows = (height + 1) / factor + 1;
  return kOk;
}

// Converts a time to rows and sets the row and frame length that go with it.
Status PrepareRows(CameraSession& session, float milliseconds, std::uint32_t* rows) {
  ImagerTiming timing;
  std::uint32_t width = 0;  // read with the row length, as the imager expects it
  if (Status status = session.ReadRegisterPair(second::kRowLength, 0x3F, &timing.row_length);
      status != kOk) {
    return status;
  }
  if (Status status = session.ReadRegisterPair(second::kFrameWidth, 0x3F, &width); status != kOk) {
    return status;
  }
  std::uint32_t minimum_row_length = 0;
  std::uint32_t minimum_frame_length = 0;
  if (Status status = ReadMinimumRowLength(session, &minimum_row_length); status != kOk) {
    return status;
  }
  if (Status status = ReadMinimumFrameLength(session, &minimum_frame_length); status != kOk) {
    return status;
  }
  if (Status status = ReadBlanking(session, &timing); status != kOk) return status;

  const PixelClock* clock = FindPixelClock(session.exposure.clocking);
  if (clock == nullptr) return kOutOfRange;
  const RowExposure exposure =
      RowsFromTime(static_cast<double>(milliseconds), clock->period_ms, minimum_row_length, timing);
  if (exposure.row_length_given || timing.row_length != exposure.row_length) {
    if (Status status = session.WriteRegisterPair(second::kRowLength, exposure.row_length);
        status != kOk) {
      return status;
    }
  }
  const std::uint32_t frame_length =
      exposure.rows < minimum_frame_length ? minimum_frame_length : exposure.rows;
  *rows = exposure.rows;
  return session.WriteRegisterPair(second::kFrameLength, frame_length);
}

// The imager takes a new exposure over when the update bit of the high byte has
// changed, so the low byte goes first.
Status WriteRows(CameraSession& session, std::uint32_t rows) {
  std::uint8_t high = 0;
  if (Status status = session.ReadRegister(second::kExposureRows, &high); status != kOk) {
    return status;
  }
  if (Status status =
          session.WriteRegister(second::kExposureRows + 1, static_cast<std::uint8_t>(rows), 0);
      status != kOk) {
    return status;
  }
  const std::uint32_t toggle = ~high & second::kExposureUpdate;
  return session.WriteRegister(second::kExposureRows,
                               static_cast<std::uint8_t>(((rows >> 8) & 0x3Fu) | toggle), 0);
}

Status SetTimeInRows(CameraSession& session, float milliseconds) {
  std::uint32_t rows = 0;
  if (Status status = PrepareRows(session, milliseconds, &rows); status != kOk) return status;
  if (Status status = WriteRows(session, rows); status != kOk) return status;
  session.exposure.last_exposure_time = milliseconds;
  return kOk;
}

// Register value for a time at one clock of the first-generation imager.
bool ValueAtClock(const CameraSession& session, float milliseconds, std::uint32_t clocking,
                  std::uint32_t* value) {
  const PixelClock* clock = FindPixelClock(clocking);
  return clock != nullptr &&
         ExposureValueFromTime(static_cast<double>(milliseconds), *clock,
                               RowLength(session.geometry.factor), session.geometry.height, value);
}

// Steps to slower clocks, never to a faster one, until the time fits.
Status SetTimeAdjustingClock(CameraSession& session, float milliseconds) {
  std::uint32_t value = 0;
  std::uint32_t clocking = session.exposure.clocking;
  while (!ValueAtClock(session, milliseconds, clocking, &value)) {
    const PixelClock* clock = FindPixelClock(clocking);
    if (clock == nullptr || clock->next_slower == kNoClocking) return kOutOfRange;
    clocking = clock->next_slower;
  }
  if (Status status = session.SetImagerClocking(clocking); status != kOk) return status;
  return session.SetExposure(value);
}

}  // namespace

Status CameraSession::GetExposureTime(float* milliseconds) {
  if (!HasDevice()) return kNoCamera;
  if (milliseconds == nullptr) return kNullPointer;
  const PixelClock* clock = FindPixelClock(exposure.clocking);
  if (!IsSecondGeneration()) {
    std::uint32_t value = 0;
    if (Status status = GetExposure(&value); status != kOk) return status;
    const std::uint32_t row_length = RowLength(geometry.factor);
    if (row_length == 0 || clock == nullptr) return kOutOfRange;
    *milliseconds = TimeFromExposureValue(value, *clock, row_length, geometry.height);
    return kOk;
  }
  std::uint32_t rows = 0;
  ImagerTiming timing;
  if (Status status = ReadRegisterPair(second::kExposureRows, 0x3F, &rows); status != kOk) {
    return status;
  }
  if (Status status = ReadRegisterPair(second::kRowLength, 0x3F, &timing.row_length);
      status != kOk) {
    return status;
  }
  if (Status status = ReadBlanking(*this, &timing); status != kOk) return status;
  if (clock == nullptr) return kOutOfRange;
  *milliseconds = TimeFromRows(rows, clock->period_ms, timing);
  return kOk;
}

Status CameraSession::SetExposureTime(float milliseconds, std::uint32_t adjust_clock) {
  if (!HasDevice()) return kNoCamera;
  if (!(milliseconds >= 0.0f)) return kOutOfRange;
  if (IsSecondGeneration()) return SetTimeInRows(*this, milliseconds);
  if (adjust_clock != 0) return SetTimeAdjustingClock(*this, milliseconds);
  std::uint32_t value = 0;
  if (!ValueAtClock(*this, milliseconds, exposure.clocking, &value)) return kOutOfRange;
  return SetExposure(value);
}

Status CameraSession::GetMaxExposureTime(std::uint32_t factor, std::uint32_t width,
                                         std::uint32_t height, std::uint32_t clocking,
                                         float frame_rate, float* milliseconds) {
  if (!HasDevice()) return kNoCamera;
  if (milliseconds == nullptr) return kNullPointer;
  const PixelClock* clock = FindPixelClock(clocking);
  if (clock == nullptr || factor == 0) return kOutOfRange;
  if (!IsSecondGeneration()) {
    if (RowLength(factor) == 0) return kOutOfRange;
    *milliseconds = MaxExposureFirstGeneration(factor, height, *clock);
    return kOk;
  }
  ImagerTiming timing;
  if (Status status = ReadBlanking(*this, &timing); status != kOk) return status;
  *milliseconds = MaxExposureSecondGeneration(factor, width, height, *clock, frame_rate, timing);
  return kOk;
}

Status CameraSession::GetCurrentFrameRate(std::uint32_t* frame_rate) {
  if (frame_rate == nullptr) return kNullPointer;
  if (!HasDevice()) return kNoCamera;
  if (preview.window.load() == nullptr) return kNoPreview;
  if (IsTriggerActive()) return kWrongState;
  *frame_rate = static_cast<std::uint32_t>(preview.frame_rate.load());
  return kOk;
}

}  // namespace ormidex::device
