#pragma once

#include <functional>
#include <optional>
#include <string>

#include <rasterkit/dialogs/bitmapframe/bmp_cut_model.h>
#include <rasterkit/dialogs/crop/crop_guides.h>
#include <rasterkit/dialogs/crop/crop_ratios.h>
#include <rasterkit/dialogs/crop/crop_units.h>
#include <rasterkit/pictures/recipes/recipe.h>

namespace rasterkit {

enum class CropField { left, top, width, height };

/// A number as the window shows it, in the chosen unit.
struct CropNumber {
  double value = 0, minimum = 0, maximum = 0;
};

/// The crop window without its widgets: the rectangle of the crop tool in units, its proportion,
/// and the texts about it. The tool must outlive it and have rules that are live.
class CropWindowModel {
 public:
  CropWindowModel(BmpCutModel& tool, const CropFacts& facts);

  const CropFacts& Facts() const { return facts_; }
  /// The pixels to keep: the cut, or the whole picture.
  TRect Rect() const;
  /// Starts with a rectangle, which Answer returns as it is given while nothing changes it.
  void Start(const RecipeCrop& crop, const TRect& rect);

  LengthUnit Unit() const { return unit_; }
  /// Sets the unit at the start; pixels if the picture does not know it.
  void StartUnit(LengthUnit unit);
  /// The user chose a unit; ignored if the picture does not know it.
  void ChooseUnit(LengthUnit unit);
  /// Whether the user chose the unit, and not the caller or a window before.
  bool IsUnitChosen() const { return isUnitChosen_; }
  /// Whether the user may say what the unit of the map is: nothing states it.
  bool MayChooseMapUnit() const { return mayChooseMapUnit_; }
  void ChooseMapUnit(const MapUnit& unit);

  CropNumber Number(CropField field) const;
  int Decimals() const { return DecimalsFor(facts_, unit_); }
  /// Width and height of a fixed size cannot be changed.
  bool MayType(CropField field) const;
  /// Moves an edge to the nearest pixel corner, or changes the size to whole pixels. The left and
  /// top corner moves as far as its map coordinates say where the picture is turned.
  void Type(CropField field, double value);
  /// Changes a number by whole pixels of the picture.
  void Step(CropField field, int pixels);

  const CropRatio& Ratio() const { return ratio_; }
  /// Sets the ratio at the start; the rectangle does not change. Free if the picture does not know
  /// the kind.
  void StartRatio(const CropRatio& ratio);
  /// The user chose a ratio: the rectangle follows.
  void ChooseRatio(const CropRatio& ratio);

  CropGuide Guide() const { return guide_; }
  void SetGuide(CropGuide guide) { guide_ = guide; }

  /// "820 x 560 pixels, 1.38 MB".
  std::string SizeText() const;
  /// "Ratio 3:2", "Ratio 1.464:1".
  std::string RatioText() const;
  /// "300 dpi: 69.4 x 47.4 mm on paper", or that there is no resolution.
  std::string PaperText() const;
  /// Corners and size on the map; that there is no position.
  std::string MapText() const;
  /// The corner between pixels under the mouse; nothing: outside the picture.
  std::string MouseText(const std::optional<TPoint>& corner) const;
  /// What became of a typed number, or of a sheet that is larger than the picture; empty if there
  /// is nothing to say.
  std::string RoundingText() const;

  /// The rectangle with the numbers that are shown: in the unit in which it was typed, or that the
  /// user chose, else in pixels.
  RecipeCrop Answer() const;

 private:
  struct Stated {
    TRect rect;
    RecipeCrop crop;
  };

  TRect Moved(UnitPlace corner) const;
  void TakeTyped(const TRect& rect);
  void UseShape();
  bool IsStill(const TRect& rect) const;

  BmpCutModel* tool_;
  CropFacts facts_;
  LengthUnit unit_ = LengthUnit::pixels;
  bool isUnitChosen_ = false, mayChooseMapUnit_ = false;
  CropRatio ratio_;
  CropGuide guide_ = CropGuide::none;
  Outside outside_ = Outside::refuse;
  std::optional<Stated> stated_;
  std::string rounding_;
  TRect roundedRect_;
};

}  // namespace rasterkit
