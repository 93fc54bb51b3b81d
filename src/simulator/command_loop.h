// The far end of the command channel: what is written comes back when read.
#ifndef ORMIDEX_SIMULATOR_COMMAND_LOOP_H_
#define ORMIDEX_SIMULATOR_COMMAND_LOOP_H_

#include <cstdint>

#include "simulator/clock.h"

namespace ormidex::simulator {

class CommandLoop {
 public:
  CommandLoop(std::uint32_t piece, std::uint32_t delay_ms, std::uint32_t refusals)
      : piece_(piece), delay_(delay_ms * Microseconds{1000}), refusals_(refusals) {}

  // False when the write is refused; the host may try again.
  bool Write(Microseconds now, const std::uint8_t* data, std::uint32_t count);
  // Gives at most one piece; 0 bytes when nothing has arrived yet.
  std::uint32_t Read(Microseconds now, std::uint8_t* data, std::uint32_t count);

  void SetPiece(std::uint32_t piece) { piece_ = piece; }
  void SetDelay(Microseconds delay) { delay_ = delay; }
  // The next `count` writes; kRefuseAlways for all.
  void Refuse(std::uint32_t count) { refusals_ = count; }
  std::uint32_t Pending() const { return end_ - begin_; }
  void Clear() { begin_ = end_ = 0; }

 private:
  static constexpr std::uint32_t kCapacity = 4096;  // a power of two

  std::uint32_t piece_;
  Microseconds delay_;
  std::uint32_t refusals_;
  std::uint8_t bytes_[kCapacity] = {};
  Microseconds arrival_[kCapacity] = {};
  std::uint32_t begin_ = 0;  // counters that run on; the remainder is the place
  std::uint32_t end_ = 0;
};

}  // namespace ormidex::simulator

#endif  // ORMIDEX_SIMULATOR_COMMAND_LOOP_H_
