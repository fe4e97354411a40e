#include <algorithm>
#include <cmath>
#include <numbers>

#include <rasterkit/host/metafiles/symbol_letters.h>
#include <rasterkit/host/metafiles/text_layout.h>

namespace rasterkit::detail {
namespace {

constexpr uint8_t kSymbolCharset = 2;

/// A unit of a text as a letter: what it stands for and how many units that takes.
struct Letter {
  char32_t codePoint = 0;
  size_t units = 1;
};

Letter LetterAt(std::u16string_view text, size_t at) {
  const char16_t unit = text[at];
  const bool isHigh = unit >= 0xD800 && unit < 0xDC00;
  if (isHigh && at + 1 < text.size() && text[at + 1] >= 0xDC00 && text[at + 1] < 0xE000) {
    return {0x10000 + ((char32_t{unit} - 0xD800) << 10) + (char32_t{text[at + 1]} - 0xDC00), 2};
  }
  return {unit, 1};
}

/// In western fonts of the usual making the letters from the space on have the glyphs from 3 on.
char32_t UsualLetterOf(char16_t glyph) {
  return glyph >= 3 && glyph < 3 + 0x5F ? char32_t{glyph} + 29 : 0;
}

struct FoundGlyph {
  FontFace* face = nullptr;
  FontGlyph glyph;
};

/// Finds the pictures of letters: in the font, else in another one that has them.
class GlyphFinder {
 public:
  GlyphFinder(const LogicalFont& font, FontFaces& faces, FontFace& face)
      : font_(font), faces_(faces), face_(face) {}

  FoundGlyph ByIndex(char16_t index) const {
    if (face_.IsItself()) return {&face_, face_.Glyph(index)};
    const char32_t letter = UsualLetterOf(index);
    return letter == 0 ? FoundGlyph() : ByLetter(letter);
  }

  FoundGlyph ByLetter(char32_t letter) const {
    const bool isSymbolCode = letter < 0x100 || (letter >= 0xF000 && letter < 0xF100);
    if (isSymbolCode && (font_.charset == kSymbolCharset || letter >= 0xF000)) {
      return BySymbolCode(letter & 0xFF);
    }
    const FontGlyph own = face_.Letter(letter);
    if (own.isThere || letter < 0x20) return {&face_, own};
    if (FontFace* other = faces_.FindWithLetter(font_, letter)) {
      return {other, other->Letter(letter)};
    }
    // The box that fonts have for what they have not.
    return {&face_, face_.Glyph(0)};
  }

 private:
  FoundGlyph BySymbolCode(unsigned code) const {
    if (face_.IsItself()) {
      const FontGlyph glyph = face_.SymbolLetter(code);
      if (glyph.isThere) return {&face_, glyph};
    }
    const char32_t letter = detail::SymbolLetter(font_.faceName, code);
    return ByPlainLetter(letter != 0 ? letter : char32_t{code});
  }

  FoundGlyph ByPlainLetter(char32_t letter) const {
    const FontGlyph own = face_.Letter(letter);
    if (own.isThere) return {&face_, own};
    if (FontFace* other = faces_.FindWithLetter(font_, letter)) {
      return {other, other->Letter(letter)};
    }
    return {&face_, own};
  }

  const LogicalFont& font_;
  FontFaces& faces_;
  FontFace& face_;
};

void TakeHeights(TextLine& line, const LogicalFont& font, double usualEmHeight) {
  const FontMetrics& metrics = line.face->Metrics();
  const double height = std::isfinite(font.height) ? font.height : 0;
  line.emHeight = height < 0   ? -height
                  : height > 0 ? height / (metrics.ascent + metrics.descent)
                               : usualEmHeight;
  line.ascent = metrics.ascent * line.emHeight;
  line.descent = metrics.descent * line.emHeight;
  const double width = std::isfinite(font.width) ? std::abs(font.width) : 0;
  if (width > 0 && line.emHeight > 0) {
    line.stretch = width / (metrics.averageWidth * line.emHeight);
  }
}

double StepOr(std::span<const double> steps, size_t at, double otherwise) {
  return at < steps.size() && std::isfinite(steps[at]) ? steps[at] : otherwise;
}

}  // namespace

TextLine LayOutText(const TextRun& run, const LogicalFont& font, const DrawingState& state,
                    FontFaces& faces, double usualEmHeight) {
  TextLine line;
  line.face = faces.Find(font);
  if (!line.face) return line;
  TakeHeights(line, font, usualEmHeight);
  const GlyphFinder finder(font, faces, *line.face);
  const bool areIndexes = (run.options & text_option::glyphIndexes) != 0;
  const bool arePairs = (run.options & text_option::pairs) != 0;
  const double breakExtra = state.breaks > 0 ? state.breakExtra / state.breaks : 0;
  PointD at;
  for (size_t i = 0; i < run.text.size();) {
    const Letter letter = areIndexes ? Letter{run.text[i]} : LetterAt(run.text, i);
    const FoundGlyph found =
        areIndexes ? finder.ByIndex(run.text[i]) : finder.ByLetter(letter.codePoint);
    if (found.glyph.isThere) line.glyphs.push_back({found.face, found.glyph.index, at});
    const double own = found.glyph.advance * line.emHeight * line.stretch + state.textExtra +
                       (letter.codePoint == U' ' ? breakExtra : 0);
    at.x += StepOr(run.steps, i, own);
    if (arePairs) at.y += StepOr(run.verticalSteps, i, 0);
    for (size_t rest = 1; rest < letter.units; ++rest) at.x += StepOr(run.steps, i + rest, 0);
    i += letter.units;
  }
  line.width = at.x;
  line.drop = at.y;
  return line;
}

TextPlacement PlaceText(const LogicalFont& font, const DrawingState& state, PointD origin,
                        PointD reference) {
  const Affine page = state.page.ToDevice();
  // Against the clock where y points downward; letters stand upright on a page that is turned over,
  // but their line follows the page's axes.
  const double sense = (page.m11 < 0) != (page.m22 < 0) ? -1 : 1;
  const double angle =
      std::isfinite(font.escapement) ? sense * font.escapement * std::numbers::pi / 1800 : 0;
  const double c = std::cos(angle), s = std::sin(angle);
  const Affine turn{c, -s, s, c, 0, 0};
  const double across = std::abs(page.m11), down = std::abs(page.m22);
  TextPlacement placement;
  if (state.graphicsMode == GraphicsMode::advanced || state.world != Affine()) {
    Affine world = state.world;
    world.dx = world.dy = 0;
    placement.letters = turn.Then(world).Then(Affine::Scaling(across, down));
    placement.places = placement.letters;
  } else {
    placement.letters = Affine::Scaling(down, down).Then(turn);
    const double along = std::hypot(across * c, down * s);
    placement.places = Affine::Scaling(along, down).Then(turn);
  }
  const PointD to = state.ToDevice()(origin);
  const PointD moved = placement.places.Direction(reference);
  placement.places.dx = to.x - moved.x;
  placement.places.dy = to.y - moved.y;
  return placement;
}

}  // namespace rasterkit::detail
