#pragma once

/// Errors, streams, limits, and the ports that a host fills.
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/runtime/files/stream.h>
#include <rasterkit/runtime/isolation.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/memory/memory_budget.h>
#include <rasterkit/runtime/ports.h>
#include <rasterkit/runtime/threads/application.h>
