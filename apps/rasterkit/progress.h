#pragma once

#include <cstddef>
#include <string>

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

}  // namespace rasterkit::tool
