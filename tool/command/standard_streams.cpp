#include "tool/command/standard_streams.h"

#include <csignal>
#include <initializer_list>

#include <fcntl.h>
#include <unistd.h>

namespace rasterkit::tool {

void PrepareStandardStreams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(stream, F_GETFD) >= 0) continue;
    // The lowest free number is taken. Only reading is allowed, so that results which go nowhere
    // are noticed.
    if (open("/dev/null", O_RDONLY) != stream) return;
  }
  std::signal(SIGPIPE, SIG_IGN);
}

}  // namespace rasterkit::tool
