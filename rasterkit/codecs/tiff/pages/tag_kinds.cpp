#include <tiff.h>

#include <rasterkit/codecs/tiff/pages/tag_kinds.h>

namespace rasterkit::detail {

TagKind KindOfTag(uint16_t tag) {
  switch (tag) {
    case TIFFTAG_SUBFILETYPE:
    case TIFFTAG_OSUBFILETYPE:
    case TIFFTAG_IMAGEWIDTH:
    case TIFFTAG_IMAGELENGTH:
    case TIFFTAG_BITSPERSAMPLE:
    case TIFFTAG_COMPRESSION:
    case TIFFTAG_PHOTOMETRIC:
    case TIFFTAG_FILLORDER:
    case TIFFTAG_STRIPOFFSETS:
    case TIFFTAG_SAMPLESPERPIXEL:
    case TIFFTAG_ROWSPERSTRIP:
    case TIFFTAG_STRIPBYTECOUNTS:
    case TIFFTAG_PLANARCONFIG:
    case TIFFTAG_FREEOFFSETS:
    case TIFFTAG_FREEBYTECOUNTS:
    case TIFFTAG_GROUP3OPTIONS:
    case TIFFTAG_GROUP4OPTIONS:
    case TIFFTAG_PAGENUMBER:
    case TIFFTAG_PREDICTOR:
    case TIFFTAG_COLORMAP:
    case TIFFTAG_TILEWIDTH:
    case TIFFTAG_TILELENGTH:
    case TIFFTAG_TILEOFFSETS:
    case TIFFTAG_TILEBYTECOUNTS:
    case TIFFTAG_BADFAXLINES:
    case TIFFTAG_CLEANFAXDATA:
    case TIFFTAG_CONSECUTIVEBADFAXLINES:
    case TIFFTAG_EXTRASAMPLES:
    case TIFFTAG_SAMPLEFORMAT:
    case TIFFTAG_JPEGTABLES:
    case TIFFTAG_JPEGPROC:
    case TIFFTAG_JPEGIFOFFSET:
    case TIFFTAG_JPEGIFBYTECOUNT:
    case TIFFTAG_JPEGRESTARTINTERVAL:
    case TIFFTAG_JPEGLOSSLESSPREDICTORS:
    case TIFFTAG_JPEGPOINTTRANSFORM:
    case TIFFTAG_JPEGQTABLES:
    case TIFFTAG_JPEGDCTABLES:
    case TIFFTAG_JPEGACTABLES:
    case TIFFTAG_YCBCRCOEFFICIENTS:
    case TIFFTAG_YCBCRSUBSAMPLING:
    case TIFFTAG_YCBCRPOSITIONING:
    case TIFFTAG_REFERENCEBLACKWHITE:
    case TIFFTAG_LERC_PARAMETERS:
      return TagKind::structure;
    case TIFFTAG_SUBIFD:
    case kGlobalParameters:
    case TIFFTAG_EXIFIFD:
    case TIFFTAG_GPSIFD:
    case kInteropPointer:
      return TagKind::pointer;
    case TIFFTAG_XMLPACKET:
    case TIFFTAG_RICHTIFFIPTC:
    case TIFFTAG_PHOTOSHOP:
    case TIFFTAG_ICCPROFILE:
      return TagKind::block;
    case 33550:  // pixel scale
    case 33922:  // tie points
    case 34264:  // transformation
    case 34735:  // keys of the coordinate system, their numbers and their texts
    case 34736:
    case 34737:
    case 42113:  // "no data"
    case 50844:  // rational polynomial coefficients
      return TagKind::position;
    case TIFFTAG_ORIENTATION:
    case TIFFTAG_XRESOLUTION:
    case TIFFTAG_YRESOLUTION:
    case TIFFTAG_RESOLUTIONUNIT:
      return TagKind::display;
    case TIFFTAG_THRESHHOLDING:
    case TIFFTAG_CELLWIDTH:
    case TIFFTAG_CELLLENGTH:
    case TIFFTAG_MINSAMPLEVALUE:
    case TIFFTAG_MAXSAMPLEVALUE:
    case TIFFTAG_GRAYRESPONSEUNIT:
    case TIFFTAG_GRAYRESPONSECURVE:
    case TIFFTAG_TRANSFERFUNCTION:
    case TIFFTAG_HALFTONEHINTS:
    case TIFFTAG_SMINSAMPLEVALUE:
    case TIFFTAG_SMAXSAMPLEVALUE:
    case 342:  // range of the transfer function
    case TIFFTAG_INKSET:
    case TIFFTAG_INKNAMES:
    case TIFFTAG_NUMBEROFINKS:
    case TIFFTAG_DOTRANGE:
    case kLayersTag:
      return TagKind::ofSamples;
    default:
      return TagKind::free;
  }
}

bool LeadsToDirectory(uint16_t tag, uint16_t type) {
  return KindOfTag(tag) == TagKind::pointer || type == TIFF_IFD || type == TIFF_IFD8;
}

}  // namespace rasterkit::detail
