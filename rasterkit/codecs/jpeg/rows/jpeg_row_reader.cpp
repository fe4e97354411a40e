#include <algorithm>
#include <climits>
#include <cstring>

#include <fmt/format.h>

#include <rasterkit/codecs/jpeg/jpeg_limits.h>
#include <rasterkit/codecs/jpeg/missing_scans.h>
#include <rasterkit/codecs/jpeg/rows/jpeg_row_reader.h>
#include <rasterkit/codecs/rows/cmyk_rows.h>
#include <rasterkit/codecs/rows/icc_profile.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/memory/memory_budget.h>

namespace rasterkit::detail {
namespace {

/// Rows per call; the codec may give fewer. Which errors are met does not depend on how many rows
/// are wanted, because the codec is always called for so many.
constexpr int kRowsAtOnce = 16;

void RequireSupported(const JpegFrame& frame) {
  RequireSupportedCoding(frame);
  if (frame.components != 1 && frame.components != 3 && frame.components != 4) {
    throw UnsupportedError(fmt::format("JPEG: {} components are not supported", frame.components));
  }
}

void ChooseOutput(jpeg_decompress_struct& codec, int denominator) {
  codec.dct_method = JDCT_ISLOW;
  codec.scale_num = 1;
  codec.scale_denom = static_cast<unsigned>(denominator);
  if (codec.num_components == 1) {
    codec.out_color_space = JCS_GRAYSCALE;
  } else if (codec.num_components == 3) {
    codec.out_color_space = JCS_EXT_BGR;
  } else {
    codec.out_color_space = JCS_CMYK;
  }
}

/// The most bytes that a row of blocks takes, stuffed ones included.
size_t InputOfBlockRow(const jpeg_decompress_struct& codec) {
  constexpr size_t kBytesPerBlock = 512;
  size_t blocks = 0;
  for (int i = 0; i < codec.num_components; i++) {
    const jpeg_component_info& component = codec.comp_info[i];
    const auto across = static_cast<size_t>(component.width_in_blocks + component.h_samp_factor);
    blocks += across * static_cast<size_t>(component.v_samp_factor);
  }
  return blocks * kBytesPerBlock;
}

uint8_t* RowOf(Pixels& pixels, int y) {
  return std::visit([y](auto& rows) { return rows.Row(y); }, pixels);
}

size_t StrideOf(const Pixels& pixels) {
  return std::visit([](const auto& rows) { return rows.Stride(); }, pixels);
}

}  // namespace

JpegRowReader::JpegRowReader(std::span<const uint8_t> bytes, const JpegReading& reading)
    : reading_(reading), layout_(ReadJpegLayout(bytes)) {
  RequireSupported(layout_.frame);
  reader_ = std::make_unique<JpegReader>(bytes.first(layout_.wholeBytes));
  Open(bytes.size());
}

JpegRowReader::JpegRowReader(TStream& stream, const JpegReading& reading) : reading_(reading) {
  const uint64_t start = stream.Position();
  held_ = ReadJpegHeadBytes(stream);
  JpegParts parts = ReadJpegHead(held_);
  layout_ = LayoutOfJpeg(held_, parts);
  RequireSupported(layout_.frame);
  stream.SetPosition(start);
  const uint64_t fileBytes = stream.Size() - start;
  if (layout_.manyScans) {
    held_ = stream.ReadToEnd();
    layout_ = ReadJpegLayout(held_);
    reader_ = std::make_unique<JpegReader>(std::span(held_).first(layout_.wholeBytes));
  } else {
    input_ = std::make_unique<JpegStreamInput>(stream);
    reader_ = std::make_unique<JpegReader>(*input_);
  }
  Open(fileBytes);
  if (!layout_.manyScans) held_ = {};
}

JpegRowReader::~JpegRowReader() = default;

void JpegRowReader::Open(uint64_t fileBytes) {
  jpeg_decompress_struct* codec = &Codec();
  ChooseOutput(*codec, reading_.denominator);
  reader_->Run([codec] { jpeg_calc_output_dimensions(codec); });
  width_ = static_cast<int>(codec->output_width);
  height_ = static_cast<int>(codec->output_height);
  blockRows_ = codec->max_v_samp_factor * DCTSIZE / reading_.denominator;
  RequireMemory(fileBytes);
  MakeLike();
  keptInput_ = InputOfBlockRow(*codec);
  if (input_) input_->Reserve(keptInput_);
}

/// Checks the memory and time for the picture before anything of its size is allocated.
void JpegRowReader::RequireMemory(uint64_t fileBytes) {
  jpeg_decompress_struct& codec = Codec();
  const TPixelFormat format = GivesInks() ? pf32bit : codec.num_components == 1 ? pf8bit : pf24bit;
  const uint64_t rowBytes = StrideBytes(codec.image_width, StoredBitsPerPixel(format));
  const uint64_t coefficients = layout_.manyScans ? CoefficientBytes(codec) : 0;
  const uint64_t need = rowBytes * codec.image_height + coefficients;
  const std::string what =
      fmt::format("JPEG picture of {} x {} pixels", codec.image_width, codec.image_height);
  const int heldRows = reading_.isWhole ? height_ : std::min(height_, kRowsAtOnce);
  const uint64_t held =
      StrideBytes(width_, StoredBitsPerPixel(format)) * static_cast<uint64_t>(heldRows);
  RequirePicture(codec.image_width, codec.image_height, held + coefficients, what);
  if (!layout_.frame.arithmetic) {
    RequirePlausible({need, StoredBlocks(codec), fileBytes, kBlocksPerByte}, what);
  }
  codec.mem->max_memory_to_use =
      static_cast<long>(std::min<uint64_t>(need + kCodecSlack, LONG_MAX));
  if (layout_.manyScans) reader_->LimitScans(MostScans(codec));
}

Resolution JpegRowReader::StatedResolution() const {
  const jpeg_decompress_struct& codec = Codec();
  if (!codec.saw_JFIF_marker) return {};
  const double unit = codec.density_unit == 1 ? 1 : codec.density_unit == 2 ? 2.54 : 0;
  return {codec.X_density * unit, codec.Y_density * unit};
}

/// The profile of the file if it describes the pixels of the raster; null and a warning for an
/// invalid profile.
ColorProfile JpegRowReader::TakeProfile() {
  const std::vector<JpegProfilePart> parts = std::exchange(layout_.profile, {});
  if (parts.empty() || layout_.frame.components == 4) return nullptr;
  std::vector<uint8_t> bytes = JoinProfile(parts);
  const auto space = layout_.frame.components == 1 ? ProfileSpace::gray : ProfileSpace::rgb;
  if (!ProfileFits(std::span(bytes), space)) {
    profileWarning_ = "JPEG: the color profile is invalid or of another kind and is ignored";
    return nullptr;
  }
  return std::make_shared<const std::vector<uint8_t>>(std::move(bytes));
}

/// The press profile of a file of inks does not take part in showing them, so the samples have
/// none.
void JpegRowReader::MakeLike() {
  ColorProfile profile = TakeProfile();
  if (GivesInks()) {
    PixelLayout inks;
    inks.bands = 4;
    inks.model = ColorModel::cmyk;
    Samples samples(inks, 1, 1);
    samples.resolution = StatedResolution();
    stride_ = static_cast<size_t>(width_) * samples.PixelBytes();
    like_ = std::move(samples);
    return;
  }
  Raster raster(Codec().num_components == 1 ? pf8bit : pf24bit, 0, 0);
  if (raster.Format() == pf8bit) raster.palette = GrayPalette(256);
  raster.resolution = StatedResolution();
  raster.profile = std::move(profile);
  stride_ = StrideBytes(width_, StoredBitsPerPixel(raster.Format()));
  like_ = std::move(raster);
}

void JpegRowReader::Start() {
  if (isStarted_) return;
  jpeg_decompress_struct* codec = &Codec();
  coefficients_ = MemoryShare(layout_.manyScans ? CoefficientBytes(*codec) : 0);
  reader_->Run([codec] { jpeg_start_decompress(codec); });
  isStarted_ = true;
}

/// The first row without data; the height if the data are complete. Throws if no complete row is
/// there.
int JpegRowReader::FirstMissingRow() const {
  if (!HasCut()) return height_;
  const JpegErrors& errors = reader_->Errors();
  const int64_t storedRows = Codec().max_v_samp_factor * DCTSIZE;
  if (errors.endedInRow == 0 && storedRows < static_cast<int64_t>(Codec().image_height)) {
    throw FormatError("JPEG: the data end before the first rows");
  }
  return static_cast<int>(
      std::min(int64_t{height_}, (int64_t{errors.endedInRow} + 1) * blockRows_));
}

/// Decodes the next rows to the given places, which have room for `kRowsAtOnce` or the rest of the
/// picture; returns their number.
int JpegRowReader::DecodeRows(uint8_t* first, size_t stride) {
  RequireTime();
  const int wanted = std::min(kRowsAtOnce, height_ - decoded_);
  jpeg_decompress_struct* codec = &Codec();
  const bool isMixed = codec->out_color_space == JCS_CMYK && !GivesInks();
  const size_t inkStride = static_cast<size_t>(width_) * 4;
  if (isMixed) inkRows_.resize(inkStride * kRowsAtOnce);
  JSAMPROW rows[kRowsAtOnce];
  for (int i = 0; i < wanted; i++) {
    const auto row = static_cast<size_t>(i);
    rows[i] = isMixed ? inkRows_.data() + row * inkStride : first + row * stride;
  }
  if (!layout_.frame.arithmetic) reader_->KeepFilled(keptInput_);
  int count = 0;
  reader_->Run([&] {
    count = static_cast<int>(jpeg_read_scanlines(codec, rows, static_cast<JDIMENSION>(wanted)));
  });
  if (count == 0) throw FormatError("JPEG: the decoder delivers no more rows");
  const bool isAdobe = codec->saw_Adobe_marker != 0;
  for (int i = 0; i < count; i++) {
    uint8_t* row = first + static_cast<size_t>(i) * stride;
    if (isMixed) CmykRowToBgr(rows[i], row, static_cast<size_t>(width_), isAdobe);
    if (!GivesInks() || !isAdobe) continue;
    // Inks of such files are stored inverted.
    std::transform(row, row + inkStride, row,
                   [](uint8_t value) { return static_cast<uint8_t>(~value); });
  }
  decoded_ += count;
  return count;
}

void JpegRowReader::FillWhite(int first, Pixels& target) const {
  const uint8_t white = GivesInks() ? 0 : 0xFF;
  for (int y = first; y < HeightOf(target); y++) {
    std::memset(RowOf(target, y), white, StrideOf(target));
  }
}

void JpegRowReader::Deliver(int top, Pixels& target) {
  const int end = top + HeightOf(target);
  while (next_ < end) {
    if (next_ >= FirstMissingRow()) {
      FillWhite(std::max(next_, top) - top, target);
      next_ = end;
    } else if (buffered_ > 0) {
      const size_t at = static_cast<size_t>(kRowsAtOnce - buffered_);
      if (next_ >= top) {
        std::memcpy(RowOf(target, next_ - top), buffer_.data() + at * stride_, stride_);
      }
      buffered_--;
      next_++;
    } else if (next_ >= top && end - next_ >= std::min(kRowsAtOnce, height_ - next_)) {
      const int count = DecodeRows(RowOf(target, next_ - top), StrideOf(target));
      next_ = std::min(next_ + count, FirstMissingRow());
    } else {
      DecodeToBuffer();
    }
  }
}

/// The rows end with the buffer.
void JpegRowReader::DecodeToBuffer() {
  buffer_.resize(stride_ * kRowsAtOnce);
  const int count = DecodeRows(buffer_.data(), stride_);
  buffered_ = count;
  const auto rest = static_cast<size_t>(kRowsAtOnce - count);
  if (rest == 0) return;
  std::memmove(buffer_.data() + rest * stride_, buffer_.data(),
               static_cast<size_t>(count) * stride_);
}

void JpegRowReader::Read(int, int top, Pixels& target) {
  if (top < next_ || top + HeightOf(target) > height_ || WidthOf(target) != width_) {
    throw RangeError("rows of a JPEG file are read from top to bottom, in full width");
  }
  Start();
  Deliver(top, target);
  if (auto* raster = std::get_if<Raster>(&target)) raster->ClearPadding();
  if (next_ == height_ && !isConcluded_) Conclude();
}

/// Reads the end marker after the rows. Intact rows stay valid regardless of what follows them; if
/// the rows are damaged too, the file is refused.
void JpegRowReader::Conclude() {
  isConcluded_ = true;
  FirstMissingRow();
  jpeg_decompress_struct* codec = &Codec();
  // The library decodes without a word what is there, and forgets it when it finishes.
  if (reading_.asStored && layout_.manyScans) missing_ = MissingScans(*codec);
  if (codec->output_scanline != codec->output_height) return;
  if (reader_->Try([codec] { jpeg_finish_decompress(codec); })) return;
  if (reader_->Errors().damaged) {
    throw FormatError("JPEG: the picture data and what follows them are damaged");
  }
  noticed_.warnings.emplace_back("JPEG: what follows the picture data is damaged");
}

void JpegRowReader::ReportEnd() {
  const JpegErrors& errors = reader_->Errors();
  errors.CopyTo(noticed_);
  const jpeg_decompress_struct& codec = Codec();
  if (layout_.cutOff) {
    noticed_.AddDamage("JPEG: the file is cut off, its last scans are missing");
  }
  if (!HasCut()) return;
  const uint64_t whole =
      uint64_t{errors.endedInRow} * static_cast<uint64_t>(codec.max_v_samp_factor) * DCTSIZE;
  noticed_.AddDamage(fmt::format("JPEG: the data end early, {} of {} rows are complete",
                                 std::min<uint64_t>(whole, codec.image_height),
                                 codec.image_height));
}

void JpegRowReader::Finish(CodecReport& report) {
  if (!isReported_) {
    if (!profileWarning_.empty()) noticed_.warnings.push_back(std::move(profileWarning_));
    ReportEnd();
    // All scans are read before the first row, also where the last rows are not wanted.
    if (isStarted_ && !isConcluded_ && reading_.asStored && layout_.manyScans) {
      missing_ = MissingScans(Codec());
    }
    if (!missing_.empty() && noticed_.damage.empty()) noticed_.AddDamage(std::move(missing_));
  }
  isReported_ = true;
  report.Append(noticed_);
  noticed_ = {};
}

}  // namespace rasterkit::detail

namespace rasterkit {

std::unique_ptr<RowReader> OpenJpegRows(TStream& stream) {
  return std::make_unique<detail::JpegRowReader>(stream, detail::JpegReading{});
}

std::unique_ptr<RowReader> OpenSmallerJpegRows(TStream& stream, int denominator) {
  detail::JpegReading reading;
  reading.denominator = denominator;
  return std::make_unique<detail::JpegRowReader>(stream, reading);
}

}  // namespace rasterkit
