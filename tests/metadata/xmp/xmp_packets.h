#pragma once

#include <string>

/// XMP packets for tests.
namespace rasterkit::test {

/// A packet with `description` as attributes and `content` as elements of its only description.
inline std::string Packet(const std::string& attributes, const std::string& content,
                          size_t padding = 200, char end = 'w') {
  std::string packet =
      "<?xpacket begin=\"\xEF\xBB\xBF\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>\n"
      "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\">\n"
      " <rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">\n"
      "  <rdf:Description rdf:about=\"\"\n"
      "    xmlns:tiff=\"http://ns.adobe.com/tiff/1.0/\"\n"
      "    xmlns:exif=\"http://ns.adobe.com/exif/1.0/\"\n"
      "    xmlns:xmp=\"http://ns.adobe.com/xap/1.0/\"\n"
      "    xmlns:dc=\"http://purl.org/dc/elements/1.1/\"";
  packet += attributes;
  packet += ">";
  packet += content;
  packet += "\n  </rdf:Description>\n </rdf:RDF>\n</x:xmpmeta>\n";
  packet += std::string(padding, ' ');
  packet += "<?xpacket end=\"";
  packet += end;
  packet += "\"?>";
  return packet;
}

inline constexpr const char* kTiffUri = "http://ns.adobe.com/tiff/1.0/";
inline constexpr const char* kExifUri = "http://ns.adobe.com/exif/1.0/";

}  // namespace rasterkit::test
