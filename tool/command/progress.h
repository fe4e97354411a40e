#pragma once

#include <cstddef>
#include <mutex>
#include <string>

#include <rasterkit/bitmaptools/engine/manage_threads.h>

namespace rasterkit::tool {

/// A bar on stderr that counts finished files; silent when stderr is no terminal or there is only
/// one file.
class Progress {
 public:
  explicit Progress(size_t files);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void Advance();
  /// Removes the bar's line, so that a message can be printed in its place.
  void Clear();

 private:
  void Draw() const;

  size_t files_;
  size_t done_ = 0;
  bool visible_;
};

/// A bar on stderr that shows how far one operation on one picture has come; silent when stderr is
/// no terminal or when files are counted instead.
class OperationBar {
 public:
  explicit OperationBar(bool isWanted);
  ~OperationBar();
  OperationBar(const OperationBar&) = delete;
  OperationBar& operator=(const OperationBar&) = delete;

  /// Draws, from any thread, as long as the bar lives; empty when it is silent.
  TProgressEvent Event();

 private:
  std::mutex mutex_;
  bool visible_;
};

}  // namespace rasterkit::tool
