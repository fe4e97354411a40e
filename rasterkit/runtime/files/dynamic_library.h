#pragma once

#include <string>
#include <vector>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// A shared library that a program opens when it needs it, so that the program also runs without
/// it. An opened library stays loaded until the process ends, even if this object is destroyed:
/// toolkits leave threads and exit handlers behind that run its code.
class RASTERKIT_EXPORT DynamicLibrary {
 public:
  /// Opens "lib`name`.so.`version`": the one beside librasterkit, else the one beside the program,
  /// else the one that the system's loader finds. `absent` begins the message when there is none
  /// ("the dialogs are not installed"). Throws UnsupportedError when there is none, and Error when
  /// there is one that cannot be loaded (it says why, for instance which other library is missing).
  DynamicLibrary(const std::string& name, int version, const std::string& absent);

  /// The same, with other folders to search before the loader's own.
  DynamicLibrary(const std::string& name, int version, const std::string& absent,
                 const std::vector<std::string>& folders);

  /// Returns a function of the library by its C name. Throws Error if the library does not have it.
  /// `Function` is the function's type; it is not checked:
  /// `library.Entry<int(int)>("answer")(42)`.
  template <typename Function>
  Function* Entry(const std::string& name) const {
    return reinterpret_cast<Function*>(Address(name));
  }

  /// Returns the file name that was opened: with its folder, or the bare name if the loader found
  /// it.
  const std::string& File() const { return file_; }

 private:
  void* Address(const std::string& name) const;

  std::string file_;
  void* handle_ = nullptr;
};

}  // namespace rasterkit
