#include "simulator/command_loop.h"

#include <algorithm>

#include "simulator/description.h"

namespace ormidex::simulator {

bool CommandLoop::Write(Microseconds now, const std::uint8_t* data, std::uint32_t count) {
  if (refusals_ != 0) {
    if (refusals_ != kRefuseAlways) --refusals_;
    return false;
  }
  if (kCapacity - Pending() < count) return false;
  for (std::uint32_t i = 0; i < count; ++i) {
    bytes_[end_ % kCapacity] = data[i];
    arrival_[end_ % kCapacity] = now + delay_;
    ++end_;
  }
  return true;
}

std::uint32_t CommandLoop::Read(Microseconds now, std::uint8_t* data, std::uint32_t count) {
  const std::uint32_t most = std::min({count, piece_, Pending()});
  std::uint32_t given = 0;
  while (given < most && arrival_[begin_ % kCapacity] <= now) {
    data[given++] = bytes_[begin_++ % kCapacity];
  }
  return given;
}

}  // namespace ormidex::simulator
