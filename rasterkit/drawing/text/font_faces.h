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

/// Metrics of a font as fractions of its em square. Positive is below the baseline unless noted.
struct FontMetrics {
  double ascent = 0.9;   ///< of the highest letter, above the baseline
  double descent = 0.2;  ///< of the lowest letter
  double averageWidth = 0.5;
  double underlineCenter = 0.1, underlineWidth = 0.05;
  double strikeOutCenter = -0.26, strikeOutWidth = 0.05;
};

/// A glyph and its advance width as a fraction of the em square.
struct FontGlyph {
  unsigned long index = 0;
  double advance = 0;
  bool isThere = false;
};

/// A font of the system.
class FontFace {
 public:
  /// `isItself` is true if the font was found under the requested name.
  FontFace(CairoFontFace face, bool isItself);

  cairo_font_face_t* Face() const { return face_.get(); }
  bool IsItself() const { return isItself_; }
  const FontMetrics& Metrics() const { return metrics_; }
  /// Returns the glyph of a character. Cached, as texts repeat few letters.
  FontGlyph Letter(char32_t codePoint);
  /// Returns the glyph for a code (0 to 255) of a symbol font's own encoding.
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

/// Finds fonts of the system. Not thread-safe: use one per thread.
class FontFaces {
 public:
  /// Returns the best match for a font; null if the system has no fonts.
  FontFace* Find(const LogicalFont& font);
  /// Returns a font in the style of `font` that has the letter; null if there is none.
  FontFace* FindWithLetter(const LogicalFont& font, char32_t letter);

 private:
  using Key = std::tuple<std::string, int32_t, bool, uint8_t, char32_t>;
  FontFace* Found(const LogicalFont& font, char32_t letter);

  static constexpr size_t kMaxFaces = 500, kMaxSearches = 100;

  std::map<Key, std::unique_ptr<FontFace>> faces_;
  /// Fonts that had letters missing in a requested font.
  std::vector<FontFace*> helpers_;
  /// Letters that no font has, to avoid searching for them again.
  std::set<char32_t> missing_;
  size_t searches_ = 0;
};

}  // namespace rasterkit::detail
