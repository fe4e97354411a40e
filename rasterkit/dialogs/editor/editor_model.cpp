#include <array>
#include <cmath>
#include <utility>

#include <fmt/core.h>

#include <rasterkit/dialogs/editor/editor_model.h>
#include <rasterkit/dialogs/editor/editor_state.h>
#include <rasterkit/dialogs/editor/mebibyte_text.h>
#include <rasterkit/dialogs/saving/result_words.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/strings/format_text.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit {
namespace {

constexpr int kRightAngle = 90;

/// Quarter turns counter-clockwise, if it is such a turn.
std::optional<int> QuartersOf(double degrees) {
  const double quarters = degrees / kRightAngle;
  if (!std::isfinite(quarters) || quarters != std::round(quarters)) return std::nullopt;
  return static_cast<int>(std::fmod(std::fmod(quarters, 4) + 4, 4));
}

std::string DpiText(const Resolution& resolution) {
  std::string text = fmt::format("{:.6g}", resolution.x);
  if (resolution.x != resolution.y) text += fmt::format(" x {:.6g}", resolution.y);
  for (size_t point = text.find('.'); point != std::string::npos; point = text.find('.', point)) {
    text.replace(point, 1, DecimalMark());
    point += DecimalMark().size();
  }
  return text;
}

}  // namespace

EditorModel::State::State(EditorView& theView, const EditPictureOptions& theOptions)
    : view(theView),
      options(theOptions),
      journal(theOptions.keepsJournal ? JournalFolder() : std::string()) {}

EditorModel::EditorModel(EditorView& view, const EditPictureOptions& options)
    : state_(std::make_shared<State>(view, options)) {}

EditorModel::~EditorModel() {
  state_->isClosed = true;
}

void EditorModel::Open(const std::string& file, int page) {
  state_->Open(file, page);
}

// Facts.

bool EditorModel::HasPicture() const {
  return state_->HasPicture();
}
const Picture& EditorModel::Source() const {
  return state_->picture.value().source.picture.value();
}
const Picture& EditorModel::Result() const {
  return state_->picture.value().result.value();
}
const TBitmap* EditorModel::Pixels() const {
  return state_->picture ? state_->picture->shown.get() : nullptr;
}
const std::vector<RecipeStep>& EditorModel::Steps() const {
  static const std::vector<RecipeStep> kNone;
  return state_->picture ? state_->picture->steps.Steps() : kNone;
}
size_t EditorModel::Place() const {
  return state_->picture ? state_->picture->steps.Place() : 0;
}
bool EditorModel::CanUndo() const {
  return HasPicture() && !IsWorking() && state_->picture->steps.CanUndo();
}
bool EditorModel::CanRedo() const {
  return HasPicture() && !IsWorking() && state_->picture->steps.CanRedo();
}
bool EditorModel::CanConfirm() const {
  return !IsWorking() && state_->WouldWriteNew();
}
bool EditorModel::HasUnsavedWork() const {
  return state_->HasUnsavedWork();
}
bool EditorModel::IsWorking() const {
  return state_->isWorking;
}
const std::string& EditorModel::TargetFile() const {
  return state_->target.file;
}
const std::string& EditorModel::TargetNote() const {
  return state_->target.note;
}
const RecipeSave& EditorModel::Saving() const {
  return state_->saving;
}
int EditorModel::Pages() const {
  return state_->picture ? state_->picture->source.pages : 0;
}
int EditorModel::Page() const {
  return state_->picture ? state_->picture->source.request.page : 1;
}
std::optional<double> EditorModel::DrawingDpi() const {
  return state_->picture ? state_->picture->source.dpi : std::nullopt;
}

std::string EditorModel::Facts() const {
  if (!HasPicture()) return "";
  const Picture& picture = Result();
  const TBitmap& pixels = *state_->picture->shown;
  const std::string name = ExtractFileName(state_->picture->source.request.file);
  const std::string width = std::to_string(picture.Width());
  const std::string height = std::to_string(picture.Height());
  const std::string bits = std::to_string(picture.Layout().BitsPerPixel());
  const std::string memory = MebibyteText(BytesOf(pixels));
  const Resolution& resolution = picture.GetMetadata().resolution;
  if (!resolution.IsKnown()) {
    return FormatText(ResourceString(rsFacts), std::array{name, width, height, bits, memory});
  }
  return FormatText(ResourceString(rsFactsDpi),
                    std::array{name, width, height, bits, DpiText(resolution), memory});
}

std::string EditorModel::SavingFacts() const {
  if (!HasPicture() || !state_->plan) return "";
  const SavingPlan& plan = *state_->plan;
  if (!plan.error.empty()) return plan.error;
  return detail::LosslessWords(Result(), state_->saving, plan.report);
}

std::string EditorModel::Losses() const {
  if (!HasPicture() || !state_->plan || state_->plan->report.losses.empty()) return "";
  return detail::LossWords(state_->plan->report);
}

std::string EditorModel::LossDetails() const {
  return Losses().empty() ? "" : detail::LossDetails(state_->plan->report);
}

std::string EditorModel::Title() const {
  if (!state_->picture) return "";
  const std::string name = ExtractFileName(state_->picture->source.request.file);
  if (Pages() < 2) return name;
  return FormatText(ResourceString(rsTitlePage),
                    std::array{name, std::to_string(Page()), std::to_string(Pages())});
}

std::vector<std::string> EditorModel::StepNames() const {
  return state_->picture ? state_->picture->stepNames : std::vector<std::string>();
}

Recipe EditorModel::ToRecipe() const {
  return state_->ToRecipe();
}
const std::optional<EditedPicture>& EditorModel::Written() const {
  return state_->written;
}

// Events.

void EditorModel::Add(const RecipeStep& step) {
  state_->Handle([&] { state_->AddStep(step); });
}
void EditorModel::TurnLeft() {
  Add(TurnStep{1});
}
void EditorModel::TurnRight() {
  Add(TurnStep{3});
}
void EditorModel::Mirror() {
  Add(MirrorStep{MirrorAxis::leftRight});
}
void EditorModel::Flip() {
  Add(MirrorStep{MirrorAxis::topBottom});
}

void EditorModel::Rotate(double degrees) {
  const std::optional<int> quarters = QuartersOf(degrees);
  if (!quarters) return Add(RotateStep{degrees, {}});
  if (*quarters != 0) Add(TurnStep{*quarters});
}

void EditorModel::Gray() {
  Add(ChangeStep{MakeGray{}});
}
void EditorModel::Colors256() {
  Add(ChangeStep{SetBits{8}});
}

void EditorModel::Mono() {
  state_->AskForStep([this] {
    const auto answer = state_->view.AskThreshold(*state_->picture->shown);
    if (answer) state_->AddStep(ChangeStep{*answer});
  });
}
void EditorModel::Crop() {
  state_->AskForStep([this] {
    const auto answer = state_->view.AskCrop(*state_->picture->shown, Result());
    if (answer) state_->AddStep(*answer);
  });
}
void EditorModel::Values() {
  state_->AskForStep([this] {
    const auto answer = state_->view.AskValues(*state_->picture->shown);
    if (answer) state_->AddStep(ChangeStep{*answer});
  });
}
void EditorModel::Size() {
  state_->AskForStep([this] {
    const auto answer = state_->view.AskSize(Result());
    if (answer) state_->AddStep(*answer);
  });
}

void EditorModel::Undo() {
  state_->Handle([this] { state_->GoBack(); });
}
void EditorModel::Redo() {
  state_->Handle([this] { state_->GoForward(); });
}
void EditorModel::SetDrawingDpi(double dpi) {
  state_->Handle([&] { state_->Redraw(dpi); });
}
void EditorModel::ShowPage(int page) {
  state_->Handle([&] { state_->ShowPage(page); });
}

void EditorModel::OpenOther() {
  state_->Handle([this] {
    if (!state_->options.mayOpenOtherFiles) return;
    state_->Leave([state = state_.get()] {
      const std::string file = state->view.AskFileToOpen(ExtractFilePath(state->pagesFile));
      if (!file.empty()) state->OpenByJob(state->RequestFor(file, 1));
    });
  });
}

void EditorModel::OpenDropped(const std::string& file) {
  state_->Handle([&] {
    if (!state_->options.mayOpenOtherFiles) return;
    state_->Leave([state = state_.get(), file] { state->OpenByJob(state->RequestFor(file, 1)); });
  });
}

void EditorModel::SaveAs() {
  state_->Handle([this] {
    if (HasPicture()) state_->SaveAs({});
  });
}
void EditorModel::Settings() {
  state_->Handle([this] {
    if (HasPicture()) state_->AskSettings();
  });
}
void EditorModel::Confirm() {
  state_->Handle([this] {
    if (state_->WouldWriteNew()) state_->Save([state = state_.get()] { state->Close(); });
  });
}

bool EditorModel::CancelOrClose() {
  if (state_->isClosed) return true;
  if (state_->isWorking) {
    state_->view.CancelJob();
    return false;
  }
  state_->Handle([this] { state_->Leave([state = state_.get()] { state->Close(); }); });
  return state_->isClosed;
}

bool EditorModel::EndSession() {
  if (state_->isClosed) return true;
  if (state_->isWorking) return false;
  // An event may still wait for the answer of a window that was closed.
  state_->Guard([this] { state_->Leave([state = state_.get()] { state->Close(); }); });
  return state_->isClosed;
}

void EditorModel::Help() {
  state_->Handle([this] { state_->view.OpenHelp(); });
}

}  // namespace rasterkit
