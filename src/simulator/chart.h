// The generated test chart.
#ifndef ORMIDEX_SIMULATOR_CHART_H_
#define ORMIDEX_SIMULATOR_CHART_H_

#include "simulator/scene.h"

namespace ormidex::simulator {

// One chart is 640 x 480 points, so that the window a camera is opened with shows
// it whole; the charts to the right and below differ in the mark of their number.
class ChartScene : public Scene {
 public:
  bool Prepare(std::string*) override { return true; }
  Colour At(int column, int row) const override;
};

}  // namespace ormidex::simulator

#endif  // ORMIDEX_SIMULATOR_CHART_H_
