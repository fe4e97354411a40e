#pragma once

#include <string_view>

/// Namespaces of XMP.
namespace rasterkit::detail::xmp_name {

inline constexpr std::string_view kRdf = "http://www.w3.org/1999/02/22-rdf-syntax-ns#";
inline constexpr std::string_view kXmp = "http://ns.adobe.com/xap/1.0/";
inline constexpr std::string_view kXmpNote = "http://ns.adobe.com/xmp/note/";
inline constexpr std::string_view kTiff = "http://ns.adobe.com/tiff/1.0/";
inline constexpr std::string_view kExif = "http://ns.adobe.com/exif/1.0/";
inline constexpr std::string_view kIptcExtension = "http://iptc.org/std/Iptc4xmpExt/2008-02-29/";

}  // namespace rasterkit::detail::xmp_name
