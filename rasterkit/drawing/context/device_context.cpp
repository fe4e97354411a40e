#include <rasterkit/drawing/context/device_context.h>
#include <rasterkit/drawing/context/device_context_parts.h>

namespace rasterkit {

using namespace detail;

namespace {

/// The first and last ten colors of the default palette of indexed bitmaps.
HPALETTE TwentyColors() {
  constexpr size_t kAtEachEnd = 10;
  const HPALETTE all = DefaultPalette(pf8bit);
  const auto entries = all.Entries();
  const auto first = entries.first(kAtEachEnd), last = entries.last(kAtEachEnd);
  std::vector<tagPALETTEENTRY> twenty(first.begin(), first.end());
  twenty.insert(twenty.end(), last.begin(), last.end());
  return HPALETTE(twenty);
}

}  // namespace

DeviceContext::DeviceContext(Raster& target, const PixelRect& clip, const ReferenceDevice& device,
                             const PlaneAffine& toTarget)
    : parts_(std::make_unique<Parts>(target, clip, device, toTarget)) {}

DeviceContext::~DeviceContext() = default;

void DeviceContext::ChargeWork(double cost) {
  parts_->work.Charge(cost);
}

void DeviceContext::RaiseWorkBudget(double more) {
  parts_->work.Raise(more);
}

std::optional<RectD> DeviceContext::DrawnBounds() const {
  const auto back = parts_->deviceToTarget.Inverse();
  if (!parts_->drawn || !back) return std::nullopt;
  return MappedBounds(*parts_->drawn, *back);
}

void DeviceContext::SaveDC() {
  // More states are only counted: each takes memory, and a record of eight bytes saves one.
  if (parts_->saved.size() >= kMostSavedStates) {
    ++parts_->savedBeyond;
  } else {
    parts_->saved.push_back(parts_->state);
  }
}

bool DeviceContext::RestoreDC(int32_t number) {
  auto& saved = parts_->saved;
  const auto count = static_cast<int64_t>(saved.size() + parts_->savedBeyond);
  const int64_t wanted = number < 0 ? count + number : int64_t{number} - 1;
  if (wanted < 0 || wanted >= count) return false;
  if (wanted >= static_cast<int64_t>(saved.size())) {
    parts_->savedBeyond = static_cast<uint64_t>(wanted) - saved.size();
    return true;
  }
  parts_->savedBeyond = 0;
  parts_->state = std::move(saved[static_cast<size_t>(wanted)]);
  saved.erase(saved.begin() + wanted, saved.end());
  parts_->StateChanged();
  return true;
}

void DeviceContext::SelectPen(std::shared_ptr<const LogicalPen> pen) {
  if (pen == parts_->state.pen) return;
  parts_->state.pen = std::move(pen);
  parts_->PenChanged();
}

void DeviceContext::SelectBrush(std::shared_ptr<const LogicalBrush> brush) {
  if (brush == parts_->state.brush) return;
  parts_->state.brush = std::move(brush);
  parts_->BrushChanged();
}

void DeviceContext::SelectFont(std::shared_ptr<const LogicalFont> font) {
  parts_->state.font = std::move(font);
}

const LogicalFont& DeviceContext::Font() const {
  static const LogicalFont usual;
  return parts_->state.font ? *parts_->state.font : usual;
}

void DeviceContext::SelectPalette(std::shared_ptr<HPALETTE> palette) {
  parts_->state.palette = std::move(palette);
}

const std::shared_ptr<HPALETTE>& DeviceContext::SelectedPalette() const {
  return parts_->state.palette;
}

const HPALETTE& DeviceContext::Palette() const {
  static const HPALETTE usual = TwentyColors();
  return parts_->state.palette ? *parts_->state.palette : usual;
}

PointD DeviceContext::DevicePoint(PointD logical) const {
  return parts_->state.ToDevice()(Finite(logical));
}

PointD DeviceContext::CurrentPosition() const {
  return parts_->state.position;
}

}  // namespace rasterkit
