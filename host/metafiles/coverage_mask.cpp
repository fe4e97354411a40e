#include <rasterkit/host/metafiles/cairo_handles.h>
#include <rasterkit/host/metafiles/coverage_mask.h>
#include <rasterkit/host/runtime/memory_budget.h>

namespace rasterkit::detail {

CoverageMask::CoverageMask(const PixelRect& box)
    : box_(box), stride_((static_cast<size_t>(box.right - box.left) + 3) / 4 * 4) {
  const size_t bytes = stride_ * static_cast<size_t>(box.bottom - box.top);
  RequirePictureMemory(bytes, "metafile: mask of an area");
  bytes_.resize(bytes);
}

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
