// A program that the tool starts and waits for.
#ifndef ORMIDEX_TOOLS_CHILD_H_
#define ORMIDEX_TOOLS_CHILD_H_

#include <cstdint>
#include <string>
#include <vector>

namespace ormidex_tool {

class Child {
 public:
  // Starts the program, found as the shell finds it, with the tool's environment and
  // streams; throws a ToolError when it cannot be started.
  explicit Child(const std::vector<std::string>& words);
#ifdef _WIN32
  ~Child();
#endif
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  // Waits so long at the most; whether the program has ended.
  bool Wait(unsigned milliseconds);
  // Once it has ended. A signal's number and 128 for a program that one ended.
  int exit_code() const { return exit_code_; }

 private:
  std::intptr_t process_ = 0;
  int exit_code_ = 0;
};

}  // namespace ormidex_tool

#endif  // ORMIDEX_TOOLS_CHILD_H_
