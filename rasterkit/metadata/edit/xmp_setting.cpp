#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>
#include <optional>

#include <fmt/format.h>

#include <rasterkit/metadata/edit/date_text.h>
#include <rasterkit/metadata/edit/xmp_setting.h>
#include <rasterkit/metadata/xmp/xmp_names.h>
#include <rasterkit/metadata/xmp/xmp_numbers.h>
#include <rasterkit/metadata/xmp/xmp_packet.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/text.h>

namespace rasterkit {
namespace {

using namespace detail::xmp_name;

constexpr std::string_view kDc = "http://purl.org/dc/elements/1.1/";
constexpr std::string_view kPhotoshop = "http://ns.adobe.com/photoshop/1.0/";
constexpr std::string_view kRights = "http://ns.adobe.com/xap/1.0/rights/";
constexpr std::string_view kIptcCore = "http://iptc.org/std/Iptc4xmpCore/1.0/xmlns/";

constexpr XmpFact kFacts[] = {
    {"dc", kDc, "creator", XmpForm::orderedList},
    {"dc", kDc, "description", XmpForm::languages},
    {"dc", kDc, "title", XmpForm::languages},
    {"dc", kDc, "rights", XmpForm::languages},
    {"dc", kDc, "subject", XmpForm::list},
    {"dc", kDc, "source", XmpForm::text},
    {"dc", kDc, "identifier", XmpForm::text},
    {"xmp", kXmp, "Rating", XmpForm::rating},
    {"xmp", kXmp, "Label", XmpForm::text},
    {"xmp", kXmp, "CreatorTool", XmpForm::text},
    {"xmp", kXmp, "CreateDate", XmpForm::moment},
    {"xmp", kXmp, "ModifyDate", XmpForm::moment},
    {"xmp", kXmp, "MetadataDate", XmpForm::moment},
    {"photoshop", kPhotoshop, "AuthorsPosition", XmpForm::text},
    {"photoshop", kPhotoshop, "CaptionWriter", XmpForm::text},
    {"photoshop", kPhotoshop, "City", XmpForm::text},
    {"photoshop", kPhotoshop, "Country", XmpForm::text},
    {"photoshop", kPhotoshop, "Credit", XmpForm::text},
    {"photoshop", kPhotoshop, "DateCreated", XmpForm::moment},
    {"photoshop", kPhotoshop, "Headline", XmpForm::text},
    {"photoshop", kPhotoshop, "Instructions", XmpForm::text},
    {"photoshop", kPhotoshop, "Source", XmpForm::text},
    {"photoshop", kPhotoshop, "State", XmpForm::text},
    {"photoshop", kPhotoshop, "TransmissionReference", XmpForm::text},
    {"xmpRights", kRights, "Marked", XmpForm::truth},
    {"xmpRights", kRights, "UsageTerms", XmpForm::languages},
    {"xmpRights", kRights, "WebStatement", XmpForm::text},
    {"Iptc4xmpCore", kIptcCore, "Location", XmpForm::text},
    {"Iptc4xmpCore", kIptcCore, "CountryCode", XmpForm::text},
    {"exif", kExif, "DateTimeOriginal", XmpForm::moment},
    {"exif", kExif, "DateTimeDigitized", XmpForm::moment},
    {"tiff", kTiff, "DateTime", XmpForm::moment},
    {"tiff", kTiff, "Make", XmpForm::text},
    {"tiff", kTiff, "Model", XmpForm::text},
    {"tiff", kTiff, "Software", XmpForm::text},
    {"exif", kExif, "GPSLatitude", XmpForm::text},
    {"exif", kExif, "GPSLongitude", XmpForm::text},
    {"exif", kExif, "GPSAltitude", XmpForm::text},
    {"exif", kExif, "GPSAltitudeRef", XmpForm::number},
};

std::string NewPacket() {
  return "<?xpacket begin=\"\xEF\xBB\xBF\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>\n"
         "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\">\n"
         " <rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">\n"
         " </rdf:RDF>\n</x:xmpmeta>\n<?xpacket end=\"w\"?>";
}

std::string Escaped(std::string_view text) {
  std::string result;
  for (const char letter : text) {
    if (letter == '&') {
      result += "&amp;";
    } else if (letter == '<') {
      result += "&lt;";
    } else if (letter == '>') {
      result += "&gt;";
    } else {
      result += letter;
    }
  }
  return result;
}

bool IsList(XmpForm form) {
  return form == XmpForm::list || form == XmpForm::orderedList;
}

/// The property as an element, in a description of its own.
std::string Description(const XmpFact& fact, const std::vector<std::string>& values) {
  const std::string name = fmt::format("{}:{}", fact.prefix, fact.name);
  std::string inside = Escaped(values.front());
  if (IsList(fact.form) || fact.form == XmpForm::languages) {
    const char* kind = fact.form == XmpForm::list          ? "Bag"
                       : fact.form == XmpForm::orderedList ? "Seq"
                                                           : "Alt";
    inside = fmt::format("\n    <rdf:{}>", kind);
    for (const std::string& value : values) {
      const char* language = fact.form == XmpForm::languages ? " xml:lang=\"x-default\"" : "";
      inside += fmt::format("\n     <rdf:li{}>{}</rdf:li>", language, Escaped(value));
    }
    inside += fmt::format("\n    </rdf:{}>\n   ", kind);
  }
  return fmt::format(
      "\n  <rdf:Description xmlns:rdf=\"{}\" rdf:about=\"\" xmlns:{}=\"{}\">\n   <{}>{}</{}>\n"
      "  </rdf:Description>",
      kRdf, fact.prefix, fact.uri, name, inside, name);
}

/// Letters that XML has no way to write.
bool HasControls(std::string_view text) {
  return std::any_of(text.begin(), text.end(), [](char letter) {
    const auto code = static_cast<uint8_t>(letter);
    return code < ' ' && letter != '\t' && letter != '\n' && letter != '\r';
  });
}

std::string Read(const XmpFact& fact, std::string_view text) {
  if (Utf8OfBytes(text) != text) throw RangeError("the text is no UTF-8");
  if (HasControls(text)) throw RangeError("the text has control letters in it");
  switch (fact.form) {
    case XmpForm::moment:
      return ReadMoment(text).Iso();
    case XmpForm::rating: {
      constexpr double kRejected = -1, kMost = 5;
      const auto number = detail::XmpNumber(text);
      if (!number || *number < kRejected || *number > kMost) {
        throw RangeError("a rating is -1 to 5");
      }
      return detail::XmpText(*number);
    }
    case XmpForm::number: {
      const auto number = detail::XmpNumber(text);
      if (!number) throw RangeError("\"" + std::string(text) + "\" is no number");
      return detail::XmpText(*number);
    }
    case XmpForm::truth: {
      const bool isTrue = CompareText(text, "true") == 0;
      if (!isTrue && CompareText(text, "false") != 0) throw RangeError("it is true or false");
      return isTrue ? "True" : "False";
    }
    default:
      return std::string(text);
  }
}

/// Where a new description goes: in front of the end of rdf:RDF. Nothing if it has none.
std::optional<size_t> PlaceOfNew(const XmpPacket& packet) {
  for (const detail::XmpNode& node : packet.Tree().Nodes()) {
    if (node.name.Is(kRdf, "RDF") && !node.isEmptyTag) return node.insideEnd;
  }
  return std::nullopt;
}

}  // namespace

const XmpFact* FindXmpFact(std::string_view name) {
  constexpr std::string_view kGroup = "XMP-";
  if (CompareText(name.substr(0, kGroup.size()), kGroup) == 0) name.remove_prefix(kGroup.size());
  const size_t colon = name.find(':');
  const std::string_view prefix =
      colon == std::string_view::npos ? std::string_view() : name.substr(0, colon);
  const std::string_view local = colon == std::string_view::npos ? name : name.substr(colon + 1);
  const auto* found = std::find_if(std::begin(kFacts), std::end(kFacts), [&](const XmpFact& fact) {
    return CompareText(fact.name, local) == 0 &&
           (prefix.empty() || CompareText(fact.prefix, prefix) == 0);
  });
  return found == std::end(kFacts) ? nullptr : found;
}

std::string ReadXmpValue(const XmpFact& fact, std::string_view text) {
  try {
    return Read(fact, text);
  } catch (const RangeError& error) {
    throw RangeError(fmt::format("{}:{}: {}", fact.prefix, fact.name, error.Reason()));
  }
}

void SetXmp(std::string& text, const XmpFact& fact, const std::vector<std::string>& values) {
  const bool isSimple = !IsList(fact.form) && fact.form != XmpForm::languages;
  if (XmpPacket packet(text); isSimple && !text.empty() && packet.Get(fact.uri, fact.name) &&
                              packet.Set(fact.uri, fact.name, values.front())) {
    text = packet.Text();
    return;
  }
  if (!text.empty()) RemoveXmp(text, fact);
  XmpPacket packet(text.empty() ? NewPacket() : text);
  if (packet.IsDamaged()) throw FormatError("XMP: the packet is damaged and cannot be changed");
  const std::optional<size_t> place = PlaceOfNew(packet);
  if (!place) throw FormatError("XMP: the packet has no place for properties");
  packet.Replace(*place, *place, Description(fact, values) + "\n ");
  text = packet.Text();
}

bool RemoveXmp(std::string& text, const XmpFact& fact) {
  XmpPacket packet(text);
  if (!packet.Remove(fact.uri, fact.name)) return false;
  text = packet.Text();
  return true;
}

}  // namespace rasterkit
