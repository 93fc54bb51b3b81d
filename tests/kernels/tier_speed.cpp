// How much faster each tier is than the scalar one, printed after the tests. Speed
// fails no test: other programs may be running.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "convert/convert.h"
#include "convert/tiers.h"
#include "kernels/tiers_under_test.h"

namespace ormidex::convert {
namespace {

constexpr std::uint32_t kWidth = 320;
constexpr std::uint32_t kHeight = 240;
constexpr std::size_t kPixels = std::size_t{kWidth} * kHeight;

double SecondsOf(const std::function<void()>& work, int repeats) {
  using Clock = std::chrono::steady_clock;
  const Clock::time_point start = Clock::now();
  for (int i = 0; i < repeats; ++i) work();
  return std::chrono::duration<double>(Clock::now() - start).count() / repeats;
}

// The median of a few rounds, of about a millisecond where the work is shorter.
double TimeOf(const std::function<void()>& work) {
  constexpr int kRounds = 5;
  const double once = SecondsOf(work, 1);
  const int repeats = std::clamp(static_cast<int>(0.001 / std::max(once, 1e-6)), 1, 200);
  std::vector<double> times;
  times.reserve(kRounds);
  for (int round = 0; round < kRounds; ++round) times.push_back(SecondsOf(work, repeats));
  std::nth_element(times.begin(), times.begin() + kRounds / 2, times.end());
  return times[kRounds / 2];
}

void PrintRow(const std::string& name, const std::function<void()>& work) {
  double scalar = 0;
  {
    const TierUsed used(Tier::kScalar);
    scalar = TimeOf(work);
  }
  std::printf("[ speed    ] %-26s %9.1f", name.c_str(), 1e-6 * kPixels / scalar);
  for (const Tier tier : VectorTiers()) {
    const TierUsed used(tier);
    std::printf(" %7.1f x", scalar / TimeOf(work));
  }
  std::printf("\n");
}

void PrintTable() {
  std::mt19937 random(Seed());
  std::vector<std::uint8_t> frame(2 * kPixels);
  for (std::uint8_t& byte : frame) byte = static_cast<std::uint8_t>(random());
  std::vector<std::uint8_t> image(6 * kPixels);
  std::printf("[ speed    ] %-26s %9s", "conversion, 320 x 240", "scalar");
  for (const Tier tier : VectorTiers()) std::printf(" %9s", TierName(tier));
  std::printf("\n[ speed    ] %-26s %9s\n", "", "Mpixel/s");
  for (const std::uint32_t code : kCodes) {
    for (const Form& form : kForms) {
      PrintRow("code " + std::to_string(code) + ", " + form.name,
               [&] { form.routine(frame.data(), kWidth, kHeight, image.data(), code, 0); });
    }
  }
  PrintRow("mono, 8 to 24", [&] { ExpandMono8(frame.data(), kWidth, kHeight, image.data()); });
  PrintRow("mono, 16 to 24", [&] { ExpandMono16(frame.data(), kWidth, kHeight, image.data()); });
  // There and back, so that the image does not end at its limits.
  std::int32_t amount = 30;
  for (const bool wide : {false, true}) {
    for (std::uint8_t& byte : image) byte = static_cast<std::uint8_t>(random());
    PrintRow(wide ? "colour correction, 48-bit" : "colour correction, 24-bit", [&] {
      ColorCorrect(image.data(), kPixels, amount, wide);
      amount = -amount;
    });
  }
  std::fflush(stdout);
}

class TierSpeed : public testing::Environment {
 public:
  void TearDown() override {
    if (kSanitized) {
      std::printf("[ speed    ] not measured under a sanitizer\n");
      return;
    }
    PrintTable();
  }
};

const testing::Environment* const speed = testing::AddGlobalTestEnvironment(new TierSpeed);

}  // namespace
}  // namespace ormidex::convert
