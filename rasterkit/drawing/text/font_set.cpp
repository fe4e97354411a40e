#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include <rasterkit/drawing/text/font_set.h>

/// Lists the fonts of the system without fontconfig's list: building that list prints to stderr if
/// there is no configuration, or if a folder has no cache and none can be written.
namespace rasterkit::detail {
namespace {

constexpr int kMaxFolders = 5000;
constexpr int kMaxScannedFiles = 5000;

/// Returns whether the configuration file named by the environment, if any, is complete. fontconfig
/// prints complaints about others to stderr, which cannot be turned off.
bool IsConfigurationWhole() {
  const char* const name = std::getenv("FONTCONFIG_FILE");
  if (!name || *name == '\0') return true;
  std::ifstream file(name, std::ios::binary);
  if (!file) return true;  // found by a search path or not at all, without a message
  std::string text(size_t{1} << 20, '\0');
  file.read(text.data(), static_cast<std::streamsize>(text.size()));
  text.resize(static_cast<size_t>(file.gcount()));
  return text.find("<fontconfig") != text.npos && text.find("</fontconfig>") != text.npos;
}

class SystemFonts {
 public:
  SystemFonts() : config_(FcConfigCreate()), fonts_(FcFontSetCreate()) {
    if (!config_ || !fonts_) return;
    if (IsConfigurationWhole() && FcConfigParseAndLoad(config_, nullptr, FcFalse)) {
      AddFolders(FcConfigGetFontDirs(config_));
      if (fonts_->nfont > 0) return;
    }
    AddFolder("/usr/share/fonts");
    AddFolder("/usr/local/share/fonts");
  }

  ~SystemFonts() {
    if (fonts_) FcFontSetDestroy(fonts_);
    if (config_) FcConfigDestroy(config_);
  }
  SystemFonts(const SystemFonts&) = delete;
  SystemFonts& operator=(const SystemFonts&) = delete;

  FontPattern Nearest(FcPattern* wanted) {
    if (!config_ || !fonts_ || fonts_->nfont == 0) return nullptr;
    FcConfigSubstitute(config_, wanted, FcMatchPattern);
    FcDefaultSubstitute(wanted);
    FcResult result = FcResultNoMatch;
    return FontPattern(FcFontSetMatch(config_, &fonts_, 1, wanted, &result));
  }

 private:
  void AddFolders(FcStrList* names) {
    if (!names) return;
    while (const FcChar8* name = FcStrListNext(names)) {
      AddFolder(reinterpret_cast<const char*>(name));
    }
    FcStrListDone(names);
  }

  /// Adds a folder by its cache, or by scanning its files.
  void AddFolder(const std::string& folder) {
    if (++folders_ > kMaxFolders) return;
    const auto* name = reinterpret_cast<const FcChar8*>(folder.c_str());
    FcCache* cache = FcDirCacheLoad(name, config_, nullptr);
    if (!cache) {
      Scan(folder);
      return;
    }
    if (FcFontSet* known = FcCacheCopySet(cache)) {
      for (int i = 0; i < known->nfont; ++i) {
        FcPatternReference(known->fonts[i]);
        FcFontSetAdd(fonts_, known->fonts[i]);
      }
      FcFontSetDestroy(known);
    }
    for (int i = 0; i < FcCacheNumSubdir(cache); ++i) {
      AddFolder(reinterpret_cast<const char*>(FcCacheSubdir(cache, i)));
    }
    FcDirCacheUnload(cache);
  }

  void Scan(const std::string& folder) {
    std::error_code error;
    for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
      std::error_code ignored;
      const std::string path = entry->path().string();
      if (entry->is_directory(ignored)) {
        AddFolder(path);
      } else if (entry->is_regular_file(ignored) && ++files_ <= kMaxScannedFiles) {
        int count = 0;
        FcFreeTypeQueryAll(reinterpret_cast<const FcChar8*>(path.c_str()),
                           static_cast<unsigned>(-1), nullptr, &count, fonts_);
      }
    }
  }

  FcConfig* config_;
  FcFontSet* fonts_;
  int folders_ = 0, files_ = 0;
};

}  // namespace

FontPattern NearestFont(FcPattern* wanted) {
  static SystemFonts fonts;
  return fonts.Nearest(wanted);
}

}  // namespace rasterkit::detail
