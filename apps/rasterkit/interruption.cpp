#include "apps/rasterkit/interruption.h"

#include <csignal>

#include "apps/rasterkit/exit_code.h"

namespace rasterkit::tool {
namespace {

volatile std::sig_atomic_t interrupted = 0;

void OnInterrupt(int signalNumber) {
  interrupted = 1;
  std::signal(signalNumber, SIG_DFL);
}

}  // namespace

void CatchInterruption() {
  // A process that was started with the signal ignored (in the background) keeps ignoring it.
  if (std::signal(SIGINT, OnInterrupt) == SIG_IGN) std::signal(SIGINT, SIG_IGN);
#ifdef SIGXFSZ
  std::signal(SIGXFSZ, SIG_IGN);
#endif
}

bool IsInterrupted() {
  return interrupted != 0;
}

void StopIfInterrupted() {
  if (IsInterrupted()) throw Failure(exitInterrupted, "interrupted");
}

}  // namespace rasterkit::tool
