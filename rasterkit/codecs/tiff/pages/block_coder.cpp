#include <algorithm>
#include <memory>
#include <new>
#include <utility>

#include <rasterkit/codecs/g4/g4_strip.h>
#include <rasterkit/codecs/tiff/pages/block_coder.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {

namespace {

struct OptionsDeleter {
  void operator()(TIFFOpenOptions* options) const { TIFFOpenOptionsFree(options); }
};

/// Rows as wide as those of a block if they become G4, else nothing.
G4Strip G4Of(const PagePlan& plan) {
  if (plan.form.compression != COMPRESSION_CCITTFAX4 || plan.bits != 1 ||
      plan.BlockSamples() != 1) {
    return {};
  }
  return {plan.BlockWidth(), 0, plan.form.fillOrder == FILLORDER_LSB2MSB};
}

}  // namespace

BlockCoder::BlockCoder(const PagePlan& plan) : isTiled_(plan.IsTiled()), g4_(G4Of(plan)) {
  const std::unique_ptr<TIFFOpenOptions, OptionsDeleter> options(TIFFOpenOptionsAlloc());
  if (!options) throw std::bad_alloc();
  TIFFOpenOptionsSetErrorHandlerExtR(options.get(), TiffMessages::OnError, &messages_);
  TIFFOpenOptionsSetWarningHandlerExtR(options.get(), TiffMessages::OnWarning, &messages_);
  // 64-bit places, so that their number is never too large for the handle.
  tiff_ = TIFFClientOpenExt("picture", plan.form.isBigEndian ? "wb8" : "wl8", this, OnRead, OnWrite,
                            OnSeek, OnClose, OnSize, nullptr, nullptr, options.get());
  Require(tiff_ != nullptr);
  try {
    SetTags(plan);
    const bool isTurned =
        plan.form.predictor == PREDICTOR_FLOATINGPOINT && TIFFIsByteSwapped(tiff_) != 0;
    if (isTurned) turnedBytes_ = plan.bits / 8;
    bytes_.clear();
  } catch (...) {
    isOpen_ = false;
    TIFFClose(tiff_);
    throw;
  }
}

BlockCoder::~BlockCoder() {
  // Closing would write a directory.
  isOpen_ = false;
  TIFFClose(tiff_);
}

void BlockCoder::SetTags(const PagePlan& plan) {
  const TiffForm& form = plan.form;
  Set(TIFFTAG_IMAGEWIDTH, plan.width);
  Set(TIFFTAG_IMAGELENGTH, plan.height);
  Set(TIFFTAG_BITSPERSAMPLE, plan.bits);
  Set(TIFFTAG_SAMPLESPERPIXEL, plan.samples);
  Set(TIFFTAG_SAMPLEFORMAT, plan.sampleFormat);
  Set(TIFFTAG_PLANARCONFIG, form.isPlanar ? PLANARCONFIG_SEPARATE : PLANARCONFIG_CONTIG);
  Set(TIFFTAG_FILLORDER, form.fillOrder);
  Set(TIFFTAG_COMPRESSION, form.compression);
  SetColorTags(plan);
  if (plan.IsTiled()) {
    Set(TIFFTAG_TILEWIDTH, form.tileWidth);
    Set(TIFFTAG_TILELENGTH, form.tileHeight);
  } else {
    Set(TIFFTAG_ROWSPERSTRIP, form.rowsPerStrip);
  }
  if (form.predictor != PREDICTOR_NONE) Set(TIFFTAG_PREDICTOR, form.predictor);
  if (plan.level) Set(TIFFTAG_ZIPQUALITY, *plan.level);
  if (form.compression == COMPRESSION_WEBP) Set(TIFFTAG_WEBP_LOSSLESS, 1);
}

void BlockCoder::SetColorTags(const PagePlan& plan) {
  Set(TIFFTAG_PHOTOMETRIC, plan.form.photometric);
  if (!plan.extraSamples.empty()) {
    Set(TIFFTAG_EXTRASAMPLES, static_cast<int>(plan.extraSamples.size()), plan.extraSamples.data());
  }
  if (plan.form.compression != COMPRESSION_JPEG) return;
  Set(TIFFTAG_JPEGQUALITY, plan.form.jpegQuality);
  if (!plan.IsJpegOfColor()) return;
  Set(TIFFTAG_YCBCRSUBSAMPLING, plan.form.subsamplingX, plan.form.subsamplingY);
  Set(TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
}

std::vector<uint8_t> BlockCoder::Encode(uint32_t block, std::span<uint8_t> samples) {
  if (g4_.width > 0) {
    G4Strip strip = g4_;
    strip.rows = static_cast<uint32_t>(samples.size() / strip.RowBytes());
    if (strip.IsUsual()) return EncodeG4Strip(samples, strip);
  }
  const auto count = static_cast<tmsize_t>(samples.size());
  // libtiff turns the bytes of a number before the predictor, which needs them unturned.
  if (turnedBytes_ > 0) {
    for (size_t at = 0; at + turnedBytes_ <= samples.size(); at += turnedBytes_) {
      std::reverse(samples.data() + at, samples.data() + at + turnedBytes_);
    }
  }
  const tmsize_t done = isTiled_ ? TIFFWriteEncodedTile(tiff_, block, samples.data(), count)
                                 : TIFFWriteEncodedStrip(tiff_, block, samples.data(), count);
  Require(done == count);
  return std::exchange(bytes_, {});
}

std::vector<uint8_t> BlockCoder::JpegTables() const {
  uint32_t count = 0;
  const uint8_t* bytes = nullptr;
  uint16_t compression = 0;
  TIFFGetField(tiff_, TIFFTAG_COMPRESSION, &compression);
  if (compression != COMPRESSION_JPEG ||
      TIFFGetField(tiff_, TIFFTAG_JPEGTABLES, &count, &bytes) != 1) {
    return {};
  }
  return {bytes, bytes + count};
}

void BlockCoder::Require(bool isDone) {
  if (error_) std::rethrow_exception(error_);
  if (isDone) return;
  const std::vector<std::string> errors = messages_.TakeErrors();
  throw FormatError("TIFF: " + (errors.empty() ? "the picture cannot be written" : errors[0]));
}

tmsize_t BlockCoder::OnRead(thandle_t, void*, tmsize_t) {
  return -1;
}

/// Called by the library, through which no exception may pass.
tmsize_t BlockCoder::OnWrite(thandle_t self, void* bytes, tmsize_t count) {
  if (count <= 0) return 0;
  auto& coder = *static_cast<BlockCoder*>(self);
  if (!coder.isOpen_) return -1;
  try {
    const auto* source = static_cast<const uint8_t*>(bytes);
    coder.bytes_.insert(coder.bytes_.end(), source, source + count);
  } catch (...) {
    coder.error_ = std::current_exception();
    return -1;
  }
  coder.position_ += static_cast<uint64_t>(count);
  coder.size_ = std::max(coder.size_, coder.position_);
  return count;
}

toff_t BlockCoder::OnSeek(thandle_t self, toff_t offset, int origin) {
  auto& coder = *static_cast<BlockCoder*>(self);
  const uint64_t base = origin == SEEK_CUR ? coder.position_ : origin == SEEK_END ? coder.size_ : 0;
  coder.position_ = base + offset;
  return coder.position_;
}

toff_t BlockCoder::OnSize(thandle_t self) {
  return static_cast<BlockCoder*>(self)->size_;
}

int BlockCoder::OnClose(thandle_t) {
  return 0;
}

}  // namespace rasterkit::detail
