#pragma once

/// Start-up and the texts that users see.

#include <rasterkit/package/start_up.h>
#include <rasterkit/package/strings.h>
