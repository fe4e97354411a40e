#pragma once

#include <rasterkit/codecs/tiff/rows/tiff_picture.h>
#include <rasterkit/codecs/tiff/tiff_block_reader.h>

namespace rasterkit::detail {

/// Reads a picture of 8-bit YCbCr samples in separate planes into B G R rows. The planes of Cb and
/// Cr may have fewer samples, as the tag for subsampling says; a file whose planes all have full
/// size in spite of that tag is read too. Throws FormatError and UnsupportedError for invalid and
/// unsupported arrangements, and the errors of the stream.
TiffOutcome ReadTiffYcbcrPlanes(TiffHandle& handle, const TiffLayout& layout,
                                const TiffBlanks& blanks, const TiffTarget& target);

}  // namespace rasterkit::detail
