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
  report.isCopied = plan.isCopied;
  report.width = state.width;
  report.height = state.height;
  report.warnings = source.Header().warnings;
  report.warnings.insert(report.warnings.end(), state.placement.warnings.begin(),
                         state.placement.warnings.end());
  return report;
}

WrittenPicture WriteAnew(TStream& target, const PictureSource& source, const PictureState& state,
                         const WritePlan& plan, const SaveOptions& options, RunScope& run,
                         Report& report, Changes& changes) {
  run.Begin(kRead, source.Header().height);
  Changes made;
  DecodedPicture decoded = ReadPixels(source, state, run.Stages(), made);
  run.Begin(1, HeightOf(decoded.pixels));
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
  LoseDamage(decoded.report, "the file of the picture is damaged", changes);
  return written;
}

/// False if the compressed pixels are damaged so that they cannot be copied: they are then decoded,
/// and what is missing is said.
bool Copy(TStream& target, const PictureSource& source, const PictureState& state,
          const WritePlan& plan, RunScope& run, WrittenPicture& written, Report& report,
          Changes& changes) {
  run.Begin(kRead, source.Header().height);
  Changes seen;
  const CodecReport read = ReadForDamage(source, run.Threads(), seen);
  run.Begin(1, 1);
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

}  // namespace

Report WriteTo(TStream& target, const PictureSource& source, const PictureState& state,
               const WritePlan& plan, const SaveOptions& options, RunScope& run) {
  Report report = Begin(source, state, plan);
  const uint64_t start = target.Position();
  Changes changes;
  WrittenPicture written;
  report.isCopied =
      plan.isCopied && Copy(target, source, state, plan, run, written, report, changes);
  if (!report.isCopied) {
    WritePlan anew = plan;
    anew.isCopied = false;
    written = WriteAnew(target, source, state, anew, options, run, report, changes);
  }
  report.form = written.form;
  report.layout = written.layout;
  report.losses = std::move(changes.losses);
  report.notes = std::move(changes.notes);
  report.bytes = target.Position() - start;
  report.memory = MemoryOf(source, state, report.bytes);
  run.Finish();
  // The last moment to cancel: the file has no name yet.
  RequireTime();
  return report;
}

}  // namespace rasterkit::detail
