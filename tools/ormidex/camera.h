// An open camera that closes itself.
#ifndef ORMIDEX_TOOLS_CAMERA_H_
#define ORMIDEX_TOOLS_CAMERA_H_

#include <string>
#include <vector>

#include "ormidex.h"

namespace ormidex_tool {

// The names under which applications have always asked for cameras.
inline constexpr char kDeviceTypeName[] = "Torvenal(tm) 1394 Camera";

OrmidexUInt32 CountCameras();

void SetEnvironment(const char* name, const std::string& value);

// Asks for simulated cameras, before the library is first used. An empty
// description means one default camera.
void UseSimulator(const std::string& description);

struct Geometry {
  OrmidexUInt32 factor = 1;  // sub-sampling
  OrmidexUInt32 column = 0;
  OrmidexUInt32 row = 0;
  OrmidexUInt32 width = 0;  // of the frame, in pixels
  OrmidexUInt32 height = 0;
  OrmidexUInt32 bytes_per_pixel = 1;
  std::size_t FrameBytes() const { return std::size_t{width} * height * bytes_per_pixel; }
  std::size_t ImageBytes() const { return std::size_t{width} * height * 3; }
};

class Camera {
 public:
  // Opens camera `index`; throws a ToolError when that fails.
  explicit Camera(OrmidexUInt32 index);
  ~Camera();
  Camera(Camera&& other) noexcept;
  Camera(const Camera&) = delete;
  Camera& operator=(const Camera&) = delete;

  OrmidexHandle handle() const { return handle_; }
  OrmidexUInt32 index() const { return index_; }
  bool IsColour() const;
  Geometry ReadGeometry() const;
  std::string SerialText() const;
  std::string FirmwareText() const;
  std::string TypeText() const;

  // Frames a second that clock, geometry and exposure ask of the imager.
  double FrameRateAsked() const;

  OrmidexUInt32 ImagerGeneration() const;

  // Whether the camera still takes requests, as one that was unplugged does not.
  bool Answers() const;

  void StartStream();
  // Reads one frame; a camera that delivers none throws.
  void ReadFrame(std::vector<unsigned char>& frame);
  // Demosaics, or expands a monochrome frame, to a 24-bit image.
  void Convert(const std::vector<unsigned char>& frame, const Geometry& geometry,
               OrmidexUInt32 algorithm, std::vector<unsigned char>& image) const;

 private:
  [[noreturn]] void FailFrame() const;

  OrmidexHandle handle_ = nullptr;
  OrmidexUInt32 index_ = 0;
};

// The camera that `selector` names: its number, or its serial number in hexadecimal
// ("0x...").
OrmidexUInt32 FindCamera(const std::string& selector);

}  // namespace ormidex_tool

#endif  // ORMIDEX_TOOLS_CAMERA_H_
