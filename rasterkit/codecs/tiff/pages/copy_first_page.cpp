#include <algorithm>
#include <optional>

#include <rasterkit/codecs/tiff/pages/page_copy.h>
#include <rasterkit/codecs/tiff/pages/page_facts.h>
#include <rasterkit/codecs/tiff/tiff_pages.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/atomic_file.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {

namespace {

using namespace detail;

/// For directories and values.
constexpr uint64_t kSpareBytes = 1 << 20;

WrittenPicture CopyFirst(const TagReader& reader, const PictureWriting& writing, TStream& target) {
  const auto first = reader.Directory(reader.First());
  if (!first) throw FormatError("TIFF: the first directory cannot be read");
  const PageFacts facts = FactsOfPage(reader, *first);
  WrittenPicture written;
  written.form = facts.form;
  written.layout = facts.layout;
  CopiedSource source(reader);
  PageCopier copier(reader, source, &writing);
  copier.Collect(*first, FamilyOf(reader, *first).following);
  const uint64_t most = copier.MostBytes() + kSpareBytes + std::min(reader.Size(), source.left);
  const bool isBig = reader.IsBig() || most > UINT32_MAX;
  if (isBig != reader.IsBig()) std::get<TiffForm>(written.form).isBigTiff = true;
  TagFileWriter file(target, isBig, reader.IsBigEndian());
  copier.Write(file, file.FirstLinkAt(), written.changes);
  if (isBig != reader.IsBig()) {
    written.changes.Note("written as a BigTIFF file, which exceeds 4 GiB");
  }
  file.Finish();
  return written;
}

}  // namespace

WrittenPicture CopyTiff(TStream& source, const PictureWriting& writing, TStream& stream) {
  const LimitsScope limits;
  std::optional<TMemoryStream> memory;
  if (source.Size() <= source.Position()) memory.emplace(source.ReadToEnd());
  const TagReader reader(memory ? *memory : source);
  if (IsSeekable(stream)) return CopyFirst(reader, writing, stream);
  // The header is completed last.
  TMemoryStream whole;
  WrittenPicture written = CopyFirst(reader, writing, whole);
  stream.Write(whole.Bytes());
  return written;
}

}  // namespace rasterkit
