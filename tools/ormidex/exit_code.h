// How the tool ends, and what it says when something went wrong.
#ifndef ORMIDEX_TOOLS_EXIT_CODE_H_
#define ORMIDEX_TOOLS_EXIT_CODE_H_

#include <fmt/format.h>

#include <stdexcept>
#include <string>

#include "ormidex.h"

namespace ormidex_tool {

enum ExitCode {
  kExitOk = 0,
  kExitFailure = 1,
  kExitUsage = 2,
  kExitNoCamera = 3,
  kExitBusy = 4,  // the camera is in use, or there is no permission to open it
  kExitTimeout = 5,
  kExitCameraLost = 6,
  kExitIncomplete = 7,  // some of what was asked for is done, some is not
};

// Ends the command: the message goes to standard error, the code to the shell.
class ToolError : public std::runtime_error {
 public:
  ToolError(ExitCode code, const std::string& message) : std::runtime_error(message), code_(code) {}
  ExitCode code() const { return code_; }

 private:
  ExitCode code_;
};

// One status code in words.
struct StatusText {
  const char* name;
  const char* meaning;
  const char* remedy;
};
const StatusText& DescribeStatus(OrmidexStatus status);

// Throws a ToolError for any status but success: what the tool was doing, what the
// status means and what to try.
void Check(OrmidexStatus status, const std::string& doing);

// Ways of ending that several commands share.
[[noreturn]] void FailUsage(const std::string& message);
[[noreturn]] void FailNoCamera();

}  // namespace ormidex_tool

#endif  // ORMIDEX_TOOLS_EXIT_CODE_H_
