// The time that simulated cameras live in.
#ifndef ORMIDEX_SIMULATOR_CLOCK_H_
#define ORMIDEX_SIMULATOR_CLOCK_H_

#include <atomic>
#include <cstdint>

#include "platform/critical_section.h"
#include "platform/event.h"

namespace ormidex::simulator {

using Microseconds = std::uint64_t;
inline constexpr Microseconds kNoMoment = ~Microseconds{0};

class Clock {
 public:
  virtual ~Clock() = default;
  virtual Microseconds Now() = 0;
  // Returns at `due`, or earlier when `wake` is signalled. The waiter knows that
  // something happens at `due`, so simulated time may jump there.
  virtual void WaitUntil(Microseconds due, platform::Event& wake) = 0;
  // Returns when `wake` is signalled, at the latest at `deadline`. Only the
  // outside world can end this wait early, so time may not jump.
  virtual void WaitForWake(Microseconds deadline, platform::Event& wake) = 0;
  // The host has asked in vain and will ask again.
  virtual void Polled() {}
};

// The wall clock.
class RealClock : public Clock {
 public:
  Microseconds Now() override;
  void WaitUntil(Microseconds due, platform::Event& wake) override;
  void WaitForWake(Microseconds deadline, platform::Event& wake) override;
};

// Time that passes only while somebody waits, and then at once. What a single
// thread sees is therefore the same in every run, however fast the machine is.
class FastClock : public Clock {
 public:
  Microseconds Now() override { return now_.load(std::memory_order_acquire); }
  void WaitUntil(Microseconds due, platform::Event& wake) override;
  void WaitForWake(Microseconds deadline, platform::Event& wake) override;
  void Polled() override;

 private:
  void JumpTo(Microseconds moment);
  std::atomic<Microseconds> now_{0};
};

// Time that a test moves by hand.
class VirtualClock : public Clock {
 public:
  VirtualClock() { lock_.Initialise(); }
  ~VirtualClock() override { lock_.Delete(); }
  VirtualClock(const VirtualClock&) = delete;
  VirtualClock& operator=(const VirtualClock&) = delete;

  Microseconds Now() override { return now_.load(std::memory_order_acquire); }
  void WaitUntil(Microseconds due, platform::Event& wake) override;
  void WaitForWake(Microseconds deadline, platform::Event& wake) override;

  void Advance(Microseconds duration);
  // How many threads are waiting at this moment.
  int Waiting();

 private:
  static constexpr int kMaxWaiters = 64;
  platform::CriticalSection lock_;
  std::atomic<Microseconds> now_{0};
  platform::Event* waiters_[kMaxWaiters] = {};
};

}  // namespace ormidex::simulator

#endif  // ORMIDEX_SIMULATOR_CLOCK_H_
