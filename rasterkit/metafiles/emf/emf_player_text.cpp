#include <algorithm>

#include <rasterkit/metafiles/emf/emf_fields.h>
#include <rasterkit/metafiles/emf/emf_player.h>
#include <rasterkit/metafiles/records/ansi_text.h>

namespace rasterkit::detail {
namespace {

/// Options of the small text record: no box follows; letters are bytes.
constexpr uint32_t kNoBox = 0x100, kByteLetters = 0x200;
constexpr size_t kScaleBytes = 8;

/// Sets the graphics mode of a text record; all other records use the advanced mode.
class TextMode {
 public:
  TextMode(DeviceContext& context, GraphicsMode mode) : context_(context) {
    context_.SetGraphicsMode(mode);
  }
  ~TextMode() { context_.SetGraphicsMode(GraphicsMode::advanced); }
  TextMode(const TextMode&) = delete;
  TextMode& operator=(const TextMode&) = delete;

 private:
  DeviceContext& context_;
};

std::u16string Words(std::span<const uint8_t> bytes) {
  MetafileBytes fields(bytes);
  std::u16string text(bytes.size() / 2, u'\0');
  for (char16_t& unit : text) unit = static_cast<char16_t>(fields.Word());
  return text;
}

/// Advances of letters; with the option `pairs`, horizontal and vertical ones alternate.
struct Steps {
  std::vector<double> across, down;
};

Steps ReadSteps(const EmfRecord& record, uint32_t offset, uint32_t count, bool arePairs) {
  Steps steps;
  const uint64_t bytes = uint64_t{count} * (arePairs ? 8 : 4);
  // Without advances in the record, the font's own are used.
  if (offset == 0 || offset > record.bytes.size() || bytes > record.bytes.size() - offset) {
    return steps;
  }
  MetafileBytes fields(record.Part(offset, bytes));
  for (uint32_t i = 0; i < count; ++i) {
    steps.across.push_back(fields.Int());
    if (arePairs) steps.down.push_back(fields.Int());
  }
  return steps;
}

}  // namespace

EmfPlayer::TextPlace EmfPlayer::ReadTextPlace(MetafileBytes& fields) {
  TextPlace place;
  place.origin = ReadPoint(fields);
  place.count = fields.Long();
  place.offset = fields.Long();
  place.options = fields.Long();
  place.box = ReadRect(fields);
  place.stepsOffset = fields.Long();
  return place;
}

void EmfPlayer::ShowText(const TextPlace& place, uint32_t mode, const Letters& letters) {
  TextRun run;
  run.origin = place.origin;
  run.options = place.options;
  run.box = place.box;
  run.text = letters.text;
  run.steps = letters.steps;
  run.verticalSteps = letters.verticalSteps;
  const TextMode textMode(context_, static_cast<GraphicsMode>(mode));
  context_.ExtTextOut(run);
}

void EmfPlayer::DrawText(const EmfRecord& record, const TextPlace& place, LetterSize size,
                         uint32_t mode) {
  const uint64_t bytes = uint64_t{place.count} * (size == LetterSize::words ? 2 : 1);
  const std::span<const uint8_t> stored =
      place.count == 0 ? std::span<const uint8_t>() : record.Part(place.offset, bytes);
  const bool arePairs = (place.options & text_option::kPairs) != 0;
  Steps steps = ReadSteps(record, place.stepsOffset, place.count, arePairs);
  std::u16string text;
  if (size == LetterSize::words) {
    text = Words(stored);
  } else {
    AnsiText decoded = DecodeAnsiText(stored, steps.across, context_.Font().charset);
    text = std::move(decoded.text);
    steps.across = std::move(decoded.steps);
  }
  ShowText(place, mode, {text, steps.across, steps.down});
}

void EmfPlayer::SmallText(const EmfRecord& record) {
  MetafileBytes fields = record.Fields();
  TextPlace place;
  place.origin = ReadPoint(fields);
  place.count = fields.Long();
  place.options = fields.Long();
  const uint32_t mode = fields.Long();
  fields.Skip(kScaleBytes);
  if ((place.options & kNoBox) == 0) {
    place.box = ReadRect(fields);
  } else {
    place.options &= ~(text_option::kOpaque | text_option::kClipped);
  }
  place.offset = static_cast<uint32_t>(fields.Position());
  if ((place.options & kByteLetters) == 0) {
    DrawText(record, place, LetterSize::words, mode);
    return;
  }
  // The bytes are the low bytes of UTF-16 units, regardless of the charset of the font.
  const auto bytes = fields.Take(fields.Count(place.count, 1));
  const std::u16string text(bytes.begin(), bytes.end());
  ShowText(place, mode, {text, {}, {}});
}

void EmfPlayer::ManyTexts(const EmfRecord& record, LetterSize size) {
  constexpr size_t kPlaceBytes = 40;
  MetafileBytes fields = record.Fields();
  fields.Skip(kEmfBoundsBytes);
  const uint32_t mode = fields.Long();
  fields.Skip(kScaleBytes);
  const uint32_t stated = fields.Long();
  for (size_t i = fields.Count(stated, kPlaceBytes); i > 0; --i) {
    DrawText(record, ReadTextPlace(fields), size, mode);
  }
}

bool EmfPlayer::PlayText(const EmfRecord& record) {
  switch (record.type) {
    case EmfType::extTextOutA:
    case EmfType::extTextOutW: {
      MetafileBytes fields = record.Fields();
      fields.Skip(kEmfBoundsBytes);
      const uint32_t mode = fields.Long();
      fields.Skip(kScaleBytes);
      const bool areBytes = record.type == EmfType::extTextOutA;
      DrawText(record, ReadTextPlace(fields), areBytes ? LetterSize::bytes : LetterSize::words,
               mode);
      return true;
    }
    case EmfType::smallTextOut:
      SmallText(record);
      return true;
    case EmfType::polyTextOutA:
      ManyTexts(record, LetterSize::bytes);
      return true;
    case EmfType::polyTextOutW:
      ManyTexts(record, LetterSize::words);
      return true;
    default:
      return false;
  }
}

}  // namespace rasterkit::detail
