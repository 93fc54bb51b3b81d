#include "progress.h"

#include <algorithm>
#include <cstdio>

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

#include "commands.h"
#include "output.h"

namespace ormidex_tool {

namespace {

bool IsTerminal() {
#ifdef _WIN32
  return _isatty(_fileno(stderr)) != 0;
#else
  return isatty(fileno(stderr)) != 0;
#endif
}

constexpr int kBarLength = 30;

}  // namespace

Progress::Progress(std::uint64_t total) : total_(total), wanted_(!IsQuiet() && IsTerminal()) {}

void Progress::Show(std::uint64_t done, double seconds, std::uint64_t lost) {
  if (!wanted_ || (seconds < next_ && done != total_)) return;
  next_ = seconds + 0.1;
  shown_ = true;
  const double rate = seconds > 0.0 ? static_cast<double>(done) / seconds : 0.0;
  std::fputc('\r', stderr);
  if (total_ != 0) {
    const auto length = static_cast<std::size_t>(std::min(done, total_) * kBarLength / total_);
    fmt::print(stderr, "[{:<{}}] ", std::string(length, '#'), kBarLength);
  }
  fmt::print(stderr, "{} frames, {:.1f}/s, {} lost  ", done, rate, lost);
  std::fflush(stderr);
}

void Progress::End() {
  if (shown_) std::fputc('\n', stderr);
  shown_ = false;
}

std::string MetadataPath(const std::string& pattern) {
  std::string path = NumberedPath(pattern, 0);
  const std::size_t dot = path.rfind('.');
  path = path.substr(0, dot);
  const std::size_t digits = path.find_last_not_of("0123456789");
  path = digits == std::string::npos ? "frames" : path.substr(0, digits + 1);
  while (!path.empty() && (path.back() == '-' || path.back() == '_')) path.pop_back();
  if (path.empty() || path.back() == '/' || path.back() == '\\') path += "frames";
  return path + ".jsonl";
}

}  // namespace ormidex_tool
