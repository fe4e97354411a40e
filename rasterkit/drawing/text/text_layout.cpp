#include <algorithm>
#include <cmath>
#include <numbers>

#include <rasterkit/drawing/text/symbol_letters.h>
#include <rasterkit/drawing/text/text_layout.h>
#include <rasterkit/drawing/text/text_letters.h>

namespace rasterkit::detail {
namespace {

constexpr uint8_t kDefaultCharset = 1, kSymbolCharset = 2;

/// Most western fonts have the letters from the space on at the glyphs from 3 on.
char32_t UsualLetterOf(char16_t glyph) {
  return glyph >= 3 && glyph < 3 + 0x5F ? char32_t{glyph} + 29 : 0;
}

struct FoundGlyph {
  FontFace* face = nullptr;
  FontGlyph glyph;
};

/// Finds glyphs: in the font, else in another font that has the letter.
class GlyphFinder {
 public:
  GlyphFinder(const LogicalFont& font, FontFaces& faces, FontFace& face)
      : font_(font),
        faces_(faces),
        face_(face),
        isKnown_(IsSymbolFont(font.faceName)),
        hasSymbols_(font.charset == kSymbolCharset ||
                    (font.charset == kDefaultCharset && isKnown_)) {}

  FoundGlyph ByIndex(char16_t index) const {
    if (face_.IsItself()) return {&face_, face_.Glyph(index)};
    const char32_t letter = UsualLetterOf(index);
    return letter == 0 ? FoundGlyph() : ByLetter(letter);
  }

  FoundGlyph ByLetter(const TextLetter& letter) const {
    const FoundGlyph found = ByLetter(letter.codePoint);
    const bool isBox = !found.glyph.isThere || found.glyph.index == 0;
    return isBox && letter.plain != letter.codePoint ? ByLetter(letter.plain) : found;
  }

  FoundGlyph ByLetter(char32_t letter) const {
    const bool isPrivate = letter >= 0xF000 && letter < 0xF100;
    const bool isSymbolCode = letter < 0x100 || isPrivate;
    if (isSymbolCode && (isPrivate || hasSymbols_)) return BySymbolCode(letter & 0xFF);
    return ByPlainLetter(letter);
  }

 private:
  FoundGlyph BySymbolCode(unsigned code) const {
    if (face_.IsItself()) {
      const FontGlyph glyph = face_.SymbolLetter(code);
      if (glyph.isThere) return {&face_, glyph};
    }
    const char32_t letter = SymbolLetter(font_.faceName, code);
    if (letter != 0) return ByPlainLetter(letter);
    // A missing-glyph box is better than a wrong letter, which changes the text.
    if (isKnown_ && code > 0x20) return {&face_, face_.Glyph(0)};
    return ByPlainLetter(char32_t{code});
  }

  FoundGlyph ByPlainLetter(char32_t letter) const {
    const FontGlyph own = face_.Letter(letter);
    if (own.isThere || letter < 0x20) return {&face_, own};
    if (FontFace* other = faces_.FindWithLetter(font_, letter)) {
      return {other, other->Letter(letter)};
    }
    // The missing-glyph box of the font.
    return {&face_, face_.Glyph(0)};
  }

  const LogicalFont& font_;
  FontFaces& faces_;
  FontFace& face_;
  const bool isKnown_, hasSymbols_;
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

/// Returns the letters of a text in visual order; glyph indexes are already in it.
std::vector<TextLetter> LettersOfRun(const TextRun& run, uint32_t align) {
  std::vector<TextLetter> letters;
  if (run.options & text_option::kGlyphIndexes) {
    letters.reserve(run.text.size());
    for (size_t i = 0; i < run.text.size(); ++i) {
      letters.push_back({run.text[i], i, 1, run.text[i]});
    }
    return letters;
  }
  if (run.options & text_option::kAsOrdered) return LettersOf(run.text);
  const bool runsLeft =
      (run.options & text_option::kRightToLeft) != 0 || (align & text_align::kRightToLeft) != 0;
  return SeenLetters(run.text, runsLeft);
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
  const bool areIndexes = (run.options & text_option::kGlyphIndexes) != 0;
  const bool arePairs = (run.options & text_option::kPairs) != 0;
  const double breakExtra = state.breaks > 0 ? state.breakExtra / state.breaks : 0;
  PointD at;
  for (const TextLetter& letter : LettersOfRun(run, state.textAlign)) {
    const FoundGlyph found =
        areIndexes ? finder.ByIndex(run.text[letter.at]) : finder.ByLetter(letter);
    if (found.glyph.isThere) line.glyphs.push_back({found.face, found.glyph.index, at});
    const bool isSpace = !areIndexes && letter.codePoint == U' ';
    const double own = found.glyph.advance * line.emHeight * line.stretch + state.textExtra +
                       (isSpace ? breakExtra : 0);
    at.x += StepOr(run.steps, letter.at, own);
    // In the upward direction of the letters.
    if (arePairs) at.y -= StepOr(run.verticalSteps, letter.at, 0);
    for (size_t rest = 1; rest < letter.units; ++rest) {
      at.x += StepOr(run.steps, letter.at + rest, 0);
    }
  }
  line.width = at.x;
  line.drop = at.y;
  return line;
}

TextPlacement PlaceText(const LogicalFont& font, const DrawingState& state, PointD origin,
                        PointD reference) {
  const PlaneAffine page = state.page.ToDevice();
  // Counter-clockwise with y downward. On a flipped page the letters stay upright, but the line
  // follows the axes of the page.
  const double sense = (page.m11 < 0) != (page.m22 < 0) ? -1 : 1;
  const double angle =
      std::isfinite(font.escapement) ? sense * font.escapement * std::numbers::pi / 1800 : 0;
  const double c = std::cos(angle), s = std::sin(angle);
  const PlaneAffine turn{c, -s, s, c, 0, 0};
  const double across = std::abs(page.m11), down = std::abs(page.m22);
  TextPlacement placement;
  if (state.graphicsMode == GraphicsMode::advanced || state.world != PlaneAffine()) {
    PlaneAffine world = state.world;
    world.dx = world.dy = 0;
    placement.letters = turn.Then(world).Then(PlaneAffine::Scaling(across, down));
    placement.places = placement.letters;
  } else {
    placement.letters = PlaneAffine::Scaling(down, down).Then(turn);
    const double along = std::hypot(across * c, down * s);
    placement.places = PlaneAffine::Scaling(along, down).Then(turn);
  }
  const PointD to = state.ToDevice()(origin);
  const PointD moved = placement.places.Direction(reference);
  placement.places.dx = to.x - moved.x;
  placement.places.dy = to.y - moved.y;
  return placement;
}

}  // namespace rasterkit::detail
