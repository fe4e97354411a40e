#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include <rasterkit/pictures/document/document.h>
#include <rasterkit/pictures/open_source.h>
#include <rasterkit/pictures/picture_parts.h>
#include <rasterkit/pictures/save_pages.h>
#include <rasterkit/pictures/side_file_losses.h>
#include <rasterkit/pictures/sources/page_sink.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace {

/// A page of an open file, or a picture.
struct Entry {
  detail::SourcePtr file;
  int page = 1;
  std::optional<Picture> picture;
};

}  // namespace

struct Document::State {
  std::vector<Entry> pages;

  void Require(int page, int most) const {
    if (page >= 1 && page <= most) return;
    throw RangeError(fmt::format("there is no page {}: the document has {}", page, pages.size()));
  }
  int Count() const { return static_cast<int>(pages.size()); }
  auto At(int page) { return pages.begin() + (page - 1); }
  const Entry& Get(int page) const {
    Require(page, Count());
    return pages[static_cast<size_t>(page) - 1];
  }

  detail::FileParts Parts(PictureType type, const SaveOptions& options) const;
};

namespace {

Picture PictureOf(const Entry& entry) {
  if (entry.picture) return *entry.picture;
  return detail::PictureParts::Of(
      entry.page == entry.file->Page() ? entry.file : entry.file->OpenPage(entry.page));
}

}  // namespace

detail::FileParts Document::State::Parts(PictureType type, const SaveOptions& options) const {
  if (pages.empty()) throw RangeError("a document without pages cannot be written");
  if (type != PictureType::tiff) {
    if (pages.size() == 1) return detail::PartsOf(PictureOf(pages.front()), type, options);
    throw UnsupportedError(
        fmt::format("files of the type {} hold one picture: the document has {} pages",
                    PictureTypeName(type), pages.size()));
  }
  detail::FileParts parts;
  parts.type = type;
  parts.isDocument = true;
  parts.isNumbered = pages.size() > 1;
  for (const Entry& entry : pages) {
    if (entry.picture) {
      parts.pages.push_back({detail::PictureParts::Source(*entry.picture),
                             detail::PictureParts::SharedState(*entry.picture),
                             detail::PictureParts::Source(*entry.picture)->Page()});
    } else {
      parts.pages.push_back({entry.file, nullptr, entry.page});
    }
  }
  return parts;
}

Document::Document() : state_(std::make_unique<State>()) {}
Document::Document(const Document& other) : state_(std::make_unique<State>(*other.state_)) {}
Document::Document(Document&&) noexcept = default;
Document::~Document() = default;

Document& Document::operator=(Document other) noexcept {
  state_ = std::move(other.state_);
  return *this;
}

namespace {

std::vector<Entry> EntriesOf(const detail::SourcePtr& source) {
  std::vector<Entry> entries;
  if (source->Type() != PictureType::tiff) {
    entries.push_back({nullptr, 1, detail::PictureParts::Of(source)});
    return entries;
  }
  for (int page = 1; page <= source->Header().pages; ++page) {
    entries.push_back({source, page, std::nullopt});
  }
  return entries;
}

OpenOptions FirstPage(OpenOptions options) {
  options.page = 1;
  return options;
}

}  // namespace

Document Document::Open(const std::string& file, const OpenOptions& options) {
  Document document;
  document.state_->pages = EntriesOf(detail::OpenSource(file, FirstPage(options)));
  return document;
}

Document Document::Open(std::vector<uint8_t> bytes, const OpenOptions& options) {
  Document document;
  document.state_->pages = EntriesOf(detail::OpenSource(std::move(bytes), FirstPage(options)));
  return document;
}

Document Document::Of(const Picture& picture) {
  Document document;
  document.state_->pages.push_back({nullptr, 1, picture});
  return document;
}

int Document::Pages() const {
  return state_->Count();
}

Picture Document::Page(int page) const {
  const Entry& entry = state_->Get(page);
  try {
    return PictureOf(entry);
  } catch (const UnsupportedError& error) {
    // Other pages of the file can be of a kind that is supported.
    throw UnsupportedError(fmt::format("page {}: {}", page, error.Reason()), error.File());
  }
}

bool Document::IsAsStored(int page) const {
  return !state_->Get(page).picture;
}

namespace {

void TakeFacts(const detail::PictureSource& source, DocumentPage& facts) {
  const PictureHeader& header = source.Header();
  facts.width = header.width;
  facts.height = header.height;
  facts.layout = header.layout;
  facts.form = header.form;
  facts.resolution = header.metadata.resolution;
  facts.smallerCopies = header.smallerCopies;
  facts.masks = header.masks;
}

DocumentPage FactsOf(const Picture& picture) {
  DocumentPage facts;
  const detail::PictureSource& source = *detail::PictureParts::Source(picture);
  TakeFacts(source, facts);
  facts.file = source.File();
  facts.page = source.Page();
  facts.width = picture.Width();
  facts.height = picture.Height();
  facts.layout = picture.Layout();
  facts.resolution = picture.GetMetadata().resolution;
  return facts;
}

DocumentPage FactsOf(const Entry& entry, detail::SourceFiles& files) {
  DocumentPage facts;
  facts.file = entry.file->File();
  facts.page = entry.page;
  try {
    const bool isOpen = entry.page == entry.file->Page();
    TakeFacts(*(isOpen ? entry.file : entry.file->OpenPage(entry.page)), facts);
    const TiffDocumentReader* const file = files.Of(*entry.file);
    if (file != nullptr) facts.bytes = file->PageBytes(entry.page);
  } catch (const FormatError& error) {
    facts.error = error.Reason();
  } catch (const UnsupportedError& error) {
    facts.error = error.Reason();
  }
  return facts;
}

}  // namespace

std::vector<DocumentPage> Document::List() const {
  detail::SourceFiles files;
  std::vector<DocumentPage> list;
  for (const Entry& entry : state_->pages) {
    list.push_back(entry.picture ? FactsOf(*entry.picture) : FactsOf(entry, files));
  }
  return list;
}

std::vector<std::string> Document::Warnings() const {
  std::vector<std::string> warnings;
  for (const Entry& entry : state_->pages) {
    const detail::PictureSource& source =
        entry.picture ? *detail::PictureParts::Source(*entry.picture) : *entry.file;
    const std::string& lost = source.Header().lostPages;
    if (!lost.empty() && std::find(warnings.begin(), warnings.end(), lost) == warnings.end()) {
      warnings.push_back(lost);
    }
  }
  return warnings;
}

Document& Document::Insert(int page, const Document& pages) {
  state_->Require(page, Pages() + 1);
  // A document can be inserted into itself.
  const std::vector<Entry> entries = pages.state_->pages;
  state_->pages.insert(state_->At(page), entries.begin(), entries.end());
  return *this;
}

Document& Document::Remove(int page) {
  state_->Require(page, Pages());
  state_->pages.erase(state_->At(page));
  return *this;
}

Document& Document::Move(int page, int to) {
  state_->Require(page, Pages());
  state_->Require(to, Pages());
  if (page < to) {
    std::rotate(state_->At(page), state_->At(page + 1), state_->At(to + 1));
  } else {
    std::rotate(state_->At(to), state_->At(page), state_->At(page + 1));
  }
  return *this;
}

Document& Document::Replace(int page, const Picture& picture) {
  state_->Require(page, Pages());
  *state_->At(page) = {nullptr, 1, picture};
  return *this;
}

Document& Document::Select(std::span<const int> pages) {
  std::vector<Entry> chosen;
  chosen.reserve(pages.size());
  for (const int page : pages) chosen.push_back(state_->Get(page));
  state_->pages = std::move(chosen);
  return *this;
}

Report Document::Plan(const std::string& file, const SaveOptions& options) const {
  const PictureType type = detail::TargetType(file, options);
  return detail::PlanOfFile(state_->Parts(type, options), file, options);
}

Report Document::PlanStream(const SaveOptions& options) const {
  SaveOptions typed = options;
  if (!typed.type) typed.type = PictureType::tiff;
  const detail::FileParts parts = state_->Parts(detail::TargetType({}, typed), typed);
  return detail::ForeseeParts(parts, typed, false);
}

Report Document::Save(const std::string& file, const SaveOptions& options, const Run& run) const {
  PendingSave save = Prepare(file, options, run);
  save.Commit();
  return save.Report();
}

Report Document::Save(TStream& stream, const SaveOptions& options, const Run& run) const {
  detail::RunScope scope(run);
  SaveOptions typed = options;
  if (!typed.type) typed.type = PictureType::tiff;
  const detail::FileParts parts = state_->Parts(detail::TargetType({}, typed), typed);
  return detail::WriteParts(stream, parts, typed, false, scope);
}

PendingSave Document::Prepare(const std::string& file, const SaveOptions& options,
                              const Run& run) const {
  try {
    return {state_->Parts(detail::TargetType(file, options), options), file, options, run};
  } catch (Error& error) {
    error.AttachFile(file);
    throw;
  }
}

}  // namespace rasterkit
