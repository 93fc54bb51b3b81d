// What the simulator is asked to be: the text of ORMIDEX_SIMULATOR and its
// meaning. docs/simulator.md is the user's manual of the keys.
#ifndef ORMIDEX_SIMULATOR_DESCRIPTION_H_
#define ORMIDEX_SIMULATOR_DESCRIPTION_H_

#include <cstdint>
#include <string>
#include <vector>

#include "simulator/faults.h"

namespace ormidex::simulator {

inline constexpr std::uint32_t kMaxCameras = 64;

enum class SceneKind { kChart, kGrey, kRamp, kNoise, kFile };
enum class Pace { kReal, kFast };
enum class TriggerSource { kHardware, kSoftware };

// Relative strength of the light in the three colour bands.
struct Tint {
  double red = 1.0;
  double green = 1.0;
  double blue = 1.0;
};

struct CameraDescription {
  // Identity.
  int generation = 2;
  bool colour = true;
  int phase = 0;  // Bayer phase, first generation only
  std::uint32_t firmware = 0x03012305;
  std::uint32_t serial = 0;
  std::string type_name = "Torvenal(tm) 1394 Camera";
  std::string name = "Torvenal 1394 Camera, simulated";
  std::uint8_t clock_letter = 'K';  // 'J' marks a camera without the two fastest clocks
  bool external_oscillator = false;
  bool cmy_filter = false;
  int imager_answer = -1;  // what the imager's identity register holds; -1: the right byte

  // What is in front of the lens.
  SceneKind scene = SceneKind::kChart;
  std::uint32_t grey_level = 0;
  std::string scene_path;
  std::uint32_t lens_width = 1280;  // imager pixels that the scene is projected on
  std::uint32_t lens_height = 1024;
  double light = 1.0;
  Tint tint;
  double noise = 0.0;  // standard deviation in 8-bit levels
  std::uint32_t seed = 1;

  // Time.
  Pace pace = Pace::kReal;
  TriggerSource trigger = TriggerSource::kHardware;
  double trigger_hertz = 10.0;
  std::uint32_t timeout_ms = 4000;  // until the host sets another

  // The command channel's loop-back.
  std::uint32_t command_piece = 96;
  std::uint32_t command_delay_ms = 0;
  std::uint32_t command_refusals = 0;  // kRefuseAlways: every write
  std::vector<Fault> faults;
};

inline constexpr std::uint32_t kRefuseAlways = 0xFFFFFFFFu;

// Reads a description. On a mistake it returns false, leaves no camera and puts
// one line into *error that says where the mistake is. An empty text describes
// no camera.
bool ParseDescription(const char* text, std::vector<CameraDescription>* cameras,
                      std::string* error);

}  // namespace ormidex::simulator

#endif  // ORMIDEX_SIMULATOR_DESCRIPTION_H_
