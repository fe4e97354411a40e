#pragma once

#include <cstddef>
#include <functional>
#include <mutex>
#include <string>

#include <rasterkit/bitmaptools/engine/manage_threads.h>

namespace rasterkit::tool {

/// A progress bar on stderr that counts finished files. Hidden if stderr is not a terminal or there
/// is only one file.
class Progress {
 public:
  explicit Progress(size_t files);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void Advance();
  /// Erases the bar, so that a message can be printed on its line.
  void Clear();

 private:
  void Draw() const;

  size_t files_;
  size_t done_ = 0;
  bool visible_;
};

/// A progress bar on stderr for one operation on one picture. Hidden if stderr is not a terminal or
/// several files are processed.
class OperationBar {
 public:
  explicit OperationBar(bool isWanted);
  ~OperationBar();
  OperationBar(const OperationBar&) = delete;
  OperationBar& operator=(const OperationBar&) = delete;

  /// The event that draws the bar, callable from any thread during the lifetime of this object;
  /// empty if the bar is hidden.
  TProgressEvent Event();
  /// The same for shares from 0 to 1, which come on one thread.
  std::function<void(double)> Shares();

 private:
  std::mutex mutex_;
  bool visible_;
};

}  // namespace rasterkit::tool
