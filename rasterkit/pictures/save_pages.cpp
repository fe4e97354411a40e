#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include <fmt/format.h>

#include <rasterkit/pictures/extra_pages.h>
#include <rasterkit/pictures/picture_parts.h>
#include <rasterkit/pictures/save_pages.h>
#include <rasterkit/pictures/save_picture.h>
#include <rasterkit/pictures/sources/page_sink.h>
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
    report_.scratch = std::max(report_.scratch, page.scratch);
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
  /// What is said of the file, or names its page itself.
  void Add(const Changes& changes) {
    auto& losses = changes_.losses;
    auto& notes = changes_.notes;
    losses.insert(losses.end(), changes.losses.begin(), changes.losses.end());
    notes.insert(notes.end(), changes.notes.begin(), changes.notes.end());
  }

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

/// Pages of the sources that cannot be found; each file once.
void LoseUnknownPages(const FileParts& parts, const SaveOptions& options, Changes& changes) {
  if (parts.type != PictureType::tiff || options.onlyThisPage) return;
  std::set<std::pair<std::string, std::string>> said;
  for (const PagePart& part : parts.pages) {
    const std::string& lost = part.source->Header().lostPages;
    if (!lost.empty() && said.emplace(part.source->File(), lost).second) {
      changes.Lose(LossKind::pages, "pages", lost);
    }
  }
}

/// Of a file of one picture.
Report WithUnknownPages(Report report, const FileParts& parts, const SaveOptions& options) {
  Changes changes;
  LoseUnknownPages(parts, options, changes);
  report.losses.insert(report.losses.end(), changes.losses.begin(), changes.losses.end());
  return report;
}

constexpr const char* kOtherOrder =
    "decoded and encoded anew: its numbers have another order of bytes than the file";

constexpr const char* kDamaged = "decoded and encoded anew: it is damaged: ";

/// Why pages cannot be copied, by their index.
using Reasons = std::map<size_t, std::string>;

/// A page of another order of bytes as a picture, which is encoded anew.
PagePart Decoded(const PagePart& part) {
  const Picture picture = PictureParts::Of(ReportOfPages::OpenedAt(part));
  return {PictureParts::Source(picture), PictureParts::SharedState(picture), 1};
}

/// What becomes of a page: it stays, it is written by this plan, or it is lost.
struct PageWork {
  PagePart part;
  WritePlan plan;
  /// Why the page of a file cannot stay; empty if it can.
  std::string reason;
  bool isLost = false;
  /// Of a page that stays.
  uint64_t bytes = 0;
};

/// Smaller than the usual form of a TIFF file, and as exact: pages of other files come together to
/// be kept or sent.
Form FormOfJoined(const PixelLayout& layout) {
  const bool isBilevel = layout.BitsPerPixel() == 1;
  return FormFor(isBilevel ? TiffCompression::group4 : TiffCompression::deflate, layout);
}

/// Why the page of a file cannot stay as it is; empty if it can.
std::string ReasonAgainst(const PagePart& part, PageSink& sink, SourceFiles& files,
                          uint64_t& bytes) {
  try {
    if (!sink.CanCopy(*part.source, part.page)) return kOtherOrder;
    bytes = BytesOfOld(part, files);
    return {};
  } catch (const FormatError& error) {
    return std::string(kDamaged) + error.Reason();
  }
}

PageWork WorkOf(const PagePart& part, PageSink& sink, SourceFiles& files, const FileParts& parts,
                const SaveOptions& options, bool hasSideFiles, const std::string& damage) {
  PageWork work{part, {}, {}};
  if (!part.state) {
    work.reason = damage.empty() ? ReasonAgainst(part, sink, files, work.bytes)
                                 : std::string(kDamaged) + damage;
    if (work.reason.empty()) return work;
    try {
      work.part = Decoded(part);
    } catch (const FormatError& error) {
      work.isLost = true;
      work.reason = "it is damaged: " + error.Reason();
      return work;
    }
  }
  const PictureSource& source = *work.part.source;
  work.plan = PlanOf(source, *work.part.state, parts.type, options, hasSideFiles);
  if (work.plan.isCopied && work.reason.empty()) {
    uint64_t unused = 0;
    work.reason = damage.empty()
                      ? ReasonAgainst({part.source, nullptr, source.Page()}, sink, files, unused)
                      : std::string(kDamaged) + damage;
  }
  if (!work.reason.empty()) work.plan.isCopied = work.plan.isAsStored = false;
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

/// Writes the pages one after another, or foresees it.
class DocumentWork {
 public:
  DocumentWork(TStream& target, const FileParts& parts, const SaveOptions& options,
               bool hasSideFiles, const Reasons& damaged = {})
      : target_(target),
        parts_(parts),
        options_(options),
        hasSideFiles_(hasSideFiles),
        damaged_(damaged),
        report_(parts),
        sink_(NewPageSink(target, KindOf(parts, files_, ofFile_), files_, IsApart(parts))) {
    LoseUnknownPages(parts, options, ofFile_);
  }

  Report Write(RunScope& run) {
    const uint64_t start = target_.Position();
    for (size_t i = 0; i < parts_.pages.size(); ++i) {
      RequireTime();
      WritePage(i, run);
    }
    RequirePages();
    const std::vector<WrittenPicture> written = Finish();
    for (size_t i = 0; i < written.size(); ++i) report_.Add(written_.at(i), written[i].changes);
    report_.Add(ofFile_);
    return report_.Finish(target_.Position() - start);
  }

  Report Foresee() {
    uint64_t bytes = 0;
    for (size_t i = 0; i < parts_.pages.size(); ++i) {
      RequireTime();
      const PageWork work = WorkOf(i);
      if (work.isLost) {
        Lose(i, work.reason);
      } else if (!work.part.state) {
        bytes += work.bytes;
        report_.Stay(work.part, i);
      } else {
        Report page = detail::Foresee(*work.part.source, *work.part.state, work.plan, options_);
        if (!work.reason.empty()) page.notes.push_back(work.reason);
        report_.Add(i, page);
      }
    }
    RequirePages();
    report_.Add(ofFile_);
    return report_.Finish(bytes + report_.Bytes());
  }

 private:
  PageWork WorkOf(size_t index) {
    const auto known = damaged_.find(index);
    return detail::WorkOf(parts_.pages[index], *sink_, files_, parts_, options_, hasSideFiles_,
                          known == damaged_.end() ? std::string() : known->second);
  }
  std::vector<WrittenPicture> Finish() {
    try {
      return sink_->Finish();
    } catch (DamagedPages& damaged) {
      // A page that was decoded already, or one of the new pages, would be damaged again.
      for (DamagedPage& page : damaged.pages) {
        page.index = written_.at(page.index);
        const PagePart& part = parts_.pages[page.index];
        if (damaged_.contains(page.index)) throw FormatError(page.reason, part.source->File());
      }
      throw;
    }
  }

  void WritePage(size_t index, RunScope& run) {
    const auto count = static_cast<double>(parts_.pages.size());
    const auto place = static_cast<double>(index);
    const PageWork work = WorkOf(index);
    const PagePart& old = parts_.pages[index];
    if (work.isLost) return Lose(index, work.reason);
    sink_->Place(*old.source, old.page,
                 {static_cast<int>(index) + 1, static_cast<int>(parts_.pages.size())});
    if (!work.part.state) {
      run.Begin((place + 1) / count, 1);
      sink_->CopyAsStored(*work.part.source, work.part.page);
      report_.Stay(work.part, index);
      written_.push_back(index);
      return;
    }
    const uint64_t before = target_.Position();
    try {
      Report page = WriteOne(*sink_, *work.part.source, *work.part.state, work.plan, options_, run,
                             {place / count, (place + 1) / count});
      if (!work.reason.empty()) page.notes.push_back(work.reason);
      report_.Add(index, page);
      written_.push_back(index);
    } catch (const FormatError& error) {
      // A page that was to stay and has no pixels that can be read.
      if (old.state || target_.Position() != before) throw;
      Lose(index, "it is damaged: " + error.Reason());
    }
  }

  void Lose(size_t index, const std::string& reason) {
    Changes changes;
    const PagePart& part = parts_.pages[index];
    changes.Lose(LossKind::pages, fmt::format("page {}", part.page), reason);
    report_.Add(changes);
    if (lost_++ == 0) {
      firstLost_ = FormatError(fmt::format("page {}: {}", part.page, reason), part.source->File());
    }
  }
  /// A file without pages is invalid: the inputs are at fault.
  void RequirePages() const {
    if (lost_ > 0 && lost_ == parts_.pages.size()) throw FormatError(*firstLost_);
  }

  TStream& target_;
  const FileParts& parts_;
  const SaveOptions& options_;
  const bool hasSideFiles_;
  const Reasons damaged_;
  ReportOfPages report_;
  Changes ofFile_;
  SourceFiles files_;
  const std::unique_ptr<PageSink> sink_;
  size_t lost_ = 0;
  std::optional<FormatError> firstLost_;
  /// Places of the pages that the sink has.
  std::vector<size_t> written_;
};

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
  if (parts.isDocument) {
    TMemoryStream unused;
    return DocumentWork(unused, parts, options, hasSideFiles).Foresee();
  }
  const PagePart& page = parts.pages.front();
  const auto [state, plan] =
      TargetPlanOf(*page.source, *page.state, parts.type, options, hasSideFiles);
  return WithUnknownPages(Foresee(*page.source, state, plan, options), parts, options);
}

Report WriteParts(TStream& target, const FileParts& parts, const SaveOptions& options,
                  bool hasSideFiles, RunScope& run) {
  if (!parts.isDocument) {
    const PagePart& page = parts.pages.front();
    const auto [state, plan] =
        TargetPlanOf(*page.source, *page.state, parts.type, options, hasSideFiles);
    return WithUnknownPages(WriteTo(target, *page.source, state, plan, options, run), parts,
                            options);
  }
  Report report = WithSeekable(target, [&](TStream& seekable) {
    Reasons damaged;
    while (true) {
      try {
        return DocumentWork(seekable, parts, options, hasSideFiles, damaged).Write(run);
      } catch (const DamagedPages& found) {
        // They are decoded then, as those of files that this process reads.
        for (const DamagedPage& page : found.pages) damaged.emplace(page.index, page.reason);
      }
    }
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
