// What is in front of the lens.
#ifndef ORMIDEX_SIMULATOR_SCENE_H_
#define ORMIDEX_SIMULATOR_SCENE_H_

#include <cstdint>
#include <memory>
#include <string>

#include "simulator/description.h"

namespace ormidex::simulator {

// Linear light in the three colour bands. 1 is what just fills the camera's
// range at the exposure it is opened with; the chart's white has 0.9.
struct Colour {
  double red = 0.0;
  double green = 0.0;
  double blue = 0.0;
};

class Scene {
 public:
  virtual ~Scene() = default;
  // Fetches what the scene is made of. On failure *complaint says why, and the
  // scene is black.
  virtual bool Prepare(std::string* complaint) = 0;
  // The light at a point of the sensor, 1280 x 1024 points with (0, 0) at the
  // top left. Points a little outside are asked for too.
  virtual Colour At(int column, int row) const = 0;
};

std::unique_ptr<Scene> CreateScene(const CameraDescription& description);

}  // namespace ormidex::simulator

#endif  // ORMIDEX_SIMULATOR_SCENE_H_
