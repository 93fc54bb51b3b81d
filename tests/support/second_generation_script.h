// The registers that a second-generation exposure is computed from.
#ifndef ORMIDEX_TESTS_SUPPORT_SECOND_GENERATION_SCRIPT_H_
#define ORMIDEX_TESTS_SUPPORT_SECOND_GENERATION_SCRIPT_H_

#include <cstdint>

#include "support/register_script.h"

namespace ormidex::testing {

// Of 640 x 480 pixels without sub-sampling: rows of 650 clocks, blanking 20 and 30.
struct TimingRegisters {
  std::uint32_t row_length = 650;
  std::uint32_t width = 639;
  std::uint32_t height = 479;
  std::uint32_t sub_sampling = 0;
};

// In the order in which setting an exposure time reads them.
inline void ReadsTiming(RegisterScript& script, const TimingRegisters& timing) {
  script.ReadsPair(82, timing.row_length);
  script.ReadsPair(75, timing.width);
  script.ReadsPair(75, timing.width);  // again, for the shortest row
  script.ReadsPair(71, timing.height);
  script.Reads(65, timing.sub_sampling);
  script.ReadsPair(80, 481);
  script.ReadsPair(71, timing.height);
  script.Reads(95, 20);
  script.Reads(96, 30);
}

}  // namespace ormidex::testing

#endif  // ORMIDEX_TESTS_SUPPORT_SECOND_GENERATION_SCRIPT_H_
