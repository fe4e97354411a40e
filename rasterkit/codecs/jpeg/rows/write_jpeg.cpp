#include <algorithm>
#include <memory>
#include <utility>

#include <rasterkit/codecs/jpeg/jpeg_form.h>
#include <rasterkit/codecs/jpeg/jpeg_picture.h>
#include <rasterkit/codecs/jpeg/jpeg_plan.h>
#include <rasterkit/codecs/jpeg/jpeg_rows.h>
#include <rasterkit/codecs/jpeg/jpeg_writer.h>
#include <rasterkit/codecs/jpeg/rows/jpeg_row_writer.h>
#include <rasterkit/codecs/rows/icc_profile.h>
#include <rasterkit/metadata/jpeg_assembly.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/memory/memory_share.h>

namespace rasterkit {
namespace {

using namespace detail;

J_COLOR_SPACE PixelSpace(const JpegRows& rows) {
  switch (rows.Colors()) {
    case JpegColors::gray:
      return JCS_GRAYSCALE;
    case JpegColors::rgb:
      return rows.IsBgr() ? JCS_EXT_BGR : JCS_EXT_RGB;
    default:
      return JCS_CMYK;
  }
}

J_COLOR_SPACE FileSpace(const JpegPlan& plan) {
  switch (plan.colors) {
    case JpegColors::gray:
      return JCS_GRAYSCALE;
    case JpegColors::rgb:
      return plan.hasChroma ? JCS_YCbCr : JCS_RGB;
    default:
      return plan.hasChroma ? JCS_YCCK : JCS_CMYK;
  }
}

/// The library divides by the steps, so none may be 0.
void SetTables(jpeg_compress_struct& codec, const JpegPlan& plan) {
  for (size_t i = 0; i < plan.tables->size(); i++) {
    if (!(*plan.tables)[i]) continue;
    JQUANT_TBL*& table = codec.quant_tbl_ptrs[i];
    if (table == nullptr) table = jpeg_alloc_quant_table(reinterpret_cast<j_common_ptr>(&codec));
    for (size_t k = 0; k < DCTSIZE2; k++) {
      table->quantval[k] = std::max<UINT16>(1, (*(*plan.tables)[i])[k]);
    }
    table->sent_table = FALSE;
  }
}

void Configure(jpeg_compress_struct& codec, const JpegRows& rows, const JpegPlan& plan) {
  codec.image_width = static_cast<JDIMENSION>(rows.Width());
  codec.image_height = static_cast<JDIMENSION>(rows.Height());
  codec.input_components = static_cast<int>(plan.components.size());
  codec.in_color_space = PixelSpace(rows);
  jpeg_set_defaults(&codec);
  jpeg_set_colorspace(&codec, FileSpace(plan));
  jpeg_set_quality(&codec, plan.quality, TRUE);
  if (plan.tables) SetTables(codec, plan);
  for (size_t i = 0; i < plan.components.size(); i++) {
    jpeg_component_info& component = codec.comp_info[i];
    component.component_id = plan.components[i].id;
    component.h_samp_factor = plan.components[i].h;
    component.v_samp_factor = plan.components[i].v;
    component.quant_tbl_no = plan.components[i].table;
  }
  // Written with the metadata.
  codec.write_JFIF_header = FALSE;
  codec.write_Adobe_marker = plan.hasAdobe ? TRUE : FALSE;
  codec.dct_method = JDCT_ISLOW;
  codec.restart_interval = static_cast<unsigned>(plan.restartInterval);
  codec.arith_code = plan.arithmetic ? TRUE : FALSE;
  codec.optimize_coding = plan.arithmetic ? FALSE : TRUE;
  if (plan.progressive) jpeg_simple_progression(&codec);
}

/// Bytes of the coefficients that the library keeps between its passes.
uint64_t CoefficientBytes(const JpegRows& rows, const JpegPlan& plan) {
  if (plan.arithmetic && !plan.progressive) return 0;
  uint64_t most = 1, sum = 0;
  for (const JpegForm::Component& component : plan.components) {
    const auto samples = static_cast<uint64_t>(component.h) * static_cast<uint64_t>(component.v);
    most = std::max(most, samples);
    sum += samples;
  }
  const auto pixels = static_cast<uint64_t>(rows.Width()) * static_cast<uint64_t>(rows.Height());
  return pixels * sum / most * sizeof(JCOEF);
}

/// A JFIF header says that components are gray or YCbCr. Photographs without one state the
/// resolution in EXIF.
bool HasJfif(const JpegPlan& plan, const PictureWriting& writing) {
  const bool isAllowed = plan.colors == JpegColors::gray || plan.hasChroma;
  const bool isOfJpeg = std::holds_alternative<JpegForm>(writing.form);
  const bool isWanted = writing.metadata.hasJfif || writing.metadata.exif.empty() || !isOfJpeg;
  return isAllowed && isWanted && plan.colors != JpegColors::cmyk;
}

/// The metadata without a profile of other pixels, by which readers would spoil the colors.
Metadata MetadataFor(const JpegPlan& plan, const Metadata& source, Changes& changes) {
  Metadata metadata = source;
  const auto space = plan.colors == JpegColors::gray  ? ProfileSpace::gray
                     : plan.colors == JpegColors::rgb ? ProfileSpace::rgb
                                                      : ProfileSpace::cmyk;
  if (metadata.profile && !ProfileFits(metadata.profile, space)) {
    metadata.profile = nullptr;
    changes.Lose(LossKind::profile, "the color profile", "it describes other pixels");
  }
  return metadata;
}

/// Coded bytes are kept until the end: what they hold decides about the metadata in front.
class JpegRowWriter : public RowWriter {
 public:
  JpegRowWriter(const Pixels& like, WrittenSize size, const PictureWriting& writing,
                TStream& stream)
      : rows_(like, size.width, size.height),
        writing_(writing),
        stream_(stream),
        plan_(PlanJpeg(rows_.Colors(), writing, written_.changes)),
        coefficients_(CoefficientBytes(rows_, plan_)),
        writer_(ExpectedBytes(size, plan_)) {
    written_.layout = LayoutOf(like);
    writer_.WatchTime();
    writer_.Run([this] {
      Configure(writer_.Codec(), rows_, plan_);
      jpeg_start_compress(&writer_.Codec(), TRUE);
    });
  }

  void Write(Pixels& rows) override { Encode(rows); }
  void Encode(const Pixels& rows);
  WrittenPicture Finish() override;

 private:
  static size_t ExpectedBytes(WrittenSize size, const JpegPlan& plan) {
    constexpr size_t kSamplesPerByte = 8;
    return static_cast<size_t>(size.width) * static_cast<size_t>(size.height) *
           plan.components.size() / kSamplesPerByte;
  }

  JpegRows rows_;
  const PictureWriting writing_;
  TStream& stream_;
  WrittenPicture written_;
  const JpegPlan plan_;
  const MemoryShare coefficients_;
  JpegWriter writer_;
  int next_ = 0;
};

void JpegRowWriter::Encode(const Pixels& rows) {
  if (WidthOf(rows) != rows_.Width() || HeightOf(rows) > rows_.Height() - next_) {
    throw RangeError("JPEG: the rows do not fit the picture");
  }
  jpeg_compress_struct* codec = &writer_.Codec();
  const bool isInverted = plan_.colors == JpegColors::cmyk && plan_.hasAdobe;
  JSAMPROW places[JpegRows::kKept];
  for (int y = 0; y < HeightOf(rows);) {
    RequireTime();
    const int count = std::min(JpegRows::kKept, HeightOf(rows) - y);
    // The library takes a pointer to non-constant rows but does not change them.
    for (int i = 0; i < count; i++) {
      places[i] = const_cast<uint8_t*>(rows_.Row(rows, y + i, isInverted));
    }
    writer_.Run([&] { jpeg_write_scanlines(codec, places, static_cast<JDIMENSION>(count)); });
    y += count;
  }
  next_ += HeightOf(rows);
}

WrittenPicture JpegRowWriter::Finish() {
  if (next_ != rows_.Height()) throw RangeError("JPEG: rows of the picture are missing");
  writer_.Run([this] { jpeg_finish_compress(&writer_.Codec()); });
  const std::vector<uint8_t> coded = writer_.TakeBytes();
  written_.form = ReadJpegForm(coded);
  // The metadata stand between the start marker and the rest.
  constexpr size_t kStartBytes = 2;
  stream_.Write(std::span(coded).first(kStartBytes));
  const Metadata metadata = MetadataFor(plan_, writing_.metadata, written_.changes);
  for (const NewJpegSegment& segment :
       AssembleJpegSegments(metadata, HasJfif(plan_, writing_), written_.changes)) {
    stream_.Write(BytesOf(segment));
  }
  stream_.Write(std::span(coded).subspan(kStartBytes));
  return std::move(written_);
}

}  // namespace

WrittenPicture WriteJpeg(const Pixels& pixels, const PictureWriting& writing, TStream& stream) {
  const LimitsScope limits;
  JpegRowWriter writer(pixels, {WidthOf(pixels), HeightOf(pixels)}, writing, stream);
  writer.Encode(pixels);
  return writer.Finish();
}

std::unique_ptr<RowWriter> OpenJpegWriter(const Pixels& like, WrittenSize size,
                                          const PictureWriting& writing, TStream& stream) {
  const LimitsScope limits;
  return std::make_unique<JpegRowWriter>(like, size, writing, stream);
}

}  // namespace rasterkit
