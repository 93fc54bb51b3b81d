#include "output.h"

#include <cstdio>
#include <cstring>
#include <memory>

#include "exit_code.h"

namespace ormidex_tool {

namespace {

struct Ending {
  const char* text;
  Format format;
};

constexpr Ending kEndings[] = {
    {".bmp", Format::kBmp},  {".tif", Format::kTiff},  {".tiff", Format::kTiff},
    {".jpg", Format::kJpeg}, {".jpeg", Format::kJpeg}, {".raw", Format::kRaw},
    {".ppm", Format::kPpm},
};

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

File OpenFile(const std::string& path, const char* mode) {
  return File(std::fopen(path.c_str(), mode), &std::fclose);
}

bool Exists(const std::string& path) { return OpenFile(path, "rb") != nullptr; }

std::uint64_t SizeOf(const std::string& path) {
  const File file = OpenFile(path, "rb");
  if (file == nullptr || std::fseek(file.get(), 0, SEEK_END) != 0) return 0;
  return static_cast<std::uint64_t>(std::ftell(file.get()));
}

// The library's writers take a path; this one is standard output on Unix.
constexpr char kStandardOutputPath[] = "/dev/stdout";

}  // namespace

Format FormatOf(const std::string& path, Format standard_output) {
  if (path == "-") return standard_output;
  const std::size_t dot = path.rfind('.');
  std::string ending = dot == std::string::npos ? "" : path.substr(dot);
  for (char& c : ending) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  for (const Ending& known : kEndings) {
    if (ending == known.text) return known.format;
  }
  FailUsage("'" + path +
            "': the ending names the format: name it *.bmp, *.tif, *.jpg, *.ppm or *.raw");
}

namespace {

// Where the number goes, and in how many digits; false without a place for it.
bool FindNumber(const std::string& path, std::size_t* start, std::size_t* length, int* digits) {
  *start = path.find('#');
  if (*start != std::string::npos) {
    *length = path.find_first_not_of('#', *start);
    *length = (*length == std::string::npos ? path.size() : *length) - *start;
    *digits = static_cast<int>(*length);
    return true;
  }
  for (*start = path.find('%'); *start != std::string::npos; *start = path.find('%', *start + 1)) {
    std::size_t end = *start + 1;
    *digits = 0;
    while (end < path.size() && path[end] >= '0' && path[end] <= '9' && *digits < 10) {
      *digits = *digits * 10 + (path[end++] - '0');
    }
    if (end < path.size() && path[end] == 'd') {
      *length = end + 1 - *start;
      return true;
    }
  }
  return false;
}

}  // namespace

bool IsPattern(const std::string& path) {
  std::size_t start = 0;
  std::size_t length = 0;
  int digits = 0;
  return FindNumber(path, &start, &length, &digits);
}

std::string NumberedPath(const std::string& pattern, std::uint64_t number) {
  std::size_t start = 0;
  std::size_t length = 0;
  int digits = 0;
  if (!FindNumber(pattern, &start, &length, &digits)) return pattern;
  return fmt::format("{}{:0{}}{}", pattern.substr(0, start), number, std::min(digits, 20),
                     pattern.substr(start + length));
}

void RefuseOverwriting(const std::string& path, bool force) {
  if (!force && path != "-" && Exists(path)) {
    throw ToolError(kExitUsage, "'" + path + "' exists; give --force to replace it");
  }
}

FrameWriter::FrameWriter(const Camera& camera, const Geometry& geometry,
                         const WriteOptions& options)
    : camera_(camera), geometry_(geometry), options_(options), image_(geometry.ImageBytes()) {}

void WriteFile(const std::string& path, const void* data, std::size_t bytes) {
  if (path == "-") {
    if (std::fwrite(data, 1, bytes, stdout) != bytes || std::fflush(stdout) != 0) {
      throw ToolError(kExitIncomplete,
                      "standard output is not complete: it was closed, or the disk may be full");
    }
    return;
  }
  const File file = OpenFile(path, "wb");
  if (file == nullptr) Check(ORMIDEX_FILE_NOT_OPENED, "writing '" + path + "'");
  if (std::fwrite(data, 1, bytes, file.get()) != bytes || std::fflush(file.get()) != 0) {
    throw ToolError(kExitIncomplete, "'" + path + "' is not complete: the disk may be full");
  }
}

// Portable pixmap: top-down, red first.
void FrameWriter::WritePpm(const std::string& path) {
  std::string text = fmt::format("P6\n{} {}\n255\n", geometry_.width, geometry_.height);
  const std::size_t header = text.size();
  const std::size_t stride = std::size_t{3} * geometry_.width;
  text.resize(header + image_.size());
  for (std::size_t y = 0; y < geometry_.height; ++y) {
    const unsigned char* row = image_.data() + stride * (geometry_.height - 1 - y);
    char* out = text.data() + header + stride * y;
    for (std::size_t x = 0; x < stride; x += 3) {
      out[x] = static_cast<char>(row[x + 2]);
      out[x + 1] = static_cast<char>(row[x + 1]);
      out[x + 2] = static_cast<char>(row[x]);
    }
  }
  WriteFile(path, text);
}

void FrameWriter::Write(std::vector<unsigned char>& frame, const std::string& path) {
  if (options_.format == Format::kRaw) {
    WriteFile(path, frame.data(), frame.size());
    return;
  }
  const std::string target = path == "-" ? kStandardOutputPath : path;
  std::uint64_t expected = 0;
  OrmidexStatus status = ORMIDEX_OK;
  if (options_.format == Format::kTiff) {
    status = OrmidexSaveFrameAsTiff(camera_.handle(), frame.data(), target.c_str(), 0, 0,
                                    options_.algorithm);
    const bool grey = !camera_.IsColour();
    expected = 146 + (grey ? frame.size() : image_.size() * geometry_.bytes_per_pixel);
  } else {
    camera_.Convert(frame, geometry_, options_.algorithm, image_);
    if (options_.format == Format::kPpm) {
      WritePpm(path);
      return;
    }
    const bool jpeg = options_.format == Format::kJpeg;
    // The JPEG writer reports nothing, so that the file is made sure of first.
    if (jpeg && path != "-") WriteFile(path, nullptr, 0);
    status = jpeg ? OrmidexSaveFrameAsJpeg(camera_.handle(), image_.data(), target.c_str())
                  : OrmidexSaveFrameAsBitmap(camera_.handle(), image_.data(), target.c_str());
    expected = jpeg ? 1 : 54 + image_.size();
  }
  Check(status, "writing '" + path + "'");
  // The library does not report a full disk; the file's length does.
  if (path != "-" && SizeOf(path) < expected) {
    throw ToolError(kExitIncomplete, "'" + path + "' is not complete: the disk may be full");
  }
}

}  // namespace ormidex_tool
