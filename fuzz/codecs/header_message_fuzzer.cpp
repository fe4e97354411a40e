// The host's side of what a worker process says about the header of a picture.

#include <algorithm>
#include <cstdint>
#include <span>

#include <rasterkit/codecs/messages/header_fields.h>
#include <rasterkit/runtime/errors.h>

#include "fuzz/require.h"

using namespace rasterkit;
using namespace rasterkit::detail;

/// What is accepted has one form only.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  try {
    FieldReader fields(std::span(data, size));
    const PictureHeader header = ReadHeader(fields);
    fields.RequireEnd();
    FieldWriter again;
    WriteHeader(again, header);
    Require(std::equal(data, data + size, again.Written().begin(), again.Written().end()));
  } catch (const Error&) {
  }
  return 0;
}
