#pragma once

#include <string>

#include <rasterkit/runtime/errors.h>

/// Errors of a part of a recipe.
namespace rasterkit::detail {

template <class Kind>
[[noreturn]] void ThrowAt(const std::string& place, const Kind& error) {
  throw Kind(place + ": " + error.Reason(), error.File());
}

[[noreturn]] inline void ThrowAt(const std::string& place, const LimitError& error) {
  LimitError placed(error.Kind(), place + ": " + error.Reason());
  placed.AttachFile(error.File());
  throw placed;
}

[[noreturn]] inline void ThrowAt(const std::string& place, const TimeLimitError& error) {
  TimeLimitError placed(place + ": " + error.Reason());
  placed.AttachFile(error.File());
  throw placed;
}

/// Calls `add`. Errors of it keep their kind, and get the place ("/steps/2") in front.
template <class Add>
void AtPlace(const std::string& place, const Add& add) {
  try {
    add();
  } catch (const RangeError& error) {
    ThrowAt(place, error);
  } catch (const FormatError& error) {
    ThrowAt(place, error);
  } catch (const UnsupportedError& error) {
    ThrowAt(place, error);
  } catch (const TimeLimitError& error) {
    ThrowAt(place, error);
  } catch (const LimitError& error) {
    ThrowAt(place, error);
  } catch (const FileError& error) {
    ThrowAt(place, error);
  } catch (const CanceledError& error) {
    ThrowAt(place, error);
  } catch (const ConversionError& error) {
    ThrowAt(place, error);
  } catch (const DivisionByZeroError& error) {
    ThrowAt(place, error);
  } catch (const Error& error) {
    ThrowAt(place, error);
  }
}

}  // namespace rasterkit::detail
