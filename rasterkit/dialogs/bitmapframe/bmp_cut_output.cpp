#include <filesystem>
#include <system_error>
#include <utility>

#include <rasterkit/bitmaptools/files/graphic_types.h>
#include <rasterkit/bitmaptools/files/windows_bitmap.h>
#include <rasterkit/dialogs/bitmapframe/bmp_cut_model.h>
#include <rasterkit/dialogs/bitmapframe/cut_bitmap.h>
#include <rasterkit/dialogs/bitmapframe/memory_size.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/strings/format_text.h>
#include <rasterkit/strings/strings.h>

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

/// A renamed file; it gets its own name back unless the new one is kept.
class MovedFile {
 public:
  MovedFile(std::string from, std::string to) : from_(std::move(from)), to_(std::move(to)) {
    Rename(from_, to_);
  }
  ~MovedFile() {
    std::error_code ignored;
    if (!stays_) std::filesystem::rename(ToPath(to_), ToPath(from_), ignored);
  }
  MovedFile(const MovedFile&) = delete;
  MovedFile& operator=(const MovedFile&) = delete;

  void Stay() { stays_ = true; }
  void Remove() {
    std::error_code ignored;
    std::filesystem::remove(ToPath(to_), ignored);
    stays_ = true;
  }

 private:
  std::string from_, to_;
  bool stays_ = false;
};

/// Returns a short unused name in the folder of the file.
std::string FreeNameBeside(const std::string& fileName) {
  std::error_code ignored;
  for (int i = 0;; ++i) {
    std::string name = ExtractFilePath(fileName) + "~" + std::to_string(i) + ".tmp";
    if (!std::filesystem::exists(ToPath(name), ignored)) return name;
  }
}

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

// An older backup is renamed too: if nothing is written, both files get their names back.
void BmpCutModel::SaveWhole(const std::string& fileName) const {
  const auto save = [&] { SaveWindowsBitmap(*fOrgBitmap, 0, kQuality, fileName); };
  if (!IsRegularFile(fileName)) return save();
  const std::string backup = BackupName(fileName);
  std::optional<MovedFile> older;
  if (IsRegularFile(backup)) older.emplace(backup, FreeNameBeside(backup));
  MovedFile old(fileName, backup);
  save();
  if (!IsRegularFile(fileName)) return;
  old.Stay();
  if (older) older->Remove();
}

}  // namespace rasterkit
