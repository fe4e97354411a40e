#include <filesystem>
#include <mutex>
#include <system_error>
#include <vector>

#include <dlfcn.h>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/worker/worker_program.h>

namespace rasterkit::detail {
namespace {

namespace fs = std::filesystem;

std::mutex mutex;
std::string chosenByTest;

/// The folder of the library that this code is in. A relative name means the folder that was
/// current when the program started, which is unknown now.
fs::path FolderOfLibrary() {
  Dl_info info{};
  const auto here = reinterpret_cast<const void*>(&FolderOfLibrary);
  if (dladdr(here, &info) == 0 || info.dli_fname == nullptr) return {};
  std::error_code error;
  const fs::path file = info.dli_fname;
  // A program's own name may be relative, the file that it runs is known.
  if (!file.is_absolute()) return fs::read_symlink("/proc/self/exe", error).parent_path();
  const fs::path real = fs::canonical(file, error);
  return (error ? file : real).parent_path();
}

/// Where the program may be: the place after installation, then that in a build tree.
std::vector<fs::path> Places() {
  {
    const std::lock_guard lock(mutex);
    if (!chosenByTest.empty()) return {chosenByTest};
  }
  const fs::path folder = FolderOfLibrary();
  return {(folder / RASTERKIT_WORKER_FROM_LIBRARY).lexically_normal(), folder / "rasterkit-worker"};
}

}  // namespace

std::string WorkerProgram(const std::string& absent) {
  const std::vector<fs::path> places = Places();
  std::error_code ignored;
  for (const fs::path& place : places) {
    if (place.is_absolute() && fs::exists(place, ignored)) return place.string();
  }
  throw UnsupportedError(absent + ": there is no " + places.front().string());
}

void SetWorkerProgram(const std::string& file) {
  const std::lock_guard lock(mutex);
  chosenByTest = file;
}

}  // namespace rasterkit::detail
