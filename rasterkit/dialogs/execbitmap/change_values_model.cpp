#include <algorithm>
#include <memory>
#include <utility>

#include <rasterkit/dialogs/execbitmap/change_values_model.h>
#include <rasterkit/dialogs/execbitmap/changed_part.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit {
namespace {

constexpr ValueControl kColors[] = {ValueControl::red, ValueControl::green, ValueControl::blue};

/// Marks the model as busy while it lives, also if an exception is thrown.
class BusyTime {
 public:
  explicit BusyTime(bool& busy) : busy_(busy), before_(busy) { busy_ = true; }
  ~BusyTime() { busy_ = before_; }
  BusyTime(const BusyTime&) = delete;
  BusyTime& operator=(const BusyTime&) = delete;

 private:
  bool& busy_;
  bool before_;
};

}  // namespace

int32_t ChangeValuesModel::Tag(ValueControl control) {
  switch (control) {
    case ValueControl::lightness:
      return kTaskBrightness;
    case ValueControl::contrast:
      return kTaskContrast;
    case ValueControl::sharpen:
      return kTaskSharpen;
    case ValueControl::red:
    case ValueControl::green:
    case ValueControl::blue:
      return kTaskColors;
    case ValueControl::grayValue:
      break;
  }
  return kTaskNone;
}

void ChangeValuesModel::Notify(const std::function<void()>& listener) const {
  if (listener) listener();
}

void ChangeValuesModel::ShowValues() {
  const BusyTime time(busy_);
  Notify(OnValues);
}

void ChangeValuesModel::Load(const TChgBmpValuesRec& values) {
  const auto take = [this](ValueControl control, int32_t value) {
    const ValueRange range = Range(control);
    values_[Index(control)] = std::clamp(value, range.least, range.greatest);
  };
  take(ValueControl::sharpen, values.Sharpen);
  take(ValueControl::contrast, values.Contrast);
  take(ValueControl::lightness, values.Brightness);
  values_[Index(ValueControl::red)] = values.Red;
  values_[Index(ValueControl::green)] = values.Green;
  values_[Index(ValueControl::blue)] = values.Blue;
  slots_ = rules_.loadedTasks;
  ShowValues();
}

void ChangeValuesModel::Store(TChgBmpValuesRec& values) const {
  values.Sharpen = Value(ValueControl::sharpen);
  values.Contrast = Value(ValueControl::contrast);
  values.Brightness = Value(ValueControl::lightness);
  values.Red = Value(ValueControl::red);
  values.Green = Value(ValueControl::green);
  values.Blue = Value(ValueControl::blue);
}

void ChangeValuesModel::SetRange(ValueControl control, ValueRange range) {
  ranges_[Index(control)] = range;
  int& value = values_[Index(control)];
  value = std::clamp(value, range.least, range.greatest);
}

void ChangeValuesModel::SetTBcolorMinMax(int least, int greatest) {
  for (const ValueControl color : kColors) SetRange(color, {least, greatest});
  if (least != 0 || greatest != 255) showsSwatch_ = false;
  ShowValues();
}

void ChangeValuesModel::SetTrackBarToFarbe(int value) {
  const ValueRange range = rules_.thresholds;
  scaleTexts_ = {std::to_string(range.least), "", std::to_string(range.greatest)};
  SetRange(ValueControl::grayValue, range);
  values_[Index(ValueControl::grayValue)] = std::clamp(value, range.least, range.greatest);
  ShowValues();
}

void ChangeValuesModel::SetOperation(int32_t operation) {
  operation_ = operation;
  if (operation == kOperationValues) SetTBcolorMinMax(-100, 100);
  if (operation == kOperationBlackAndWhite) SetTrackBarToFarbe(rules_.firstThreshold);
  ExecOperation();
}

void ChangeValuesModel::Change(ValueControl control, int value) {
  if (busy_) return;
  const ValueRange range = Range(control);
  value = std::clamp(value, range.least, range.greatest);
  if (value == Value(control)) return;
  if (control != ValueControl::grayValue) AddTag(Tag(control));
  values_[Index(control)] = value;
  ShowValues();
  ExecOperation();
}

void ChangeValuesModel::EnterAllTasks() {
  slots_ = {kTaskBrightness, kTaskContrast, kTaskSharpen, kTaskColors};
  ExecOperation();
}

void ChangeValuesModel::Reset() {
  values_.fill(0);
  values_[Index(ValueControl::grayValue)] = rules_.resetGrayValue;
  slots_ = rules_.resetTasks;
  ShowValues();
  ExecOperation();
}

void ChangeValuesModel::SetValues(const ControlValues& values) {
  if (busy_) return;
  for (size_t i = 0; i < kValueControls; ++i) {
    values_[i] = std::clamp(values[i], ranges_[i].least, ranges_[i].greatest);
  }
  ShowValues();
  ExecOperation();
}

void ChangeValuesModel::SetMonoColors(TColor dark, TColor light) {
  dark_ = dark;
  light_ = light;
  ExecOperation();
}

void ChangeValuesModel::ExecOperation() {
  if (busy_) return;
  Notify(OnRepaint);
}

std::string ChangeValuesModel::Caption() const {
  return ResourceString(operation_ == kOperationBlackAndWhite ? rsSelectGrayValue
                                                              : rsChangeBitmapValues);
}

std::string ChangeValuesModel::TextOfReset() const {
  return ResourceString(rules_.resetText);
}

TColor ChangeValuesModel::SwatchColor() const {
  const auto channel = [this](ValueControl color) { return std::clamp(Value(color), 0, 255); };
  return channel(ValueControl::red) | channel(ValueControl::green) << 8 |
         channel(ValueControl::blue) << 16;
}

void ChangeValuesModel::InitBmpPos(int boxWidth, int boxHeight) {
  position_.InitBmpPos(original_.Width(), original_.Height(), boxWidth, boxHeight);
}

ValueChange ChangeValuesModel::CurrentChange() const {
  ValueChange change;
  change.operation = operation_;
  change.taskSlots = slots_;
  change.lightness = Value(ValueControl::lightness);
  change.contrast = Value(ValueControl::contrast);
  change.sharpen = Value(ValueControl::sharpen);
  change.red = Value(ValueControl::red);
  change.green = Value(ValueControl::green);
  change.blue = Value(ValueControl::blue);
  change.grayValue = Value(ValueControl::grayValue);
  change.dark = dark_;
  change.light = light_;
  return change;
}

// The previews computed only the visible part.
void ChangeValuesModel::ApplyTo(TBitmap& bitmap) const {
  const std::unique_ptr<TBitmap> working = bitmap.Clone();
  CurrentChange().ApplyTo(*working);
  bitmap = std::move(*working);
  bitmap.SetModified(true);
}

TBitmap ChangeValuesModel::OriginalPreview(TColor ground) const {
  return DrawChangedPart(original_, position_.Visible(), ValueChange{}, ground);
}

TBitmap ChangeValuesModel::ChangedPreview(TColor ground) const {
  return ChangedPart(position_.Visible(), ground);
}

TBitmap ChangeValuesModel::ChangedPart(const TRect& part, TColor ground) const {
  return rules_.drawPart(original_, part, CurrentChange(), ground);
}

}  // namespace rasterkit
