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

void CatchInterrupts() { std::signal(SIGINT, &OnInterrupt); }

bool Interrupted() { return interrupted != 0; }

}  // namespace ormidex_tool
