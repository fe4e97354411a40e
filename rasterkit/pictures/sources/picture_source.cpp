#include <rasterkit/codecs/picture_io.h>
#include <rasterkit/pictures/sources/picture_source.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {

std::unique_ptr<RowReader> PictureSource::OpenRows(int) const {
  return nullptr;
}

SourcePtr PictureSource::OpenPage(int page) const {
  throw RangeError("there is no page " + std::to_string(page), File());
}

IsolatedDocument PictureSource::WriteDocument(const DocumentOrder&) const {
  throw UnsupportedError("the pages of the file are not copied by a worker", File());
}

Pixels PictureSource::ReadExtraPage(size_t, int, CodecReport&) const {
  throw RangeError("the picture has no smaller copies and masks");
}

std::unique_ptr<RowReader> PictureSource::OpenSmaller(const SmallerForm&, int) const {
  throw RangeError("the picture has no smaller form");
}

WrittenPicture PictureSource::Copy(const PictureWriting& writing, TStream& target) const {
  const std::unique_ptr<TStream> bytes = Bytes();
  WrittenPicture written = CopyPicture(Type(), *bytes, writing, target);
  Bytes();  // throws if the file changed meanwhile
  return written;
}

}  // namespace rasterkit::detail
