// A controller at the far end of the command channel. The test says what it does
// with each record; the rest is checked for it: one transfer at a time.
#ifndef ORMIDEX_TESTS_CAPTURE_COMMAND_GATEWAY_H_
#define ORMIDEX_TESTS_CAPTURE_COMMAND_GATEWAY_H_

#include <atomic>
#include <cstring>
#include <functional>

#include "device/driver_gateway.h"
#include "device/driver_protocol.h"

namespace ormidex::testing {

class CommandGateway : public device::DriverGateway {
 public:
  // Changes the record into the reply; false fails the request.
  using Answer = std::function<bool(std::uint32_t code, device::CommandRecord& record)>;

  explicit CommandGateway(Answer answer) : answer_(std::move(answer)) {}

  std::atomic<int> requests{0};
  std::atomic<int> overlaps{0};   // requests that met another one inside
  std::atomic<int> malformed{0};  // not 104 bytes, in place
  std::atomic<int> closed{0};

  device::DriverHandle Open(const char*, device::DriverShare) override { return this; }
  bool Close(device::DriverHandle) override { return closed.fetch_add(1) == 0; }
  device::EnumerationResult Enumerate(device::DeviceVisitor&) override {
    return device::EnumerationResult::kEmptyCategory;
  }

  bool Control(device::DriverHandle, const device::DriverRequest& request,
               std::uint32_t* returned) override {
    requests.fetch_add(1);
    if (request.in_bytes != 104 || request.out_bytes != 104 || request.in != request.out) {
      malformed.fetch_add(1);
      return false;
    }
    if (inside_.fetch_add(1) != 0) overlaps.fetch_add(1);
    device::CommandRecord record;
    std::memcpy(&record, request.in, sizeof(record));
    const bool answered = answer_(request.code, record);
    std::memcpy(request.out, &record, sizeof(record));
    *returned = answered ? 104 : 0;
    inside_.fetch_sub(1);
    return answered;
  }

 private:
  Answer answer_;
  std::atomic<int> inside_{0};
};

}  // namespace ormidex::testing

#endif  // ORMIDEX_TESTS_CAPTURE_COMMAND_GATEWAY_H_
