// Writes the seeds of the fuzzer of messages about pictures.
// usage: make_picture_message_seeds FOLDER SAMPLE...

#include <cstdio>
#include <exception>
#include <fstream>
#include <string>

#include <rasterkit/codecs/messages/isolated_reading.h>
#include <rasterkit/pictures/reading/picture_fields.h>
#include <rasterkit/runtime/errors.h>

using namespace rasterkit;
using namespace rasterkit::detail;

namespace {

void Save(const std::string& name, char kind, FieldWriter& fields) {
  const std::vector<uint8_t> bytes = fields.Take();
  std::ofstream out(name, std::ios::binary);
  out.put(kind);
  out.write(reinterpret_cast<const char*>(bytes.data()),
            static_cast<std::streamsize>(bytes.size()));
  if (!out) std::fprintf(stderr, "%s was not written\n", name.c_str());
}

}  // namespace

int main(int count, char** arguments) {
  if (count < 2) return 2;
  const std::string folder = arguments[1];
  for (int i = 2; i < count; ++i) {
    LoadedFrame picture;
    FieldWriter outcome;
    try {
      ReadPicture(picture, arguments[i]);
      WriteOutcome(outcome, nullptr);
    } catch (const Error&) {
      WriteOutcome(outcome, std::current_exception());
    }
    FieldWriter fields;
    WritePicture(fields, picture);
    const std::string name = folder + "/" + std::to_string(i - 1);
    Save(name + ".picture", 0, fields);
    Save(name + ".outcome", 1, outcome);
  }
  return 0;
}
