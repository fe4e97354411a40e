// Any bytes as an XMP packet are read or refused. A changed packet is a packet with the change, and
// its metadata follow any change of pixels without growing out of bounds.

#include <string>

#include <rasterkit/metadata/xmp/xmp_packet.h>
#include <rasterkit/metadata/xmp_follow.h>

#include "fuzz/require.h"

namespace {

using namespace rasterkit;

constexpr const char* kTiff = "http://ns.adobe.com/tiff/1.0/";

void Change(const std::string& bytes) {
  XmpPacket packet(bytes);
  const bool isSet = packet.Set(kTiff, "Orientation", "1");
  Require(!packet.IsDamaged() || !isSet);
  if (!isSet) return;
  const XmpPacket again(packet.Text());
  Require(!again.IsDamaged());
  Require(again.Get(kTiff, "Orientation") == "1");
}

void Follow(const std::string& bytes) {
  PixelChange turn;
  turn.oldWidth = turn.height = 400;
  turn.oldHeight = turn.width = 200;
  turn.toNew = {0, -1, 200, 1, 0, 0};
  turn.pixelsChanged = turn.placesChanged = true;
  turn.resolution = {300, 150};
  std::string xmp = bytes, extended;
  Changes changes;
  FollowPixelsInXmp(xmp, extended, turn, changes);
  Require(xmp.empty() || !XmpPacket(xmp).IsDamaged());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  Change(bytes);
  Follow(bytes);
  return 0;
}
