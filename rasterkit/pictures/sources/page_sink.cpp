#include <algorithm>
#include <optional>
#include <utility>

#include <fmt/format.h>

#include <rasterkit/codecs/picture_io.h>
#include <rasterkit/codecs/picture_pages.h>
#include <rasterkit/pictures/sources/page_sink.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {
namespace {

/// Calls `copy`; an error gets the name of the file, and a second look finds a change of it.
template <class CopyPage>
WrittenPicture Guarded(const PictureSource& source, const CopyPage& copy) {
  try {
    WrittenPicture written = copy();
    source.WholeFile();
    return written;
  } catch (Error& error) {
    error.AttachFile(source.File());
    throw;
  }
}

/// Copies pages in this process.
class DirectSink : public PageSink {
 public:
  DirectSink(TStream& target, const TiffKind& kind, SourceFiles& files)
      : target_(target), files_(files), writer_(target, kind.isBigTiff, kind.isBigEndian) {}

  WrittenPicture Write(PictureType, const Pixels& pixels, const PictureWriting& writing,
                       std::span<const TiffExtraPage> extraPages) override {
    return Keep(writer_.AddPage(pixels, writing, extraPages));
  }
  WrittenPicture Copy(const PictureSource& source, const PictureWriting& writing,
                      bool asStored) override {
    return Keep(Guarded(source, [&] {
      const TiffDocumentReader& file = FileOf(source);
      return asStored ? writer_.CopyPage(file, source.Page())
                      : writer_.CopyPage(file, source.Page(), writing);
    }));
  }
  uint64_t Position() const override { return target_.Position(); }
  bool CanCopy(const PictureSource& source, int page) override {
    const TiffDocumentReader* const file = files_.Of(source);
    return file != nullptr && writer_.CanCopyPage(*file, page);
  }
  void Place(const PictureSource& source, int page, const PagePlace& place) override {
    if (const TiffDocumentReader* const file = files_.Of(source)) {
      NumberMovedPage(*file, {page, place.page, place.count}, writer_);
    }
  }
  void CopyAsStored(const PictureSource& source, int page) override {
    try {
      Keep(Guarded(source, [&] { return writer_.CopyPage(FileOf(source), page); }));
    } catch (const FormatError& error) {
      throw FormatError(fmt::format("page {}: {}", page, error.Reason()), source.File());
    }
  }
  std::vector<WrittenPicture> Finish() override {
    writer_.Finish();
    return std::move(pages_);
  }

 private:
  const TiffDocumentReader& FileOf(const PictureSource& source) {
    const TiffDocumentReader* const file = files_.Of(source);
    if (file == nullptr) throw UnsupportedError("the picture is no page of a TIFF file");
    return *file;
  }
  WrittenPicture Keep(WrittenPicture written) {
    pages_.push_back(written);
    return written;
  }

  TStream& target_;
  SourceFiles& files_;
  TiffDocumentWriter writer_;
  std::vector<WrittenPicture> pages_;
};

/// Lets workers copy the pages of the files that they read. Each worker gets one file, and what is
/// there already as a second one.
class ApartSink : public PageSink {
 public:
  ApartSink(TStream& target, const TiffKind& kind, SourceFiles& files)
      : target_(target), kind_(kind), near_(nearBytes_, kind, files) {}

  WrittenPicture Write(PictureType type, const Pixels& pixels, const PictureWriting& writing,
                       std::span<const TiffExtraPage> extraPages) override {
    return Near(near_.Write(type, pixels, writing, extraPages));
  }
  WrittenPicture Copy(const PictureSource& source, const PictureWriting& writing,
                      bool asStored) override {
    if (!source.IsApart()) return Near(near_.Copy(source, writing, asStored));
    WrittenPicture written;
    written.form = writing.form;
    Far(source, source.Page(), asStored ? std::nullopt : std::optional(writing));
    return written;
  }
  uint64_t Position() const override { return nearBytes_.Position(); }
  bool CanCopy(const PictureSource& source, int page) override {
    if (source.Type() != PictureType::tiff) return false;
    if (!source.IsApart()) return near_.CanCopy(source, page);
    const auto* first = std::get_if<TiffForm>(&source.Header().form);
    // All pages of a file have one order of bytes.
    if (first != nullptr && first->isBigEndian == kind_.isBigEndian) return true;
    constexpr int kByte = 8;
    const SourcePtr opened = page == source.Page() ? nullptr : source.OpenPage(page);
    return (opened ? *opened : source).Header().layout.bits <= kByte;
  }
  void Place(const PictureSource& source, int page, const PagePlace& place) override {
    place_ = place;
    origin_ = source.IsApart() && source.Type() == PictureType::tiff ? &source : nullptr;
    oldPage_ = page;
    if (!source.IsApart()) near_.Place(source, page, place);
  }
  void CopyAsStored(const PictureSource& source, int page) override {
    if (source.IsApart()) return Far(source, page, std::nullopt);
    near_.CopyAsStored(source, page);
    Near({});
  }
  std::vector<WrittenPicture> Finish() override {
    std::vector<WrittenPicture> nearPages;
    std::vector<uint8_t> bytes;
    if (hasNear_) {
      nearPages = near_.Finish();
      bytes = nearBytes_.TakeBytes();
    }
    std::vector<WrittenPicture> pages(places_.size());
    for (size_t i = 0, next = 0; i < places_.size(); ++i) {
      if (places_[i].file == nullptr) pages[i] = nearPages.at(next++);
    }
    for (const PictureSource* file = NextFile(); file != nullptr; file = NextFile()) {
      bytes = Joined(*file, std::move(bytes), pages);
    }
    target_.Write(bytes);
    return pages;
  }

 private:
  /// One page of the new file; without a file it stands among those written so far.
  struct Ordered {
    const PictureSource* file = nullptr;
    int page = 1;
    std::optional<PictureWriting> writing = {};
    PagePlace place = {};
    /// The page that a new one comes from.
    const PictureSource* origin = nullptr;
    int oldPage = 0;
  };

  WrittenPicture Near(WrittenPicture written) {
    places_.push_back({nullptr, 1, std::nullopt, place_, origin_, oldPage_});
    hasNear_ = true;
    return written;
  }
  void Far(const PictureSource& source, int page, std::optional<PictureWriting> writing) {
    places_.push_back({&source, page, std::move(writing), place_, nullptr, 0});
  }

  /// A file whose pages are not there yet, or whose new pages have no numbers yet.
  const PictureSource* NextFile() const {
    for (const Ordered& place : places_) {
      if (place.file != nullptr) return place.file;
      if (place.origin != nullptr) return place.origin;
    }
    return nullptr;
  }

  static bool IsOfFile(const PictureSource* source, const PictureSource& file) {
    return source != nullptr && source->FileIdentity() == file.FileIdentity();
  }

  /// Puts the pages of a file among those that are there.
  std::vector<uint8_t> Joined(const PictureSource& file, std::vector<uint8_t> bytes,
                              std::vector<WrittenPicture>& pages) {
    DocumentOrder order{kind_.isBigTiff, kind_.isBigEndian, {}, std::move(bytes)};
    std::vector<size_t> copied;
    int nearPage = 0;
    for (size_t i = 0; i < places_.size(); ++i) {
      Ordered& place = places_[i];
      if (place.file == nullptr) {
        const bool isOfFile = IsOfFile(place.origin, file);
        order.pages.push_back({true, ++nearPage, std::nullopt, place.place.page, place.place.count,
                               isOfFile ? place.oldPage : 0});
        if (isOfFile) place.origin = nullptr;
      } else if (IsOfFile(place.file, file)) {
        order.pages.push_back(
            {false, place.page, std::move(place.writing), place.place.page, place.place.count, 0});
      } else {
        continue;
      }
      copied.push_back(i);
    }
    IsolatedDocument document = [&] {
      try {
        return file.WriteDocument(order);
      } catch (Error& error) {
        error.AttachFile(file.File());
        throw;
      }
    }();
    if (!document.damaged.empty()) {
      for (DamagedPage& page : document.damaged) page.index = copied.at(page.index);
      throw DamagedPages(std::move(document.damaged));
    }
    for (size_t i = 0; i < copied.size(); ++i) {
      Ordered& place = places_[copied[i]];
      if (place.file != nullptr) pages[copied[i]] = std::move(document.pages[i]);
      place.file = nullptr;
    }
    return std::move(document.bytes);
  }

  TStream& target_;
  const TiffKind kind_;
  TMemoryStream nearBytes_;
  DirectSink near_;
  bool hasNear_ = false;
  std::vector<Ordered> places_;
  PagePlace place_;
  const PictureSource* origin_ = nullptr;
  int oldPage_ = 0;
};

}  // namespace

WrittenPicture StreamTarget::Write(PictureType type, const Pixels& pixels,
                                   const PictureWriting& writing,
                                   std::span<const TiffExtraPage> extraPages) {
  if (extraPages.empty()) return WritePicture(type, pixels, writing, stream_);
  return WriteTiff(pixels, writing, extraPages, stream_);
}

std::unique_ptr<RowWriter> StreamTarget::Open(PictureType type, const Pixels& like,
                                              WrittenSize size, const PictureWriting& writing) {
  return OpenWriter(type, like, size, writing, stream_);
}

WrittenPicture StreamTarget::Copy(const PictureSource& source, const PictureWriting& writing,
                                  bool) {
  return source.Copy(writing, stream_);
}

const TiffDocumentReader* SourceFiles::Of(const PictureSource& source) {
  if (source.Type() != PictureType::tiff || source.IsApart()) return nullptr;
  File& file = files_[source.FileIdentity()];
  if (!file.reader) {
    file.stream = source.WholeFile();
    if (!file.stream) return nullptr;
    file.reader = std::make_unique<TiffDocumentReader>(*file.stream);
  }
  return file.reader.get();
}

std::unique_ptr<PageSink> NewPageSink(TStream& target, const TiffKind& kind, SourceFiles& files,
                                      bool isApart) {
  if (isApart) return std::make_unique<ApartSink>(target, kind, files);
  return std::make_unique<DirectSink>(target, kind, files);
}

}  // namespace rasterkit::detail
