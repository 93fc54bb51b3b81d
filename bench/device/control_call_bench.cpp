// What the library adds to a driver request: exported control calls against the
// bare request, on a driver that answers at once. The lock is uncontended.
//
// Prints, for each call, the median of interleaved repetitions for the bare request
// and for the call, and their difference; below 2 microseconds is the goal.
#include <algorithm>
#include <cstdio>
#include <vector>

#include "device/driver_gateway.h"
#include "device/driver_protocol.h"
#include "device/session.h"
#include "ormidex.h"
#include "platform/timer.h"
#include "support/test_session.h"

namespace ormidex {
namespace {

constexpr int kCallsPerRound = 20000;
constexpr int kRounds = 15;
constexpr double kGoalUs = 2.0;

// Answers everything with success and leaves the record as it is.
class InstantDriver : public device::DriverGateway {
 public:
  device::DriverHandle Open(const char*, device::DriverShare) override { return this; }
  bool Close(device::DriverHandle) override { return true; }
  device::EnumerationResult Enumerate(device::DeviceVisitor&) override {
    return device::EnumerationResult::kEmptyCategory;
  }
  bool Control(device::DriverHandle, const device::DriverRequest& request,
               std::uint32_t* returned) override {
    *returned = request.out_bytes;
    return true;
  }
};

template <typename Call>
double MicrosecondsPerCall(Call call) {
  const std::uint64_t start = platform::MonotonicMicroseconds();
  for (int i = 0; i < kCallsPerRound; ++i) call();
  return static_cast<double>(platform::MonotonicMicroseconds() - start) / kCallsPerRound;
}

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

template <typename Bare, typename Call>
bool Compare(const char* name, Bare bare, Call call) {
  std::vector<double> bare_us;
  std::vector<double> call_us;
  for (int round = 0; round < kRounds; ++round) {
    bare_us.push_back(MicrosecondsPerCall(bare));
    call_us.push_back(MicrosecondsPerCall(call));
  }
  const double added = Median(call_us) - Median(bare_us);
  std::printf("%-26s %9.4f %9.4f %9.4f   %s\n", name, Median(bare_us), Median(call_us), added,
              added < kGoalUs ? "met" : "MISSED");
  return added < kGoalUs;
}

}  // namespace
}  // namespace ormidex

int main() {
  using namespace ormidex;
  InstantDriver driver;
  device::DriverGateway& gateway = driver;
  testing::TestSession session(driver);
  OrmidexHandle handle = &*session;
  std::printf("%-26s %9s %9s %9s   goal < %.0f us\n", "control call", "bare us", "call us",
              "added us", kGoalUs);

  std::uint8_t record[20] = {};
  const auto bare_register = [&] {
    std::uint32_t returned = 0;
    gateway.Control(
        &driver, {device::CAM_IOCTL_READ_REGISTERS, record, sizeof(record), record, sizeof(record)},
        &returned);
  };
  const auto bare_nothing = [] {};
  std::uint8_t value = 0;
  std::uint32_t word = 0;
  Compare("OrmidexReadRegister", bare_register, [&] { OrmidexReadRegister(handle, 1, &value); });
  Compare("OrmidexWriteRegister", bare_register, [&] { OrmidexWriteRegister(handle, 1, 2, 0); });
  Compare("OrmidexSetTimeout", bare_register, [&] { OrmidexSetTimeout(handle, 4000); });
  Compare("OrmidexWriteGpio", bare_register, [&] { OrmidexWriteGpio(handle, 1); });
  Compare("OrmidexGetTimeout", bare_nothing, [&] { OrmidexGetTimeout(handle, &word); });
  return 0;
}
