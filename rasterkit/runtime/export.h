#pragma once

/// Marks what librasterkit exports; everything else stays hidden.
#define RASTERKIT_EXPORT __attribute__((visibility("default")))
