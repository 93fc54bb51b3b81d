// A file for the time of a command.
#ifndef ORMIDEX_TOOLS_TEMPORARY_FILE_H_
#define ORMIDEX_TOOLS_TEMPORARY_FILE_H_

#include <string>

namespace ormidex_tool {

class TemporaryFile {
 public:
  // An empty file in the system's folder for such; throws a ToolError without one.
  TemporaryFile();
  ~TemporaryFile();
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

}  // namespace ormidex_tool

#endif  // ORMIDEX_TOOLS_TEMPORARY_FILE_H_
