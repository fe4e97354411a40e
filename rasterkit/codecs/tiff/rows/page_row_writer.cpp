#include <utility>

#include <rasterkit/codecs/tiff/pages/new_page.h>
#include <rasterkit/codecs/tiff/pages/page_output.h>
#include <rasterkit/codecs/tiff/tiff_pages.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/atomic_file.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {

namespace {

using namespace detail;

/// The planned page, as a BigTIFF file if it could be too large for another one.
WrittenPicture PlanFile(const NewPage& page) {
  WrittenPicture written = page.Written();
  auto& form = std::get<TiffForm>(written.form);
  if (!form.isBigTiff && page.MostBytes() > UINT32_MAX) {
    form.isBigTiff = true;
    written.changes.Note("written as BigTIFF: the file could exceed 4 GiB");
  }
  return written;
}

TagFileWriter FileFor(const WrittenPicture& written, TStream& stream) {
  const auto& form = std::get<TiffForm>(written.form);
  return {stream, form.isBigTiff, form.isBigEndian};
}

/// Writes a file of one page. Used under the limits of each call.
class TiffRowsWriter : public RowWriter {
 public:
  TiffRowsWriter(const Pixels& like, WrittenSize size, const PictureWriting& writing,
                 TStream& stream)
      : writing_(writing),
        page_(like, size, writing_),
        written_(PlanFile(page_)),
        stream_(stream),
        file_(FileFor(written_, IsSeekable(stream) ? stream : memory_)),
        blocks_(page_.PlanFor(file_), writing_.threads, file_) {}

  void Write(Pixels& rows) override { Add(rows); }
  void Add(const Pixels& rows) {
    const LimitsScope limits;
    blocks_.Write(rows);
  }
  WrittenPicture Finish() override;

 private:
  const PictureWriting writing_;
  NewPage page_;
  WrittenPicture written_;
  TStream& stream_;
  /// The file, if the header of the target cannot be completed last.
  TMemoryStream memory_;
  TagFileWriter file_;
  PageOutput blocks_;
};

WrittenPicture TiffRowsWriter::Finish() {
  const LimitsScope limits;
  page_.WriteTags(blocks_.Finish(), file_, file_.FirstLinkAt(), written_.changes);
  file_.Finish();
  if (!IsSeekable(stream_)) stream_.Write(memory_.Bytes());
  return std::move(written_);
}

}  // namespace

std::unique_ptr<RowWriter> OpenTiffWriter(const Pixels& like, WrittenSize size,
                                          const PictureWriting& writing, TStream& stream) {
  const LimitsScope limits;
  Changes changes;
  const PagePlan plan = PlanPage(like, size, writing.form, changes);
  // The planes of a planar page follow each other.
  if (plan.form.isPlanar) return nullptr;
  return std::make_unique<TiffRowsWriter>(like, size, writing, stream);
}

WrittenPicture WriteTiff(const Pixels& pixels, const PictureWriting& writing,
                         std::span<const TiffExtraPage> extraPages, TStream& stream) {
  const LimitsScope limits;
  if (extraPages.empty()) {
    TiffRowsWriter writer(pixels, {WidthOf(pixels), HeightOf(pixels)}, writing, stream);
    writer.Add(pixels);
    return writer.Finish();
  }
  NewPage page(pixels, writing, extraPages);
  WrittenPicture written = PlanFile(page);
  TMemoryStream memory;
  TagFileWriter file = FileFor(written, IsSeekable(stream) ? stream : memory);
  page.Write(file, file.FirstLinkAt(), written.changes);
  file.Finish();
  if (!IsSeekable(stream)) stream.Write(memory.Bytes());
  return written;
}

WrittenPicture WriteTiff(const Pixels& pixels, const PictureWriting& writing, TStream& stream) {
  return WriteTiff(pixels, writing, {}, stream);
}

}  // namespace rasterkit
