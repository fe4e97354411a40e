#pragma once

/// Reading of picture files, also of untrusted ones in a worker process.
#include <rasterkit/pictures/load_bitmap.h>
