#include "interrupt.h"

#include <csignal>

namespace ormidex_tool {

namespace {

volatile std::sig_atomic_t interrupted = 0;

extern "C" void OnInterrupt(int signal) {
  interrupted = 1;
  std::signal(signal, SIG_DFL);
}

}  // namespace

void CatchBrokenPipe() {
#ifdef SIGPIPE
  // A handler, unlike SIG_IGN, is not handed on to programs that are started.
  std::signal(SIGPIPE, [](int) {});
#endif
}

void CatchInterrupts() { std::signal(SIGINT, &OnInterrupt); }

bool Interrupted() { return interrupted != 0; }

}  // namespace ormidex_tool
