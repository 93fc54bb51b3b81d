// A line that tells how far a recording is, on a terminal only.
#ifndef ORMIDEX_TOOLS_PROGRESS_H_
#define ORMIDEX_TOOLS_PROGRESS_H_

#include <cstdint>
#include <string>

namespace ormidex_tool {

class Progress {
 public:
  // total is 0 when the number of frames is not known.
  explicit Progress(std::uint64_t total);
  // At most ten times a second.
  void Show(std::uint64_t done, double seconds, std::uint64_t lost);
  void End();

 private:
  std::uint64_t total_;
  bool wanted_;
  double next_ = 0.0;
  bool shown_ = false;
};

// The default name of the metadata of a sequence: its pattern without the number,
// with the ending .jsonl.
std::string MetadataPath(const std::string& pattern);

}  // namespace ormidex_tool

#endif  // ORMIDEX_TOOLS_PROGRESS_H_
