#include <limits>

#include <tiff.h>

#include <rasterkit/codecs/tiff/pages/found_pages.h>
#include <rasterkit/codecs/tiff/pages/page_metadata.h>
#include <rasterkit/codecs/tiff/pages/page_stream.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {

namespace detail {

TagDirectory FirstDirectory(const TagReader& reader) {
  auto directory = reader.Directory(reader.First());
  if (!directory) throw FormatError("TIFF: the first directory cannot be read");
  return std::move(*directory);
}

void RequireSides(const PageFacts& facts) {
  constexpr uint32_t kMost = std::numeric_limits<int>::max();
  if (facts.width > kMost || facts.height > kMost) {
    throw LimitError("TIFF picture of " + std::to_string(facts.width) + " x " +
                     std::to_string(facts.height) + " pixels: too wide or too high");
  }
}

std::vector<ExtraPage> ExtraPagesOf(const TagReader& reader) {
  const PageFamily family = FamilyOf(reader, FirstDirectory(reader));
  std::vector<ExtraPage> pages;
  for (const auto* places : {&family.following, &family.below}) {
    for (const uint64_t at : *places) {
      const auto directory = reader.Directory(at);
      if (!directory) continue;
      try {
        const PageFacts facts = FactsOfPage(reader, *directory);
        RequireSides(facts);
        const uint32_t type = reader.SubfileType(at);
        pages.push_back({at,
                         {static_cast<int>(facts.width), static_cast<int>(facts.height),
                          facts.layout, facts.form, type == 0 ? 1 : type}});
      } catch (const Error&) {
        // A directory that holds no picture: it is counted, but nothing can be made anew of it.
      }
    }
  }
  return pages;
}

}  // namespace detail

namespace {

using detail::PageFacts;
using detail::TagDirectory;
using detail::TagReader;

PictureHeader HeaderOf(TStream& stream) {
  const TagReader reader(stream);
  const TagDirectory first = FirstDirectory(reader);
  const PageFacts facts = FactsOfPage(reader, first);
  RequireSides(facts);
  PictureHeader header;
  header.width = static_cast<int>(facts.width);
  header.height = static_cast<int>(facts.height);
  header.layout = facts.layout;
  header.form = facts.form;
  ReadPageMetadata(reader, first, header);
  const detail::PageFamily family = FamilyOf(reader, first);
  const auto* page = dynamic_cast<const detail::PageStream*>(&stream);
  const bool isOfFile = page && page->Pages() > 0;
  header.pages = isOfFile ? page->Pages() : family.pages;
  header.lostPages = isOfFile ? page->LostPages() : LostPages(family.end, family.pages);
  for (const auto* places : {&family.following, &family.below}) {
    for (const uint64_t at : *places) {
      const bool isMask = (reader.SubfileType(at) & FILETYPE_MASK) != 0;
      (isMask ? header.masks : header.smallerCopies)++;
    }
  }
  return header;
}

}  // namespace

PictureHeader ReadTiffHeader(TStream& stream) {
  const LimitsScope limits;
  detail::Seekable file(stream);
  return HeaderOf(file.Stream());
}

std::vector<TiffExtraPageHeader> ReadTiffExtraPages(TStream& stream) {
  const LimitsScope limits;
  detail::Seekable file(stream);
  const TagReader reader(file.Stream());
  std::vector<TiffExtraPageHeader> headers;
  for (detail::ExtraPage& page : ExtraPagesOf(reader)) headers.push_back(std::move(page.header));
  return headers;
}

}  // namespace rasterkit
