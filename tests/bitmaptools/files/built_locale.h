#pragma once

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <locale>
#include <string>
#include <string_view>

#include "tests/support/environment.h"
#include "tests/support/temp_folder.h"

namespace rasterkit::test {

/// A locale that localedef compiles into a folder of its own, so that a test does not depend on the
/// locales of the machine.
class BuiltLocale {
 public:
  /// `language` is a source of the C library such as "tr_TR". Letters and numbers are its own; the
  /// rest, which takes long to compile, is plain.
  explicit BuiltLocale(const std::string& language) : name_(language + ".UTF-8") {
    std::string source = "comment_char %\nescape_char /\n";
    for (const char* const category :
         {"CTYPE", "NUMERIC", "COLLATE", "TIME", "MONETARY", "MESSAGES", "PAPER", "NAME", "ADDRESS",
          "TELEPHONE", "MEASUREMENT", "IDENTIFICATION"}) {
      const bool isOwn =
          std::string_view(category) == "CTYPE" || std::string_view(category) == "NUMERIC";
      const std::string name = std::string("LC_") + category;
      source += name + "\ncopy \"" + (isOwn ? language : "POSIX") + "\"\nEND " + name + "\n";
    }
    const std::string command = "localedef -i '" + folder_.Write("source", source) +
                                "' -f UTF-8 '" + (folder_ / name_) + "' >/dev/null 2>&1";
    // Warnings give another exit code and leave a locale all the same.
    const int ignored = std::system(command.c_str());
    static_cast<void>(ignored);
    isBuilt_ = std::filesystem::exists(folder_ / (name_ + "/LC_CTYPE"));
  }

  /// False without localedef or its sources: skip the test then.
  explicit operator bool() const { return isBuilt_; }
  const std::string& Name() const { return name_; }
  /// For LOCPATH.
  std::string Folder() const { return folder_.Path().string(); }

 private:
  TempFolder folder_;
  std::string name_;
  bool isBuilt_ = false;
};

/// Makes a built locale that of the process, as a host does, until the object is destroyed.
class ProcessLocale {
 public:
  explicit ProcessLocale(const BuiltLocale& locale)
      : path_("LOCPATH", locale.Folder()),
        isSet_(std::setlocale(LC_ALL, locale.Name().c_str()) != nullptr) {
    if (isSet_) before_ = std::locale::global(std::locale(locale.Name()));
  }
  ~ProcessLocale() {
    std::locale::global(before_);
    std::setlocale(LC_ALL, "C");
  }
  ProcessLocale(const ProcessLocale&) = delete;
  ProcessLocale& operator=(const ProcessLocale&) = delete;

  bool IsSet() const { return isSet_; }

 private:
  Environment path_;
  std::locale before_ = std::locale::classic();
  bool isSet_ = false;
};

}  // namespace rasterkit::test
