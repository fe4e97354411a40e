#pragma once

/// The texts that users see, and how a host translates them.
#include <rasterkit/strings/strings.h>
