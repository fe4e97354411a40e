#pragma once

#include <string>
#include <vector>

#include <rasterkit/codecs/tiff/tiff_document.h>

#include "tests/codecs/tiff/document/made_document.h"

namespace rasterkit::test {

/// The order and the width of a file.
struct FileKind {
  bool isBig = false, isBigEndian = false;
};
inline constexpr FileKind kFileKinds[] = {
    {false, false}, {false, true}, {true, false}, {true, true}};

inline std::string NameOf(const FileKind& kind) {
  return std::string(kind.isBigEndian ? "big-endian" : "little-endian") +
         (kind.isBig ? " BigTIFF" : " classic");
}

/// The file of these pages, counted from 1, with all of their tags.
inline ByteList CopiedPages(const ByteList& bytes, const std::vector<int>& pages,
                            const FileKind& kind) {
  TSpanStream stream(bytes);
  const TiffDocumentReader source(stream);
  TMemoryStream target;
  TiffDocumentWriter writer(target, kind.isBig, kind.isBigEndian);
  for (const int page : pages) {
    const WrittenPicture written = writer.CopyPage(source, page);
    EXPECT_TRUE(written.changes.losses.empty());
  }
  writer.Finish();
  return target.TakeBytes();
}

}  // namespace rasterkit::test
