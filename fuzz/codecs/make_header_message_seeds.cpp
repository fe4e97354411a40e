// Writes the seeds of the fuzzer of messages about headers.
// usage: make_header_message_seeds FOLDER SAMPLE...

#include <fstream>
#include <string>

#include <rasterkit/codecs/messages/header_fields.h>
#include <rasterkit/codecs/picture_io.h>
#include <rasterkit/runtime/errors.h>

using namespace rasterkit;

int main(int count, char** arguments) {
  if (count < 2) return 2;
  for (int i = 2; i < count; ++i) {
    TFileStream stream(arguments[i]);
    const PictureType type = SniffPictureType(stream);
    detail::FieldWriter fields;
    detail::WriteHeader(fields, ReadPictureHeader(stream, type));
    const auto bytes = fields.Written();
    std::ofstream out(std::string(arguments[1]) + "/" + std::to_string(i - 1), std::ios::binary);
    out.write(reinterpret_cast<const char*>(bytes.data()),
              static_cast<std::streamsize>(bytes.size()));
  }
  return 0;
}
