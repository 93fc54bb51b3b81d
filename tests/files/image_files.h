// What the tests of the writers share: a session of a small frame, a place for files,
// and files as bytes.
#ifndef ORMIDEX_TESTS_FILES_IMAGE_FILES_H_
#define ORMIDEX_TESTS_FILES_IMAGE_FILES_H_

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "platform/fault_points.h"
#include "platform/thread.h"
#include "support/hex.h"
#include "support/model_gateway.h"
#include "support/test_session.h"

namespace ormidex::testing {

inline std::string FilePath(const std::string& name) {
  return ::testing::TempDir() + "ormidex_" + std::to_string(platform::CurrentProcessId()) + "_" +
         name;
}

// A path for one test; the file goes with it.
class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string& name) : path_(FilePath(name)) {
    std::remove(path_.c_str());
  }
  ~TemporaryFile() { std::remove(path_.c_str()); }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  const char* path() const { return path_.c_str(); }
  bool Exists() const {
    std::FILE* file = std::fopen(path(), "rb");
    if (file != nullptr) std::fclose(file);
    return file != nullptr;
  }
  Bytes Content() const {
    Bytes bytes;
    std::FILE* file = std::fopen(path(), "rb");
    if (file == nullptr) {
      ADD_FAILURE() << "no file " << path();
      return bytes;
    }
    std::uint8_t block[4096];
    for (std::size_t n; (n = std::fread(block, 1, sizeof(block), file)) != 0;) {
      bytes.insert(bytes.end(), block, block + n);
    }
    std::fclose(file);
    return bytes;
  }

 private:
  std::string path_;
};

inline Bytes Slice(const Bytes& bytes, std::size_t from, std::size_t count) {
  if (from + count > bytes.size()) {
    ADD_FAILURE() << "only " << bytes.size() << " bytes";
    return {};
  }
  return {bytes.begin() + static_cast<std::ptrdiff_t>(from),
          bytes.begin() + static_cast<std::ptrdiff_t>(from + count)};
}

inline std::string Hex(const Bytes& bytes) { return ToHex(bytes.data(), bytes.size()); }
inline std::string Hex(const std::string& literal) { return Hex(FromHex(literal)); }

// An open camera of a given frame, as after the open sequence.
class FilesSession : public TestSession {
 public:
  FilesSession(ModelGateway& driver, std::uint32_t imager, std::uint32_t width,
               std::uint32_t height, std::uint32_t bytes_per_pixel)
      : TestSession(driver) {
    device::CameraSession& session = **this;
    session.identity.imager_type = imager;
    session.bitmap_header.header_bytes = 40;
    session.bitmap_header.planes = 1;
    session.bitmap_header.bits_per_pixel = 24;
    session.geometry.width = width;
    session.geometry.height = height;
    session.geometry.bytes_per_pixel = bytes_per_pixel;
    session.RecomputeFrameSizes();
  }
};

// A seeded picture in which every byte may be anything.
inline Bytes Noise(std::size_t size, std::uint32_t seed) {
  Bytes bytes(size);
  for (std::uint8_t& byte : bytes) {
    seed = seed * 1664525u + 1013904223u;
    byte = static_cast<std::uint8_t>(seed >> 24);
  }
  return bytes;
}

}  // namespace ormidex::testing

#endif  // ORMIDEX_TESTS_FILES_IMAGE_FILES_H_
