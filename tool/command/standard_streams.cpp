#include "tool/command/standard_streams.h"

#include <csignal>
#include <initializer_list>

#include <fcntl.h>
#include <unistd.h>

namespace rasterkit::tool {

void PrepareStandardStreams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(stream, F_GETFD) >= 0) continue;
    // open() returns the lowest free descriptor. It is read-only, so that writing results to it
    // fails.
    if (open("/dev/null", O_RDONLY) != stream) return;
  }
  std::signal(SIGPIPE, SIG_IGN);
}

}  // namespace rasterkit::tool
