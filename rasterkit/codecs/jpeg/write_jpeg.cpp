#include <algorithm>

#include <rasterkit/codecs/jpeg/jpeg_form.h>
#include <rasterkit/codecs/jpeg/jpeg_picture.h>
#include <rasterkit/codecs/jpeg/jpeg_plan.h>
#include <rasterkit/codecs/jpeg/jpeg_rows.h>
#include <rasterkit/codecs/jpeg/jpeg_writer.h>
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

std::vector<uint8_t> Encode(JpegRows& rows, const JpegPlan& plan) {
  const MemoryShare coefficients(CoefficientBytes(rows, plan));
  const auto pixels = static_cast<size_t>(rows.Width()) * static_cast<size_t>(rows.Height());
  JpegWriter writer(pixels * plan.components.size() / 8);
  writer.WatchTime();
  jpeg_compress_struct& codec = writer.Codec();
  const bool inverted = plan.colors == JpegColors::cmyk && plan.hasAdobe;
  writer.Run([&] {
    Configure(codec, rows, plan);
    jpeg_start_compress(&codec, TRUE);
  });
  const uint8_t* batch[JpegRows::kKept];
  JSAMPROW places[JpegRows::kKept];
  for (int y = 0; y < rows.Height();) {
    RequireTime();
    const int count = std::min(JpegRows::kKept, rows.Height() - y);
    for (int i = 0; i < count; i++) batch[i] = rows.Row(y + i, inverted);
    // The library takes a pointer to non-constant rows but does not change them.
    for (int i = 0; i < count; i++) places[i] = const_cast<uint8_t*>(batch[i]);
    writer.Run([&] { jpeg_write_scanlines(&codec, places, static_cast<JDIMENSION>(count)); });
    y += count;
  }
  writer.Run([&] { jpeg_finish_compress(&codec); });
  return writer.TakeBytes();
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

}  // namespace

WrittenPicture WriteJpeg(const Pixels& pixels, const PictureWriting& writing, TStream& stream) {
  const LimitsScope limits;
  JpegRows rows(pixels);
  WrittenPicture written;
  const JpegPlan plan = PlanJpeg(rows.Colors(), writing, written.changes);
  const std::vector<uint8_t> coded = Encode(rows, plan);
  written.form = ReadJpegForm(coded);
  written.layout = LayoutOf(pixels);
  // The metadata stand between the start marker and the rest.
  constexpr size_t kStartBytes = 2;
  stream.Write(std::span(coded).first(kStartBytes));
  const Metadata metadata = MetadataFor(plan, writing.metadata, written.changes);
  for (const NewJpegSegment& segment :
       AssembleJpegSegments(metadata, HasJfif(plan, writing), written.changes)) {
    stream.Write(BytesOf(segment));
  }
  stream.Write(std::span(coded).subspan(kStartBytes));
  return written;
}

}  // namespace rasterkit
