#include <algorithm>
#include <cmath>
#include <mutex>

#include <cairo-ft.h>
#include <fontconfig/fontconfig.h>
#include <freetype/ftadvanc.h>
#include <freetype/tttables.h>

#include <rasterkit/drawing/text/font_faces.h>
#include <rasterkit/drawing/text/font_lock.h>
#include <rasterkit/drawing/text/font_names.h>
#include <rasterkit/drawing/text/font_set.h>

namespace rasterkit::detail {
namespace {

void AddFamily(FcPattern* pattern, const char* family) {
  FcPatternAddString(pattern, FC_FAMILY, reinterpret_cast<const FcChar8*>(family));
}

std::string WithoutVerticalMark(const std::string& name) {
  return name.starts_with('@') ? name.substr(1) : name;
}

FontPattern Wanted(const LogicalFont& font, char32_t letter) {
  FontPattern pattern(FcPatternCreate());
  const std::string name = WithoutVerticalMark(font.faceName);
  if (!name.empty()) AddFamily(pattern.get(), name.c_str());
  for (const char* family : StandInsFor(name)) AddFamily(pattern.get(), family);
  AddFamily(pattern.get(), GenericFamily(font.pitchAndFamily));
  const int weight = font.weight <= 0 ? 400 : std::min(font.weight, 1000);
  FcPatternAddInteger(pattern.get(), FC_WEIGHT, FcWeightFromOpenType(weight));
  FcPatternAddInteger(pattern.get(), FC_SLANT, font.italic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
  FcPatternAddBool(pattern.get(), FC_SCALABLE, FcTrue);
  if (letter != 0) {
    FcCharSet* letters = FcCharSetCreate();
    FcCharSetAddChar(letters, letter);
    FcPatternAddCharSet(pattern.get(), FC_CHARSET, letters);
    FcCharSetDestroy(letters);
  }
  return pattern;
}

bool BearsName(FcPattern* pattern, const std::string& name) {
  FcChar8* family = nullptr;
  for (int i = 0; FcPatternGetString(pattern, FC_FAMILY, i, &family) == FcResultMatch; ++i) {
    if (IsSameName(reinterpret_cast<const char*>(family), name)) return true;
  }
  return false;
}

/// Gives access to FreeType's face of a font during its lifetime. Other threads cannot draw letters
/// meanwhile, as they may use the same open file.
class LockedFace {
 public:
  explicit LockedFace(cairo_scaled_font_t* font)
      : font_(font), face_(cairo_ft_scaled_font_lock_face(font)) {}
  ~LockedFace() {
    if (face_) cairo_ft_scaled_font_unlock_face(font_);
  }
  LockedFace(const LockedFace&) = delete;
  LockedFace& operator=(const LockedFace&) = delete;

  FT_Face Get() const { return face_; }
  double UnitsPerEm() const { return face_->units_per_EM > 0 ? face_->units_per_EM : 1000; }

 private:
  std::unique_lock<std::shared_mutex> alone_{OpenFonts()};
  cairo_scaled_font_t* font_;
  FT_Face face_;
};

FontMetrics MetricsOf(const LockedFace& locked) {
  FontMetrics metrics;
  FT_FaceRec* const face = locked.Get();
  if (!face || !FT_IS_SCALABLE(face)) return metrics;
  const double em = locked.UnitsPerEm();
  metrics.ascent = face->ascender / em;
  metrics.descent = -face->descender / em;
  if (face->underline_thickness > 0) {
    metrics.underlineCenter = -face->underline_position / em;
    metrics.underlineWidth = metrics.strikeOutWidth = face->underline_thickness / em;
  }
  const auto* os2 = static_cast<const TT_OS2*>(FT_Get_Sfnt_Table(face, FT_SFNT_OS2));
  if (os2 && os2->version != 0xFFFF) {
    if (os2->usWinAscent + os2->usWinDescent > 0) {
      metrics.ascent = os2->usWinAscent / em;
      metrics.descent = os2->usWinDescent / em;
    }
    if (os2->xAvgCharWidth > 0) metrics.averageWidth = os2->xAvgCharWidth / em;
    if (os2->yStrikeoutSize > 0) {
      metrics.strikeOutCenter = -(os2->yStrikeoutPosition - os2->yStrikeoutSize / 2.0) / em;
      metrics.strikeOutWidth = os2->yStrikeoutSize / em;
    }
  }
  if (!(metrics.ascent + metrics.descent > 0.1)) return FontMetrics();
  return metrics;
}

FontGlyph GlyphOf(const LockedFace& locked, FT_UInt index) {
  FT_Fixed advance = 0;
  if (FT_Get_Advance(locked.Get(), index, FT_LOAD_NO_SCALE, &advance) != 0) return {};
  return {index, static_cast<double>(advance) / locked.UnitsPerEm(), true};
}

constexpr uint64_t kSymbolKeys = uint64_t{1} << 40, kIndexKeys = uint64_t{1} << 41;

}  // namespace

FontFace::FontFace(CairoFontFace face, bool isItself)
    : face_(std::move(face)), isItself_(isItself) {
  cairo_matrix_t size, identity;
  cairo_matrix_init_scale(&size, 64, 64);
  cairo_matrix_init_identity(&identity);
  cairo_font_options_t* options = cairo_font_options_create();
  {
    const std::shared_lock shared(OpenFonts());
    sized_.reset(cairo_scaled_font_create(face_.get(), &size, &identity, options));
  }
  cairo_font_options_destroy(options);
  metrics_ = MetricsOf(LockedFace(sized_.get()));
}

template <class Find>
FontGlyph FontFace::Look(uint64_t key, Find find) {
  const auto known = known_.find(key);
  if (known != known_.end()) return known->second;
  const LockedFace locked(sized_.get());
  const FontGlyph glyph = locked.Get() ? find(locked) : FontGlyph();
  return known_.emplace(key, glyph).first->second;
}

FontGlyph FontFace::Letter(char32_t codePoint) {
  return Look(codePoint, [&](const LockedFace& locked) {
    const FT_UInt index = FT_Get_Char_Index(locked.Get(), codePoint);
    return index == 0 ? FontGlyph() : GlyphOf(locked, index);
  });
}

FontGlyph FontFace::SymbolLetter(unsigned code) {
  return Look(kSymbolKeys | code, [&](const LockedFace& locked) {
    FT_FaceRec* const face = locked.Get();
    FT_CharMapRec* const before = face->charmap;
    if (FT_Select_Charmap(face, FT_ENCODING_MS_SYMBOL) != 0) return FontGlyph();
    FT_UInt index = FT_Get_Char_Index(face, 0xF000 + code);
    if (index == 0) index = FT_Get_Char_Index(face, code);
    if (before) FT_Set_Charmap(face, before);
    return index == 0 ? FontGlyph() : GlyphOf(locked, index);
  });
}

FontGlyph FontFace::Glyph(unsigned long index) {
  return Look(kIndexKeys | index, [&](const LockedFace& locked) {
    const bool isThere = index < static_cast<unsigned long>(locked.Get()->num_glyphs);
    return isThere ? GlyphOf(locked, static_cast<FT_UInt>(index)) : FontGlyph();
  });
}

FontFace* FontFaces::Found(const LogicalFont& font, char32_t letter) {
  const Key key{font.faceName, font.weight, font.italic, font.pitchAndFamily, letter};
  const auto known = faces_.find(key);
  if (known != faces_.end()) return known->second.get();
  // Each name costs a search: in a file with thousands of font names, the rest gets the first font.
  if (letter == 0 && faces_.size() >= kMaxFaces) return faces_.begin()->second.get();
  std::unique_ptr<FontFace>& place = faces_[key];
  const FontPattern wanted = Wanted(font, letter);
  if (!wanted) return nullptr;
  const FontPattern match = NearestFont(wanted.get());
  if (!match) return nullptr;
  CairoFontFace face(cairo_ft_font_face_create_for_pattern(match.get()));
  if (cairo_font_face_status(face.get()) != CAIRO_STATUS_SUCCESS) return nullptr;
  const bool isItself = BearsName(match.get(), WithoutVerticalMark(font.faceName));
  place = std::make_unique<FontFace>(std::move(face), isItself);
  return place.get();
}

FontFace* FontFaces::Find(const LogicalFont& font) {
  return Found(font, 0);
}

FontFace* FontFaces::FindWithLetter(const LogicalFont& font, char32_t letter) {
  // Try the fonts that helped before, as a search is slow.
  for (FontFace* face : helpers_) {
    if (face->Letter(letter).isThere) return face;
  }
  if (searches_ >= kMaxSearches || missing_.contains(letter)) return nullptr;
  ++searches_;
  FontFace* face = Found(font, letter);
  if (!face || !face->Letter(letter).isThere) {
    missing_.insert(letter);
    return nullptr;
  }
  helpers_.push_back(face);
  return face;
}

}  // namespace rasterkit::detail
