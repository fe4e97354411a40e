#include <algorithm>
#include <utility>

#include <rasterkit/pictures/fitting/make_thumbnail.h>
#include <rasterkit/pictures/read_pixels.h>
#include <rasterkit/pictures/save_picture.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {
namespace {

/// Parts of the work after which reading and the stages end.
constexpr double kRead = 0.5;

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
CodecReport ReadForDamage(const PictureSource& source, int threads, Changes& changes) {
  CodecReport report;
  try {
    source.ReadPixels(threads, report);
  } catch (const UnsupportedError& error) {
    changes.Note("the pixels were not checked for damage: " + error.Reason());
  } catch (Error& error) {
    error.AttachFile(source.File());
    throw;
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

WrittenPicture WriteAnew(PictureTarget& target, const PictureSource& source,
                         const PictureState& state, const WritePlan& plan,
                         const SaveOptions& options, RunScope& run, WorkPart part, Report& report,
                         Changes& changes) {
  run.Begin(ReadEnd(part), source.Header().height);
  Changes made;
  DecodedPicture decoded = ReadPixels(source, state, run.Stages(), made);
  run.Begin(part.end, HeightOf(decoded.pixels));
  // The metadata describe the pixels that are written: the thumbnail is made of them.
  PictureState followed = state;
  if (NeedsThumbnail(state, source) && plan.type != PictureType::bmp) {
    Follow(followed, source, MakeThumbnail(decoded.pixels, state.placement.noData, state.stretch));
  }
  changes = LossesOf(source, followed, {plan.type, plan.isCopied, plan.hasSideFiles});
  Join(changes, made);
  WrittenPicture written = WritePixels(std::move(decoded.pixels), followed, source, plan, options,
                                       run.Threads(), target, changes);
  Warn(decoded.report, report);
  LoseDamage(decoded.report, kDamagedFile, changes);
  return written;
}

/// False if the compressed pixels are damaged so that they cannot be copied: they are then decoded,
/// and what is missing is said.
bool Copy(PictureTarget& target, const PictureSource& source, const PictureState& state,
          const WritePlan& plan, RunScope& run, WorkPart part, WrittenPicture& written,
          Report& report, Changes& changes) {
  run.Begin(ReadEnd(part), source.Header().height);
  Changes seen;
  const CodecReport read = ReadForDamage(source, run.Threads(), seen);
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
  Changes changes;
  WrittenPicture written;
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
    written = WriteAnew(target, source, state, anew, options, run, part, report, changes);
  }
  if (plan.move) changes.Note(kMoved);
  if (!plan.moveNote.empty()) changes.Note(plan.moveNote);
  report.form = written.form;
  report.layout = written.layout;
  report.losses = std::move(changes.losses);
  report.notes = std::move(changes.notes);
  return report;
}

Report WriteTo(TStream& target, const PictureSource& source, const PictureState& state,
               const WritePlan& plan, const SaveOptions& options, RunScope& run) {
  const uint64_t start = target.Position();
  StreamTarget file(target);
  Report report = WriteOne(file, source, state, plan, options, run, {});
  report.bytes = target.Position() - start;
  report.memory = MemoryOf(source, state, report.bytes);
  run.Finish();
  // The last moment to cancel: the file has no name yet.
  RequireTime();
  return report;
}

}  // namespace rasterkit::detail
