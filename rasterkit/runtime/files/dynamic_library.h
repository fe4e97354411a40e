#pragma once

#include <string>
#include <vector>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// A shared library that a program opens only when it needs it, so that it runs where the library
/// is not installed. Once opened it stays until the process ends, whatever becomes of this object:
/// toolkits leave threads and exit handlers behind, which must not lose the ground under them.
class RASTERKIT_EXPORT DynamicLibrary {
 public:
  /// Opens "lib`name`.so.`version`": the one beside librasterkit, else the one beside the program,
  /// else the one that the system's loader finds. `absent` begins the message when there is none
  /// ("the dialogs are not installed"). Throws UnsupportedError when there is none, and Error when
  /// there is one that cannot be loaded (it says why, for instance which other library is missing).
  DynamicLibrary(const std::string& name, int version, const std::string& absent);

  /// The same with other folders to look into before the loader's own.
  DynamicLibrary(const std::string& name, int version, const std::string& absent,
                 const std::vector<std::string>& folders);

  /// A function of the library by its C name. Throws Error when it has none of that name, as
  /// another version may. `Function` is the function's type; it is not checked:
  /// `library.Entry<int(int)>("answer")(42)`.
  template <typename Function>
  Function* Entry(const std::string& name) const {
    return reinterpret_cast<Function*>(Address(name));
  }

  /// The file as it was opened: with its folder, or the bare name where the loader found it.
  const std::string& File() const { return file_; }

 private:
  void* Address(const std::string& name) const;

  std::string file_;
  void* handle_ = nullptr;
};

}  // namespace rasterkit
