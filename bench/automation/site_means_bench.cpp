// Site sums of every tier at several frame sizes, with two figures beside the time:
// how many times the scalar loop, and which part of the speed at which the same
// bytes can merely be read.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <map>
#include <string>
#include <vector>

#include "automation/kernels/site_sums.h"

namespace ormidex::automation {
namespace {

struct FrameSize {
  std::uint32_t width;
  std::uint32_t height;
};

constexpr FrameSize kSizes[] = {{64, 64}, {160, 120}, {320, 240}, {640, 480}, {1280, 1024}};

struct Case {
  FrameSize size;
  std::uint32_t sample_bytes;

  std::size_t Bytes() const { return std::size_t{size.width} * size.height * sample_bytes; }
  std::string Name() const {
    return std::to_string(sample_bytes * 8) + "bit/" + std::to_string(size.width) + "x" +
           std::to_string(size.height);
  }
};

#if defined(__AVX512F__)
#error "the read loop expects to be told its vector width by its target attribute"
#endif

// The fastest plain read: one vector operation for each vector loaded.
typedef long long Vector32 __attribute__((vector_size(32), aligned(1), may_alias));
__attribute__((target("avx2"), noinline)) long long ReadAll(const std::uint8_t* data,
                                                            std::size_t bytes) {
  Vector32 a{}, b{}, c{}, d{};
  std::size_t i = 0;
  for (; i + 128 <= bytes; i += 128) {
    const auto* v = reinterpret_cast<const Vector32*>(data + i);
    a |= v[0];
    b |= v[1];
    c |= v[2];
    d |= v[3];
  }
  const Vector32 all = a | b | c | d;
  return all[0] | all[1] | all[2] | all[3];
}

// Best of many runs: what the machine can do when nobody disturbs it.
template <typename Work>
double BestSeconds(const Work& work) {
  double best = 1e9;
  for (int run = 0; run < 200; ++run) {
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < 4; ++i) work();
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    best = std::min(best, taken.count() / 4);
  }
  return best;
}

void Run(benchmark::State& state, const Case& frame, const SiteSumTier& tier) {
  // Aligned to a cache line, as the library's own frame buffers are.
  std::vector<std::uint8_t> storage(frame.Bytes() + 64, 0x5A);
  const std::uint8_t* bytes =
      storage.data() + (-reinterpret_cast<std::uintptr_t>(storage.data()) & 63);
  const SampleRows samples{bytes, std::size_t{frame.size.width} * frame.sample_bytes,
                           frame.size.height, frame.size.width / 2};
  const auto kernel = [&](const SiteSumTier& which) {
    return frame.sample_bytes == 1 ? which.sum8 : which.sum16;
  };
  const auto time = [&](SiteSumKernel sum) {
    return BestSeconds([&] { benchmark::DoNotOptimize(sum(samples)); });
  };
  for (auto _ : state) benchmark::DoNotOptimize(kernel(tier)(samples));
  const double own = time(kernel(tier));
  const double read = BestSeconds([&] { benchmark::DoNotOptimize(ReadAll(bytes, frame.Bytes())); });
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * frame.Bytes()));
  state.counters["x_scalar"] = time(kernel(kScalarSiteSums)) / own;
  state.counters["of_read_limit"] = read / own;
}

void RegisterAll() {
  for (const std::uint32_t sample_bytes : {1u, 2u}) {
    for (const FrameSize size : kSizes) {
      for (const SiteSumTier* tier : AvailableSiteSumTiers()) {
        const Case frame{size, sample_bytes};
        benchmark::RegisterBenchmark(
            ("SiteSums/" + frame.Name() + "/" + tier->name).c_str(),
            [frame, tier](benchmark::State& state) { Run(state, frame, *tier); })
            ->MinTime(0.05);
      }
    }
  }
}

}  // namespace
}  // namespace ormidex::automation

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  ormidex::automation::RegisterAll();
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
