#include "tool/pictures/change_picture.h"

#include <algorithm>
#include <new>
#include <optional>
#include <thread>

#include <fmt/core.h>

#include <rasterkit/codecs/shown_numbers.h>
#include <rasterkit/codecs/tiff/tiff_facts.h>
#include <rasterkit/pictures/pending_save.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/stream.h>

#include "tool/arguments/color_argument.h"
#include "tool/arguments/fill_argument.h"
#include "tool/command/exit_code.h"
#include "tool/command/interruption.h"
#include "tool/command/isolation_option.h"
#include "tool/command/limit_options.h"
#include "tool/command/output_file.h"
#include "tool/command/output_type.h"
#include "tool/command/progress.h"
#include "tool/command/standard_input.h"
#include "tool/pages/page_list.h"
#include "tool/pictures/change_pages.h"
#include "tool/pictures/metafile_output.h"
#include "tool/pictures/position_warnings.h"
#include "tool/pictures/recipe_options.h"
#include "tool/pictures/recorder.h"
#include "tool/reports/geo_text.h"
#include "tool/reports/loss_report.h"

namespace rasterkit::tool {
namespace {

/// The color behind transparency and metafiles.
TColor SolidBackground(const PictureOptions& options) {
  return ParseColor(options.background).value_or(clWhite);
}

OpenOptions OpenOptionsOf(const PictureOptions& options) {
  OpenOptions open;
  open.position.from = options.positionFrom;
  open.position.worldFile = options.worldFile;
  open.drawing = options.metafile;
  open.drawing.background = SolidBackground(options);
  open.isolation = ReadingIsolation();
  open.turnsUpright = !options.isAsStored;
  open.shrinksOnLoad = options.shrinksOnLoad;
  open.skipsHidden = options.skipsHidden;
  return open;
}

bool IsPdf(const std::string& file) {
  try {
    TFileStream stream(file);
    return stream.Size() > 0 && SniffPictureType(stream) == PictureType::pdf;
  } catch (const Error&) {
    return false;
  }
}

/// True for an error of reading the input while it is written: damage that shows only in the
/// pixels.
bool IsOfInput(const Error& error, const Job& job) {
  if (IsStandardStream(job.input) && error.File().empty()) {
    return dynamic_cast<const FormatError*>(&error) != nullptr;
  }
  if (error.File() != job.input) return false;
  // Steps that do not fit the picture.
  if (dynamic_cast<const RangeError*>(&error) != nullptr) return false;
  // A picture that is written over itself: what cannot be written is an error of the output.
  const bool isOfFile = dynamic_cast<const FileError*>(&error) != nullptr;
  return !isOfFile || job.input != job.output;
}

/// The error as the failure of a job.
[[noreturn]] void Fail(const Error& error, const Job& job, ExitCode code) {
  if (dynamic_cast<const CanceledError*>(&error) != nullptr) {
    throw Failure(exitInterrupted, "interrupted");
  }
  // A limit that is exceeded on the way to the output is no fault of the input.
  const bool isOfOutput =
      code == exitOutputNotWritten && dynamic_cast<const LimitError*>(&error) != nullptr;
  const bool isUnnamed = error.File().empty() && code != exitInputUnreadable;
  const std::string& file = isUnnamed || isOfOutput ? job.output
                            : error.File().empty()  ? job.input
                                                    : error.File();
  const bool isTaken = dynamic_cast<const FileExistsError*>(&error) != nullptr;
  const std::string reason = isTaken && file == job.output
                                 ? "already exists (--overwrite replaces it)"
                                 : ReasonWithOption(error);
  throw Failure(code, file + ": " + reason);
}

/// The step that every verb has first: it changes no pixel by itself.
void AddFirstSteps(PictureWork& work) {
  const NumberStretch& stretch = work.options.stretch;
  const bool isGiven = stretch.kind != NumberStretch::Kind::automatic;
  if (isGiven) work.Add(StretchStep{stretch});
}

/// The steps that every verb has last.
void AddLastSteps(PictureWork& work) {
  const PictureOptions& options = work.options;
  RecipeSave& save = work.recipe.save = RecipeSaveOf(options);
  if (save.metadata == RecipeSave::Keep::all && !options.edit.IsEmpty()) {
    work.Add(EditStep{options.edit});
  }
  constexpr int kWithAlpha = 32;
  if (options.bits != 0 && options.bits != kWithAlpha) {
    work.NotePaintedTransparency("pixels of this depth have no opacity");
  }
  ApplySaving(work.picture, save);
}

bool IsDrawn(const Picture& picture) {
  return picture.SourceType() == PictureType::wmf || picture.SourceType() == PictureType::emf;
}

void NoteUnusedSize(PictureWork& work) {
  if (IsDrawn(work.picture) || !work.options.metafile.IsAsked()) return;
  work.warnings.emplace_back(
      "--dpi and --size apply only to metafiles; this picture keeps its size");
}

void NoteOtherCompression(const PictureWork& work, const Report& report, JobResult& result);
void NoteUnusedStretch(const PictureWork& work, const Report& report, JobResult& result);

/// How the pixels went from file to file.
const char* PixelsWord(const Report& report) {
  if (report.isCopied) return "copied";
  return report.isMoved ? "moved" : "encoded";
}

JobResult FactsOf(const Report& report) {
  JobResult result;
  result.type = PictureTypeName(report.type);
  result.width = report.width;
  result.height = report.height;
  result.bits = report.layout.BitsPerPixel();
  result.losses = report.losses;
  result.warnings = report.warnings;
  for (const std::string& note : report.notes) {
    // Which numbers are black and white is part of what such an output says.
    (note.ends_with(detail::kShownRangeNote) ? result.notes : result.details).push_back(note);
  }
  result.pixels = PixelsWord(report);
  result.sideFiles = report.sideFiles;
  result.backups = report.backups;
  result.bytes = report.bytes;
  result.memory = report.memory;
  result.scratch = report.scratch;
  return result;
}

JobResult ResultOf(const PictureWork& work, const Report& report) {
  JobResult result = FactsOf(report);
  std::erase_if(result.losses, [&](const Loss& loss) {
    const auto& kinds = work.leftOut;
    return std::find(kinds.begin(), kinds.end(), loss.kind) != kinds.end();
  });
  result.reportWarnings = report.warnings.size();
  result.warnings.insert(result.warnings.end(), work.warnings.begin(), work.warnings.end());
  result.losses.insert(result.losses.end(), work.losses.begin(), work.losses.end());
  result.notCarriedOver = work.notCarriedOver;
  result.notes.insert(result.notes.end(), work.notes.begin(), work.notes.end());
  if (!report.moveNote.empty()) {
    std::erase(result.details, report.moveNote);
    result.notes.push_back(report.moveNote);
  }
  result.details.insert(result.details.end(), work.details.begin(), work.details.end());
  result.kept = KeptNames(work.picture, report.losses);
  for (const StatedPosition& position : work.picture.GetPlacement().stated) {
    result.sources.push_back(PositionText(position));
  }
  NoteOtherCompression(work, report, result);
  NoteUnusedStretch(work, report, result);
  return result;
}

void NoteUnusedStretch(const PictureWork& work, const Report& report, JobResult& result) {
  constexpr int kByte = 8;
  const bool isAsked = work.options.stretch.kind != NumberStretch::Kind::automatic;
  if (!isAsked || report.layout.bits <= kByte) return;
  result.warnings.emplace_back(
      "--stretch changes nothing: the output holds the numbers; --bits 8 makes them grays");
}

/// An option that cannot be followed is no silent matter.
void NoteOtherCompression(const PictureWork& work, const Report& report, JobResult& result) {
  constexpr int kGroup4 = 4;
  const auto* const form = std::get_if<TiffForm>(&report.form);
  const bool isOther = work.options.compression == TiffCompression::group4 && form != nullptr &&
                       form->compression != kGroup4;
  if (!isOther) return;
  result.warnings.push_back(fmt::format("CCITT G4 holds black and white only; written with {}",
                                        TiffCompressionName(form->compression)));
}

/// Pixels that cannot be copied would be encoded anew.
void RequireCopy(const PictureWork& work, const Report& report) {
  const bool isOtherType = report.type != work.picture.SourceType();
  if (!work.options.copiesPixels || report.isCopied || isOtherType) return;
  throw Failure(exitInputUnreadable,
                work.job.input + ": the encoded pixels are damaged and cannot be copied");
}

void RequireNoWorldFile(const PictureOptions& options) {
  if (!options.writesWorldFile) return;
  throw Failure(exitWrongUsage, "--world-file requires an output with a name");
}

/// What saving a picture or a document would do.
template <class Saved>
Report PlanOf(const Saved& saved, const Job& job, const PictureOptions& options) {
  const SaveOptions save = SaveOptionsOf(job, options);
  if (!IsStandardStream(job.output)) return saved.Plan(job.output, save);
  RequireNoWorldFile(options);
  return saved.PlanStream(save);
}

JobResult Plan(const PictureWork& work) {
  return ResultOf(work, PlanOf(work.picture, work.job, work.options));
}

/// Calls `open`; an error is one of the input.
template <class Open>
auto OpenInput(const std::string& file, const Open& open) {
  try {
    const InterruptibleInput waiting(file);
    return open();
  } catch (const Error& error) {
    const std::string reason = IsPdf(file) ? "this is a PDF file; 'rasterkit pdf' draws its pages"
                                           : ReasonWithOption(error);
    const std::string& name = error.File().empty() ? file : error.File();
    throw Failure(exitInputUnreadable, name + ": " + reason);
  } catch (const std::bad_alloc&) {
    throw Failure(exitInputUnreadable, file + ": out of memory");
  }
}

/// What is written to stdout is whole, or nothing is.
template <class Saved>
Report SaveToStandardOutput(const Saved& saved, const Job& job, const PictureOptions& options,
                            const Run& run) {
  RequireNoWorldFile(options);
  TMemoryStream bytes;
  Report report = saved.Save(bytes, SaveOptionsOf(job, options), run);
  StopIfInterrupted();
  WriteStandardOutput(bytes.Bytes());
  return report;
}

/// Writes a picture or a document as the output of a job and returns the result.
template <class Saved, class Prepare, class Result>
JobResult SaveOutput(const Saved& saved, const Job& job, const PictureOptions& options,
                     const Prepare& prepare, const Result& resultOf) {
  OperationBar bar(options.showsProgress);
  Run run = RunOf(options);
  run.progress = bar.Shares();
  const WholeOutput whole;
  try {
    if (IsStandardStream(job.output)) {
      return resultOf(SaveToStandardOutput(saved, job, options, run));
    }
    auto save = std::make_unique<PendingSave>(prepare(run));
    StopIfInterrupted();
    JobResult result = resultOf(save->Report());
    result.output.picture = std::move(save);
    return result;
  } catch (const Error& error) {
    Fail(error, job, IsOfInput(error, job) ? exitInputUnreadable : exitOutputNotWritten);
  }
}

JobResult Save(const PictureWork& work) {
  return SaveOutput(
      work.picture, work.job, work.options,
      [&](const Run& run) {
        return PendingSave(work.picture, work.job.output, SaveOptionsOf(work.job, work.options),
                           run);
      },
      [&](const Report& report) {
        RequireCopy(work, report);
        return ResultOf(work, report);
      });
}

void ChangeOne(PictureWork& work, const PictureChange& change) {
  NoteUnusedSize(work);
  StopIfInterrupted();
  AddFirstSteps(work);
  if (change) change(work);
  AddLastSteps(work);
  if (work.options.recorder) work.options.recorder->Take(work);
  if (!StripsPosition(work.options)) return;
  for (std::string& text : WarningsOfMetadata(work.picture.GetMetadata())) {
    work.warnings.push_back(std::move(text));
  }
}

JobResult ChangeAny(const Job& job, const PictureOptions& options, bool isDryRun,
                    const PictureChange& change) {
  if (IsMetafileName(job.output)) return ConvertMetafile(job, options, isDryRun);
  const bool holdsPages =
      job.type.value_or(WritableType(job.output)) == PictureType::tiff && !options.onlyThisPage;
  std::optional<Picture> picture;
  const bool strips = !EditOfOthers(options).IsEmpty();
  if (job.page > 0) {
    picture = OpenPage(OpenDocument(job.input, options), job.page, job.input);
  } else if (PageList::Parse(options.pages).value().IsFirstPage() && !(holdsPages && strips)) {
    picture = OpenPicture(job.input, options);
  } else {
    const Document document = OpenDocument(job.input, options);
    const std::vector<int> pages = ChosenPages(job, options, document.Pages());
    if (holdsPages && (pages.size() > 1 || strips) && document.Pages() > 1) {
      return ChangePages(document, pages, job, options, isDryRun,
                         [&](PictureWork& work) { ChangeOne(work, change); });
    }
    if (pages.size() > 1) {
      throw Failure(exitWrongUsage,
                    fmt::format("{}: holds one picture: give one page of {} with --page{}, or "
                                "--out-dir",
                                job.output, job.input,
                                options.onlyThisPage ? "" : ", a TIFF file as output"));
    }
    picture = OpenPage(document, pages.front(), job.input);
  }
  PictureWork work{std::move(*picture), job, options};
  JobResult result;
  DoWork(job, [&] {
    ChangeOne(work, change);
    result = isDryRun ? Plan(work) : Save(work);
  });
  return result;
}

}  // namespace

SaveOptions SaveOptionsOf(const Job& job, const PictureOptions& options) {
  SaveOptions save;
  save.quality = options.quality;
  save.chromaX = options.chromaX;
  save.chromaY = options.chromaY;
  save.lossless = options.lossless.value_or(Lossless::exact);
  save.compression = options.compression;
  save.pngLevel = options.pngLevel;
  save.background = SolidBackground(options);
  save.writesWorldFile = options.writesWorldFile;
  save.onlyThisPage = options.onlyThisPage;
  save.mayReplace = job.saving.overwrite;
  save.syncs = job.saving.syncs;
  save.keepsBackup = job.saving.keepsBackup;
  save.type = job.type;
  return save;
}

void PictureWork::Add(const RecipeStep& step, const RecipeSlots& slots) {
  ApplyRecipeStep(picture, step, slots);
  recipe.steps.push_back(step);
}

std::optional<NumberStretch> PictureWork::StretchOfSecond() const {
  const bool isGiven = options.stretch.kind != NumberStretch::Kind::automatic;
  return isGiven ? std::optional(options.stretch) : std::nullopt;
}

TColor PictureWork::Background() const {
  return SolidBackground(options);
}

RotateOptions PictureWork::Corners() const {
  const std::string& text = options.fill.empty() ? options.background : options.fill;
  Fill fill = ParseFill(text).value_or(Fill());
  const bool isChosen = !options.fill.empty() || options.HasBackground();
  if (!isChosen) fill.kind = Fill::Kind::usual;
  return {fill, FilterOf(options.filter)};
}

void PictureWork::PaintTransparent(const std::string& reason) {
  NotePaintedTransparency(reason);
  // Also where nothing is to paint: the recipe fits other pictures, too.
  Add(ChangeStep{PaintTransparency{Background()}});
}

void PictureWork::NotePaintedTransparency(const std::string& reason) {
  const AlphaKind alpha = picture.Layout().alpha;
  if (alpha == AlphaKind::none) return;
  const bool isColor = alpha == AlphaKind::transparentColor;
  losses.push_back({isColor ? LossKind::transparentColor : LossKind::alpha,
                    isColor ? "the transparent color" : "the alpha channel",
                    reason + ": painted with the background"});
}

Report PictureWork::Plan(const Picture& changed) const {
  return PlanOf(changed, job, options);
}

PictureType PictureWork::TargetType() const {
  return WritableType(job.output);
}

std::unique_ptr<TBitmap> PictureWork::Bitmap() const {
  return picture.Bitmap(RunOf(options));
}

void PictureWork::Refuse(const std::string& reason) const {
  throw Failure(exitOutputNotWritten, job.input + ": " + reason);
}

Run RunOf(const PictureOptions& options) {
  Run run;
  run.threads = options.threads;
  run.cancel = InterruptionToken();
  run.scratchFolder = options.scratch;
  run.bandRows = options.bandRows;
  return run;
}

Picture OpenPicture(const std::string& file, const PictureOptions& options) {
  return OpenInput(file, [&] {
    return IsStandardStream(file) ? Picture::Open(TakeStandardInput(), OpenOptionsOf(options))
                                  : Picture::Open(file, OpenOptionsOf(options));
  });
}

Document OpenDocument(const std::string& file, const PictureOptions& options) {
  return OpenInput(file, [&] {
    return IsStandardStream(file) ? Document::Open(TakeStandardInput(), OpenOptionsOf(options))
                                  : Document::Open(file, OpenOptionsOf(options));
  });
}

Picture OpenPage(const Document& document, int page, const std::string& file) {
  return OpenInput(file, [&] { return document.Page(page); });
}

std::unique_ptr<TBitmap> LoadUpright(const std::string& file) {
  return UprightPixels(OpenPicture(file), file);
}

std::unique_ptr<TBitmap> UprightPixels(const Picture& picture, const std::string& file) {
  try {
    return picture.Bitmap(RunOf({}));
  } catch (const CanceledError&) {
    throw Failure(exitInterrupted, "interrupted");
  } catch (const Error& error) {
    throw Failure(exitInputUnreadable, file + ": " + ReasonWithOption(error));
  } catch (const std::bad_alloc&) {
    throw Failure(exitInputUnreadable, file + ": out of memory");
  }
}

void DoWork(const Job& job, const std::function<void()>& work) {
  try {
    work();
  } catch (const Error& error) {
    Fail(error, job, exitOutputNotWritten);
  } catch (const std::bad_alloc&) {
    throw Failure(exitOutputNotWritten, job.output + ": out of memory");
  }
}

JobResult SaveDocument(const Document& document, const Job& job, const PictureOptions& options,
                       bool isDryRun) {
  const auto resultOf = [](const Report& report) {
    JobResult result = FactsOf(report);
    result.reportWarnings = report.warnings.size();
    return result;
  };
  const SaveOptions save = SaveOptionsOf(job, options);
  JobResult result;
  DoWork(job, [&] {
    result = isDryRun ? resultOf(PlanOf(document, job, options))
                      : SaveOutput(
                            document, job, options,
                            [&](const Run& run) { return document.Prepare(job.output, save, run); },
                            resultOf);
  });
  return result;
}

JobResult ChangePicture(const Job& job, const PictureOptions& options, bool isDryRun,
                        const PictureChange& change) {
  JobResult result = ChangeAny(job, options, isDryRun, change);
  if (!StripsPosition(options)) return result;
  for (std::string& text : WarningsOfOtherFiles(job)) {
    result.warnings.push_back(std::move(text));
  }
  return result;
}

}  // namespace rasterkit::tool
