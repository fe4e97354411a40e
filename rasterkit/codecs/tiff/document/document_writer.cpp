#include <map>
#include <set>

#include <tiff.h>

#include <rasterkit/codecs/tiff/document/document_state.h>
#include <rasterkit/codecs/tiff/document/kept_position.h>
#include <rasterkit/codecs/tiff/document/other_order.h>
#include <rasterkit/codecs/tiff/pages/new_page.h>
#include <rasterkit/codecs/tiff/pages/page_copy.h>
#include <rasterkit/codecs/tiff/pages/page_facts.h>
#include <rasterkit/codecs/tiff/pages/tag_file_writer.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/atomic_file.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {

namespace {

/// A source with the pages of it that share their bytes with each other.
struct UsedSource {
  detail::CopiedSource copied;
  std::set<int> pages;
};

/// Form and layout of a page that may be of a kind that cannot be decoded.
void DescribePage(const detail::TagReader& reader, const detail::TagDirectory& first,
                  WrittenPicture& written) {
  written.form = TiffForm{};
  try {
    detail::PageFacts facts = FactsOfPage(reader, first);
    written.form = facts.form;
    written.layout = facts.layout;
  } catch (const Error&) {
    // Its bytes are copied all the same.
  }
}

}  // namespace

struct TiffDocumentWriter::State {
  State(TStream& stream, bool isBigTiff, bool isBigEndian)
      : target(stream), file(IsSeekable(stream) ? stream : memory, isBigTiff, isBigEndian) {}

  detail::CopiedSource& SourceOf(const TiffDocumentReader::State& source, int page);
  WrittenPicture Copy(const TiffDocumentReader::State& source, int page,
                      const PictureWriting* writing);
  bool CanCopy(const TiffDocumentReader::State& source, int page) const;
  std::optional<TagValue> TakeNumber();
  void RequireWhole() const {
    if (isBroken) throw FormatError("TIFF: a page of the document has failed");
  }
  template <typename Page>
  void Write(Page& page, Changes& changes) {
    isBroken = true;
    linkAt = page.Write(file, linkAt, changes);
    isBroken = false;
    hasPages = true;
  }

  TStream& target;
  /// The file, if the header of the target cannot be completed last.
  TMemoryStream memory;
  detail::TagFileWriter file;
  uint64_t linkAt = file.FirstLinkAt();
  bool hasPages = false;
  /// True while a page is written: what a page that failed has left must not be in a file.
  bool isBroken = false;
  std::optional<TiffPageNumber> number;
  std::map<uint64_t, UsedSource> sources;
};

/// A page that is copied again gets bytes of its own.
detail::CopiedSource& TiffDocumentWriter::State::SourceOf(const TiffDocumentReader::State& source,
                                                          int page) {
  const auto known = sources.find(source.number);
  if (known != sources.end() && known->second.pages.contains(page)) sources.erase(known);
  UsedSource& used =
      sources.try_emplace(source.number, UsedSource{detail::CopiedSource(source.reader), {}})
          .first->second;
  used.pages.insert(page);
  return used.copied;
}

std::optional<TagValue> TiffDocumentWriter::State::TakeNumber() {
  if (!number) return std::nullopt;
  const uint16_t words[] = {number->index, number->total};
  number.reset();
  return detail::WordsTag(TIFFTAG_PAGENUMBER, words);
}

bool TiffDocumentWriter::State::CanCopy(const TiffDocumentReader::State& source, int page) const {
  const size_t index = source.IndexOf(page);
  return source.reader.IsBigEndian() == file.IsBigEndian() ||
         FitsOtherOrder(source.reader, source.Directory(page), source.chain.Following(index));
}

WrittenPicture TiffDocumentWriter::State::Copy(const TiffDocumentReader::State& source, int page,
                                               const PictureWriting* writing) {
  const LimitsScope limits;
  RequireWhole();
  if (!CanCopy(source, page)) {
    throw UnsupportedError(
        "TIFF: the pixels of a page are in the other order of bytes and cannot be copied");
  }
  const detail::TagDirectory first = source.Directory(page);
  WrittenPicture written;
  DescribePage(source.reader, first, written);
  auto& form = std::get<TiffForm>(written.form);
  form.isBigTiff = file.IsBig();
  form.isBigEndian = file.IsBigEndian();
  detail::PageCopier copier(source.reader, SourceOf(source, page), writing);
  copier.SetChain(source.chain);
  copier.Collect(first, source.chain.Following(source.IndexOf(page)));
  if (const auto value = TakeNumber()) copier.SetPageNumber(*value);
  Write(copier, written.changes);
  return written;
}

TiffDocumentWriter::TiffDocumentWriter(TStream& target, bool isBigTiff, bool isBigEndian)
    : state_(std::make_unique<State>(target, isBigTiff, isBigEndian)) {}

TiffDocumentWriter::~TiffDocumentWriter() = default;

bool TiffDocumentWriter::CanCopyPage(const TiffDocumentReader& source, int page) const {
  const LimitsScope limits;
  return state_->CanCopy(*source.state_, page);
}

bool TiffDocumentWriter::CanCopyPage(TStream& source, int page) const {
  const detail::KeptPosition kept(source);
  return CanCopyPage(TiffDocumentReader(source), page);
}

WrittenPicture TiffDocumentWriter::CopyPage(const TiffDocumentReader& source, int page) {
  return state_->Copy(*source.state_, page, nullptr);
}

WrittenPicture TiffDocumentWriter::CopyPage(const TiffDocumentReader& source, int page,
                                            const PictureWriting& writing) {
  return state_->Copy(*source.state_, page, &writing);
}

WrittenPicture TiffDocumentWriter::CopyPage(TStream& source, int page) {
  const detail::KeptPosition kept(source);
  return CopyPage(TiffDocumentReader(source), page);
}

WrittenPicture TiffDocumentWriter::CopyPage(TStream& source, int page,
                                            const PictureWriting& writing) {
  const detail::KeptPosition kept(source);
  return CopyPage(TiffDocumentReader(source), page, writing);
}

WrittenPicture TiffDocumentWriter::AddPage(const Pixels& pixels, const PictureWriting& writing,
                                           std::span<const TiffExtraPage> extraPages) {
  const LimitsScope limits;
  state_->RequireWhole();
  detail::NewPage page(pixels, writing, extraPages);
  if (const auto value = state_->TakeNumber()) page.SetPageNumber(*value);
  WrittenPicture written = page.Written();
  auto& form = std::get<TiffForm>(written.form);
  form.isBigTiff = state_->file.IsBig();
  form.isBigEndian = state_->file.IsBigEndian();
  state_->Write(page, written.changes);
  return written;
}

void TiffDocumentWriter::NumberNextPage(const TiffPageNumber& number) {
  state_->number = number;
}

void TiffDocumentWriter::Finish() {
  state_->RequireWhole();
  if (!state_->hasPages) throw FormatError("TIFF: a document needs a page");
  state_->file.Finish();
  if (!IsSeekable(state_->target)) state_->target.Write(state_->memory.Bytes());
}

}  // namespace rasterkit
