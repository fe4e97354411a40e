#include "tool/command/isolation_option.h"

namespace rasterkit::tool {
namespace {

/// Set while the arguments are read, on the only thread at that time.
bool isIsolated = false, isNotIsolated = false;

}  // namespace

void AddIsolate(Verb& verb) {
  verb.Flag("--isolate", isIsolated,
            "read each picture in a process of its own, which a damaged or hostile file cannot "
            "leave; PDF files are always read so");
}

void AddNoIsolate(Verb& verb) {
  verb.Flag("--no-isolate", isNotIsolated, "read the picture in this process");
}

Isolation ReadingIsolation(Isolation byDefault) {
  if (isIsolated) return Isolation::process;
  return isNotIsolated ? Isolation::none : byDefault;
}

}  // namespace rasterkit::tool
