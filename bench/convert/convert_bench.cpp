// Speed of the conversions beside OpenCV's and beside memcpy, on one thread.
//
// Each row of the table is measured in this run: the two contenders take turns, the
// medians of their times are compared, all buffers are warm. A ratio above 1 means
// that the library is faster. "floor" is the ratio below which a row is marked; a
// marked row fails nothing.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <functional>
#include <random>
#include <string>
#include <vector>

#ifdef ORMIDEX_HAVE_OPENCV
#include <opencv2/imgproc.hpp>
#endif

#include "convert/convert.h"
#include "convert/tiers.h"
#include "platform/processor.h"

namespace ormidex::convert {
namespace {

struct Size {
  std::uint32_t width;
  std::uint32_t height;
  std::size_t Pixels() const { return std::size_t{width} * height; }
};
constexpr Size kSizes[] = {{640, 480}, {1280, 1024}, {4096, 3072}};

// The thread's own processor time where the system tells it finely enough, so that
// other programs on a busy machine count for nothing but the caches they take.
double Now() {
#ifdef __linux__
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
#else
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  return std::chrono::duration<double>(now).count();
#endif
}

double SecondsOf(const std::function<void()>& work, int repeats) {
  const double start = Now();
  for (int i = 0; i < repeats; ++i) work();
  return (Now() - start) / repeats;
}

double Median(std::vector<double> times) {
  std::nth_element(times.begin(), times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2),
                   times.end());
  return times[times.size() / 2];
}

struct Times {
  double ours;
  double theirs;
};

// Interleaved rounds of about two milliseconds each.
Times Measure(const std::function<void()>& ours, const std::function<void()>& theirs) {
  constexpr double kRoundSeconds = 0.002;
  constexpr int kRounds = 15;
  const auto repeats_of = [](const std::function<void()>& work) {
    work();
    const double once = SecondsOf(work, 1);
    return std::clamp(static_cast<int>(kRoundSeconds / once), 1, 1000);
  };
  const int our_repeats = repeats_of(ours);
  const int their_repeats = repeats_of(theirs);
  std::vector<double> our_times;
  std::vector<double> their_times;
  for (int round = 0; round < kRounds; ++round) {
    our_times.push_back(SecondsOf(ours, our_repeats));
    their_times.push_back(SecondsOf(theirs, their_repeats));
  }
  return {Median(our_times), Median(their_times)};
}

// The buffers of one size: a structured scene with noise, the same for all contenders.
class Buffers {
 public:
  explicit Buffers(Size size)
      : size_(size),
        raw8_(size.Pixels()),
        raw16_(size.Pixels()),
        image_(size.Pixels() * 6),
        other_(size.Pixels() * 6) {
    std::mt19937 random(1);
    for (std::size_t i = 0; i < size.Pixels(); ++i) {
      const std::size_t x = i % size.width;
      const std::size_t y = i / size.width;
      const std::size_t scene = 60 + (x * y / 97) % 120 + ((x / 37 + y / 23) % 2) * 40;
      raw8_[i] = static_cast<std::uint8_t>(scene + random() % 16);
      raw16_[i] = static_cast<std::uint16_t>(raw8_[i] * 256u + random() % 256);
    }
    std::memset(image_.data(), 1, image_.size());
    std::memset(other_.data(), 1, other_.size());
  }

  Size size() const { return size_; }
  std::uint8_t* raw8() { return raw8_.data(); }
  std::uint8_t* raw16() { return reinterpret_cast<std::uint8_t*>(raw16_.data()); }
  std::uint8_t* image() { return image_.data(); }
  std::uint8_t* other() { return other_.data(); }

 private:
  Size size_;
  std::vector<std::uint8_t> raw8_;
  std::vector<std::uint16_t> raw16_;
  std::vector<std::uint8_t> image_;
  std::vector<std::uint8_t> other_;
};

using Work = std::function<void()>;

Work Demosaic8(Buffers& b, std::uint32_t code) {
  return [&b, code] {
    DemosaicTo24From8(b.raw8(), b.size().width, b.size().height, b.image(), code, 0);
  };
}
Work Demosaic16(Buffers& b, std::uint32_t code) {
  return [&b, code] {
    DemosaicTo24From16(b.raw16(), b.size().width, b.size().height, b.image(), code, 0);
  };
}
Work DemosaicWide(Buffers& b, std::uint32_t code) {
  return [&b, code] {
    DemosaicTo48From16(b.raw16(), b.size().width, b.size().height, b.image(), code, 0);
  };
}
Work CopyImage(Buffers& b) {
  return [&b] { std::memcpy(b.other(), b.image(), b.size().Pixels() * 3); };
}

#ifdef ORMIDEX_HAVE_OPENCV
Work OpenCv(Buffers& b, int conversion, bool wide) {
  const int width = static_cast<int>(b.size().width);
  const int height = static_cast<int>(b.size().height);
  const cv::Mat source(height, width, wide ? CV_16UC1 : CV_8UC1, wide ? b.raw16() : b.raw8());
  const cv::Mat target(height, width, wide ? CV_16UC3 : CV_8UC3, b.other());
  return [source, target, conversion]() mutable { cv::cvtColor(source, target, conversion); };
}
#endif

struct Floors {
  double ratio[3];  // by size; 0 for none
};

class Table {
 public:
  explicit Table(std::vector<Buffers>& buffers, std::string only)
      : buffers_(buffers), only_(std::move(only)) {}

  using Contender = std::function<Work(Buffers&)>;

  void Row(const char* name, const char* against, Tier tier, const Floors& floors,
           const Contender& ours, const Contender& theirs) {
    const std::string title = std::string(name) + ", " + TierName(tier);
    if (tier > HighestTier() || title.find(only_) == std::string::npos) return;
    UseTier(tier);
    std::printf("%-42s %-24s", title.c_str(), against);
    bool missed = false;
    for (std::size_t i = 0; i < buffers_.size(); ++i) {
      const Times times = Measure(ours(buffers_[i]), theirs(buffers_[i]));
      const double ratio = times.theirs / times.ours;
      const double rate = static_cast<double>(buffers_[i].size().Pixels()) / times.ours * 1e-9;
      const bool below = ratio < floors.ratio[i];
      missed = missed || below;
      std::printf(" %6.2f%s %5.2f  (%5.2f) |", ratio, below ? "<" : " ", floors.ratio[i], rate);
    }
    std::printf("%s\n", missed ? "  MISSED" : "");
    std::fflush(stdout);
    misses_ += missed;
  }
  int misses() const { return misses_; }

 private:
  std::vector<Buffers>& buffers_;
  std::string only_;
  int misses_ = 0;
};

using Contender = Table::Contender;
constexpr Floors kNoFloor{{0, 0, 0}};

Contender Ours(Work (*form)(Buffers&, std::uint32_t), std::uint32_t code) {
  return [form, code](Buffers& b) { return form(b, code); };
}

Work Mono8(Buffers& b) {
  return [&b] { ExpandMono8(b.raw8(), b.size().width, b.size().height, b.image()); };
}
Work Correct(Buffers& b) {
  return [&b] { ColorCorrect(b.image(), b.size().Pixels(), 30, false); };
}

void CompareWithMemcpy(Table& table) {
  const Contender copy = CopyImage;
  table.Row("code 1, 8 to 24", "memcpy of the image", HighestTier(), {{0, 0, 1.3}},
            Ours(Demosaic8, 1), copy);
  table.Row("colour correction, 24-bit", "memcpy of the image", Tier::kAvx512, {{0.3, 0.3, 0.3}},
            Correct, copy);
  table.Row("colour correction, 24-bit", "memcpy of the image", Tier::kAvx2, kNoFloor, Correct,
            copy);
}

#ifdef ORMIDEX_HAVE_OPENCV
Work Mono16(Buffers& b) {
  return [&b] { ExpandMono16(b.raw16(), b.size().width, b.size().height, b.image()); };
}

Contender Theirs(int conversion, bool wide) {
  return [conversion, wide](Buffers& b) { return OpenCv(b, conversion, wide); };
}

void CompareBilinear(Table& table) {
  const Contender bilinear = Theirs(cv::COLOR_BayerBG2BGR, false);
  const Contender wide = Theirs(cv::COLOR_BayerBG2BGR, true);
  const char* against = "bilinear";
  table.Row("code 1, 8 to 24", against, Tier::kSsse3, {{1.7, 1.7, 0}}, Ours(Demosaic8, 1),
            bilinear);
  table.Row("code 1, 8 to 24", against, Tier::kAvx2, {{4.2, 4.2, 4.2}}, Ours(Demosaic8, 1),
            bilinear);
  table.Row("code 1, 8 to 24", against, Tier::kAvx512, {{5.4, 5.4, 4.3}}, Ours(Demosaic8, 1),
            bilinear);
  for (const Tier tier : {Tier::kAvx2, Tier::kAvx512}) {
    const bool best = tier == HighestTier();
    table.Row("code 1, 16 to 24", "bilinear, 16-bit", tier, best ? Floors{{7, 7, 5.3}} : kNoFloor,
              Ours(Demosaic16, 1), wide);
    table.Row("code 1, 16 to 48", "bilinear, 16-bit", tier, best ? Floors{{5, 5, 4}} : kNoFloor,
              Ours(DemosaicWide, 1), wide);
  }
  table.Row("code 2, 8 to 24", against, Tier::kAvx2, {{2.6, 2.6, 2.2}}, Ours(Demosaic8, 2),
            bilinear);
  table.Row("code 2, 8 to 24", against, Tier::kAvx512, {{5.2, 5.0, 3.0}}, Ours(Demosaic8, 2),
            bilinear);
  for (const std::uint32_t code : {0u, 16u, 17u, 255u}) {
    const std::string name = "code " + std::to_string(code) + ", 8 to 24";
    for (const Tier tier : {Tier::kAvx2, Tier::kAvx512}) {
      table.Row(name.c_str(), against, tier, {{2.5, 2.5, 2.5}}, Ours(Demosaic8, code), bilinear);
    }
  }
}

void CompareBetterCodes(Table& table) {
  const Contender edge = Theirs(cv::COLOR_BayerBG2BGR_EA, false);
  const Contender wide_edge = Theirs(cv::COLOR_BayerBG2BGR_EA, true);
  const Contender vng = Theirs(cv::COLOR_BayerBG2BGR_VNG, false);
  for (const Tier tier : {Tier::kAvx2, Tier::kAvx512}) {
    const bool best = tier == HighestTier();
    for (const std::uint32_t code : {3u, 4u}) {
      const std::string name = "code " + std::to_string(code);
      table.Row((name + ", 8 to 24").c_str(), "edge-aware", tier,
                best ? Floors{{2.2, 2.2, 1.7}} : kNoFloor, Ours(Demosaic8, code), edge);
      table.Row((name + ", 16 to 48").c_str(), "edge-aware, 16-bit", tier,
                best ? Floors{{5, 5, 5}} : kNoFloor, Ours(DemosaicWide, code), wide_edge);
    }
    table.Row("code 18, 8 to 24", "edge-aware", tier, best ? Floors{{2.5, 2.5, 2.5}} : kNoFloor,
              Ours(Demosaic8, 18), edge);
    table.Row("code 5, 8 to 24", "VNG", tier, best ? Floors{{3.5, 3.5, 4.2}} : kNoFloor,
              Ours(Demosaic8, 5), vng);
  }
}

void CompareMono(Table& table) {
  const Contender grey = Theirs(cv::COLOR_GRAY2BGR, false);
  const Contender grey16 = Theirs(cv::COLOR_GRAY2BGR, true);
  for (const Tier tier : {Tier::kAvx2, Tier::kAvx512}) {
    const bool best = tier == HighestTier();
    table.Row("mono, 8 to 24", "grey to BGR", tier, best ? Floors{{1.2, 1.1, 1.0}} : kNoFloor,
              Mono8, grey);
    table.Row("mono, 16 to 24", "grey to BGR, 16-bit", tier, kNoFloor, Mono16, grey16);
  }
}
#endif

// Without OpenCV, and for processors that it does not measure: each tier's own pace.
void CompareTiers(Table& table) {
  const struct {
    const char* name;
    Contender work;
  } conversions[] = {
      {"code 1, 8 to 24", Ours(Demosaic8, 1)},     {"code 1, 16 to 24", Ours(Demosaic16, 1)},
      {"code 1, 16 to 48", Ours(DemosaicWide, 1)}, {"code 2, 8 to 24", Ours(Demosaic8, 2)},
      {"code 3, 8 to 24", Ours(Demosaic8, 3)},     {"code 4, 8 to 24", Ours(Demosaic8, 4)},
      {"code 5, 8 to 24", Ours(Demosaic8, 5)},     {"mono, 8 to 24", Mono8}};
  for (const auto& conversion : conversions) {
    for (const Tier tier : {Tier::kSsse3, Tier::kAvx2, Tier::kAvx512}) {
      const Contender scalar = [&](Buffers& b) -> Work {
        return [work = conversion.work(b), tier] {
          UseTier(Tier::kScalar);
          work();
          UseTier(tier);
        };
      };
      table.Row(conversion.name, "scalar tier", tier, kNoFloor, conversion.work, scalar);
    }
  }
}

// What asking the processor for its multimedia bits costs a call of code 1.
void PrintIdentificationTime() {
  constexpr int kCalls = 200;
  const double seconds = SecondsOf([] { static_cast<void>(platform::HasExtendedMmx()); }, kCalls);
  std::printf("processor identification, once a call of code 1: %.2f us\n", seconds * 1e6);
}

int Run(int argc, char** argv) {
  std::vector<Buffers> buffers;
  buffers.reserve(std::size(kSizes));
  for (const Size size : kSizes) buffers.emplace_back(size);
  const Tier chosen = ActiveTier();
  const std::string mode = argc > 1 ? argv[1] : "";
  Table table(buffers, argc > 2 ? argv[2] : "");
  std::printf(
      "tier chosen: %s; ratio, floor, (Gpixel/s) at 640 x 480 | 1280 x 1024 | 4096 x 3072\n",
      TierName(chosen));
  PrintIdentificationTime();
  if (mode == "tiers") {
    CompareTiers(table);
    return 0;
  }
#ifdef ORMIDEX_HAVE_OPENCV
  cv::setNumThreads(1);
  std::printf("OpenCV %s, one thread\n", CV_VERSION);
  CompareBilinear(table);
  CompareBetterCodes(table);
  CompareMono(table);
#else
  std::printf("OpenCV is not installed: no comparison with it\n");
#endif
  CompareWithMemcpy(table);
  std::printf("%d rows miss their floor\n", table.misses());
  return 0;
}

}  // namespace
}  // namespace ormidex::convert

int main(int argc, char** argv) { return ormidex::convert::Run(argc, argv); }
