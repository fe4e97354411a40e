#include <atomic>

#include <rasterkit/drawing/ink/cairo_handles.h>
#include <rasterkit/drawing/ink/coverage_mask.h>
#include <rasterkit/runtime/memory/memory_budget.h>

namespace rasterkit::detail {
namespace {

std::atomic<uint64_t> bytesOfAllMasks = 0;

}  // namespace

MaskMemory::MaskMemory(uint64_t bytes) : bytes_(bytes) {
  const uint64_t all = bytesOfAllMasks.fetch_add(bytes) + bytes;
  try {
    RequirePictureMemory(all, "metafile: masks of areas");
  } catch (...) {
    bytesOfAllMasks -= bytes;
    throw;
  }
}

MaskMemory::~MaskMemory() {
  bytesOfAllMasks -= bytes_;
}

CoverageMask::CoverageMask(const PixelRect& box)
    : box_(box),
      stride_((static_cast<size_t>(box.right - box.left) + 3) / 4 * 4),
      memory_(uint64_t{stride_} * static_cast<uint64_t>(box.bottom - box.top)),
      bytes_(stride_ * static_cast<size_t>(box.bottom - box.top)) {}

void CoverageMask::Draw(const std::function<void(cairo_t*)>& draw) {
  const CairoSurface surface(
      cairo_image_surface_create_for_data(bytes_.data(), CAIRO_FORMAT_A8, box_.right - box_.left,
                                          box_.bottom - box_.top, static_cast<int>(stride_)));
  cairo_surface_set_device_offset(surface.get(), -box_.left, -box_.top);
  const CairoContext cairo(cairo_create(surface.get()));
  draw(cairo.get());
  cairo_surface_flush(surface.get());
}

}  // namespace rasterkit::detail
