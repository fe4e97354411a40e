#include <filesystem>
#include <system_error>

#include <rasterkit/bitmaptools/files/graphic_types.h>
#include <rasterkit/bitmaptools/files/windows_bitmap.h>
#include <rasterkit/dialogs/bitmapframe/bmp_cut_model.h>
#include <rasterkit/dialogs/bitmapframe/cut_bitmap.h>
#include <rasterkit/dialogs/bitmapframe/memory_size.h>
#include <rasterkit/host/runtime/errors.h>
#include <rasterkit/host/runtime/file_name.h>
#include <rasterkit/package/format_text.h>
#include <rasterkit/package/strings.h>

namespace rasterkit {
namespace {

constexpr int kQuality = 100;

int BitsOf(const TBitmap& bitmap) {
  return PixelformatToBits(bitmap.PixelFormat(), bitmap.StoredBits());
}

std::string Line(std::string_view key, const std::vector<std::string>& values) {
  return FormatText(ResourceString(key), values);
}

/// "a.bmp" gives "a.~bmp".
std::string BackupName(const std::string& fileName) {
  const std::string extension = ExtractFileExt(fileName);
  return ChangeFileExt(fileName, ".~" + (extension.empty() ? extension : extension.substr(1)));
}

bool IsRegularFile(const std::string& fileName) {
  std::error_code unreadable;
  return std::filesystem::is_regular_file(ToPath(fileName), unreadable);
}

void Rename(const std::string& from, const std::string& to) {
  std::error_code error;
  std::filesystem::rename(ToPath(from), ToPath(to), error);
  if (error) throw FileError("cannot be renamed to \"" + to + "\": " + error.message(), from);
}

/// A file that stepped aside for another one. Unless that one was written, it gets its name back.
class BackedUpFile {
 public:
  explicit BackedUpFile(const std::string& fileName)
      : fileName_(fileName), backup_(BackupName(fileName)) {
    Rename(fileName_, backup_);
  }
  ~BackedUpFile() {
    std::error_code unreadable;
    const bool isReplaced = std::filesystem::exists(ToPath(fileName_), unreadable);
    if (!isReplaced) std::filesystem::rename(ToPath(backup_), ToPath(fileName_), unreadable);
  }
  BackedUpFile(const BackedUpFile&) = delete;
  BackedUpFile& operator=(const BackedUpFile&) = delete;

 private:
  std::string fileName_, backup_;
};

}  // namespace

std::unique_ptr<TBitmap> BmpCutModel::GetCutBitmap() const {
  if (!GetCutRectExists() || fOrgBitmap == nullptr) return nullptr;
  return CutBitmapTo(*fOrgBitmap, CutPixels());
}

std::unique_ptr<TBitmap> BmpCutModel::DarkedBmp() const {
  if (!fDarkedBmp || fOrgBitmap == nullptr) return nullptr;
  return std::make_unique<TBitmap>(fDarkedBmp->Make(*fOrgBitmap));
}

void BmpCutModel::ShowCutBmpSize() {
  if (fOrgBitmap == nullptr) return;
  const TRect rect = GetCutRectExists() ? CutPixels() : fBitmapRect;
  const int width = rect.Right - rect.Left, height = rect.Bottom - rect.Top;
  const MemorySize memory = MemorySizeOf(BitsOf(*fOrgBitmap), width, height);
  view_->ShowSizeText(Line(rsSizeOfPicture, {std::to_string(width), std::to_string(height),
                                             memory.number, memory.unit}));
}

void BmpCutModel::GetInfo(std::vector<std::string>& strings) const {
  strings.clear();
  if (fOrgBitmap == nullptr) return;
  const int bits = BitsOf(*fOrgBitmap);
  strings.push_back(Line(rsInfoWidth, {std::to_string(fBitmapRect.Right)}));
  strings.push_back(Line(rsInfoHeight, {std::to_string(fBitmapRect.Bottom)}));
  strings.push_back(Line(rsInfoBitDepth, {std::to_string(bits)}));
  if (!GetCutRectExists()) return;
  const TRect cut = CutPixels();
  const int width = cut.Right - cut.Left, height = cut.Bottom - cut.Top;
  const MemorySize memory = MemorySizeOf(bits, width, height);
  strings.push_back(Line(rsInfoCutWidth, {std::to_string(width)}));
  strings.push_back(Line(rsInfoCutHeight, {std::to_string(height)}));
  strings.push_back(Line(rsInfoCutMemsize, {memory.unit, memory.number}));
}

void BmpCutModel::SaveBitmap(const std::string& aBmpName, bool UseCutRect, int& BmpWidth,
                             int& BmpHeight) {
  BmpWidth = BmpHeight = 0;
  if (fOrgBitmap == nullptr) return;
  int width = fOrgBitmap->Width(), height = fOrgBitmap->Height();
  if (GetCutRectExists() && UseCutRect) {
    const std::unique_ptr<TBitmap> cut = GetCutBitmap();
    width = cut->Width();
    height = cut->Height();
    SaveWindowsBitmap(*cut, 0, kQuality, aBmpName);
  } else {
    SaveWhole(aBmpName);
  }
  BmpWidth = width;
  BmpHeight = height;
}

void BmpCutModel::SaveWhole(const std::string& fileName) const {
  std::optional<BackedUpFile> old;
  if (IsRegularFile(fileName)) old.emplace(fileName);
  SaveWindowsBitmap(*fOrgBitmap, 0, kQuality, fileName);
}

}  // namespace rasterkit
