#include <algorithm>
#include <optional>
#include <utility>

#include <rasterkit/pictures/fitting/make_thumbnail.h>
#include <rasterkit/pictures/read_pixels.h>
#include <rasterkit/pictures/save_picture.h>
#include <rasterkit/pictures/sources/sample_rows.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {
namespace {

/// Parts of the work after which reading and the stages end.
constexpr double kRead = 0.5;

/// Gives pixels the properties of others of their kind.
void CopyProperties(const Pixels& source, Pixels& target) {
  if (auto* rows = std::get_if<Raster>(&target)) {
    return rows->CopyProperties(std::get<Raster>(source));
  }
  std::get<Samples>(target).resolution = std::get<Samples>(source).resolution;
}

constexpr const char* kDamagedFile = "the file of the picture is damaged";

double ReadEnd(const WorkPart& part) {
  return part.from + kRead * (part.end - part.from);
}

/// Says what the decoder noticed. The header says some of it already.
void Warn(const CodecReport& read, Report& report) {
  for (const std::string& warning : read.warnings) {
    auto& known = report.warnings;
    if (std::find(known.begin(), known.end(), warning) == known.end()) known.push_back(warning);
  }
}

void LoseDamage(const CodecReport& read, const char* why, Changes& changes) {
  for (const std::string& damage : read.damage) changes.Lose(LossKind::damage, damage, why);
}

/// Decodes the pixels that are to be copied, only to see whether they are whole. Those that no
/// decoder here knows cannot be judged.
CodecReport ReadForDamage(const PictureSource& source, RunScope& run, Changes& changes) {
  CodecReport report;
  try {
    PictureFlow flow(source, Stages(), run.Flow());
    const StageRun seeing = run.Stages();
    flow.Begin(seeing);
    flow.Run(seeing, [](Pixels&, int) {});
    flow.Finish(report, changes);
  } catch (const UnsupportedError& error) {
    changes.Note("the pixels were not checked for damage: " + error.Reason());
  }
  return report;
}

Report Begin(const PictureSource& source, const PictureState& state, const WritePlan& plan) {
  Report report;
  report.type = plan.type;
  report.moveNote = plan.moveNote;
  report.width = state.width;
  report.height = state.height;
  report.warnings = WarningsOf(source, state);
  return report;
}

/// Blocks are decoded no further than to their coefficients, which show damage.
WrittenPicture Move(PictureTarget& target, const PictureSource& source, const PictureState& state,
                    const WritePlan& plan, RunScope& run, WorkPart part, Changes& changes) {
  run.Begin(part.end, source.Header().height);
  const uint64_t start = target.Position();
  const PictureState followed = StateForMove(state, source);
  try {
    changes = LossesOf(source, followed, {plan.type, false, plan.hasSideFiles});
    WrittenPicture written = CopyPixels(source, followed, plan, target, changes);
    written.layout = state.layout;
    return written;
  } catch (FormatError& error) {
    if (target.Position() == start) throw DamagedBlocks(error.Reason(), true);
    error.AttachFile(source.File());
    throw;
  } catch (const UnsupportedError& error) {
    if (target.Position() == start) throw DamagedBlocks(error.Reason(), false);
    throw;
  } catch (LimitError& error) {
    // What the blocks cost is decided by the file that holds them.
    if (target.Position() == start) error.AttachFile(source.File());
    throw;
  }
}

/// A picture that is encoded anew, and what is said about it.
struct Encoding {
  PictureTarget& target;
  const PictureSource& source;
  const PictureState& state;
  const WritePlan& plan;
  const SaveOptions& options;
  RunScope& run;
  WorkPart part;
};

Changes LossesBefore(const Encoding& work, const PictureState& state) {
  return LossesOf(work.source, state, {work.plan.type, work.plan.isCopied, work.plan.hasSideFiles});
}

/// Writes the pixels when all of them are there.
WrittenPicture WriteWhole(const Encoding& work, CodecReport& read, Changes& changes) {
  const PictureState& state = work.state;
  PictureFlow flow(work.source, state, work.run.Flow());
  work.run.Begin(ReadEnd(work.part), work.source.Header().height);
  const StageRun reading = work.run.Stages();
  flow.Begin(reading);
  Pixels pixels = flow.Whole(reading);
  Changes made;
  flow.Finish(read, made);
  std::visit([&](auto& rows) { rows.resolution = state.metadata.resolution; }, pixels);
  work.run.Begin(work.part.end, HeightOf(pixels));
  // The metadata describe the pixels that are written: the thumbnail is made of them.
  PictureState followed = state;
  if (NeedsThumbnail(state, work.source) && work.plan.type != PictureType::bmp) {
    Follow(followed, work.source, MakeThumbnail(pixels, state.placement.noData, state.stretch));
  }
  changes = LossesBefore(work, followed);
  Join(changes, made);
  return WritePixels(std::move(pixels), followed, work.source, work.plan, work.options,
                     work.run.Threads(), work.target, changes);
}

/// The kind of the pixels after the steps: read from the source without steps, else foretold.
Pixels KindToFit(const Encoding& work, PictureFlow& flow) {
  if (work.state.stages.empty()) return NewPixels(flow.Stored(), 1, 1);
  return SampleRows(work.state.layout, work.state.isRaster, 1, 1);
}

/// Writes the rows as they come. Nothing if the pixels are encoded only as a whole, or are other
/// ones than foretold.
std::optional<WrittenPicture> WriteRows(const Encoding& work, CodecReport& read, Changes& changes,
                                        bool& takesRows) {
  const PictureState& state = work.state;
  const int threads = work.run.Threads();
  const PixelFit fit = FitOf(state, work.plan, work.options, threads);
  PictureFlow flow(work.source, state, work.run.Flow());
  const Pixels stored = KindToFit(work, flow);
  const auto fitted = std::make_shared<Changes>();
  flow.Add(FitStages(stored, {state.width, state.height}, fit, fitted));
  work.run.Begin(work.part.end, work.source.Header().height);
  const StageRun running = work.run.Stages();
  flow.Begin(running);
  takesRows = IsFit(flow.Like(), fit);
  if (!takesRows) return std::nullopt;
  const Sides size = flow.Size();
  Pixels like = NewPixels(flow.Like(), 1, 1);
  std::visit([&](auto& rows) { rows.resolution = state.metadata.resolution; }, like);
  PictureWriting writing = WritingOf(work.source, state, work.plan, work.options, threads);
  Changes ofKind;
  FitKind(like, LayoutOf(stored), fit, writing.metadata, ofKind);
  const auto writer = work.target.Open(work.plan.type, like, {size.width, size.height}, writing);
  takesRows = writer != nullptr;
  WrittenPicture written;
  Changes made;
  if (writer) {
    flow.Run(running, [&](Pixels& rows, int) { writer->Write(rows); });
    written = writer->Finish();
    flow.Finish(read, made);
  } else {
    // A page that cannot be read leaves no part of it in a document.
    Pixels pixels = flow.Whole(running);
    flow.Finish(read, made);
    CopyProperties(like, pixels);
    written = work.target.Write(work.plan.type, pixels, writing, {});
  }
  changes = LossesBefore(work, state);
  Join(changes, made);
  for (const Changes* lost : {static_cast<const Changes*>(fitted.get()), &std::as_const(ofKind)}) {
    changes.losses.insert(changes.losses.end(), lost->losses.begin(), lost->losses.end());
    for (const std::string& note : lost->notes) changes.Note(note);
  }
  Join(changes, written.changes);
  return written;
}

WrittenPicture WriteAnew(const Encoding& work, Report& report, Changes& changes, bool& takesRows) {
  CodecReport read;
  std::optional<WrittenPicture> written;
  takesRows = !NeedsWhole(work.source, work.state, work.plan.type);
  if (takesRows) written = WriteRows(work, read, changes, takesRows);
  if (!written) written = WriteWhole(work, read, changes);
  Warn(read, report);
  LoseDamage(read, kDamagedFile, changes);
  return std::move(*written);
}

/// False if the compressed pixels are damaged so that they cannot be copied: they are then decoded,
/// and what is missing is said.
bool Copy(PictureTarget& target, const PictureSource& source, const PictureState& state,
          const WritePlan& plan, RunScope& run, WorkPart part, WrittenPicture& written,
          Report& report, Changes& changes) {
  run.Begin(ReadEnd(part), source.Header().height);
  Changes seen;
  const CodecReport read = ReadForDamage(source, run, seen);
  run.Begin(part.end, 1);
  const uint64_t start = target.Position();
  try {
    Changes copied = LossesOf(source, state, {plan.type, true, plan.hasSideFiles});
    written = CopyPixels(source, state, plan, target, copied);
    copied.Note("the compressed pixels are copied");
    Warn(read, report);
    LoseDamage(read, "the damaged pixels are copied as they are", copied);
    Join(copied, seen);
    written.layout = state.layout;
    changes = std::move(copied);
    return true;
  } catch (FormatError& error) {
    error.AttachFile(source.File());
    if (target.Position() != start) throw;
    return false;
  }
}

void LoseBlocks(const DamagedBlocks& blocks, Report& report) {
  const auto isKnown = [&](const Loss& loss) {
    return loss.kind == LossKind::damage && loss.what == blocks.Reason();
  };
  if (!blocks.IsDamage() || std::any_of(report.losses.begin(), report.losses.end(), isKnown)) {
    return;
  }
  report.losses.push_back({LossKind::damage, blocks.Reason(), kDamagedFile});
}

}  // namespace

Report WriteMovedOrAnew(const SaveOptions& options,
                        const std::function<Report(const SaveOptions& options)>& write) {
  try {
    return write(options);
  } catch (const DamagedBlocks& damage) {
    SaveOptions anew = options;
    anew.lossless = Lossless::off;
    Report report = write(anew);
    report.moveNote = "the pixels are compressed again: " + damage.Reason();
    report.notes.push_back(report.moveNote);
    LoseBlocks(damage, report);
    return report;
  }
}

Report WriteOne(PictureTarget& target, const PictureSource& source, const PictureState& state,
                const WritePlan& plan, const SaveOptions& options, RunScope& run, WorkPart part) {
  Report report = Begin(source, state, plan);
  const uint64_t start = target.Position();
  Changes changes;
  WrittenPicture written;
  bool takesRows = false;
  if (plan.move) {
    written = Move(target, source, state, plan, run, part, changes);
    report.isMoved = true;
  } else {
    report.isCopied =
        plan.isCopied && Copy(target, source, state, plan, run, part, written, report, changes);
  }
  if (!report.isMoved && !report.isCopied) {
    WritePlan anew = plan;
    anew.isCopied = false;
    written =
        WriteAnew({target, source, state, anew, options, run, part}, report, changes, takesRows);
  }
  if (plan.move) changes.Note(kMoved);
  if (!plan.moveNote.empty()) changes.Note(plan.moveNote);
  report.form = written.form;
  report.layout = written.layout;
  report.losses = std::move(changes.losses);
  report.notes = std::move(changes.notes);
  report.bytes = target.Position() - start;
  WritePlan used = plan;
  used.isCopied = report.isCopied;
  StateNeeds(source, state, used, takesRows, report);
  return report;
}

Report WriteTo(TStream& target, const PictureSource& source, const PictureState& state,
               const WritePlan& plan, const SaveOptions& options, RunScope& run) {
  StreamTarget file(target);
  Report report = WriteOne(file, source, state, plan, options, run, {});
  run.Finish();
  // The last moment to cancel: the file has no name yet.
  RequireTime();
  return report;
}

}  // namespace rasterkit::detail
