// Shakes a preview for a long time: random suspends, geometry and transfer-size
// changes, moves, restarts, stills. Ends with 1 when an operation answers what it
// should not, or when memory, files or threads have grown.
//
// usage: preview_soak [SECONDS [SEED]]   (600 seconds; on the display of DISPLAY)
#include <dirent.h>

#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "ormidex.h"
#include "platform/thread.h"
#include "platform/timer.h"

namespace ormidex::testing {
namespace {

struct Usage {
  long resident_kb = 0;
  int files = 0;
  int threads = 0;
};

int EntriesOf(const char* folder) {
  DIR* directory = opendir(folder);
  if (directory == nullptr) return -1;
  int count = 0;
  while (readdir(directory) != nullptr) ++count;
  closedir(directory);
  return count;
}

Usage Measure() {
  Usage usage;
  if (FILE* status = std::fopen("/proc/self/status", "r")) {
    char line[256];
    while (std::fgets(line, sizeof(line), status) != nullptr) {
      std::sscanf(line, "VmRSS: %ld", &usage.resident_kb);
    }
    std::fclose(status);
  }
  usage.files = EntriesOf("/proc/self/fd");
  usage.threads = EntriesOf("/proc/self/task");
  return usage;
}

// Free memory that the C library holds back differs by the largest images. The
// sanitizers keep freed memory on purpose, and tell of leaks themselves.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr long kResidentSlackKb = 1024 * 1024;
#else
constexpr long kResidentSlackKb = 16 * 1024;
#endif

class Soak {
 public:
  explicit Soak(unsigned seed) : random_(seed) {}

  bool Open() {
    char name[] = "Torvenal(tm) 1394 Camera";
    return Expect("open", OrmidexInitialize(name, 0, &camera_), {0}) && StartPreview();
  }
  bool Close() {
    return Expect("stop preview", OrmidexStopPreview(camera_), {0}) &&
           Expect("close", OrmidexUninitialize(&camera_), {0});
  }
  bool Step() {
    ++steps_;
    switch (Below(8)) {
      case 0:
        return Expect("suspend", OrmidexPausePreview(camera_, 1), {0});
      case 1:
        return Expect("resume", OrmidexPausePreview(camera_, 0), {0});
      case 2:
        return ChangeGeometry();
      case 3:
        // 18: the clock had to be slowed.
        return Expect("transfer size", OrmidexSetDataTransferSize(camera_, Below(2) * 8 + 8),
                      {0, 18});
      case 4:
        return Move();
      case 5:
        return Expect("reset", OrmidexResetPreviewWindow(camera_), {0});
      case 6:
        return Below(4) != 0 ||
               (Expect("stop preview", OrmidexStopPreview(camera_), {0}) && StartPreview());
      default:
        platform::SleepMilliseconds(Below(30));
        return true;
    }
  }
  long steps() const { return steps_; }

 private:
  std::uint32_t Below(std::uint32_t bound) {
    return std::uniform_int_distribution<std::uint32_t>(0, bound - 1)(random_);
  }
  bool Expect(const char* what, OrmidexStatus status, std::vector<OrmidexStatus> allowed) const {
    for (const OrmidexStatus one : allowed) {
      if (status == one) return true;
    }
    std::fprintf(stderr, "preview_soak: %s answered %u after %ld steps\n", what,
                 static_cast<unsigned>(status), steps_);
    return false;
  }
  bool StartPreview() {
    return Expect("start preview",
                  OrmidexStartPreview(camera_, "Soak", 0x00CF0000, Below(300), Below(300),
                                      ORMIDEX_FRAME_SIZE, 0, nullptr, 0, 0, 0),
                  {0});
  }
  bool ChangeGeometry() {
    const std::uint32_t factor = 1u << Below(3);
    const std::uint32_t width = (1 + Below(10)) * 32 * factor;
    const std::uint32_t height = (1 + Below(16)) * 16 * factor;
    return Expect("sub-window",
                  OrmidexSetSubWindow(camera_, factor, 0, 0, width > 1280 ? 1280 : width,
                                      height > 1024 ? 1024 : height),
                  {0});
  }
  bool Move() {
    const auto left = static_cast<OrmidexInt32>(Below(3000)) - 1000;
    const auto top = static_cast<OrmidexInt32>(Below(3000)) - 1000;
    const OrmidexRect rectangle = {left, top, left + static_cast<OrmidexInt32>(Below(1300)),
                                   top + static_cast<OrmidexInt32>(Below(1000))};
    return Expect("move", OrmidexSetPreviewWindow(camera_, &rectangle), {0});
  }

  std::mt19937 random_;
  OrmidexHandle camera_ = nullptr;
  long steps_ = 0;
};

// The library's own threads end a moment after they have said so.
Usage MeasureQuiet() {
  platform::SleepMilliseconds(300);
  return Measure();
}

int Run(double seconds, unsigned seed) {
  setenv("ORMIDEX_SIMULATOR", "pace=fast,scene=grey:90", 1);
  Soak soak(seed);
  const std::uint64_t start = platform::MonotonicMicroseconds();
  const auto run_until = [&](double end) {
    while (static_cast<double>(platform::MonotonicMicroseconds() - start) < end * 1e6) {
      if (!soak.Step()) return false;
    }
    return true;
  };
  // A tenth of the time for everything that is taken once and kept.
  if (!soak.Open() || !run_until(seconds / 10) || !soak.Close()) return 1;
  const Usage before = MeasureQuiet();
  if (!soak.Open() || !run_until(seconds) || !soak.Close()) return 1;
  const Usage after = MeasureQuiet();
  std::printf(
      "preview_soak: seed %u, %ld steps; resident %ld -> %ld KB, files %d -> %d, "
      "threads %d -> %d\n",
      seed, soak.steps(), before.resident_kb, after.resident_kb, before.files, after.files,
      before.threads, after.threads);
  const bool grown = after.resident_kb > before.resident_kb + kResidentSlackKb ||
                     after.files > before.files || after.threads > before.threads;
  if (grown) std::fprintf(stderr, "preview_soak: something has grown\n");
  return grown ? 1 : 0;
}

}  // namespace
}  // namespace ormidex::testing

int main(int argc, char** argv) {
  const double seconds = argc > 1 ? std::atof(argv[1]) : 600.0;
  const unsigned seed = argc > 2 ? static_cast<unsigned>(std::atoi(argv[2])) : 1u;
  return ormidex::testing::Run(seconds, seed);
}
