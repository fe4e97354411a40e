#include <algorithm>
#include <utility>

#include <rasterkit/codecs/codec_table.h>
#include <rasterkit/dialogs/saving/result_words.h>
#include <rasterkit/dialogs/saving/saving_folders.h>
#include <rasterkit/dialogs/saving/saving_model.h>
#include <rasterkit/dialogs/saving/target_faults.h>
#include <rasterkit/strings/format_text.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit {

using detail::FullName;
using detail::IsWritable;
using detail::TypeOfName;

namespace {

std::string Filled(std::string_view key, std::initializer_list<std::string> values) {
  return FormatText(ResourceString(key), {values.begin(), values.size()});
}

bool IsOnlyEnding(const std::string& name) {
  return name.starts_with('.') && FindCodecOfExtension(name) != nullptr;
}

}  // namespace

SavingModel::SavingModel(SavingView& view, const Picture& picture, const SavingStart& start,
                         SavingScope scope, const std::optional<ChosenName>& name)
    : view_(view),
      picture_(picture),
      scope_(scope),
      types_(detail::WritableTypes(picture.SourceType())),
      sourceQuality_(detail::QualityOf(picture.SourceForm())),
      sourceSampling_(detail::SamplingOf(picture.SourceForm())),
      save_(start.save) {
  TakeStart(start, name);
  Plan();
}

SavingModel::~SavingModel() = default;

void SavingModel::TakeStart(const SavingStart& start, const std::optional<ChosenName>& name) {
  const std::string file = name ? name->file : start.file;
  suggestion_ = detail::SuggestType(picture_, file);
  const bool isStated = save_.type && IsWritable(*save_.type);
  const bool isNamed = IsWritable(TypeOfName(file));
  type_ = suggestion_.type;
  // A name from a dialog says what its user chose.
  if (isStated && !(isNamed && scope_ != SavingScope::settings)) type_ = *save_.type;
  if (isStated) suggestion_.reason = detail::SuggestionReason::asIs;
  // The other dialog could not say why its name has another ending than the picture.
  if (name && !isStated) suggestion_ = detail::SuggestType(picture_, start.file);
  folder_ = detail::FirstFolder(file);
  name_ = detail::NameIn(file);
  if (isNamed) endings_[type_] = detail::EndingOf(file);
  if (name && name->wasAsked) askedAbout_ = name->file;
  if (scope_ == SavingScope::settings || name_.empty()) return;
  const bool isOther = TypeOfName(name_) != PictureType::unknown && TypeOfName(name_) != type_;
  if (!isOther || name) return;
  // The user has not named this file: it takes the place of no other one.
  const std::string free =
      detail::FreeName(FullName(detail::NameForType(name_, type_, endings_), folder_));
  hasNoFreeName_ = free.empty();
  name_ = detail::NameIn(free);
}

std::string SavingModel::File() const {
  const std::string typed = FullName(name_, folder_);
  const PictureType named = TypeOfName(typed);
  const bool isRefused = named != PictureType::unknown && !IsWritable(named);
  if (scope_ == SavingScope::settings || name_.empty() || isRefused) return typed;
  return detail::NameForType(typed, type_, endings_);
}

std::string SavingModel::Mask() const {
  std::string mask = detail::PatternsOf(type_);
  std::replace(mask.begin(), mask.end(), ' ', ';');
  return mask;
}

std::string SavingModel::Note() const {
  using enum detail::SuggestionReason;
  const bool isSuggested = suggestion_.reason != asIs && type_ == suggestion_.type;
  if (isSuggested) {
    const std::string_view key = suggestion_.reason == depth      ? rsSavingNotWrittenDepth
                                 : suggestion_.reason == position ? rsSavingNotWrittenPlace
                                                                  : rsSavingNotWritten;
    return Filled(
        key, {detail::ShortTypeName(suggestion_.refused), detail::ShortTypeName(suggestion_.type)});
  }
  if (name_.ends_with(' ')) return ResourceString(rsSavingNameEndsWithSpace);
  return {};
}

/// The type where the name or the source does not say it.
std::optional<PictureType> SavingModel::TypeToState() const {
  const bool isSaid = TypeOfName(File()) == type_ && picture_.SourceType() == type_;
  return isSaid ? std::nullopt : std::optional(type_);
}

/// Without the settings of other kinds.
RecipeSave SavingModel::Filtered() const {
  RecipeSave save;
  save.type = TypeToState();
  if (save_.bits && (IsDepthOffered(*save_.bits) || !HasQuality())) save.bits = save_.bits;
  save.metadata = save_.metadata;
  save.background = save_.background;
  if (HasCompression()) save.compression = save_.compression;
  if (HasLevel()) save.pngLevel = save_.pngLevel;
  if (!HasQuality()) return save;
  save.quality = save_.quality;
  save.chromaX = save_.chromaX;
  save.chromaY = save_.chromaY;
  save.lossless = save_.lossless;
  return save;
}

SavingChoice SavingModel::Choice() const {
  const std::string file = File();
  return {file, Filtered(), file == askedAbout_ && detail::IsExisting(file)};
}

void SavingModel::CheckName() {
  fault_.clear();
  if (scope_ != SavingScope::settings) {
    const std::string file = File();
    const PictureType named = TypeOfName(file);
    if (name_.empty()) {
      fault_ = hasNoFreeName_ ? Filled(rsSavingFaultNoFreeName, {folder_})
                              : ResourceString(rsSavingFaultNoName);
    } else if (IsOnlyEnding(name_)) {
      fault_ = Filled(rsSaveNameIsExtension, {name_});
    } else if (named != PictureType::unknown && !IsWritable(named)) {
      fault_ = Filled(rsSavingFaultKind, {detail::ShortTypeName(named)});
    } else {
      fault_ = detail::FaultOfTarget(file);
    }
  }
}

void SavingModel::Plan() {
  CheckName();
  planned_ = detail::PlanOfSave(picture_, Filtered(), type_, fault_.empty() ? File() : "");
  if (fault_.empty() && !planned_.error.empty()) {
    fault_ = Filled(rsSavingFaultPlan, {planned_.error});
  }
}

/// After a change of what is written.
void SavingModel::Change() {
  ++key_;
  Plan();
  if (isBegun_) {
    StartSize();
    StartPart();
  }
  view_.ShowState();
}

void SavingModel::Begin() {
  if (isBegun_) return;
  isBegun_ = true;
  StartSize();
  StartPart();
  view_.ShowState();
}

void SavingModel::SetFolder(const std::string& folder) {
  if (folder.empty() || folder == folder_) return;
  folder_ = FullName(folder, folder_);
  Plan();
  view_.ShowState();
}

void SavingModel::TypeName(const std::string& name) {
  if (name == name_) return;
  name_ = name;
  hasNoFreeName_ = false;
  const PictureType named = TypeOfName(name);
  const bool isOther = IsWritable(named) && named != type_;
  if (IsWritable(named)) endings_[named] = detail::EndingOf(name);
  if (isOther) {
    type_ = named;
    return Change();
  }
  Plan();
  view_.ShowState();
}

bool SavingModel::EnterTypedFolder() {
  if (scope_ != SavingScope::places || name_.empty()) return false;
  const std::string typed = FullName(name_, folder_);
  if (!detail::IsExistingFolder(typed)) return false;
  name_.clear();
  folder_ = typed.size() > 1 && typed.ends_with('/') ? typed.substr(0, typed.size() - 1) : typed;
  Plan();
  view_.ShowState();
  return true;
}

void SavingModel::ChooseType(int position) {
  const auto at = static_cast<size_t>(position);
  if (scope_ == SavingScope::settings || at >= types_.size() || types_[at] == type_) return;
  type_ = types_[at];
  // The ending of a kind that cannot be written goes, too.
  if (!name_.empty() && TypeOfName(name_) != PictureType::unknown) {
    name_ = detail::NameForType(name_, type_, endings_);
  }
  Change();
}

void SavingModel::AskOtherName() {
  const auto chosen = view_.AskName(File());
  if (!chosen) return;
  folder_ = detail::FolderOf(chosen->file);
  askedAbout_ = chosen->wasAsked ? chosen->file : "";
  const std::string name = detail::NameIn(chosen->file);
  if (name != name_) return TypeName(name);
  Plan();
  view_.ShowState();
}

void SavingModel::Confirm() {
  if (EnterTypedFolder()) return;
  // The disk may have changed.
  Plan();
  if (!CanSave()) return view_.ShowState();
  const std::string file = File();
  if (scope_ != SavingScope::settings) {
    if (detail::IsExisting(file) && file != askedAbout_) {
      if (!view_.AskReplace(Filled(rsReplaceFile, {detail::ShortenedName(file)}))) return;
      askedAbout_ = file;
    }
    detail::RememberFolder(detail::FolderOf(file));
  }
  view_.Close(true);
}

void SavingModel::Cancel() {
  view_.Close(false);
}

}  // namespace rasterkit
