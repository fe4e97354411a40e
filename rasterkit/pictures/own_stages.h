#pragma once

#include <memory>
#include <optional>

#include <rasterkit/bands/combine.h>
#include <rasterkit/bands/stage/sides.h>
#include <rasterkit/bands/stage/stage.h>
#include <rasterkit/pictures/picture.h>

/// Stages that need more than the pixels of the step before.
namespace rasterkit::detail {

/// Makes a raster to look at of samples (see VisiblePixels); a raster stays as it is.
std::unique_ptr<Stage> VisibleStage(Sides source, const std::string& noData,
                                    const NumberStretch& stretch);

/// Lays a second picture over the first; its pixels are read when the stage works.
std::unique_ptr<Stage> PictureOverStage(Sides source, std::shared_ptr<const Picture> other,
                                        const CombineOptions& options,
                                        const std::optional<Affine>& toOver);

/// Lays a second grid over the first, along `toOver`; its pixels are read when the stage works.
/// `noData` means "not measured" in the first.
std::unique_ptr<Stage> GridOverStage(Sides source, std::shared_ptr<const Picture> other,
                                     const std::optional<double>& noData, Filter filter,
                                     const Affine& toOver);

/// Gives the pixels of a bitmap instead of those of its source.
std::unique_ptr<Stage> ShownStage(std::shared_ptr<const TBitmap> pixels);

}  // namespace rasterkit::detail
