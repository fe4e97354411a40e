#include <algorithm>
#include <cstring>
#include <exception>
#include <string>

#include <fmt/format.h>
#include <openjpeg.h>

#include <rasterkit/codecs/jp2/jp2_tiles.h>
#include <rasterkit/codecs/rows/plausible_size.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit::detail {
namespace {

constexpr size_t kBufferBytes = size_t{1} << 20;
constexpr size_t kMostMessages = 1000, kMostKinds = 5;

uint32_t StepsUp(uint32_t place, uint32_t step) {
  return place / step + (place % step != 0);
}

int SampleBytes(int bits) {
  constexpr int kByte = 8, kWord = 16;
  if (bits <= kByte) return 1;
  return bits <= kWord ? 2 : 4;
}

/// The codestream as the library reads it. Exceptions must not pass through its C code.
struct Source {
  TStream* stream = nullptr;
  uint64_t begin = 0, bytes = 0, position = 0;
  std::exception_ptr error;
};

OPJ_SIZE_T ReadSome(void* target, OPJ_SIZE_T bytes, void* data) {
  constexpr auto kEnd = static_cast<OPJ_SIZE_T>(-1);
  auto& source = *static_cast<Source*>(data);
  try {
    RequireTime();
    const uint64_t count = std::min<uint64_t>(bytes, source.bytes - source.position);
    if (count == 0) return kEnd;
    source.stream->SetPosition(source.begin + source.position);
    const size_t read =
        source.stream->Read({static_cast<uint8_t*>(target), static_cast<size_t>(count)});
    source.position += read;
    return read == 0 ? kEnd : read;
  } catch (...) {
    source.error = std::current_exception();
    return kEnd;
  }
}

OPJ_OFF_T Skip(OPJ_OFF_T bytes, void* data) {
  auto& source = *static_cast<Source*>(data);
  const uint64_t left = source.bytes - source.position;
  if (bytes < 0 || left == 0) return -1;
  const uint64_t count = std::min(static_cast<uint64_t>(bytes), left);
  source.position += count;
  return static_cast<OPJ_OFF_T>(count);
}

OPJ_BOOL Seek(OPJ_OFF_T position, void* data) {
  auto& source = *static_cast<Source*>(data);
  if (position < 0 || static_cast<uint64_t>(position) > source.bytes) return OPJ_FALSE;
  source.position = static_cast<uint64_t>(position);
  return OPJ_TRUE;
}

void Collect(const char* message, void* data) {
  auto& texts = *static_cast<std::vector<std::string>*>(data);
  std::string text(message);
  while (!text.empty() && (text.back() == '\n' || text.back() == '.')) text.pop_back();
  if (texts.size() < kMostMessages) texts.push_back(std::move(text));
}

/// Messages that differ in their numbers alone.
struct MessageKind {
  std::string shape, first;
  size_t count = 0;
};

std::string ShapeOf(std::string text) {
  std::erase_if(text, [](char c) { return (c >= '0' && c <= '9') || c == '-'; });
  return text;
}

struct StreamEnd {
  void operator()(opj_stream_t* stream) const { opj_stream_destroy(stream); }
};
struct CodecEnd {
  void operator()(opj_codec_t* codec) const { opj_destroy_codec(codec); }
};
struct ImageEnd {
  void operator()(opj_image_t* image) const { opj_image_destroy(image); }
};

}  // namespace

Jp2Area Jp2Area::Every(uint32_t stepX, uint32_t stepY) const {
  return {StepsUp(left, stepX), StepsUp(top, stepY), StepsUp(right, stepX), StepsUp(bottom, stepY)};
}

int32_t Jp2TilePlane::At(uint32_t x, uint32_t y) const {
  const size_t index = static_cast<size_t>(y - area.top) * area.Width() + (x - area.left);
  const uint8_t* sample = samples.data() + index * static_cast<size_t>(sampleBytes);
  if (sampleBytes == 1) return isSigned ? static_cast<int8_t>(*sample) : *sample;
  if (sampleBytes == 2) {
    uint16_t word = 0;
    std::memcpy(&word, sample, sizeof word);
    return isSigned ? static_cast<int16_t>(word) : word;
  }
  int32_t number = 0;
  std::memcpy(&number, sample, sizeof number);
  return number;
}

Jp2Area TileArea(const Jp2Codestream& codestream, uint64_t index) {
  const uint64_t column = index % codestream.TilesAcross(), row = index / codestream.TilesAcross();
  const auto range = [](uint64_t number, uint32_t first, uint32_t side, uint32_t low, uint32_t high,
                        uint32_t& from, uint32_t& to) {
    const uint64_t start = first + number * side;
    from = static_cast<uint32_t>(std::clamp<uint64_t>(start, low, high));
    to = static_cast<uint32_t>(std::clamp<uint64_t>(start + side, low, high));
  };
  Jp2Area area;
  range(column, codestream.tileLeft, codestream.tileWidth, codestream.left, codestream.right,
        area.left, area.right);
  range(row, codestream.tileTop, codestream.tileHeight, codestream.top, codestream.bottom, area.top,
        area.bottom);
  return area;
}

namespace {

/// What the library keeps for each of these, rounded up.
constexpr uint64_t kTileBytes = 6000, kTileComponentBytes = 1200, kPrecinctBytes = 1200,
                   kBlockBytes = 250, kNumberBytes = 2 * sizeof(int32_t);

uint64_t Sum(uint64_t a, uint64_t b) {
  return a > kNoLimit - b ? kNoLimit : a + b;
}

/// Precincts and code blocks of one component of a tile, and how many precincts a resolution has at
/// most.
struct Blocks {
  uint64_t precincts = 0, blocks = 0, mostPrecincts = 1;
};

Blocks BlocksOf(const Jp2Codestream& codestream, uint64_t width, uint64_t height) {
  Blocks result;
  for (int i = 0; i <= codestream.levels; ++i) {
    const int below = codestream.levels - i;
    const Jp2Precinct precinct =
        codestream.precincts.empty() ? Jp2Precinct() : codestream.precincts[static_cast<size_t>(i)];
    const auto count = [&](uint64_t side, int exponent) {
      return ((side >> below) >> exponent) + 2;
    };
    const uint64_t precincts =
        SaturatedProduct(count(width, precinct.width), count(height, precinct.height));
    const int half = i == 0 ? 0 : 1;
    const int blockWidth = std::min(codestream.blockWidth, std::max(precinct.width - half, 0));
    const int blockHeight = std::min(codestream.blockHeight, std::max(precinct.height - half, 0));
    result.precincts = Sum(result.precincts, precincts);
    result.blocks =
        Sum(result.blocks, SaturatedProduct(count(width, blockWidth), count(height, blockHeight)));
    result.mostPrecincts = std::max(result.mostPrecincts, precincts);
  }
  return result;
}

}  // namespace

uint64_t TileReaderBytes(const Jp2Codestream& codestream) {
  const uint64_t width = std::min(codestream.tileWidth, codestream.right - codestream.left);
  const uint64_t height = std::min(codestream.tileHeight, codestream.bottom - codestream.top);
  const uint64_t components = codestream.components.size();
  uint64_t bytes =
      SaturatedProduct(codestream.Tiles(), kTileBytes + kTileComponentBytes * components);
  // Compressed data of a tile are kept until it is decoded.
  bytes = Sum(bytes, codestream.bytes);
  uint64_t mostPrecincts = 1;
  for (const Jp2Component& component : codestream.components) {
    const uint64_t across = width / component.stepX + 1, down = height / component.stepY + 1;
    const auto stored = static_cast<uint64_t>(SampleBytes(component.bits));
    bytes = Sum(bytes, SaturatedProduct(SaturatedProduct(across, down), kNumberBytes + stored));
    const Blocks blocks = BlocksOf(codestream, across, down);
    bytes = Sum(bytes, SaturatedProduct(blocks.precincts, kPrecinctBytes));
    bytes = Sum(bytes, SaturatedProduct(blocks.blocks, kBlockBytes));
    mostPrecincts = std::max(mostPrecincts, blocks.mostPrecincts);
  }
  // A mark for each packet.
  const auto layers = static_cast<uint64_t>(codestream.layers) + 1;
  const auto levels = static_cast<uint64_t>(codestream.levels) + 1;
  return Sum(bytes, SaturatedProduct(SaturatedProduct(layers * components, levels),
                                     SaturatedProduct(mostPrecincts, sizeof(int16_t))));
}

struct Jp2TileReader::State {
  State(TStream& input, const Jp2Codestream& header, CodecReport& noticed)
      : codestream(header), report(noticed) {
    source = {&input, header.at, BytesOfWholeParts(input, header), 0, nullptr};
  }

  void Open(int threads);
  bool ReadTile(uint32_t& index, uint32_t& bytes);
  bool Place(Jp2Tile& tile, uint32_t index);
  void CheckImage() const;
  void TakeMessages();
  void ReportDamage();
  [[noreturn]] void Throw(const char* otherwise) const;
  void RethrowOfStream() const {
    if (source.error) std::rethrow_exception(source.error);
  }

  const Jp2Codestream& codestream;
  CodecReport& report;
  Source source;
  std::vector<std::string> warnings, errors;
  std::vector<MessageKind> damage;
  std::unique_ptr<opj_stream_t, StreamEnd> stream;
  std::unique_ptr<opj_codec_t, CodecEnd> codec;
  std::unique_ptr<opj_image_t, ImageEnd> image;
  std::vector<uint8_t> samples;
  uint64_t done = 0;
  bool isOver = false;
};

void Jp2TileReader::State::Throw(const char* otherwise) const {
  RethrowOfStream();
  throw FormatError(fmt::format("JPEG 2000: {}", errors.empty() ? otherwise : errors.front()));
}

void Jp2TileReader::State::Open(int threads) {
  stream.reset(opj_stream_create(kBufferBytes, OPJ_TRUE));
  codec.reset(opj_create_decompress(OPJ_CODEC_J2K));
  if (!stream || !codec) throw LimitError("JPEG 2000: out of memory");
  opj_stream_set_user_data(stream.get(), &source, nullptr);
  opj_stream_set_user_data_length(stream.get(), source.bytes);
  opj_stream_set_read_function(stream.get(), ReadSome);
  opj_stream_set_skip_function(stream.get(), Skip);
  opj_stream_set_seek_function(stream.get(), Seek);
  opj_set_warning_handler(codec.get(), Collect, &warnings);
  opj_set_error_handler(codec.get(), Collect, &errors);
  opj_dparameters_t parameters;
  opj_set_default_decoder_parameters(&parameters);
  if (!opj_setup_decoder(codec.get(), &parameters)) Throw("the decoder cannot be set up");
#if OPJ_VERSION_MAJOR > 2 || (OPJ_VERSION_MAJOR == 2 && OPJ_VERSION_MINOR >= 5)
  opj_decoder_set_strict_mode(codec.get(), OPJ_FALSE);
#endif
  if (threads > 1) opj_codec_set_threads(codec.get(), threads);
  opj_image_t* read = nullptr;
  const bool isRead = opj_read_header(stream.get(), codec.get(), &read) != OPJ_FALSE;
  image.reset(read);
  if (!isRead || !image) Throw("the header of the codestream is damaged");
  RethrowOfStream();
  CheckImage();
  for (const std::string& text : warnings) report.warnings.push_back("JPEG 2000: " + text);
  warnings.clear();
}

/// Places of samples are computed from the header as it was read here.
void Jp2TileReader::State::CheckImage() const {
  bool isSame = image->numcomps == codestream.components.size();
  for (size_t i = 0; isSame && i < codestream.components.size(); ++i) {
    const opj_image_comp_t& one = image->comps[i];
    const Jp2Component& other = codestream.components[i];
    isSame = one.dx == other.stepX && one.dy == other.stepY &&
             one.prec == static_cast<OPJ_UINT32>(other.bits) && (one.sgnd != 0) == other.isSigned;
  }
  if (!isSame) Throw("the header of the codestream is ambiguous");
}

bool Jp2TileReader::State::ReadTile(uint32_t& index, uint32_t& bytes) {
  OPJ_INT32 left = 0, top = 0, right = 0, bottom = 0;
  OPJ_UINT32 components = 0;
  OPJ_BOOL goesOn = OPJ_FALSE;
  const bool isRead = opj_read_tile_header(codec.get(), stream.get(), &index, &bytes, &left, &top,
                                           &right, &bottom, &components, &goesOn) != OPJ_FALSE;
  RethrowOfStream();
  return isRead && goesOn != OPJ_FALSE;
}

/// Finds the planes within the samples. False if they are not as many as the header says.
bool Jp2TileReader::State::Place(Jp2Tile& tile, uint32_t index) {
  if (index >= codestream.Tiles()) return false;
  tile.index = index;
  tile.area = TileArea(codestream, index);
  tile.planes.clear();
  size_t at = 0;
  for (const Jp2Component& component : codestream.components) {
    Jp2TilePlane plane;
    plane.area = tile.area.Every(component.stepX, component.stepY);
    plane.sampleBytes = SampleBytes(component.bits);
    plane.isSigned = component.isSigned;
    const size_t bytes = static_cast<size_t>(plane.area.Width()) * plane.area.Height() *
                         static_cast<size_t>(plane.sampleBytes);
    if (samples.size() - at < bytes) return false;
    plane.samples = std::span(samples).subspan(at, bytes);
    tile.planes.push_back(plane);
    at += bytes;
  }
  return at == samples.size();
}

/// Messages while tiles are decoded are about data that are missing or corrupt.
void Jp2TileReader::State::TakeMessages() {
  for (const auto* texts : {&warnings, &errors}) {
    for (const std::string& text : *texts) {
      const std::string shape = ShapeOf(text);
      const auto known = std::find_if(damage.begin(), damage.end(),
                                      [&](const MessageKind& kind) { return kind.shape == shape; });
      if (known != damage.end()) {
        ++known->count;
      } else if (damage.size() < kMostKinds) {
        damage.push_back({shape, text, 1});
      }
    }
  }
  warnings.clear();
  errors.clear();
}

/// The library says the same of each code block that is cut off.
void Jp2TileReader::State::ReportDamage() {
  for (const MessageKind& kind : damage) {
    std::string text = "JPEG 2000: " + kind.first;
    if (kind.count > 1) text += fmt::format(" ({} messages of this kind)", kind.count);
    report.AddDamage(std::move(text));
  }
  damage.clear();
}

Jp2TileReader::Jp2TileReader(TStream& stream, const Jp2Codestream& codestream, int threads,
                             CodecReport& report)
    : state_(std::make_unique<State>(stream, codestream, report)) {
  state_->Open(threads);
}

Jp2TileReader::~Jp2TileReader() = default;

bool Jp2TileReader::Next(Jp2Tile& tile) {
  while (!state_->isOver) {
    RequireTime();
    // A file can hold a tile again and again.
    if (state_->done++ > state_->codestream.Tiles()) break;
    uint32_t index = 0, bytes = 0;
    if (!state_->ReadTile(index, bytes)) {
      state_->isOver = true;
      break;
    }
    state_->samples.resize(bytes);
    const bool isDecoded = opj_decode_tile_data(state_->codec.get(), index, state_->samples.data(),
                                                bytes, state_->stream.get()) != OPJ_FALSE;
    state_->RethrowOfStream();
    state_->TakeMessages();
    if (isDecoded && state_->Place(tile, index)) return true;
  }
  state_->TakeMessages();
  state_->ReportDamage();
  return false;
}

}  // namespace rasterkit::detail
