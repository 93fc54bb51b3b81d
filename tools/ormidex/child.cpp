#include "child.h"

#include <cerrno>
#include <cstring>

#ifdef _WIN32
#include <process.h>
#include <windows.h>
#else
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

#include "exit_code.h"
#include "pause.h"

namespace ormidex_tool {

namespace {

[[noreturn]] void FailStart(const std::string& program, int error) {
  throw ToolError(kExitFailure,
                  fmt::format("'{}' could not be started: {}", program, std::strerror(error)));
}

std::vector<char*> Pointers(std::vector<std::string>& words) {
  std::vector<char*> pointers;
  pointers.reserve(words.size() + 1);
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  return pointers;
}

}  // namespace

#ifdef _WIN32

// The words travel as one line, which the program splits at spaces.
Child::Child(const std::vector<std::string>& words) {
  std::vector<std::string> quoted;
  for (const std::string& word : words) quoted.push_back('"' + word + '"');
  process_ = _spawnvp(_P_NOWAIT, words[0].c_str(), Pointers(quoted).data());
  if (process_ == -1) FailStart(words[0], errno);
}

Child::~Child() { CloseHandle(reinterpret_cast<HANDLE>(process_)); }

bool Child::Wait(unsigned milliseconds) {
  const auto process = reinterpret_cast<HANDLE>(process_);
  if (WaitForSingleObject(process, milliseconds) != WAIT_OBJECT_0) return false;
  DWORD code = 0;
  GetExitCodeProcess(process, &code);
  exit_code_ = static_cast<int>(code);
  return true;
}

#else

Child::Child(const std::vector<std::string>& words) {
  std::vector<std::string> copies = words;
  pid_t process = 0;
  const int error =
      posix_spawnp(&process, words[0].c_str(), nullptr, nullptr, Pointers(copies).data(), environ);
  if (error != 0) FailStart(words[0], error);
  process_ = process;
}

bool Child::Wait(unsigned milliseconds) {
  constexpr unsigned kStep = 10;
  int status = 0;
  for (unsigned waited = 0; waitpid(static_cast<pid_t>(process_), &status, WNOHANG) == 0;
       waited += kStep) {
    if (waited >= milliseconds) return false;
    PauseMilliseconds(kStep);
  }
  exit_code_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  return true;
}

#endif

}  // namespace ormidex_tool
