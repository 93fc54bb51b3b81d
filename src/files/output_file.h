// A file that an image is written to.
#ifndef ORMIDEX_FILES_OUTPUT_FILE_H_
#define ORMIDEX_FILES_OUTPUT_FILE_H_

#include <cstddef>
#include <cstdio>

namespace ormidex::files {

// Created anew, in binary. Write errors are not reported, deliberately:
// applications have always taken a full disk from the file's size.
class OutputFile {
 public:
  explicit OutputFile(const char* path) : file_(std::fopen(path, "wb")) {}
  ~OutputFile() {
    if (file_ != nullptr) std::fclose(file_);
  }
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  explicit operator bool() const { return file_ != nullptr; }
  void Write(const void* data, std::size_t bytes) {
    if (bytes != 0 && std::fwrite(data, 1, bytes, file_) != bytes) {
      // Nothing to do: see above.
    }
  }

 private:
  std::FILE* file_;
};

}  // namespace ormidex::files

#endif  // ORMIDEX_FILES_OUTPUT_FILE_H_
