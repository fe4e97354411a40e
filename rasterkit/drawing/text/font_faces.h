#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include <cairo.h>

#include <rasterkit/drawing/ink/cairo_handles.h>
#include <rasterkit/drawing/ink/drawing_objects.h>

namespace rasterkit::detail {

/// Lengths of a font in parts of its em square, downward from the baseline where not said
/// otherwise.
struct FontMetrics {
  double ascent = 0.9;   ///< upward: of the highest letter
  double descent = 0.2;  ///< of the lowest one
  double averageWidth = 0.5;
  double underlineCenter = 0.1, underlineWidth = 0.05;
  double strikeOutCenter = -0.26, strikeOutWidth = 0.05;
};

/// A picture of a letter, and how far the next one lies, in parts of the em square.
struct FontGlyph {
  unsigned long index = 0;
  double advance = 0;
  bool isThere = false;
};

/// A font of the system.
class FontFace {
 public:
  /// `isItself`: it was found under the name that was asked for.
  FontFace(CairoFontFace face, bool isItself);

  cairo_font_face_t* Face() const { return face_.get(); }
  bool IsItself() const { return isItself_; }
  const FontMetrics& Metrics() const { return metrics_; }
  /// Remembered, as texts ask for the same few letters.
  FontGlyph Letter(char32_t codePoint);
  /// The letter of a symbol font's own code, 0 to 255.
  FontGlyph SymbolLetter(unsigned code);
  FontGlyph Glyph(unsigned long index);

 private:
  template <class Find>
  FontGlyph Look(uint64_t key, Find find);

  CairoFontFace face_;
  CairoScaledFont sized_;
  bool isItself_;
  FontMetrics metrics_;
  std::map<uint64_t, FontGlyph> known_;
};

/// Finds the system's fonts. One is used by one thread.
class FontFaces {
 public:
  /// The best there is for a font; null on a system without fonts.
  FontFace* Find(const LogicalFont& font);
  /// One that has the letter, in the font's style; null when none has.
  FontFace* FindWithLetter(const LogicalFont& font, char32_t letter);

 private:
  using Key = std::tuple<std::string, int32_t, bool, uint8_t, char32_t>;
  FontFace* Found(const LogicalFont& font, char32_t letter);

  static constexpr size_t kMaxFaces = 500, kMaxSearches = 100;

  std::map<Key, std::unique_ptr<FontFace>> faces_;
  /// Those that had letters which the font that was asked for has not.
  std::vector<FontFace*> helpers_;
  /// Letters that no font has; a text may ask for one again and again.
  std::set<char32_t> missing_;
  size_t searches_ = 0;
};

}  // namespace rasterkit::detail
