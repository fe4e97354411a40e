#pragma once

#include <rasterkit/runtime/isolation.h>

#include "tool/command/options.h"

namespace rasterkit::tool {

/// Adds --isolate.
void AddIsolate(Verb& verb);
/// Adds --no-isolate to a verb that reads in a worker process unless told otherwise.
void AddNoIsolate(Verb& verb);

/// Where this process reads pictures, as the options say. `byDefault` is what the verb does without
/// one of them.
Isolation ReadingIsolation(Isolation byDefault = Isolation::none);

}  // namespace rasterkit::tool
