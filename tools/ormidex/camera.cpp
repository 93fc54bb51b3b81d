#include "camera.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "exit_code.h"

namespace ormidex_tool {

namespace {

std::string Hex(OrmidexUInt32 value) { return fmt::format("0x{:08X}", value); }

}  // namespace

void SetEnvironment(const char* name, const std::string& value) {
#ifdef _WIN32
  _putenv((std::string(name) + "=" + value).c_str());
#else
  setenv(name, value.c_str(), 1);
#endif
}

OrmidexUInt32 CountCameras() {
  OrmidexUInt32 count = 0;
  Check(OrmidexGetNumberDevices(kDeviceTypeName, &count), "counting the cameras");
  return count;
}

void UseSimulator(const std::string& description) {
  SetEnvironment("ORMIDEX_SIMULATOR", description.empty() ? "1" : description);
}

namespace {

// The camera was counted, so it was there. Where the system lists the cameras itself,
// one that it does not hand out shows by its first request only.
[[noreturn]] void FailOpening(OrmidexUInt32 index) {
  if (index >= CountCameras()) {
    throw ToolError(kExitCameraLost,
                    fmt::format("camera {} was unplugged while it was opened", index));
  }
  throw ToolError(kExitBusy,
                  fmt::format("camera {} cannot be opened; another program may hold it, or you "
                              "may lack the permission to use it; if neither is so, unplug it "
                              "and plug it in again",
                              index));
}

}  // namespace

Camera::Camera(OrmidexUInt32 index) : index_(index) {
  const OrmidexUInt32 count = CountCameras();
  if (count == 0) {
    FailNoCamera();
  }
  if (index >= count) {
    throw ToolError(
        kExitNoCamera,
        fmt::format("there is no camera {}; cameras are numbered from 0, and there {} {}", index,
                    count == 1 ? "is" : "are", count));
  }
  const OrmidexStatus status = OrmidexInitialize(kDeviceTypeName, index, &handle_);
  if (status == ORMIDEX_NO_CAMERA || status == ORMIDEX_REQUEST_FAILED) FailOpening(index);
  Check(status, fmt::format("opening camera {}", index));
}

Camera::Camera(Camera&& other) noexcept
    : handle_(std::exchange(other.handle_, nullptr)), index_(other.index_) {}

Camera::~Camera() {
  if (handle_ != nullptr) OrmidexUninitialize(&handle_);
}

bool Camera::IsColour() const {
  OrmidexUInt32 type = 0;
  Check(OrmidexGetImagerType(handle_, &type), "reading the imager type");
  return type == 2;
}

Geometry Camera::ReadGeometry() const {
  Geometry geometry;
  OrmidexUInt32 width = 0;
  OrmidexUInt32 height = 0;
  OrmidexUInt32 bits = 0;
  Check(OrmidexGetSubWindow(handle_, &geometry.factor, &geometry.column, &geometry.row, &width,
                            &height),
        "reading the geometry");
  Check(OrmidexGetDataTransferSize(handle_, &bits), "reading the transfer size");
  geometry.width = width / geometry.factor;
  geometry.height = height / geometry.factor;
  geometry.bytes_per_pixel = bits / 8;
  return geometry;
}

std::string Camera::SerialText() const {
  OrmidexUInt32 serial = 0;
  return OrmidexGetSerialNumber(handle_, &serial) == ORMIDEX_OK ? Hex(serial) : "unknown";
}

std::string Camera::FirmwareText() const {
  OrmidexUInt32 version = 0;
  return OrmidexGetSoftwareVersion(handle_, &version) == ORMIDEX_OK ? Hex(version) : "unknown";
}

std::string Camera::TypeText() const { return IsColour() ? "colour" : "monochrome"; }

// A frame takes as long as its rows, or as long as its exposure if that is longer.
double Camera::FrameRateAsked() const {
  constexpr float kNoLimit = 1e9f;
  const Geometry geometry = ReadGeometry();
  OrmidexUInt32 clocking = 0;
  float exposure_ms = 0.0f;
  float frame_ms = 0.0f;
  Check(OrmidexGetImagerClocking(handle_, &clocking), "reading the imager clocking");
  Check(OrmidexGetExposureTime(handle_, &exposure_ms), "reading the exposure time");
  Check(OrmidexGetMaxExposureTime(handle_, geometry.factor, geometry.width * geometry.factor,
                                  geometry.height * geometry.factor, clocking, kNoLimit, &frame_ms),
        "reading the frame time");
  return 1000.0 / static_cast<double>(std::max(exposure_ms, frame_ms));
}

OrmidexUInt32 Camera::ImagerGeneration() const {
  OrmidexHardwareVersion version = {};
  Check(OrmidexGetHardwareVersion(handle_, &version), "reading the hardware version");
  return version.imagerGeneration;
}

void Camera::StartStream() { Check(OrmidexStartVideoStream(handle_), "starting the stream"); }

bool Camera::Answers() const {
  OrmidexUInt8 counter = 0;
  OrmidexUInt32 counters[2] = {};
  return OrmidexGetFrameNumber(handle_, &counter, counters) != ORMIDEX_REQUEST_FAILED;
}

// A camera that still answers has only not delivered in time.
void Camera::FailFrame() const {
  if (!Answers()) {
    throw ToolError(kExitCameraLost,
                    "the camera delivers no more frames; check that it is still plugged in");
  }
  throw ToolError(kExitTimeout,
                  "no frame came in time; a longer time-out (--set timeout=...) or a shorter "
                  "exposure may help");
}

void Camera::ReadFrame(std::vector<unsigned char>& frame) {
  const OrmidexStatus status =
      OrmidexReturnVideoData(handle_, static_cast<OrmidexUInt32>(frame.size()), frame.data());
  if (status == ORMIDEX_REQUEST_FAILED) FailFrame();
  Check(status, "reading a frame");
}

void Camera::Convert(const std::vector<unsigned char>& frame, const Geometry& geometry,
                     OrmidexUInt32 algorithm, std::vector<unsigned char>& image) const {
  const bool wide = geometry.bytes_per_pixel == 2;
  OrmidexStatus status = ORMIDEX_OK;
  if (IsColour()) {
    const auto convert = wide ? OrmidexConvertColor16BppTo24Bpp : OrmidexConvertColor8BppTo24Bpp;
    status =
        convert(handle_, frame.data(), geometry.width, geometry.height, image.data(), algorithm);
  } else {
    const auto convert = wide ? OrmidexConvertMono16BppTo24Bpp : OrmidexConvertMono8BppTo24Bpp;
    status = convert(handle_, frame.data(), geometry.width, geometry.height, image.data());
  }
  Check(status, "converting the frame");
}

namespace {

OrmidexUInt32 FindSerial(OrmidexUInt32 serial, const std::string& selector) {
  const OrmidexUInt32 count = CountCameras();
  for (OrmidexUInt32 index = 0; index < count; ++index) {
    Camera camera(index);
    OrmidexUInt32 value = 0;
    if (OrmidexGetSerialNumber(camera.handle(), &value) == ORMIDEX_OK && value == serial) {
      return index;
    }
  }
  throw ToolError(kExitNoCamera, "no camera has the serial number " + selector +
                                     "; 'ormidex list' shows the cameras");
}

}  // namespace

OrmidexUInt32 FindCamera(const std::string& selector) {
  char* end = nullptr;
  const unsigned long value = std::strtoul(selector.c_str(), &end, 0);
  if (selector.empty() || *end != '\0' || selector[0] == '-' || value > 0xFFFFFFFFul) {
    throw ToolError(kExitUsage, "'" + selector +
                                    "' names no camera: give its number (0, 1, ...) or its "
                                    "serial number (0x...)");
  }
  const auto number = static_cast<OrmidexUInt32>(value);
  const bool is_serial = selector.rfind("0x", 0) == 0 || selector.rfind("0X", 0) == 0;
  return is_serial ? FindSerial(number, selector) : number;
}

}  // namespace ormidex_tool
