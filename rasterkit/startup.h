#pragma once

/// Start-up and shut-down.
#include <rasterkit/startup/start_up.h>
