#pragma once

#include <functional>
#include <memory>
#include <string>
#include <typeindex>
#include <vector>

#include <rasterkit/graphics/graphic.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// A graphic class as a value: its type, and how to create an empty graphic.
struct TGraphicClass {
  std::type_index type;
  std::function<std::unique_ptr<TGraphic>()> create;

  template <class T>
  static TGraphicClass Of() {
    return {std::type_index(typeid(T)), [] { return std::make_unique<T>(); }};
  }
};

/// The host's picture registry, which maps extensions to graphic classes. Thread-safe.
class RASTERKIT_EXPORT TPicture {
 public:
  /// Registers a class; later registrations are found first. `extension` has no dot and is compared
  /// without regard to case.
  static void RegisterFileFormat(const std::string& extension, const std::string& description,
                                 const TGraphicClass& graphicClass);
  /// Removes every registration of the class.
  static void UnregisterGraphicClass(const TGraphicClass& graphicClass);
  /// Creates an empty graphic for an extension (with or without dot); null if none is registered.
  static std::unique_ptr<TGraphic> CreateForExtension(const std::string& extension);

  struct Format {
    std::string extension;
    std::string description;
    TGraphicClass graphicClass;
  };
  /// All registrations, the built-in ones first (BMP, WMF, EMF, PNG, ICO).
  static std::vector<Format> Formats();

  /// Loads through the class registered for the file's extension. Throws UnsupportedError if there
  /// is none.
  void LoadFromFile(const std::string& fileName);
  /// Loaded graphic, owned by the picture; null if none is loaded.
  TGraphic* Graphic() const { return graphic_.get(); }
  std::unique_ptr<TGraphic> TakeGraphic() { return std::move(graphic_); }

 private:
  std::unique_ptr<TGraphic> graphic_;
};

}  // namespace rasterkit
