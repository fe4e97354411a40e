// saver PICTURE links|copies [CALL]: cuts the left column off a picture and saves it over itself
// with a backup, again and again, and prints a dot on stdout after each save. With "copies" the
// file system seems to have no links. With CALL it saves once and is killed before the system call
// of that number; without so many calls it ends.

#include <cerrno>
#include <cstdio>
#include <exception>
#include <optional>
#include <string>

#include <fcntl.h>
#include <unistd.h>

#include <rasterkit/pictures/picture.h>
#include <rasterkit/runtime/files/file_calls.h>

#include "tests/runtime/files/replaced_calls.h"

namespace {

void HaveNoLinks() {
  static auto open = rasterkit::detail::Calls().openAt;
  rasterkit::detail::Calls().openAt = [](int folder, const char* name, int flags, mode_t mode) {
    // A file without a name gets one by a link.
    constexpr int kNameless = O_TMPFILE & ~O_DIRECTORY;
    if ((flags & kNameless) == 0) return open(folder, name, flags, mode);
    errno = EOPNOTSUPP;
    return -1;
  };
  rasterkit::detail::Calls().linkAt = [](int, const char*, int, const char*, int) {
    errno = EPERM;
    return -1;
  };
}

}  // namespace

int main(int count, char** arguments) {
  if (count < 3) return 2;
  if (std::string(arguments[2]) == "copies") HaveNoLinks();
  rasterkit::SaveOptions options;
  options.keepsBackup = true;
  // What the disk itself does in a power failure is not tested here.
  options.syncs = false;
  std::optional<rasterkit::test::CountedCalls> calls;
  if (count == 4) {
    // As a system that waits for the disk, which takes calls of its own.
    options.syncs = true;
    calls.emplace();
    calls->KillAt(std::stoi(arguments[3]));
  }
  try {
    while (true) {
      rasterkit::Picture picture = rasterkit::Picture::Open(arguments[1]);
      const int width = picture.Width();
      if (width < 2) return 0;
      picture.Crop({1, 0, width - 1, picture.Height()}).Save(arguments[1], options);
      if (write(STDOUT_FILENO, ".", 1) != 1) return 3;
      if (calls) return 0;
    }
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 4;
  }
}
