#include <array>
#include <span>
#include <string_view>

#include <rasterkit/bitmaptools/files/file_filters.h>
#include <rasterkit/bitmaptools/files/graphic_types.h>
#include <rasterkit/runtime/text.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit {
namespace {

using Extensions = std::span<const std::string_view>;

// The lists stand here and are not made from the codec table: hosts store the indexes, so a new
// format must not move an entry. GIF and WebP files have no entry.
constexpr std::array<std::string_view, 7> kOpenExtensions = {"bmp", "jpg", "png", "tif",
                                                             "pdf", "wmf", "emf"};
constexpr std::array<std::string_view, 5> kGeoExtensions = {"bmp", "jpg", "png", "tif", "pdf"};
constexpr std::array<std::string_view, 6> kSaveExtensions = {"bmp", "jpg", "png",
                                                             "tif", "wmf", "emf"};

constexpr std::string_view kRasterEntries =
    "Windows bitmap (*.bmp)|*.bmp|JPeg (*.jpg)|*.jpg|PNG Format (*.png)|*.png|";
constexpr std::string_view kOpenTiffAndPdfEntries =
    "TIFF (*.tif,*.tiff)|*.tif;*.tiff|PDF (*.pdf)|*.pdf";
constexpr std::string_view kMetafileEntries =
    "|Windows Metafile (*.wmf)|*.wmf|Enhanced Windows Metafile (*.emf)|*.emf";

/// Position of `ext` in the table plus the index of the first entry; 1 if it is not listed.
int IndexOf(const std::string& ext, Extensions table, int indexOfFirst) {
  const std::string name = ext.starts_with('.') ? Utf16Substring(ext, 1, 3) : ext;
  for (size_t place = 0; place < table.size(); ++place) {
    if (CompareText(name, table[place]) == 0) return static_cast<int>(place) + indexOfFirst;
  }
  return 1;
}

}  // namespace

std::string GetOpenFilter(bool withMetafiles) {
  std::string filter = ResourceString(rsAllSupportedFiles);
  filter += "|*.bmp;*.jpg;*.png;*.tif;*.tiff;*.pdf";
  if (withMetafiles) filter += ";*.wmf;*.emf";
  filter.append("|").append(kRasterEntries).append(kOpenTiffAndPdfEntries);
  if (withMetafiles) filter += kMetafileEntries;
  return filter;
}

std::string GetGeoOpenFilter() {
  std::string filter = ResourceString(rsAllSupportedFiles);
  filter += "|*.bmp;*.jpg;*.png;*.tif;*.pdf|";
  return filter.append(kRasterEntries).append(kOpenTiffAndPdfEntries);
}

std::string GetSaveFilter(bool withMetafiles) {
  std::string filter(kRasterEntries);
  filter += "TIFF (*.tif)|*.tif";
  if (withMetafiles) filter += kMetafileEntries;
  return filter;
}

int GetSaveFilterIndex(const std::string& ext) {
  return IndexOf(ext, kSaveExtensions, 1);
}

int GetSaveFilterType(int index) {
  if (index < 1 || index > static_cast<int>(kSaveExtensions.size())) return gtBmp;
  return GetGraphicsType(std::string(kSaveExtensions[static_cast<size_t>(index) - 1]));
}

int GetOpenFilterIndex(const std::string& ext) {
  return IndexOf(ext, kOpenExtensions, 2);
}

int GetGeoOpenFilterIndex(const std::string& ext) {
  return IndexOf(ext, kGeoExtensions, 3);
}

}  // namespace rasterkit
