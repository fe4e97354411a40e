#include <algorithm>
#include <map>
#include <utility>

#include <fmt/format.h>

#include <rasterkit/pictures/extra_pages.h>
#include <rasterkit/pictures/page_sink.h>
#include <rasterkit/pictures/picture_parts.h>
#include <rasterkit/pictures/save_pages.h>
#include <rasterkit/pictures/save_picture.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/atomic_file.h>

namespace rasterkit::detail {
namespace {

bool IsApart(const FileParts& parts) {
  return std::any_of(parts.pages.begin(), parts.pages.end(), [](const PagePart& part) {
    return part.source->IsApart() && part.source->Type() == PictureType::tiff;
  });
}

/// Bytes that a page which is written anew takes, about: few encoders make pixels larger.
uint64_t BytesOfNew(const PagePart& part) {
  constexpr uint64_t kHeader = 1 << 16;
  const PictureState& state = *part.state;
  return BytesOfRows(state.layout, state.width, state.height) +
         ExtraPageBytes(*part.source, state) + kHeader;
}

/// Bytes of a page that stays. Of a file that a worker reads, all of it.
uint64_t BytesOfOld(const PagePart& part, SourceFiles& files) {
  const TiffDocumentReader* const file = files.Of(*part.source);
  return file != nullptr ? file->PageBytes(part.page) : part.source->ByteCount();
}

/// True if the file can be larger than the numbers of a classic file reach.
bool NeedsBigTiff(const FileParts& parts, SourceFiles& files) {
  constexpr uint64_t kMostClassic = 0xFFF00000;
  // No page is longer than its file: most files are known to be small without a look at each page.
  std::map<std::pair<const PictureSource*, int>, uint64_t> uses;
  std::map<const PictureSource*, uint64_t> mostUses;
  uint64_t fresh = 0;
  for (const PagePart& part : parts.pages) {
    if (part.state) {
      fresh += BytesOfNew(part);
      continue;
    }
    uint64_t& most = mostUses[part.source.get()];
    most = std::max(most, ++uses[{part.source.get(), part.page}]);
  }
  uint64_t bound = fresh;
  for (const auto& [source, count] : mostUses) bound += source->ByteCount() * count;
  if (bound < kMostClassic) return false;
  uint64_t bytes = fresh;
  for (const PagePart& part : parts.pages) {
    if (!part.state) bytes += BytesOfOld(part, files);
  }
  return bytes > kMostClassic;
}

/// The kind of the first page that is one of a TIFF file; that of the usual file without one.
TiffKind KindOf(const FileParts& parts, SourceFiles& files, Changes& changes) {
  TiffKind kind;
  for (const PagePart& part : parts.pages) {
    const auto* form = std::get_if<TiffForm>(&part.source->Header().form);
    if (form == nullptr) continue;
    kind = {form->isBigTiff, form->isBigEndian};
    break;
  }
  if (!kind.isBigTiff && NeedsBigTiff(parts, files)) {
    kind.isBigTiff = true;
    changes.Note("written as BigTIFF: a classic file ends at 4 GiB");
  }
  return kind;
}

/// Makes one report of those of the pages.
class ReportOfPages {
 public:
  explicit ReportOfPages(const FileParts& parts) : parts_(parts) { report_.type = parts.type; }

  void Add(size_t index, const Report& page) {
    if (index == parts_.shown) {
      report_.form = page.form;
      report_.layout = page.layout;
      report_.width = page.width;
      report_.height = page.height;
    }
    isCopied_ = isCopied_ && page.isCopied;
    report_.memory = std::max(report_.memory, page.memory);
    bytes_ += page.bytes;
    Add(index, Changes{page.losses, page.notes});
    for (const std::string& warning : page.warnings) {
      report_.warnings.push_back(Numbered(index, warning));
    }
  }
  void Stay(const PagePart& part, size_t index) {
    ++staying_;
    if (index != parts_.shown) return;
    const SourcePtr page = OpenedAt(part);
    report_.form = page->Header().form;
    report_.layout = page->Header().layout;
    report_.width = page->Header().width;
    report_.height = page->Header().height;
  }
  /// What is known is not added again; the same loss of another page is another one.
  void Add(size_t index, const Changes& changes) {
    for (const Loss& loss : changes.losses) {
      const std::string what = Numbered(index, loss.what);
      const auto isSame = [&](const Loss& known) {
        return known.kind == loss.kind && known.what == what;
      };
      auto& losses = changes_.losses;
      if (std::none_of(losses.begin(), losses.end(), isSame))
        losses.push_back({loss.kind, what, loss.why});
    }
    for (const std::string& note : changes.notes) {
      std::string text = Numbered(index, note);
      auto& notes = changes_.notes;
      if (std::find(notes.begin(), notes.end(), text) == notes.end()) {
        notes.push_back(std::move(text));
      }
    }
  }
  void Add(const Changes& changes) { Join(changes_, changes); }

  uint64_t Bytes() const { return bytes_; }

  Report Finish(uint64_t bytes) {
    if (staying_ > 0) {
      changes_.Note(
          fmt::format("pages copied as they are: {} of {}", staying_, parts_.pages.size()));
    }
    constexpr uint64_t kRest = 32 << 20;
    report_.isCopied = isCopied_;
    report_.losses = std::move(changes_.losses);
    report_.notes = std::move(changes_.notes);
    report_.bytes = bytes;
    // A file that a worker puts together is held in memory, twice while it grows.
    const uint64_t whole = IsApart(parts_) ? 2 * bytes : 0;
    report_.memory = std::max(report_.memory, kRest) + whole;
    return std::move(report_);
  }

  static SourcePtr OpenedAt(const PagePart& part) {
    return part.source->Page() == part.page ? part.source : part.source->OpenPage(part.page);
  }

 private:
  std::string Numbered(size_t index, const std::string& text) const {
    return parts_.isNumbered ? fmt::format("page {}: {}", index + 1, text) : text;
  }

  const FileParts& parts_;
  Report report_;
  Changes changes_;
  bool isCopied_ = true;
  int staying_ = 0;
  uint64_t bytes_ = 0;
};

constexpr const char* kOtherOrder =
    "decoded and encoded anew: its numbers have another order of bytes than the file";

/// A page of another order of bytes as a picture, which is encoded anew.
PagePart Decoded(const PagePart& part) {
  const Picture picture = PictureParts::Of(ReportOfPages::OpenedAt(part));
  return {PictureParts::Source(picture), PictureParts::SharedState(picture), 1};
}

/// What becomes of a page: it stays, or it is written by this plan.
struct PageWork {
  PagePart part;
  WritePlan plan;
  bool isOtherOrder = false;
};

/// Smaller than the usual form of a TIFF file, and as exact: pages of other files come together to
/// be kept or sent.
Form FormOfJoined(const PixelLayout& layout) {
  const bool isBilevel = layout.BitsPerPixel() == 1;
  return FormFor(isBilevel ? TiffCompression::group4 : TiffCompression::deflate, layout);
}

PageWork WorkOf(const PagePart& part, PageSink& sink, const FileParts& parts,
                const SaveOptions& options, bool hasSideFiles) {
  PageWork work{part, {}, false};
  if (!part.state) {
    if (sink.CanCopy(*part.source, part.page)) return work;
    work.isOtherOrder = true;
    work.part = Decoded(part);
  }
  const PictureSource& source = *work.part.source;
  work.plan = PlanOf(source, *work.part.state, parts.type, options, hasSideFiles);
  if (work.plan.isCopied && (work.isOtherOrder || !sink.CanCopy(source, source.Page()))) {
    work.plan.isCopied = work.plan.isAsStored = false;
    work.isOtherOrder = true;
  }
  const bool isFree = source.Type() != PictureType::tiff && !options.compression;
  if (isFree) work.plan.form = FormOfJoined(work.part.state->layout);
  return work;
}

/// Puts the file together in memory if the target takes bytes only in order.
template <class Writing>
Report WithSeekable(TStream& target, const Writing& write) {
  if (IsSeekable(target)) return write(target);
  TMemoryStream memory;
  Report report = write(memory);
  target.Write(memory.Bytes());
  return report;
}

Report WriteDocument(TStream& target, const FileParts& parts, const SaveOptions& options,
                     bool hasSideFiles, RunScope& run) {
  ReportOfPages report(parts);
  Changes ofFile;
  SourceFiles files;
  const uint64_t start = target.Position();
  const std::unique_ptr<PageSink> sink =
      NewPageSink(target, KindOf(parts, files, ofFile), files, IsApart(parts));
  const auto count = static_cast<double>(parts.pages.size());
  for (size_t i = 0; i < parts.pages.size(); ++i) {
    RequireTime();
    const PageWork work = WorkOf(parts.pages[i], *sink, parts, options, hasSideFiles);
    const auto index = static_cast<double>(i);
    const PagePart& old = parts.pages[i];
    sink->Place(*old.source, old.page, {static_cast<int>(i) + 1, static_cast<int>(count)});
    if (!work.part.state) {
      run.Begin((index + 1) / count, 1);
      sink->CopyAsStored(*work.part.source, work.part.page);
      report.Stay(work.part, i);
      continue;
    }
    const uint64_t before = target.Position();
    Report page = WriteOne(*sink, *work.part.source, *work.part.state, work.plan, options, run,
                           {index / count, (index + 1) / count});
    if (work.isOtherOrder) page.notes.emplace_back(kOtherOrder);
    page.memory = MemoryOf(*work.part.source, *work.part.state, target.Position() - before);
    report.Add(i, page);
  }
  const std::vector<WrittenPicture> written = sink->Finish();
  for (size_t i = 0; i < written.size(); ++i) report.Add(i, written[i].changes);
  report.Add(ofFile);
  return report.Finish(target.Position() - start);
}

Report ForeseeDocument(const FileParts& parts, const SaveOptions& options, bool hasSideFiles) {
  ReportOfPages report(parts);
  Changes ofFile;
  SourceFiles files;
  TMemoryStream unused;
  const std::unique_ptr<PageSink> sink =
      NewPageSink(unused, KindOf(parts, files, ofFile), files, IsApart(parts));
  uint64_t bytes = 0;
  for (size_t i = 0; i < parts.pages.size(); ++i) {
    RequireTime();
    const PageWork work = WorkOf(parts.pages[i], *sink, parts, options, hasSideFiles);
    if (!work.part.state) {
      bytes += BytesOfOld(work.part, files);
      report.Stay(work.part, i);
      continue;
    }
    Report page = Foresee(*work.part.source, *work.part.state, work.plan, options);
    if (work.isOtherOrder) page.notes.emplace_back(kOtherOrder);
    report.Add(i, page);
  }
  report.Add(ofFile);
  return report.Finish(bytes + report.Bytes());
}

}  // namespace

FileParts PartsOf(const Picture& picture, PictureType type, const SaveOptions& options) {
  const SourcePtr& source = PictureParts::Source(picture);
  FileParts parts;
  parts.type = type;
  const PagePart changed{source, PictureParts::SharedState(picture), source->Page()};
  const int count = source->Header().pages;
  parts.isDocument = type == PictureType::tiff && source->Type() == PictureType::tiff && count > 1;
  if (!parts.isDocument || options.onlyThisPage) {
    parts.pages.push_back(changed);
    return parts;
  }
  for (int page = 1; page <= count; ++page) {
    parts.pages.push_back(page == source->Page() ? changed : PagePart{source, nullptr, page});
  }
  parts.shown = static_cast<size_t>(source->Page()) - 1;
  return parts;
}

Report ForeseeParts(const FileParts& parts, const SaveOptions& options, bool hasSideFiles) {
  if (parts.isDocument) return ForeseeDocument(parts, options, hasSideFiles);
  const PagePart& page = parts.pages.front();
  const auto [state, plan] =
      TargetPlanOf(*page.source, *page.state, parts.type, options, hasSideFiles);
  return Foresee(*page.source, state, plan, options);
}

Report WriteParts(TStream& target, const FileParts& parts, const SaveOptions& options,
                  bool hasSideFiles, RunScope& run) {
  if (!parts.isDocument) {
    const PagePart& page = parts.pages.front();
    const auto [state, plan] =
        TargetPlanOf(*page.source, *page.state, parts.type, options, hasSideFiles);
    return WriteTo(target, *page.source, state, plan, options, run);
  }
  Report report = WithSeekable(target, [&](TStream& seekable) {
    return WriteDocument(seekable, parts, options, hasSideFiles, run);
  });
  run.Finish();
  // The last moment to cancel: the file has no name yet.
  RequireTime();
  return report;
}

FirstPage FirstPageOf(const FileParts& parts, const SaveOptions& options, bool hasSideFiles) {
  const PagePart& part = parts.pages.front();
  FirstPage first{part.source, part.state, {}};
  if (!part.state) {
    first.source = ReportOfPages::OpenedAt(part);
    first.state = std::make_shared<const PictureState>(StateOf(*first.source));
  }
  TargetPlan target = TargetPlanOf(*first.source, *first.state, parts.type, options, hasSideFiles);
  first.state = std::make_shared<const PictureState>(std::move(target.state));
  first.plan = std::move(target.plan);
  return first;
}

}  // namespace rasterkit::detail
