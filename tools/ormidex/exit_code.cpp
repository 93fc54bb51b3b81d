#include "exit_code.h"

namespace ormidex_tool {

namespace {

constexpr StatusText kStatusTexts[] = {
    {"ok", "success", ""},
    {"no camera", "no camera is open, or it could not be opened",
     "check the cable and that no other program holds the camera"},
    {"null pointer", "a required argument is missing", "this is a mistake in the program"},
    {"camera not found", "there is no camera with that number", "'ormidex list' shows the cameras"},
    {"enumeration failed", "the system's device enumeration is not available",
     "check that the system's multimedia components are installed"},
    {"request failed", "the camera driver failed a request",
     "the camera may be unplugged, or no frame came in time"},
    {"file not opened", "the output file could not be created",
     "check that the folder exists and may be written to"},
    {"out of range", "a value is out of range or does not fit the others",
     "check the values given"},
    {"imager not accepted", "the camera's imager is not one the library knows",
     "check the camera's model"},
    {"out of memory", "memory ran out", "close other programs"},
    {"general failure", "the camera or the system answered in an unexpected way",
     "unplug the camera, plug it in and try again"},
    {"no preview", "there is no preview window", "start the preview first"},
    {"not supported", "this camera or its firmware cannot do that",
     "'ormidex info' shows what camera it is"},
    {"wrong state", "the camera is not in a state for that",
     "another operation must be ended or started first"},
    {"driver condition", "the driver reported a condition of its own",
     "see the driver's documentation"},
    {"unknown system", "this operating system is not supported", ""},
    {"not converged", "the automatic control did not reach its goal",
     "change the light or the target"},
    {"command time-out", "the camera did not complete the command within a second", "try again"},
    {"clocking changed", "the transfer size is set, at a slower imager clock", ""},
};

constexpr StatusText kUnknown = {"unknown status", "the driver's own status", ""};

}  // namespace

const StatusText& DescribeStatus(OrmidexStatus status) {
  return status < std::size(kStatusTexts) ? kStatusTexts[status] : kUnknown;
}

namespace {

ExitCode ExitFor(OrmidexStatus status) {
  switch (status) {
    case ORMIDEX_NO_CAMERA:
    case ORMIDEX_CAMERA_NOT_FOUND:
      return kExitNoCamera;
    case ORMIDEX_COMMAND_TIMEOUT:
      return kExitTimeout;
    case ORMIDEX_OUT_OF_RANGE:
    case ORMIDEX_NOT_SUPPORTED:
      return kExitUsage;
    default:
      return kExitFailure;
  }
}

}  // namespace

void Check(OrmidexStatus status, const std::string& doing) {
  if (status == ORMIDEX_OK) return;
  const StatusText& text = DescribeStatus(status);
  std::string message = doing + ": " + text.meaning;
  if (*text.remedy != '\0') message += "; " + std::string(text.remedy);
  throw ToolError(ExitFor(status), message + " (status " + std::to_string(status) + ")");
}

void FailUsage(const std::string& message) { throw ToolError(kExitUsage, message); }

void FailNoCamera() {
  throw ToolError(kExitNoCamera,
                  "no camera is connected; plug one in, or try --simulate for a simulated one");
}

}  // namespace ormidex_tool
