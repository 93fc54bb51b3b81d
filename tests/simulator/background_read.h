// A frame read on a thread of its own, for reads that block.
#ifndef ORMIDEX_TESTS_SIMULATOR_BACKGROUND_READ_H_
#define ORMIDEX_TESTS_SIMULATOR_BACKGROUND_READ_H_

#include <atomic>
#include <vector>

#include "platform/thread.h"
#include "simulator/driver_client.h"

namespace ormidex::simulator {

class BackgroundRead {
 public:
  BackgroundRead(Simulator& simulator, device::DriverHandle handle, std::uint32_t bytes)
      : simulator_(simulator), handle_(handle), frame_(bytes) {
    EXPECT_TRUE(done_.Create(false));
    EXPECT_TRUE(platform::StartThread(Run, this));
  }
  ~BackgroundRead() {
    if (!finished_) Succeeded();
    done_.Close();
  }
  BackgroundRead(const BackgroundRead&) = delete;
  BackgroundRead& operator=(const BackgroundRead&) = delete;

  // Waits for the end of the read.
  bool Succeeded() {
    if (!finished_) {
      EXPECT_TRUE(done_.Wait(60000)) << "the read does not end";
    }
    finished_ = true;
    return succeeded_.load();
  }

 private:
  static void Run(void* argument) {
    auto* self = static_cast<BackgroundRead*>(argument);
    std::uint32_t returned = 0;
    self->succeeded_ =
        self->simulator_.Control(self->handle_,
                                 {device::CAM_IOCTL_READ_FRAME, nullptr, 0, self->frame_.data(),
                                  static_cast<std::uint32_t>(self->frame_.size())},
                                 &returned);
    self->done_.Signal();
  }

  Simulator& simulator_;
  device::DriverHandle handle_;
  std::vector<std::uint8_t> frame_;
  platform::Event done_;
  std::atomic<bool> succeeded_{false};
  bool finished_ = false;
};

// Until `count` reads wait on the clock.
inline void AwaitWaiting(VirtualClock& clock, int count) {
  while (clock.Waiting() < count) platform::SleepMilliseconds(1);
}

}  // namespace ormidex::simulator

#endif  // ORMIDEX_TESTS_SIMULATOR_BACKGROUND_READ_H_
