#pragma once

#include <functional>
#include <memory>
#include <string>
#include <typeindex>
#include <vector>

#include <rasterkit/graphics/graphic.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// A graphic class as a value: which one it is, and how to make an empty one.
struct TGraphicClass {
  std::type_index type;
  std::function<std::unique_ptr<TGraphic>()> create;

  template <class T>
  static TGraphicClass Of() {
    return {std::type_index(typeid(T)), [] { return std::make_unique<T>(); }};
  }
};

/// The host's picture registry: which class loads which extension. Safe on any thread.
class RASTERKIT_EXPORT TPicture {
 public:
  /// Registers a class; later registrations are found first. `extension` without dot, compared
  /// exactly but for case.
  static void RegisterFileFormat(const std::string& extension, const std::string& description,
                                 const TGraphicClass& graphicClass);
  /// Removes every registration of the class.
  static void UnregisterGraphicClass(const TGraphicClass& graphicClass);
  /// An empty graphic for the extension (with or without dot), or null when nothing is registered
  /// for it.
  static std::unique_ptr<TGraphic> CreateForExtension(const std::string& extension);

  struct Format {
    std::string extension;
    std::string description;
    TGraphicClass graphicClass;
  };
  /// All registrations, the host's own first (BMP, WMF, EMF, PNG, ICO).
  static std::vector<Format> Formats();

  /// Loads through the class registered for the file's extension; UnsupportedError when there is
  /// none.
  void LoadFromFile(const std::string& fileName);
  /// The loaded graphic, owned by the picture; null while there is none.
  TGraphic* Graphic() const { return graphic_.get(); }
  std::unique_ptr<TGraphic> TakeGraphic() { return std::move(graphic_); }

 private:
  std::unique_ptr<TGraphic> graphic_;
};

}  // namespace rasterkit
