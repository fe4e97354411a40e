#include <algorithm>
#include <optional>
#include <utility>

#include <fmt/format.h>

#include <rasterkit/codecs/jpeg/copied_head.h>
#include <rasterkit/codecs/jpeg/jpeg_decoder.h>
#include <rasterkit/codecs/jpeg/jpeg_form.h>
#include <rasterkit/codecs/jpeg/jpeg_limits.h>
#include <rasterkit/codecs/jpeg/jpeg_picture.h>
#include <rasterkit/codecs/jpeg/jpeg_thumbnail.h>
#include <rasterkit/codecs/jpeg/jpeg_writer.h>
#include <rasterkit/codecs/jpeg/lossless/dc_blocks.h>
#include <rasterkit/codecs/jpeg/lossless/move_jpeg.h>
#include <rasterkit/codecs/jpeg/lossless/moved_blocks.h>
#include <rasterkit/codecs/jpeg/lossless/scan_script.h>
#include <rasterkit/metadata/follow_pixels.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {
namespace {

using Bytes = std::span<const uint8_t>;

/// How the library is told to write; plain data, because its errors jump over it.
struct Encoding {
  const PictureMove* move = nullptr;
  const JpegForm* form = nullptr;
  const jpeg_scan_info* scans = nullptr;
  int scanCount = 0;
  const BlockCounts* counts = nullptr;
};

void Transpose(jpeg_compress_struct& codec) {
  for (int i = 0; i < codec.num_components; i++) {
    std::swap(codec.comp_info[i].h_samp_factor, codec.comp_info[i].v_samp_factor);
  }
  for (JQUANT_TBL* table : codec.quant_tbl_ptrs) {
    if (table == nullptr) continue;
    for (int y = 0; y < DCTSIZE; y++) {
      for (int x = 0; x < y; x++) {
        std::swap(table->quantval[y * DCTSIZE + x], table->quantval[x * DCTSIZE + y]);
      }
    }
  }
}

void Configure(jpeg_compress_struct& codec, const Encoding& encoding) {
  codec.image_width = static_cast<JDIMENSION>(encoding.move->ResultWidth());
  codec.image_height = static_cast<JDIMENSION>(encoding.move->ResultHeight());
  if (encoding.move->exchangesAxes) Transpose(codec);
  // Written with the metadata.
  codec.write_JFIF_header = FALSE;
  codec.write_Adobe_marker = FALSE;
  codec.arith_code = FALSE;
  codec.optimize_coding = TRUE;
  codec.restart_in_rows = 0;
  codec.restart_interval = static_cast<unsigned>(encoding.form->restartInterval);
  if (encoding.scanCount > 0) {
    codec.scan_info = encoding.scans;
    codec.num_scans = encoding.scanCount;
  } else if (encoding.form->progressive) {
    jpeg_simple_progression(&codec);
  }
}

/// Requests arrays in which whole units have room.
void RequestArrays(jpeg_compress_struct& codec, const BlockCounts* counts,
                   jvirt_barray_ptr* arrays) {
  for (int i = 0; i < codec.num_components; i++) {
    const auto h = static_cast<JDIMENSION>(codec.comp_info[i].h_samp_factor);
    const auto v = static_cast<JDIMENSION>(codec.comp_info[i].v_samp_factor);
    const auto columns = static_cast<JDIMENSION>(counts[i].columns);
    const auto rows = static_cast<JDIMENSION>(counts[i].rows);
    arrays[i] = (*codec.mem->request_virt_barray)(reinterpret_cast<j_common_ptr>(&codec),
                                                  JPOOL_IMAGE, FALSE, (columns + h - 1) / h * h,
                                                  (rows + v - 1) / v * v, v);
  }
}

/// Throws if the library read another frame than the form has, which would be a file that two
/// readers understand in two ways.
void RequireSameFrame(const jpeg_decompress_struct& codec, const JpegForm& form,
                      const PictureHeader& header) {
  bool isSame = codec.image_width == static_cast<JDIMENSION>(header.width) &&
                codec.image_height == static_cast<JDIMENSION>(header.height) &&
                static_cast<size_t>(codec.num_components) == form.components.size();
  for (size_t i = 0; isSame && i < form.components.size(); i++) {
    isSame = codec.comp_info[i].h_samp_factor == form.components[i].h &&
             codec.comp_info[i].v_samp_factor == form.components[i].v;
  }
  if (!isSame) throw FormatError("JPEG: the frame header is stated twice");
}

/// Throws if a table has changed after a scan that used it: the new file has each table once.
void RequireOneTableEach(const jpeg_decompress_struct& codec) {
  for (int i = 0; i < codec.num_components; i++) {
    const JQUANT_TBL& used = *codec.comp_info[i].quant_table;
    const JQUANT_TBL* last = codec.quant_tbl_ptrs[codec.comp_info[i].quant_tbl_no];
    if (last == nullptr || !std::equal(used.quantval, used.quantval + DCTSIZE2, last->quantval)) {
      throw UnsupportedError("JPEG: a quantization table changes between the scans");
    }
  }
}

/// The coefficients of a file on their way to another one.
class Mover {
 public:
  Mover(Bytes file, const PictureHeader& header, const PictureMove& move)
      : form_(std::get<JpegForm>(header.form)),
        move_(move),
        parts_(ReadJpegHead(file)),
        layout_(LayoutOfJpeg(file, parts_)),
        // The blocks of the result take as much room as those of the source, and the new file.
        source_(file, layout_, MovedBytes() + file.size()),
        writer_(file.size() + kSpareBytes) {
    RequireSameFrame(source_.Codec(), form_, header);
    RequireOneTableEach(source_.Codec());
  }

  const JpegParts& Parts() const { return parts_; }

  /// Returns a JPEG file without metadata. Before the library frees the blocks, `look` is called
  /// with their first coefficients.
  template <class Look>
  std::vector<uint8_t> Move(const Look& look) {
    const std::vector<BlockPath> paths = Paths();
    std::vector<BlockCounts> counts;
    counts.reserve(paths.size());
    for (const BlockPath& path : paths) counts.push_back(path.Counts());
    const std::vector<jpeg_scan_info> scans = ScanScriptFor(parts_, form_);
    const Encoding encoding{&move_, &form_, scans.data(), static_cast<int>(scans.size()),
                            counts.data()};
    jpeg_compress_struct& codec = writer_.Codec();
    jvirt_barray_ptr arrays[MAX_COMPONENTS] = {};
    codec.mem->max_memory_to_use =
        static_cast<long>(std::min<uint64_t>(MovedBytes() + kCodecSlack, LONG_MAX));
    writer_.WatchTime();
    writer_.Run([&] {
      jpeg_copy_critical_parameters(&source_.Codec(), &codec);
      Configure(codec, encoding);
      RequestArrays(codec, encoding.counts, arrays);
      jpeg_write_coefficients(&codec, arrays);
    });
    Fill(paths, arrays);
    look(Small());
    writer_.Run([&] { jpeg_finish_compress(&codec); });
    return writer_.TakeBytes();
  }

 private:
  static constexpr size_t kSpareBytes = 1 << 12;

  /// The first coefficients of the result.
  DcPicture Small() const {
    const jpeg_decompress_struct& source = source_.Codec();
    DcPicture picture;
    picture.space = source.jpeg_color_space;
    picture.hasAdobe = source.saw_Adobe_marker != FALSE;
    picture.width = move_.ResultWidth();
    picture.height = move_.ResultHeight();
    for (size_t i = 0; i < moved_.size(); i++) {
      const jpeg_component_info& component = source.comp_info[i];
      DcBlocks blocks{&moved_[i], component.h_samp_factor, component.v_samp_factor,
                      component.quant_table->quantval[0]};
      if (move_.exchangesAxes) std::swap(blocks.h, blocks.v);
      picture.components.push_back(blocks);
    }
    return picture;
  }

  std::vector<BlockPath> Paths() const {
    const auto grid = BlockGridOf(form_);
    std::vector<BlockPath> paths;
    if (!grid) throw FormatError("JPEG: the sampling factors are invalid");
    for (const JpegForm::Component& component : form_.components) {
      paths.emplace_back(*grid, component, move_);
    }
    return paths;
  }

  uint64_t MovedBytes() const {
    uint64_t blocks = 0;
    for (size_t i = 0; const BlockPath& path : Paths()) {
      // Room for whole units.
      const JpegForm::Component& component = form_.components[i++];
      const int across = move_.exchangesAxes ? component.v : component.h;
      const int down = move_.exchangesAxes ? component.h : component.v;
      blocks += static_cast<uint64_t>(path.Counts().columns + across) *
                static_cast<uint64_t>(path.Counts().rows + down);
    }
    return blocks * sizeof(JBLOCK);
  }

  void Fill(const std::vector<BlockPath>& paths, jvirt_barray_ptr* arrays) {
    jpeg_compress_struct& codec = writer_.Codec();
    moved_.resize(paths.size());
    for (size_t i = 0; i < paths.size(); i++) {
      moved_[i].resize(codec.comp_info[i].height_in_blocks);
      writer_.Run([&] { CollectRows(codec, arrays[i], codec.comp_info[i], true, moved_[i]); });
      paths[i].Fill(source_.Rows(static_cast<int>(i)), moved_[i]);
    }
  }

  const JpegForm& form_;
  const PictureMove move_;
  JpegParts parts_;
  const JpegLayout layout_;
  JpegCoefficients source_;
  JpegWriter writer_;
  std::vector<BlockRows> moved_;
};

/// Throws RangeError, or UnsupportedError for coding that is not moved.
void RequireExact(const PictureHeader& header, const PictureMove& move) {
  const auto& form = std::get<JpegForm>(header.form);
  if (form.arithmetic) {
    throw UnsupportedError("JPEG: arithmetic coding is not moved without recompression");
  }
  if (MovableJpegPart(form, header.width, header.height, move) != move) {
    throw RangeError(fmt::format(
        "JPEG: a part of {} x {} pixels at {}, {} of {} x {} pixels is not moved exactly",
        move.width, move.height, move.left, move.top, header.width, header.height));
  }
}

constexpr size_t kStartBytes = 2;

/// Appends the Adobe segment of the source, by which decoders know the colors.
void AppendAdobe(std::vector<uint8_t>& bytes, const JpegParts& parts) {
  for (const JpegSegment& part : parts.head) {
    if (part.marker == jpeg_marker::kApp14 && IsCodingSegment(part)) {
      AppendSegment(bytes, part.marker, part.payload);
    }
  }
}

/// Decodes what the library wrote, which has no segment that tells its colors.
Raster Decoded(Bytes coded, const JpegParts& parts) {
  std::vector<uint8_t> file(coded.begin(), coded.begin() + kStartBytes);
  for (const JpegSegment& part : parts.head) {
    if (BlockOf(part) == JpegBlock::jfif) AppendSegment(file, part.marker, part.payload);
  }
  AppendAdobe(file, parts);
  file.insert(file.end(), coded.begin() + kStartBytes, coded.end());
  return DecodeJpeg(file);
}

/// True if an eighth of the picture is large enough for a thumbnail.
bool IsLarge(const DcPicture& picture) {
  const ThumbnailSides sides = ThumbnailSidesOf(picture.width, picture.height);
  return picture.width >= sides.width * kBlockPixels &&
         picture.height >= sides.height * kBlockPixels;
}

/// Makes the thumbnail of a moved picture.
class ThumbnailMaker {
 public:
  /// Called while the coefficients are there.
  void Look(const DcPicture& picture) {
    sides_ = ThumbnailSidesOf(picture.width, picture.height);
    hasColors_ = HasColors(picture);
    if (hasColors_ && IsLarge(picture)) rows_ = RowsOf(picture);
  }

  /// Empty if the colors are not known. A small picture is decoded; empty if it cannot be.
  std::vector<uint8_t> Make(Bytes coded, const JpegParts& parts) const {
    if (!hasColors_) return {};
    if (rows_) return EncodeThumbnail(*rows_, sides_);
    try {
      return EncodeThumbnail(Decoded(coded, parts), sides_);
    } catch (const UnsupportedError&) {
      return {};  // sampling with fractions
    }
  }

 private:
  std::optional<Raster> rows_;
  ThumbnailSides sides_;
  bool hasColors_ = false;
};

}  // namespace

WrittenPicture MoveJpeg(Bytes file, const PictureHeader& header, const PictureWriting& writing,
                        TStream& stream) {
  RequireExact(header, *writing.move);
  Mover mover(file, header, *writing.move);
  Metadata metadata = writing.metadata;
  const bool makesThumbnail = writing.makesThumbnail && HasThumbnail(metadata);
  ThumbnailMaker thumbnail;
  const std::vector<uint8_t> coded = mover.Move([&](const DcPicture& picture) {
    if (makesThumbnail) thumbnail.Look(picture);
  });
  WrittenPicture written;
  written.layout = header.layout;
  JpegForm form = FormOfJpeg(ReadJpegHead(coded));
  form.adobeTransform = std::get<JpegForm>(header.form).adobeTransform;
  written.form = form;

  if (makesThumbnail) {
    ReplaceThumbnails(metadata, thumbnail.Make(coded, mover.Parts()), written.changes);
  }
  std::vector<uint8_t> head(coded.begin(), coded.begin() + kStartBytes);
  AppendMetadata(head, mover.Parts(), header.metadata, metadata,
                 {.dropsThumbnails = true, .exchangesAxes = writing.move->exchangesAxes},
                 written.changes);
  AppendAdobe(head, mover.Parts());
  stream.Write(head);
  stream.Write(std::span(coded).subspan(kStartBytes));
  return written;
}

}  // namespace rasterkit::detail
