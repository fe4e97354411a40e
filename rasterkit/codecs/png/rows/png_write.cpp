#include <rasterkit/codecs/png/png_frame.h>
#include <rasterkit/codecs/png/png_picture.h>
#include <rasterkit/codecs/png/png_plan.h>
#include <rasterkit/codecs/png/rows/png_row_writer.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {
namespace {

using detail::PngFrame;
using detail::PngPlan;
using detail::PngRowWriter;

void RequireRows(int width, int height) {
  if (width == 0 || height == 0) throw FormatError("PNG: an empty picture cannot be written");
}

/// libpng's passes need the whole picture.
WrittenPicture WriteInterlaced(const PngPlan& plan, const Pixels& pixels,
                               const PictureWriting& writing, TStream& stream) {
  PngFrame frame(plan, {WidthOf(pixels), HeightOf(pixels)}, PngFrame::KeyColorOf(pixels), writing,
                 stream);
  frame.WriteFront(writing.pngLevel.value_or(-1));
  frame.WritePixels(pixels);
  frame.WriteBack();
  return frame.Written();
}

}  // namespace

WrittenPicture WritePng(const Pixels& pixels, const PictureWriting& writing, TStream& stream) {
  const LimitsScope limits;
  const WrittenSize size{WidthOf(pixels), HeightOf(pixels)};
  RequireRows(size.width, size.height);
  PngPlan plan = detail::PlanPng(pixels, PngFrame::WantedForm(writing));
  if (plan.form.interlaced) return WriteInterlaced(plan, pixels, writing, stream);
  PngRowWriter writer(std::move(plan), size, pixels, writing, stream);
  writer.Write(pixels);
  return writer.Finish();
}

std::unique_ptr<RowWriter> OpenPngWriter(const Pixels& like, WrittenSize size,
                                         const PictureWriting& writing, TStream& stream) {
  const LimitsScope limits;
  RequireRows(size.width, size.height);
  auto plan = detail::PlanPngRows(like, size.width, PngFrame::WantedForm(writing));
  if (!plan || plan->form.interlaced || !PngRowWriter::CanBegin(*plan, size)) return nullptr;
  return std::make_unique<PngRowWriter>(*std::move(plan), size, like, writing, stream);
}

}  // namespace rasterkit
