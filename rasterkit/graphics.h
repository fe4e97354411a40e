#pragma once

/// TBitmap and related classes, the registry of picture formats, PDF documents.
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/canvas.h>
#include <rasterkit/graphics/graphic.h>
#include <rasterkit/graphics/icon.h>
#include <rasterkit/graphics/jpeg_image.h>
#include <rasterkit/graphics/metafile.h>
#include <rasterkit/graphics/pdf_document.h>
#include <rasterkit/graphics/picture_registry.h>
#include <rasterkit/graphics/png_image.h>
