#include <algorithm>
#include <limits>
#include <utility>

#include <fmt/format.h>

#include <rasterkit/codecs/codec_table.h>
#include <rasterkit/codecs/jpeg/jpeg_picture.h>
#include <rasterkit/codecs/picture_io.h>
#include <rasterkit/codecs/tiff/tiff_pages.h>
#include <rasterkit/metadata/jpeg_assembly.h>
#include <rasterkit/pictures/extra_pages.h>
#include <rasterkit/pictures/fitting/fit_pixels.h>
#include <rasterkit/pictures/flow_needs.h>
#include <rasterkit/pictures/sources/sample_rows.h>
#include <rasterkit/pictures/write_plan.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/file_name.h>

namespace rasterkit::detail {
namespace {

constexpr int kSampleSide = 16;

/// The form of pixels of another kind than those of the source: what was requested, not what the
/// source had.
void TakeKind(PngForm& form, const PixelLayout& layout) {
  constexpr int kRgb = 2, kPalette = 3, kAlpha = 4;
  const bool hasAlpha = layout.alpha == AlphaKind::straight;
  form.bits = std::min(layout.bits, 16);
  form.colorType = layout.model == ColorModel::rgb ? kRgb : 0;
  if (layout.model == ColorModel::palette) form.colorType = kPalette;
  if (hasAlpha) form.colorType |= kAlpha;
}

/// The photometric value that the pixels need.
constexpr int kAnyPhotometric = -1;

Form FormOfTiff(Form form, const PictureSource& source, const PictureState& state,
                const SaveOptions& options) {
  auto* tiff = std::get_if<TiffForm>(&form);
  if (tiff != nullptr && !IsSameKind(state.layout, source.Header().layout)) {
    tiff->photometric = kAnyPhotometric;
  }
  if (!options.compression) return form;
  const TiffForm wanted = FormFor(*options.compression, state.layout);
  if (tiff == nullptr) return wanted;
  tiff->compression = wanted.compression;
  tiff->predictor = wanted.predictor;
  return form;
}

Form FormOfTarget(const PictureSource& source, const PictureState& state, PictureType type,
                  const SaveOptions& options) {
  Form form;
  if (source.Type() == type) form = source.Header().form;
  if (auto* jpeg = std::get_if<JpegForm>(&form); jpeg != nullptr && state.exchangesAxes) {
    *jpeg = Transposed(*jpeg);
  }
  auto* png = std::get_if<PngForm>(&form);
  if (png != nullptr && !IsSameKind(state.layout, source.Header().layout)) {
    TakeKind(*png, state.layout);
  }
  if (type == PictureType::tiff) return FormOfTiff(form, source, state, options);
  return form;
}

bool AsksForForm(const SaveOptions& options) {
  return options.quality || options.compression || options.chromaX > 0 || options.chromaY > 0;
}

/// True if the tags of the source's file alone say where the picture lies: no other position was
/// chosen, and the position was not put aside.
bool TagsSayThePosition(const PictureSource& source) {
  const PictureHeader& header = source.Header();
  const Placement tagged = ReadPlacement({}, header.positionTags, header.width, header.height);
  const Placement& position = source.Position();
  return tagged.affine == position.affine &&
         tagged.controlPoints.size() == position.controlPoints.size() &&
         tagged.rationalModel == position.rationalModel;
}

/// Tags that the source's file states and that still hold stay as they are, to the byte. An edit of
/// metadata alone leaves them, even if a world file beside the picture states another position.
std::vector<TagValue> PositionTags(const PictureSource& source, const PictureState& state,
                                   const WritePlan& plan) {
  const std::vector<TagValue>& tags = source.Header().positionTags;
  const bool isMoved = state.placesChanged || state.given;
  const bool isEditAlone = !state.edits.empty() && plan.isCopied && !isMoved;
  if (isEditAlone && (!tags.empty() || plan.writesWorldFile)) return tags;
  if (tags.empty() || isMoved || !TagsSayThePosition(source)) return TagsOf(state.placement);
  return tags;
}

PictureWriting CopyingOf(const PictureSource& source, const PictureState& state,
                         const WritePlan& plan) {
  PictureWriting writing;
  writing.form = plan.form;
  writing.metadata = state.metadata;
  // A preview is a file of its own, with metadata of its own.
  writing.dropsHidden = plan.move || DropsHidden(state);
  writing.move = plan.move;
  writing.makesThumbnail = plan.move && NeedsThumbnail(state, source);
  if (plan.type == PictureType::tiff) writing.positionTags = PositionTags(source, state, plan);
  return writing;
}

int RoundedUp(int side, uint32_t tile) {
  if (tile == 0) return side;
  const uint64_t tiles = (static_cast<uint64_t>(side) + tile - 1) / tile;
  return static_cast<int>(std::min<uint64_t>(tiles * tile, std::numeric_limits<int>::max()));
}

uint64_t MetadataBytes(const Metadata& metadata) {
  uint64_t bytes = metadata.exif.size() + metadata.xmp.size() + metadata.extendedXmp.size() +
                   metadata.iptc.size() + metadata.photoshop.size();
  if (metadata.profile) bytes += metadata.profile->size();
  for (const std::string& comment : metadata.comments) bytes += comment.size();
  for (const PictureText& text : metadata.texts) bytes += text.text.size() + text.keyword.size();
  for (const TagValue& tag : metadata.tiffTags) bytes += tag.bytes.size();
  for (const OtherBlock& block : metadata.jpegSegments) bytes += block.bytes.size();
  for (const OtherBlock& block : metadata.pngChunks) bytes += block.bytes.size();
  return bytes;
}

/// An upper bound. No encoder makes noise twice as large; headers and the tables of strips are
/// small; tiles are written whole.
uint64_t FileBytes(const PictureSource& source, const PictureState& state, const WritePlan& plan,
                   const PixelLayout& layout, const Form& form) {
  constexpr uint64_t kHeader = 1 << 16;
  const uint64_t rest = 2 * MetadataBytes(state.metadata) + kHeader;
  if (plan.isCopied) return source.ByteCount() + rest;
  // Turned blocks have other runs of zeros, and other differences of neighbors.
  if (plan.move) return 2 * source.ByteCount() + rest;
  const uint64_t extra = plan.type == PictureType::tiff ? 2 * ExtraPageBytes(source, state) : 0;
  const auto* tiff = std::get_if<TiffForm>(&form);
  const int width = RoundedUp(state.width, tiff == nullptr ? 0 : tiff->tileWidth);
  const int height = RoundedUp(state.height, tiff == nullptr ? 0 : tiff->tileHeight);
  return 2 * BytesOfRows(layout, width, height) + extra + rest;
}

}  // namespace

PictureType TargetType(const std::string& file, const SaveOptions& options) {
  PictureType type = options.type.value_or(PictureType::unknown);
  if (!options.type) {
    const std::string extension = ExtractFileExt(file);
    const Codec* codec = FindCodecOfExtension(extension);
    if (codec == nullptr) {
      throw UnsupportedError(extension.empty()
                                 ? "the file has no extension that names its type"
                                 : fmt::format("no picture type has the extension {}", extension),
                             file);
    }
    type = codec->type;
  }
  if (!CanWrite(type)) {
    throw UnsupportedError(
        fmt::format("files of the type {} cannot be written", PictureTypeName(type)), file);
  }
  return type;
}

WritePlan PlanOf(const PictureSource& source, const PictureState& state, PictureType type,
                 const SaveOptions& options, bool hasSideFiles) {
  WritePlan plan;
  plan.type = type;
  plan.hasSideFiles = hasSideFiles;
  const bool isAsStored = !state.pixelsChanged && source.Type() == type && !AsksForForm(options) &&
                          !(type == PictureType::png && options.pngLevel);
  plan.isCopied = isAsStored && CanCopy(type) && !source.Header().isCutOff && source.CanCopy();
  plan.isAsStored = plan.isCopied && !state.hasSteps && TagsSayThePosition(source);
  plan.form = FormOfTarget(source, state, type, options);
  const auto& stated = source.Position().stated;
  const bool hadWorldFile = std::any_of(stated.begin(), stated.end(), [](const auto& position) {
    return position.source == PositionSource::worldFile;
  });
  plan.writesWorldFile = state.placement.affine &&
                         (options.writesWorldFile || hadWorldFile || type != PictureType::tiff);
  return plan;
}

PictureWriting WritingOf(const PictureSource& source, const PictureState& state,
                         const WritePlan& plan, const SaveOptions& options, int threads) {
  PictureWriting writing = CopyingOf(source, state, plan);
  writing.quality = options.quality;
  writing.chromaX = options.chromaX;
  writing.chromaY = options.chromaY;
  writing.pngLevel = options.pngLevel;
  writing.threads = threads;
  return writing;
}

PixelFit FitOf(const PictureState& state, const WritePlan& plan, const SaveOptions& options,
               int threads) {
  return {plan.type, options.background, state.placement.noData, state.stretch,
          threads,   plan.isSample};
}

WrittenPicture WritePixels(Pixels pixels, const PictureState& state, const PictureSource& source,
                           const WritePlan& plan, const SaveOptions& options, int threads,
                           PictureTarget& target, Changes& changes) {
  PictureWriting writing = WritingOf(source, state, plan, options, threads);
  const PixelFit fit = FitOf(state, plan, options, threads);
  const Pixels fitted = FitPixels(std::move(pixels), fit, writing.metadata, changes);
  const bool hasExtraPages = plan.type == PictureType::tiff && !plan.isSample;
  std::vector<TiffExtraPage> extraPages;
  if (hasExtraPages) extraPages = MakeExtraPages(fitted, source, state, threads, changes);
  WrittenPicture written = target.Write(plan.type, fitted, writing, extraPages);
  Join(changes, written.changes);
  return written;
}

WrittenPicture CopyPixels(const PictureSource& source, const PictureState& state,
                          const WritePlan& plan, PictureTarget& target, Changes& changes) {
  const PictureWriting writing = CopyingOf(source, state, plan);
  WrittenPicture written = target.Copy(source, writing, plan.isAsStored);
  if (writing.dropsHidden && !plan.move) {
    for (const std::string& name : source.Header().hiddenOthers) {
      changes.Lose(LossKind::hiddenPictures, name, "it can state what was to be removed");
    }
  }
  Join(changes, written.changes);
  return written;
}

namespace {

WrittenPicture Sample(const PictureSource& source, const PictureState& state, const WritePlan& plan,
                      const SaveOptions& options, Changes& changes) {
  TMemoryStream sample;
  StreamTarget target(sample);
  const int width = std::min(kSampleSide, state.width),
            height = std::min(kSampleSide, state.height);
  const PixelLayout layout = state.stages.empty() ? source.Kind().layout : state.layout;
  return WritePixels(SampleRows(layout, state.isRaster, width, height), state, source, plan,
                     options, 1, target, changes);
}

/// True if such pixels are encoded as their rows come.
bool TakesRows(const PictureSource& source, const PictureState& state, const WritePlan& plan,
               const SaveOptions& options) {
  if (plan.isCopied || plan.move) return false;
  const PixelLayout layout = state.stages.empty() ? source.Kind().layout : state.layout;
  PictureWriting writing = WritingOf(source, state, plan, options, 1);
  Changes unused;
  const Pixels fitted = FitPixels(SampleRows(layout, state.isRaster, kSampleSide, kSampleSide),
                                  FitOf(state, plan, options, 1), writing.metadata, unused);
  TMemoryStream sample;
  return OpenWriter(plan.type, fitted, {kSampleSide, kSampleSide}, writing, sample) != nullptr;
}

/// Moved pixels lose nothing: only the metadata can.
WrittenPicture Moved(const PictureSource& source, const PictureState& state, const WritePlan& plan,
                     Changes& changes) {
  Changes written;
  const Metadata& old = source.Header().metadata;
  Metadata metadata = StateForMove(state, source).metadata;
  // What did not change is copied.
  if (metadata.resolution == old.resolution) metadata.resolution = {};
  AssembleJpegSegments(metadata, old.hasJfif, written);
  Join(changes, written);
  return {plan.form, state.layout, {}};
}

}  // namespace

Report Foresee(const PictureSource& source, const PictureState& state, WritePlan plan,
               const SaveOptions& options) {
  plan.isSample = true;
  Report report;
  report.type = plan.type;
  report.isCopied = plan.isCopied;
  report.isMoved = plan.move.has_value();
  report.moveNote = plan.moveNote;
  report.width = state.width;
  report.height = state.height;
  report.warnings = WarningsOf(source, state);
  Changes changes = LossesOf(source, state, {plan.type, plan.isCopied, plan.hasSideFiles});
  const WrittenPicture written = plan.move ? Moved(source, state, plan, changes)
                                           : Sample(source, state, plan, options, changes);
  report.layout = plan.isCopied ? state.layout : written.layout;
  // An encoder with other wishes than the source's form makes its own.
  const bool isEncodersForm = std::holds_alternative<std::monostate>(plan.form) ||
                              (std::holds_alternative<JpegForm>(plan.form) && AsksForForm(options));
  report.form = isEncodersForm ? written.form : plan.form;
  report.losses = std::move(changes.losses);
  report.notes = std::move(changes.notes);
  if (plan.isCopied) report.notes.emplace_back("the compressed pixels are copied");
  if (plan.move) report.notes.emplace_back(kMoved);
  if (!plan.moveNote.empty()) report.notes.push_back(plan.moveNote);

  report.bytes = FileBytes(source, state, plan, report.layout, written.form);
  const bool takesRows =
      !NeedsWhole(source, state, plan.type) && TakesRows(source, state, plan, options);
  StateNeeds(source, state, plan, takesRows, report);
  return report;
}

bool NeedsWhole(const PictureSource& source, const PictureState& state, PictureType type) {
  const bool hasThumbnail = NeedsThumbnail(state, source) && type != PictureType::bmp;
  return hasThumbnail || (type == PictureType::tiff && !source.ExtraPages().empty());
}

void StateNeeds(const PictureSource& source, const PictureState& state, const WritePlan& plan,
                bool takesRows, Report& report) {
  const PictureHeader& header = source.Header();
  const uint64_t before = BytesOfRows(header.layout, header.width, header.height);
  const uint64_t after = BytesOfRows(state.layout, state.width, state.height);
  FlowNeeds needs;
  if (plan.isCopied) {
    // They are read once, for damage.
    needs = NeedsOf(source, StateOf(source), false);
  } else if (plan.move) {
    // Blocks are held as coefficients of two bytes each.
    needs = NeedsOf(source, StateOf(source), false);
    needs.memory += source.ByteCount() + 2 * before + report.bytes;
  } else {
    needs = NeedsOf(source, state, !takesRows);
    if (plan.type == PictureType::png) needs.memory += PngWriteBytes(after, state.height);
    // A result is converted into a second one of at most four bytes per pixel, and encoded into
    // memory.
    const uint64_t converted =
        4 * static_cast<uint64_t>(state.width) * static_cast<uint64_t>(state.height);
    if (!takesRows) {
      needs.memory +=
          std::max(after, converted) + converted + ExtraPageBytes(source, state) + report.bytes;
    }
  }
  report.memory = needs.memory;
  report.scratch = needs.scratch;
}

}  // namespace rasterkit::detail
