// A model camera whose frames come when the test sends them.
#ifndef ORMIDEX_TESTS_CAPTURE_FRAME_GATEWAY_H_
#define ORMIDEX_TESTS_CAPTURE_FRAME_GATEWAY_H_

#include <atomic>
#include <string>
#include <vector>

#include "platform/event.h"
#include "platform/thread.h"
#include "support/model_gateway.h"

namespace ormidex::testing {

class FrameGateway : public ModelGateway {
 public:
  FrameGateway() { trigger_.Create(false); }
  ~FrameGateway() override { trigger_.Close(); }

  // A frame read without a trigger fails after this time, as the driver's does.
  std::atomic<std::uint32_t> read_timeout_ms{20};
  std::atomic<int> reads_failed{0};
  std::atomic<int> reads_waiting{0};

  void Trigger() { trigger_.Signal(); }

  bool Control(device::DriverHandle handle, const device::DriverRequest& request,
               std::uint32_t* returned) override {
    if (request.code != device::CAM_IOCTL_READ_FRAME) {
      return ModelGateway::Control(handle, request, returned);
    }
    reads_waiting.fetch_add(1);
    const bool triggered = trigger_.Wait(read_timeout_ms.load());
    reads_waiting.fetch_sub(1);
    if (!triggered) {
      reads_failed.fetch_add(1);
      return false;
    }
    return ModelGateway::Control(handle, request, returned);
  }

  // What was sent, frame reads left out: how many there are depends on time.
  std::vector<std::string> Sent() {
    std::vector<std::string> sent;
    for (const std::string& request : Requests()) {
      if (request.rfind("0x222045", 0) != 0) sent.push_back(request);
    }
    return sent;
  }

 private:
  platform::Event trigger_;
};

}  // namespace ormidex::testing

#endif  // ORMIDEX_TESTS_CAPTURE_FRAME_GATEWAY_H_
