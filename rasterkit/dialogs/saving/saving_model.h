#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <rasterkit/dialogs/saving/choose_saving.h>
#include <rasterkit/dialogs/saving/saved_result.h>
#include <rasterkit/dialogs/saving/saving_view.h>
#include <rasterkit/dialogs/saving/writable_kinds.h>
#include <rasterkit/pictures/picture.h>

namespace rasterkit {

/// What a window of saving lets the user choose.
enum class SavingScope {
  /// Folder, name, kind and settings.
  places,
  /// Kind and settings; the name comes from the desktop's dialog.
  chosenName,
  /// Settings of a file that stays as it is.
  settings
};

/// A list to choose from.
struct SavingList {
  std::vector<std::string> texts;
  int position = 0;
};

/// State and rules of the windows of saving, without a window. Events never throw, except for lack
/// of memory.
class SavingModel {
 public:
  /// The view must outlive the model. `name` is the file at the start: a name that a dialog has
  /// asked about is not asked about again.
  SavingModel(SavingView& view, const Picture& picture, const SavingStart& start, SavingScope scope,
              const std::optional<ChosenName>& name = std::nullopt);
  ~SavingModel();
  SavingModel(const SavingModel&) = delete;
  SavingModel& operator=(const SavingModel&) = delete;

  // Facts.

  SavingScope Scope() const { return scope_; }
  const std::string& Folder() const { return folder_; }
  /// As typed, without its folder.
  const std::string& Name() const { return name_; }
  /// Full name of the file that is written, with the ending that is added.
  std::string File() const;
  PictureType Type() const { return type_; }
  /// Name patterns of the kind, "*.jpg;*.jpeg".
  std::string Mask() const;
  /// Why the file cannot be written so; empty if it can.
  const std::string& Fault() const { return fault_; }
  /// What else is to be said about name and kind; may be empty.
  std::string Note() const;

  SavingList Types() const;
  SavingList Depths() const;
  SavingList Samplings() const;
  SavingList Moves() const;
  SavingList Compressions() const;
  SavingList Levels() const;
  SavingList Keeps() const;
  bool HasQuality() const { return type_ == PictureType::jpeg; }
  bool HasSampling() const;
  /// Whether the picture's compressed pixels could be moved.
  bool HasMoves() const;
  bool HasCompression() const { return type_ == PictureType::tiff; }
  bool HasLevel() const { return type_ == PictureType::png; }
  /// False: the quality of the source, or the usual one, is used.
  bool HasOwnQuality() const { return save_.quality.has_value(); }
  /// Whether there is a source that has a quality.
  bool HasSourceQuality() const { return sourceQuality_.has_value(); }
  /// 1 to 100; estimated where it is that of the source.
  int Quality() const;

  std::string FactsText() const;
  std::string LosslessText() const;
  bool IsLossless() const;
  std::string LossText() const;
  bool HasLosses() const;
  std::string LossDetails() const;
  std::string SizeText() const;
  /// 0 to 100 while the size is being computed.
  std::optional<int> Percent() const;
  bool CanSave() const { return fault_.empty(); }

  /// The rectangle of the picture that the 1:1 view shows.
  detail::PartOfPicture ViewedPart() const { return viewed_; }
  /// The pixels around it; null while there are none.
  const detail::ShownPart& Before() const { return before_; }
  const detail::ShownPart& After() const { return after_; }
  std::string AfterText() const;
  std::string PartText() const;

  /// What the user chose so far.
  SavingChoice Choice() const;

  // Events.

  /// Starts the work; called when the window is there.
  void Begin();
  /// Another folder in the list; the typed name stays.
  void SetFolder(const std::string& folder);
  /// A typed name: its ending chooses the kind.
  void TypeName(const std::string& name);
  /// Opens a typed folder; true if there is one.
  bool EnterTypedFolder();
  void ChooseType(int position);
  void ChooseDepth(int position);
  void UseOwnQuality(bool isOwn);
  void SetQuality(int quality);
  void ChooseSampling(int position);
  void ChooseMove(int position);
  void ChooseCompression(int position);
  void ChooseLevel(int position);
  void ChooseKeep(int position);
  void AskOtherName();
  /// The 1:1 view has this size in pixels; 0 if it is not shown.
  void ResizeView(int width, int height);
  /// Moves the viewed part by pixels of the picture.
  void PanView(int dx, int dy);
  /// Shows the progress of the work; called now and then while it runs.
  void Tick();
  void Confirm();
  void Cancel();

 private:
  struct Progress;

  void TakeStart(const SavingStart& start, const std::optional<ChosenName>& name);
  bool IsDepthOffered(int bits) const;
  RecipeSave Filtered() const;
  std::optional<PictureType> TypeToState() const;
  void Change();
  void Plan();
  void StartSize();
  void TakeSize(uint64_t key, std::optional<uint64_t> bytes);
  void StartPart();
  void TakeParts(uint64_t key, detail::ShownPart before, detail::ShownPart after);
  void CheckName();

  SavingView& view_;
  const Picture picture_;
  const SavingScope scope_;
  const std::vector<PictureType> types_;
  const std::optional<int> sourceQuality_;
  const std::string sourceSampling_;
  std::string folder_, name_;
  PictureType type_ = PictureType::png;
  detail::SuggestedType suggestion_;
  bool hasNoFreeName_ = false;
  detail::KnownEndings endings_;
  RecipeSave save_;
  /// The existing file that the user agreed to replace.
  std::string askedAbout_;
  std::string fault_;
  bool isBegun_ = false;

  detail::PlannedSave planned_;
  /// Rises with each change of what is written.
  uint64_t key_ = 0;
  std::optional<uint64_t> bytes_;
  std::shared_ptr<Progress> progress_;

  detail::PartOfPicture viewed_;
  detail::ShownPart before_, after_;
  uint64_t afterKey_ = 0;
  bool isPartRunning_ = false, hasPartFailed_ = false;
};

}  // namespace rasterkit
