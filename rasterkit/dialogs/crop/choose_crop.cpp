#include <rasterkit/dialogs/crop/choose_crop.h>
#include <rasterkit/dialogs/crop/choose_crop_form.h>
#include <rasterkit/qt/host/modal_call.h>

namespace rasterkit {
namespace {

CropFacts FactsOf(const TBitmap& pixels, const Picture& picture, const std::string& mapUnit) {
  CropFacts facts;
  facts.width = pixels.Width();
  facts.height = pixels.Height();
  facts.bits = pixels.StoredBits();
  facts.resolution = picture.GetMetadata().resolution;
  facts.affine = picture.GetPlacement().affine;
  facts.mapUnit = MapUnitOf(picture.GetPlacement().system);
  if (!facts.mapUnit.IsKnown()) facts.mapUnit = MapUnitNamed(mapUnit);
  return facts;
}

}  // namespace

std::optional<RecipeCrop> ChooseCrop(TBitmap& pixels, const Picture& picture,
                                     const ChooseCropOptions& options, QWidget* parent) {
  const TModalCall call;
  std::optional<TRect> start;
  TFormChooseCrop form(pixels, FactsOf(pixels, picture, options.mapUnit), options, start,
                       ReadCropSettings(), parent);
  if (form.ShowModal() != mrOk) return std::nullopt;
  WriteCropSettings(form.Settings());
  return form.Model().Answer();
}

}  // namespace rasterkit
