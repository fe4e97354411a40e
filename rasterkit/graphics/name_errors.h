#pragma once

#include <new>
#include <string>

#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {

/// Runs `action` and adds the file's name to every error. Out of memory becomes a LimitError.
template <class Action>
void NameErrors(const std::string& fileName, Action action) {
  try {
    action();
  } catch (Error& error) {
    error.AttachFile(fileName);
    throw;
  } catch (const std::bad_alloc&) {
    throw LimitError("not enough memory", fileName);
  }
}

}  // namespace rasterkit::detail
