#include <filesystem>
#include <system_error>

#include <dlfcn.h>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/dynamic_library.h>
#include <rasterkit/runtime/files/file_name.h>

namespace rasterkit {
namespace {

/// The folder of the library (or program) that this code is in, under the name by which it was
/// loaded; empty when that is a relative name, which the process's current folder gives its
/// meaning.
std::string FolderOfThisLibrary() {
  Dl_info info{};
  const auto here = reinterpret_cast<const void*>(&FolderOfThisLibrary);
  if (dladdr(here, &info) == 0 || info.dli_fname == nullptr) return {};
  const std::filesystem::path file = ToPath(info.dli_fname);
  return file.is_absolute() ? file.parent_path().string() : std::string();
}

std::string FolderOfProgram() {
  std::error_code error;
  const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
  return error ? std::string() : program.parent_path().string();
}

std::string LoaderText() {
  const char* const text = dlerror();
  return text == nullptr ? "no reason is known" : text;
}

/// Everything is bound at once, so that what is missing shows now and not in the middle of the
/// work.
void* OpenLibrary(const std::string& file) {
  return dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
}

/// The file in the first folder that has one; empty when none has.
std::string FileIn(const std::vector<std::string>& folders, const std::string& fileName) {
  for (const std::string& folder : folders) {
    if (folder.empty()) continue;
    const std::filesystem::path file = ToPath(folder) / ToPath(fileName);
    std::error_code ignored;
    if (std::filesystem::exists(file, ignored)) return file.string();
  }
  return {};
}

std::string Absence(const std::string& absent, const std::string& fileName,
                    const std::vector<std::string>& folders) {
  std::string text = absent + ": there is no " + fileName;
  for (const std::string& folder : folders) {
    if (!folder.empty()) text += " in " + folder + ",";
  }
  return text + " where the system keeps its libraries";
}

}  // namespace

DynamicLibrary::DynamicLibrary(const std::string& name, int version, const std::string& absent)
    : DynamicLibrary(name, version, absent, {FolderOfThisLibrary(), FolderOfProgram()}) {}

DynamicLibrary::DynamicLibrary(const std::string& name, int version, const std::string& absent,
                               const std::vector<std::string>& folders) {
  const std::string fileName = "lib" + name + ".so." + std::to_string(version);
  file_ = FileIn(folders, fileName);
  const bool isFound = !file_.empty();
  if (!isFound) file_ = fileName;
  handle_ = OpenLibrary(file_);
  if (handle_ != nullptr) return;
  const std::string reason = LoaderText();
  // The loader begins with the file that it has trouble with: with a bare name when it found none,
  // with another library's when that is what is missing.
  if (!isFound && reason.starts_with(fileName + ":")) {
    throw UnsupportedError(Absence(absent, fileName, folders));
  }
  throw Error(fileName + " cannot be loaded: " + reason);
}

void* DynamicLibrary::Address(const std::string& name) const {
  void* const address = dlsym(handle_, name.c_str());
  if (address == nullptr) {
    throw Error(file_ + " has no entry " + name + "; it is of another version");
  }
  return address;
}

}  // namespace rasterkit
