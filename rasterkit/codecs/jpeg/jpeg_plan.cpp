#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include <rasterkit/codecs/jpeg/jpeg_plan.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {
namespace {

using Component = JpegForm::Component;

constexpr int kUsualQuality = 90;
/// Above this quality, chroma has the resolution of the picture.
constexpr int kHalvedUpTo = 90;
/// Blocks of a unit that the format interleaves.
constexpr int kMostBlocks = 10;

size_t CountOf(JpegColors colors) {
  return colors == JpegColors::gray ? 1 : colors == JpegColors::rgb ? 3 : 4;
}

/// True if the components of three colors are red, green, blue themselves, as decoders guess it.
bool IsPlainRgb(const JpegForm& form, bool hasJfif) {
  if (hasJfif) return false;
  if (form.adobeTransform) return *form.adobeTransform == 0;
  const std::vector<Component>& all = form.components;
  return all[0].id == 'R' && all[1].id == 'G' && all[2].id == 'B';
}

bool HasChroma(JpegColors colors, const JpegForm* form, bool hasJfif) {
  switch (colors) {
    case JpegColors::gray:
      return false;
    case JpegColors::rgb:
      return form == nullptr || !IsPlainRgb(*form, hasJfif);
    default:
      return form != nullptr && form->adobeTransform.value_or(0) != 0;
  }
}

/// True if the library can write such components: whole ratios, and few enough blocks.
bool CanInterleave(const std::vector<Component>& components) {
  int blocks = 0, mostH = 1, mostV = 1;
  for (const Component& component : components) {
    if (std::clamp(component.h, 1, 4) != component.h) return false;
    if (std::clamp(component.v, 1, 4) != component.v) return false;
    blocks += component.h * component.v;
    mostH = std::max(mostH, component.h);
    mostV = std::max(mostV, component.v);
  }
  const auto isWhole = [=](const Component& component) {
    return mostH % component.h == 0 && mostV % component.v == 0;
  };
  return (components.size() == 1 || blocks <= kMostBlocks) &&
         std::all_of(components.begin(), components.end(), isWhole);
}

/// The components of the source where they are those of the pixels; gray takes the first one.
std::vector<Component> SourceComponents(JpegColors colors, const JpegForm* form) {
  if (form == nullptr || form->components.empty()) return {};
  if (form->components.size() == CountOf(colors)) return form->components;
  if (colors != JpegColors::gray) return {};
  return {{form->components[0].id, 1, 1, form->components[0].table}};
}

/// Identifiers 1, 2, 3 (of plain colors their letters), chroma with a table of its own.
std::vector<Component> UsualComponents(JpegColors colors, bool hasChroma) {
  std::vector<Component> components(CountOf(colors));
  constexpr char kLetters[] = {'R', 'G', 'B'};
  for (size_t i = 0; i < components.size(); i++) {
    const bool isLetter = colors == JpegColors::rgb && !hasChroma;
    components[i].id = isLetter ? kLetters[i] : static_cast<int>(i) + 1;
    components[i].table = hasChroma && (i == 1 || i == 2) ? 1 : 0;
  }
  return components;
}

bool HasTables(const JpegForm& form, const std::vector<Component>& components) {
  return std::all_of(components.begin(), components.end(), [&](const Component& component) {
    return component.table >= 0 && component.table < 4 &&
           form.tables[static_cast<size_t>(component.table)].has_value();
  });
}

/// Luminance, and black of inks, take the whole resolution.
void SetChroma(std::vector<Component>& components, int x, int y) {
  for (size_t i = 0; i < components.size(); i++) {
    const bool isChroma = i == 1 || i == 2;
    components[i].h = isChroma ? 1 : x;
    components[i].v = isChroma ? 1 : y;
  }
}

/// Pixels across and down that share one chroma sample in a source with other components (four
/// inks); nothing without such a source. Gray has no chroma to go by.
std::optional<std::pair<int, int>> ChromaOfSource(const JpegForm* form) {
  constexpr size_t kColors = 3;
  if (form == nullptr || form->components.size() < kColors) return std::nullopt;
  int mostH = 1, mostV = 1;
  for (const Component& component : form->components) {
    mostH = std::max(mostH, component.h);
    mostV = std::max(mostV, component.v);
  }
  const Component& first = form->components[1];
  const Component& second = form->components[2];
  const int leastH = std::clamp(std::min(first.h, second.h), 1, mostH);
  const int leastV = std::clamp(std::min(first.v, second.v), 1, mostV);
  return std::pair{mostH / leastH, mostV / leastV};
}

void ChooseSampling(JpegPlan& plan, bool isOfSource, const PictureWriting& writing,
                    Changes& changes) {
  const bool isGiven = writing.chromaX > 0 && writing.chromaY > 0;
  const auto ofSource = ChromaOfSource(std::get_if<JpegForm>(&writing.form));
  if (plan.hasChroma && isGiven) {
    SetChroma(plan.components, writing.chromaX, writing.chromaY);
  } else if (plan.hasChroma && !isOfSource && ofSource) {
    SetChroma(plan.components, ofSource->first, ofSource->second);
  } else if (plan.hasChroma && !isOfSource && plan.quality <= kHalvedUpTo) {
    SetChroma(plan.components, 2, 2);
    changes.Lose(LossKind::chroma, "half of the color resolution in both directions",
                 fmt::format("a JPEG file of quality {} has it by default", plan.quality));
  }
  if (CanInterleave(plan.components)) return;
  if (isGiven && plan.hasChroma) {
    throw RangeError(fmt::format("chroma sampling of {} x {} pixels cannot be written",
                                 writing.chromaX, writing.chromaY));
  }
  for (Component& component : plan.components) component.h = component.v = 1;
  changes.Note("the sampling of the source cannot be written; no component is reduced");
}

}  // namespace

JpegPlan PlanJpeg(JpegColors colors, const PictureWriting& writing, Changes& changes) {
  const auto* form = std::get_if<JpegForm>(&writing.form);
  JpegPlan plan;
  plan.colors = colors;
  plan.components = SourceComponents(colors, form);
  const bool isOfSource = !plan.components.empty();
  const JpegForm* matching = isOfSource ? form : nullptr;
  plan.hasChroma = HasChroma(colors, matching, writing.metadata.hasJfif);
  if (!isOfSource) plan.components = UsualComponents(colors, plan.hasChroma);
  plan.quality = std::clamp(writing.quality.value_or(kUsualQuality), 1, 100);
  if (isOfSource && !writing.quality && HasTables(*form, plan.components)) {
    plan.tables = form->tables;
  } else {
    const std::vector<Component> usual = UsualComponents(colors, plan.hasChroma);
    for (size_t i = 0; i < usual.size(); i++) plan.components[i].table = usual[i].table;
  }
  if (form != nullptr) {
    plan.progressive = form->progressive;
    plan.arithmetic = form->arithmetic;
    plan.restartInterval = std::clamp(form->restartInterval, 0, 0xFFFF);
  }
  plan.hasAdobe = matching != nullptr ? form->adobeTransform.has_value() && CountOf(colors) > 1
                                      : colors == JpegColors::cmyk;
  ChooseSampling(plan, isOfSource, writing, changes);
  return plan;
}

}  // namespace rasterkit::detail
