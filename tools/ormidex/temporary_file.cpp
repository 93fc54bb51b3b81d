#include "temporary_file.h"

#include <cstdio>
#include <cstdlib>

#ifdef _WIN32
#include <windows.h>
#else
#include <unistd.h>
#endif

#include "exit_code.h"

namespace ormidex_tool {

namespace {

// The name of a new, empty file; none when it cannot be created.
std::string Create() {
#ifdef _WIN32
  char folder[MAX_PATH];
  char path[MAX_PATH];
  if (GetTempPathA(sizeof(folder), folder) == 0) return "";
  return GetTempFileNameA(folder, "orm", 0, path) != 0 ? path : "";
#else
  const char* folder = std::getenv("TMPDIR");
  std::string path = std::string(folder != nullptr ? folder : "/tmp") + "/ormidex-XXXXXX";
  const int file = mkstemp(path.data());
  if (file < 0) return "";
  close(file);
  return path;
#endif
}

}  // namespace

TemporaryFile::TemporaryFile() : path_(Create()) {
  if (path_.empty()) throw ToolError(kExitFailure, "no temporary file can be created");
}

TemporaryFile::~TemporaryFile() { std::remove(path_.c_str()); }

}  // namespace ormidex_tool
