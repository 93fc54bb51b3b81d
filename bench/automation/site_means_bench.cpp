// Site sums of every tier at several frame sizes, with two figures beside the time:
// how many times the scalar loop, and which part of the speed at which the same
// bytes can merely be read. The scalar loop is the reference tier, one sample at a time;
// bytes are read 32 and 64 at a time, whichever is faster, from the same buffer, so from
// the cache that the frame fits in.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "automation/kernels/site_sums.h"
#include "platform/processor.h"

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

// The fastest plain read: one vector operation for each vector loaded.
typedef long long Vector32 __attribute__((vector_size(32), aligned(1), may_alias));
typedef long long Vector64 __attribute__((vector_size(64), aligned(1), may_alias));

template <typename Vector>
[[gnu::always_inline]] inline long long ReadAll(const std::uint8_t* data, std::size_t bytes) {
  Vector a{}, b{}, c{}, d{};
  const auto* end = reinterpret_cast<const Vector*>(data + bytes);
  for (const auto* v = reinterpret_cast<const Vector*>(data); v + 4 <= end; v += 4) {
    a |= v[0];
    b |= v[1];
    c |= v[2];
    d |= v[3];
  }
  const Vector all = a | b | c | d;
  return all[0] | all[1] | all[2] | all[3];
}
[[gnu::target("avx2"), gnu::noinline]] long long Read32(const std::uint8_t* data,
                                                        std::size_t bytes) {
  return ReadAll<Vector32>(data, bytes);
}
[[gnu::target("avx512f"), gnu::noinline]] long long Read64(const std::uint8_t* data,
                                                           std::size_t bytes) {
  return ReadAll<Vector64>(data, bytes);
}

// Work of which a batch is timed at once, so that the clock costs nothing; the best
// batch tells what the machine can do when nobody disturbs it.
struct Contestant {
  std::function<void()> work;
  int batch = 1;
  double best_seconds = 1e9;

  explicit Contestant(std::function<void()> what) : work(std::move(what)) {
    RunBatch();
    constexpr double kBatchSeconds = 30e-6;
    batch = std::max(1, static_cast<int>(kBatchSeconds / best_seconds));
    best_seconds = 1e9;
  }
  void RunBatch() {
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < batch; ++i) work();
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    best_seconds = std::min(best_seconds, taken.count() / batch);
  }
};

// In turns, so that all of them meet the same machine.
void RunInTurns(std::vector<Contestant>& contestants) {
  for (int round = 0; round < 150; ++round) {
    for (Contestant& contestant : contestants) contestant.RunBatch();
  }
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
  for (auto _ : state) benchmark::DoNotOptimize(kernel(tier)(samples));

  std::vector<Contestant> contestants;
  for (const SiteSumTier* which : {&tier, &kScalarSiteSums}) {
    contestants.emplace_back(
        [&samples, sum = kernel(*which)] { benchmark::DoNotOptimize(sum(samples)); });
  }
  const platform::VectorFeatures features = platform::DetectVectorFeatures();
  if (features.avx2) {
    contestants.emplace_back([&] { benchmark::DoNotOptimize(Read32(bytes, frame.Bytes())); });
  }
  if (features.avx512_vbmi) {
    contestants.emplace_back([&] { benchmark::DoNotOptimize(Read64(bytes, frame.Bytes())); });
  }
  RunInTurns(contestants);

  const double own = contestants[0].best_seconds;
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * frame.Bytes()));
  state.counters["best_ns"] = own * 1e9;
  state.counters["x_scalar"] = contestants[1].best_seconds / own;
  if (contestants.size() == 2) return;
  const double read = std::min(contestants[2].best_seconds, contestants.back().best_seconds);
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
