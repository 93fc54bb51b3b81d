// Control calls one by one, for profiling: what a call costs from the exported
// function down to a driver that answers at once.
#include <benchmark/benchmark.h>

#include "device/driver_gateway.h"
#include "ormidex.h"
#include "support/test_session.h"

namespace ormidex {
namespace {

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

struct OpenCamera {
  InstantDriver driver;
  testing::TestSession session{driver};
  OrmidexHandle handle() { return &*session; }
};

void ReadRegister(benchmark::State& state) {
  OpenCamera camera;
  std::uint8_t value = 0;
  for (auto _ : state) benchmark::DoNotOptimize(OrmidexReadRegister(camera.handle(), 1, &value));
}
BENCHMARK(ReadRegister);

void ReadRegisterBlock(benchmark::State& state) {
  OpenCamera camera;
  std::uint8_t values[256] = {};
  const auto count = static_cast<std::uint32_t>(state.range(0));
  for (auto _ : state) {
    benchmark::DoNotOptimize(OrmidexReadMultRegister(camera.handle(), 0, count, values));
  }
}
BENCHMARK(ReadRegisterBlock)->Arg(4)->Arg(256);

void SetRedGain(benchmark::State& state) {
  OpenCamera camera;
  std::uint32_t gain = 0;
  for (auto _ : state) benchmark::DoNotOptimize(OrmidexSetRedGain(camera.handle(), ++gain % 64));
}
BENCHMARK(SetRedGain);

void LoadGammaTable(benchmark::State& state) {
  OpenCamera camera;
  for (auto _ : state) benchmark::DoNotOptimize(OrmidexSetGamma(camera.handle(), 2.2f));
}
BENCHMARK(LoadGammaTable);

}  // namespace
}  // namespace ormidex

BENCHMARK_MAIN();
