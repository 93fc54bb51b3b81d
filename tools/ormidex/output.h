// Files that the tool writes: which format, which name, and not over another file.
#ifndef ORMIDEX_TOOLS_OUTPUT_H_
#define ORMIDEX_TOOLS_OUTPUT_H_

#include <string>
#include <vector>

#include "camera.h"

namespace ormidex_tool {

enum class Format { kBmp, kTiff, kJpeg, kRaw, kPpm };

// The format that a file's ending asks for; throws a ToolError for any other. "-"
// is standard output, in raw frames unless `standard_output` says otherwise.
Format FormatOf(const std::string& path, Format standard_output = Format::kRaw);

// A name with a place for a number: "#" repeated for as many digits, or one "%d"
// or "%04d".
bool IsPattern(const std::string& path);
std::string NumberedPath(const std::string& pattern, std::uint64_t number);

// Throws a ToolError when the file is there and `force` is not set.
void RefuseOverwriting(const std::string& path, bool force);

// Writes a file, or "-"; throws a ToolError when it cannot be created or is not
// complete.
void WriteFile(const std::string& path, const void* data, std::size_t bytes);
inline void WriteFile(const std::string& path, const std::string& text) {
  WriteFile(path, text.data(), text.size());
}

// What a frame is written with.
struct WriteOptions {
  Format format = Format::kBmp;
  OrmidexUInt32 algorithm = ORMIDEX_BILINEAR;
};

// Writes frames of one camera; keeps its image buffer from frame to frame.
class FrameWriter {
 public:
  FrameWriter(const Camera& camera, const Geometry& geometry, const WriteOptions& options);
  // Throws a ToolError when the file cannot be created or is not complete.
  void Write(std::vector<unsigned char>& frame, const std::string& path);

 private:
  void WritePpm(const std::string& path);

  const Camera& camera_;
  Geometry geometry_;
  WriteOptions options_;
  std::vector<unsigned char> image_;
};

}  // namespace ormidex_tool

#endif  // ORMIDEX_TOOLS_OUTPUT_H_
