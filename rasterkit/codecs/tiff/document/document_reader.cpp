#include <atomic>

#include <fmt/format.h>
#include <tiff.h>

#include <rasterkit/codecs/tiff/document/document_state.h>
#include <rasterkit/codecs/tiff/document/kept_position.h>
#include <rasterkit/codecs/tiff/pages/new_page.h>
#include <rasterkit/codecs/tiff/pages/page_copy.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {

namespace {

std::unique_ptr<TMemoryStream> MemoryOf(TStream& stream) {
  if (stream.Size() > stream.Position()) return nullptr;
  return std::make_unique<TMemoryStream>(stream.ReadToEnd());
}

uint64_t NextNumber() {
  static std::atomic<uint64_t> last = 0;
  return ++last;
}

}  // namespace

TiffDocumentReader::State::State(TStream& source)
    : memory(MemoryOf(source)),
      stream(memory ? *memory : source),
      reader(stream),
      chain(reader),
      number(NextNumber()) {}

size_t TiffDocumentReader::State::IndexOf(int page) const {
  if (page < 1 || page > chain.Pages()) {
    throw RangeError(fmt::format("TIFF: page {} of {} does not exist", page, chain.Pages()));
  }
  return static_cast<size_t>(page) - 1;
}

detail::TagDirectory TiffDocumentReader::State::Directory(int page) const {
  auto directory = reader.Directory(chain.At(IndexOf(page)));
  if (!directory) {
    throw FormatError(fmt::format("TIFF: the directory of page {} cannot be read", page));
  }
  return std::move(*directory);
}

std::unique_ptr<detail::PageStream> TiffDocumentReader::State::StreamOf(int page,
                                                                        TStream& bytes) const {
  const size_t index = IndexOf(page);
  auto result = std::make_unique<detail::PageStream>(bytes, reader, chain.At(index));
  result->EndAfter(reader, chain.LastAt(index), chain);
  return result;
}

uint64_t TiffDocumentReader::State::BytesOf(int page, const PictureWriting* writing) const {
  detail::CopiedSource source(reader);
  detail::PageCopier copier(reader, source, writing);
  copier.SetChain(chain);
  copier.Collect(Directory(page), chain.Following(IndexOf(page)));
  return copier.MostBytes();
}

TiffDocumentReader::TiffDocumentReader(TStream& stream) {
  const LimitsScope limits;
  state_ = std::make_unique<State>(stream);
}

TiffDocumentReader::~TiffDocumentReader() = default;

int TiffDocumentReader::Pages() const {
  return state_->chain.Pages();
}

bool TiffDocumentReader::IsBigTiff() const {
  return state_->reader.IsBig();
}

bool TiffDocumentReader::IsBigEndian() const {
  return state_->reader.IsBigEndian();
}

std::unique_ptr<TStream> TiffDocumentReader::PageStream(int page) const {
  return state_->StreamOf(page, state_->stream);
}

std::unique_ptr<TStream> TiffDocumentReader::PageStream(int page, TStream& stream) const {
  return state_->StreamOf(page, stream);
}

uint64_t TiffDocumentReader::PageBytes(int page, const PictureWriting* writing) const {
  const LimitsScope limits;
  return state_->BytesOf(page, writing);
}

std::optional<TiffPageNumber> TiffDocumentReader::PageNumber(int page) const {
  const auto numbers = state_->reader.Integers(state_->Directory(page), TIFFTAG_PAGENUMBER, 2);
  if (numbers.size() != 2) return std::nullopt;
  return TiffPageNumber{static_cast<uint16_t>(numbers[0]), static_cast<uint16_t>(numbers[1])};
}

int CountTiffPages(TStream& stream) {
  const detail::KeptPosition kept(stream);
  return TiffDocumentReader(stream).Pages();
}

std::unique_ptr<TStream> TiffPageStream(TStream& stream, int page) {
  const LimitsScope limits;
  const detail::KeptPosition kept(stream);
  std::unique_ptr<TMemoryStream> memory = MemoryOf(stream);
  TStream& source = memory ? *memory : stream;
  const detail::TagReader reader(source);
  const detail::PageChain chain(reader);
  if (page < 1 || page > chain.Pages()) {
    throw RangeError(fmt::format("TIFF: page {} of {} does not exist", page, chain.Pages()));
  }
  const size_t index = static_cast<size_t>(page) - 1;
  auto result = std::make_unique<detail::PageStream>(source, reader, chain.At(index));
  result->EndAfter(reader, chain.LastAt(index), chain);
  result->Own(std::move(memory));
  return result;
}

uint64_t TiffPageBytes(TStream& stream, int page) {
  const detail::KeptPosition kept(stream);
  return TiffDocumentReader(stream).PageBytes(page);
}

uint64_t TiffPageBytes(const Pixels& pixels, const PictureWriting& writing,
                       std::span<const TiffExtraPage> extraPages) {
  return detail::NewPage(pixels, writing, extraPages).MostBytes();
}

}  // namespace rasterkit
