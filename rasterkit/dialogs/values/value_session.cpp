#include <algorithm>
#include <charconv>
#include <utility>

#include <rasterkit/dialogs/values/value_session.h>
#include <rasterkit/runtime/ports.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit {
namespace {

constexpr const char* kSection = "Values";
constexpr ValueControl kColorControls[] = {ValueControl::lightness, ValueControl::contrast,
                                           ValueControl::sharpen,   ValueControl::red,
                                           ValueControl::green,     ValueControl::blue};

size_t Index(ValueControl control) {
  return static_cast<size_t>(control);
}

const char* KeyOf(bool isThreshold) {
  return isThreshold ? "LastThreshold" : "LastValues";
}

/// Whether the pixels are black and white already, in these colors.
bool IsTwoTone(const TBitmap& picture, TColor dark, TColor light) {
  if (picture.PixelFormat() != pf1bit || picture.Transparent()) return false;
  const HPALETTE palette = picture.Palette();
  if (palette.Count() != 2 || dark != clBlack || light != clWhite) return false;
  return EntryColor(palette.Entries()[0]) == clBlack && EntryColor(palette.Entries()[1]) == clWhite;
}

}  // namespace

ValueSession::ValueSession(const TBitmap& picture, const AdjustColors& start)
    : model_(picture, kEditorValueRules) {
  model_.Load(
      {start.red, start.green, start.blue, start.sharpen, start.contrast, start.brightness});
  model_.SetOperation(kOperationValues);
  Begin();
}

ValueSession::ValueSession(const TBitmap& picture, const MakeMono& start)
    : model_(picture, kEditorValueRules),
      dark_(start.dark),
      light_(start.light),
      isTwoTone_(IsTwoTone(picture, start.dark, start.light)) {
  model_.Load({});
  model_.SetOperation(kOperationBlackAndWhite);
  model_.SetMonoColors(dark_, light_);
  if (start.threshold) model_.Change(ValueControl::grayValue, *start.threshold);
  chosen_.isAutomatic = !start.threshold;
  Begin();
}

void ValueSession::Begin() {
  chosen_.numbers = model_.Values();
  past_ = {chosen_};
  const auto text = ReadSetting(kSection, KeyOf(IsThreshold()));
  if (text) last_ = ValuesOfText(*text);
  if (last_) last_ = Clamped(*last_);
}

std::vector<ValueControl> ValueSession::Controls() const {
  if (IsThreshold()) return {ValueControl::grayValue};
  return {std::begin(kColorControls), std::end(kColorControls)};
}

/// The values after a reset.
ChosenValues ValueSession::Unchanged() const {
  ChosenValues values;
  if (IsThreshold()) {
    values.numbers[Index(ValueControl::grayValue)] = model_.Rules().resetGrayValue;
  }
  return values;
}

ChosenValues ValueSession::Clamped(ChosenValues values) const {
  for (size_t i = 0; i < kValueControls; ++i) {
    const ValueRange range = model_.Range(static_cast<ValueControl>(i));
    values.numbers[i] = std::clamp(values.numbers[i], range.least, range.greatest);
  }
  return values;
}

bool ValueSession::CanReset(ValueControl control) const {
  if (control == ValueControl::grayValue && IsAutomatic()) return true;
  return Number(control) != Unchanged().numbers[Index(control)];
}

bool ValueSession::CanResetAll() const {
  const std::vector<ValueControl> controls = Controls();
  return std::any_of(controls.begin(), controls.end(),
                     [this](ValueControl control) { return CanReset(control); });
}

bool ValueSession::CanUseLast() const {
  if (!last_) return false;
  if (last_->isAutomatic != chosen_.isAutomatic) return true;
  if (chosen_.isAutomatic) return false;
  const std::vector<ValueControl> controls = Controls();
  return std::any_of(controls.begin(), controls.end(), [this](ValueControl control) {
    return last_->numbers[Index(control)] != Number(control);
  });
}

bool ValueSession::CanConfirm() const {
  if (!IsThreshold()) return CanResetAll();
  // At both ends of the scale everything becomes one color.
  const int threshold = Number(ValueControl::grayValue);
  return !isTwoTone_ || (!IsAutomatic() && (threshold == 0 || threshold == 256));
}

std::string ValueSession::Title() const {
  return ResourceString(IsThreshold() ? rsThresholdTitle : rsChangeBitmapValues);
}

AdjustColors ValueSession::Adjustment() const {
  ValueChange change = model_.CurrentChange();
  change.operation = kOperationValues;
  return std::get<AdjustColors>(StepOf(change));
}

MakeMono ValueSession::Mono() const {
  MakeMono mono{Number(ValueControl::grayValue), dark_, light_};
  if (IsAutomatic()) mono.threshold.reset();
  return mono;
}

void ValueSession::Show() {
  model_.SetValues(chosen_.numbers);
  if (IsAutomatic() && found_) model_.Change(ValueControl::grayValue, *found_);
  if (OnChange) OnChange();
}

void ValueSession::Set(const ChosenValues& values, std::optional<ValueControl> changing) {
  const bool goesOn = changing && changing == changing_ && place_ > 0;
  changing_ = changing;
  if (values == chosen_) return;
  past_.resize(place_ + 1);
  if (goesOn && values == past_[place_ - 1]) {
    // Back where the change began: there is nothing to undo.
    past_.pop_back();
    --place_;
    changing_.reset();
  } else if (goesOn) {
    past_.back() = values;
  } else {
    past_.push_back(values);
    ++place_;
  }
  chosen_ = values;
  Show();
}

void ValueSession::Change(ValueControl control, int value) {
  ChosenValues values = chosen_;
  values.numbers[Index(control)] = value;
  if (control == ValueControl::grayValue) {
    // A control that only shows the threshold that was found does not choose it.
    if (IsAutomatic() && value == Number(control)) return;
    values.isAutomatic = false;
  }
  Set(Clamped(values), control);
}

void ValueSession::Reset(ValueControl control) {
  ChosenValues values = chosen_;
  values.numbers[Index(control)] = Unchanged().numbers[Index(control)];
  if (control == ValueControl::grayValue) values.isAutomatic = false;
  Set(values, std::nullopt);
}

void ValueSession::ResetAll() {
  Set(Unchanged(), std::nullopt);
}

void ValueSession::Undo() {
  if (!CanUndo()) return;
  changing_.reset();
  chosen_ = past_[--place_];
  Show();
}

void ValueSession::Redo() {
  if (!CanRedo()) return;
  changing_.reset();
  chosen_ = past_[++place_];
  Show();
}

void ValueSession::SetAutomatic(bool isAutomatic) {
  ChosenValues values = chosen_;
  values.isAutomatic = isAutomatic;
  // The threshold that was found is where the user goes on from.
  if (!isAutomatic && IsAutomatic()) values.numbers = model_.Values();
  Set(values, std::nullopt);
}

void ValueSession::SetFoundThreshold(int threshold) {
  found_ = threshold;
  Show();
}

void ValueSession::UseLast() {
  if (last_) Set(*last_, std::nullopt);
}

void ValueSession::Remember() const {
  WriteSetting(kSection, KeyOf(IsThreshold()), TextOfValues(chosen_));
}

std::string TextOfValues(const ChosenValues& values) {
  std::string text;
  for (const int number : values.numbers) text += std::to_string(number) + ' ';
  return text + (values.isAutomatic ? '1' : '0');
}

std::optional<ChosenValues> ValuesOfText(const std::string& text) {
  ChosenValues values;
  std::array<int, kValueControls + 1> numbers{};
  const char* next = text.data();
  const char* const end = next + text.size();
  for (size_t i = 0; i < numbers.size(); ++i) {
    if (i != 0 && (next == end || *next++ != ' ')) return std::nullopt;
    const auto [stop, error] = std::from_chars(next, end, numbers[i]);
    if (error != std::errc()) return std::nullopt;
    next = stop;
  }
  const int isAutomatic = numbers.back();
  if (next != end || isAutomatic < 0 || isAutomatic > 1) return std::nullopt;
  std::copy_n(numbers.begin(), kValueControls, values.numbers.begin());
  values.isAutomatic = isAutomatic == 1;
  return values;
}

}  // namespace rasterkit
