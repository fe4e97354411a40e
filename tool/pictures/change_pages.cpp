#include "tool/pictures/change_pages.h"

#include <algorithm>
#include <string>
#include <utility>

#include <fmt/format.h>

#include "tool/command/exit_code.h"
#include "tool/pages/page_list.h"

namespace rasterkit::tool {
namespace {

/// What is said about one of several pages.
std::vector<std::string> OfPage(int page, const std::vector<std::string>& texts) {
  std::vector<std::string> numbered;
  for (const std::string& text : texts) numbered.push_back(fmt::format("page {}: {}", page, text));
  return numbered;
}

template <class Item>
void Append(std::vector<Item>& all, const std::vector<Item>& more) {
  all.insert(all.end(), more.begin(), more.end());
}

/// What is to be gone must not be left on another page.
void StripOthers(Document& document, const std::vector<int>& changed, const Job& job,
                 const MetadataEdit& strips) {
  DoWork(job, [&] {
    for (int page = 1; page <= document.Pages(); ++page) {
      if (std::find(changed.begin(), changed.end(), page) != changed.end()) continue;
      document.Replace(page, OpenPage(document, page, job.input).Edit(strips));
    }
  });
}

}  // namespace

MetadataEdit StripsOf(const MetadataEdit& edit) {
  MetadataEdit strips;
  strips.stripAll = edit.stripAll;
  strips.stripProfile = edit.stripProfile;
  strips.stripGps = edit.stripGps;
  strips.stripThumbnail = edit.stripThumbnail;
  strips.stripMakerNote = edit.stripMakerNote;
  return strips;
}

MetadataEdit EditOfOthers(const PictureOptions& options) {
  return options.editOfOthers.IsEmpty() ? StripsOf(options.edit) : options.editOfOthers;
}

std::vector<int> ChosenPages(const Job& job, const PictureOptions& options, int count) {
  std::vector<int> pages = PageList::Parse(options.pages).value().Of(count);
  std::sort(pages.begin(), pages.end());
  pages.erase(std::unique(pages.begin(), pages.end()), pages.end());
  for (const int page : pages) {
    if (page <= count) continue;
    throw Failure(exitOutputNotWritten,
                  fmt::format("{}: there is no page {}: the file has {}", job.input, page, count));
  }
  return pages;
}

JobResult ChangePages(Document document, const std::vector<int>& pages, const Job& job,
                      const PictureOptions& options, bool isDryRun, const PictureChange& change) {
  JobResult said;
  DoWork(job, [&] {
    for (const int page : pages) {
      PictureWork work{OpenPage(document, page, job.input), job, options};
      change(work);
      document.Replace(page, work.picture);
      Append(said.notes, OfPage(page, work.notes));
      Append(said.warnings, OfPage(page, work.warnings));
      Append(said.notCarriedOver, work.notCarriedOver);
      for (Loss loss : work.losses) {
        loss.what = fmt::format("page {}: {}", page, loss.what);
        said.losses.push_back(std::move(loss));
      }
    }
  });
  const MetadataEdit strips = EditOfOthers(options);
  if (!strips.IsEmpty()) StripOthers(document, pages, job, strips);
  JobResult result = SaveDocument(document, job, options, isDryRun);
  Append(result.notes, said.notes);
  Append(result.warnings, said.warnings);
  Append(result.losses, said.losses);
  Append(result.notCarriedOver, said.notCarriedOver);
  return result;
}

}  // namespace rasterkit::tool
