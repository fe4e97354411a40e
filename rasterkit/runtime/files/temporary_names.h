#pragma once

#include <csignal>
#include <cstddef>
#include <optional>
#include <string>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Removes the temporary files that saves of this process have at the moment. For the signal
/// handler of a program that ends at once: it uses only functions that are safe there, and leaves
/// `errno` unchanged. If another thread is about to make such a file, it waits for that, at most
/// 0.1 seconds. Afterwards a save that needs such a file fails. Most saves have no temporary file
/// with a name.
RASTERKIT_EXPORT void RemoveTemporaryFiles() noexcept;

}  // namespace rasterkit

namespace rasterkit::detail {

/// A short name that no other save of this machine uses at this moment. While the object exists,
/// RemoveTemporaryFiles removes the file of that name.
class TemporaryName {
 public:
  /// `folder` is an open folder that must outlive this object.
  explicit TemporaryName(int folder);
  ~TemporaryName();
  TemporaryName(const TemporaryName&) = delete;
  TemporaryName& operator=(const TemporaryName&) = delete;

  const std::string& Text() const { return text_; }

  /// Returns whether RemoveTemporaryFiles was called.
  static bool AreRemoved();

  /// Returns whether a file of this name can be the temporary file of a save.
  static bool Matches(const std::string& name);

 private:
  std::string text_;
  /// Place in the table; nothing if the table is full.
  std::optional<size_t> slot_;
};

/// The time in which a file is made that RemoveTemporaryFiles must find or not see at all. It waits
/// for the end of this time if another thread calls it, and signals come to this thread afterwards.
class NameChange {
 public:
  NameChange();
  ~NameChange();
  NameChange(const NameChange&) = delete;
  NameChange& operator=(const NameChange&) = delete;

 private:
  sigset_t signals_;
};

}  // namespace rasterkit::detail
