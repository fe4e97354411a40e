#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/metadata/xmp/xmp_join.h>
#include <rasterkit/metadata/xmp/xmp_packet.h>

#include "tests/metadata/xmp/xmp_packets.h"

namespace rasterkit::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

TEST(XmpPacket, Properties_Should_BeFound_When_AttributeOrElement) {
  const XmpPacket packet(Packet(" tiff:Orientation='6' dc:format=\"a&amp;b\"",
                                "<exif:PixelXDimension> 40 </exif:PixelXDimension>"));
  ASSERT_FALSE(packet.IsDamaged());
  EXPECT_EQ(packet.Get(kTiffUri, "Orientation"), "6");
  EXPECT_EQ(packet.Get("http://purl.org/dc/elements/1.1/", "format"), "a&b");
  EXPECT_EQ(packet.Get(kExifUri, "PixelXDimension"), "40");
  EXPECT_EQ(packet.Get(kExifUri, "Orientation"), std::nullopt);
  EXPECT_TRUE(packet.Has(kTiffUri, "Orientation"));
  EXPECT_FALSE(packet.Has(kTiffUri, "ImageWidth"));
}

TEST(XmpPacket, Prefixes_Should_NotMatter) {
  const XmpPacket packet(
      "<r:RDF xmlns:r='http://www.w3.org/1999/02/22-rdf-syntax-ns#'>"
      "<r:Description xmlns:q='http://ns.adobe.com/tiff/1.0/' q:Make = 'm' >"
      "<tiff:Orientation xmlns:tiff='urn:other'>3</tiff:Orientation>"
      "<Orientation xmlns='http://ns.adobe.com/tiff/1.0/'>8</Orientation>"
      "</r:Description></r:RDF>");
  ASSERT_FALSE(packet.IsDamaged());
  EXPECT_EQ(packet.Get(kTiffUri, "Orientation"), "8");
  EXPECT_EQ(packet.Get("urn:other", "Orientation"), "3");
  EXPECT_EQ(packet.Get(kTiffUri, "Make"), "m");
}

TEST(XmpPacket, Set_Should_ChangeTheBytesOfTheValueAlone) {
  const std::string text = Packet(" tiff:Orientation=\"6\"", "<tiff:Make>a</tiff:Make>");
  XmpPacket packet(text);
  EXPECT_TRUE(packet.Set(kTiffUri, "Orientation", "1"));
  EXPECT_FALSE(packet.Set(kTiffUri, "Model", "1"));
  std::string expected = text;
  expected[text.find("\"6\"") + 1] = '1';
  EXPECT_EQ(packet.Text(), expected);
  XmpPacket same(text);
  EXPECT_TRUE(same.Set(kTiffUri, "Orientation", "6"));
  EXPECT_FALSE(same.IsChanged());
  EXPECT_EQ(same.Text(), text);
}

TEST(XmpPacket, Padding_Should_GiveAndTakeTheRoom) {
  const std::string text = Packet("", "<tiff:Make>abc</tiff:Make>", 100);
  for (const size_t length : {0, 1, 3, 50, 90}) {
    XmpPacket packet(text);
    packet.Set(kTiffUri, "Make", std::string(length, 'x'));
    EXPECT_EQ(packet.Text().size(), text.size()) << length;
    EXPECT_EQ(XmpPacket(packet.Text()).Get(kTiffUri, "Make"), std::string(length, 'x'));
  }
  XmpPacket packet(text);
  packet.Set(kTiffUri, "Make", std::string(500, 'x'));
  // One blank stays of a hundred and a line break.
  EXPECT_EQ(packet.Text().size(), text.size() + 497 - 100);
  XmpPacket readOnly(Packet("", "<tiff:Make>abc</tiff:Make>", 100, 'r'));
  readOnly.Set(kTiffUri, "Make", "x");
  EXPECT_EQ(readOnly.Text().size(), text.size() - 2);
}

TEST(XmpPacket, Padding_Should_BeLeftAlone_When_ItsEndIsDamaged) {
  const std::string whole = Packet(" tiff:Orientation='6'", "", 20);
  for (size_t length = whole.rfind("<?xpacket"); length <= whole.size(); length++) {
    XmpPacket packet(whole.substr(0, length));
    if (packet.IsDamaged()) continue;
    EXPECT_TRUE(packet.Set(kTiffUri, "Orientation", "10"));
    const bool hasEnd = whole.substr(0, length).find("end=\"w") != std::string::npos;
    const size_t grown = hasEnd ? 0 : 1;
    EXPECT_EQ(packet.Text().size(), length + grown);
  }
}

TEST(XmpPacket, Remove_Should_TakeTheBlanksInFront) {
  XmpPacket packet(Packet("\n    tiff:Orientation=\"6\"\n    tiff:Make=\"m\"",
                          "\n   <tiff:Model>x</tiff:Model>\n   <exif:A/>", 0, 'r'));
  EXPECT_TRUE(packet.Remove(kTiffUri, "Orientation"));
  EXPECT_TRUE(packet.Remove(kTiffUri, "Model"));
  EXPECT_FALSE(packet.Remove(kTiffUri, "Nothing"));
  EXPECT_EQ(packet.Text(), Packet("\n    tiff:Make=\"m\"", "\n   <exif:A/>", 0, 'r'));
  XmpPacket all(Packet(" tiff:A='1' exif:B='2'", "<tiff:C><x><tiff:D/></x></tiff:C>"));
  EXPECT_TRUE(all.RemoveAll(kTiffUri));
  EXPECT_THAT(all.Text(), Not(HasSubstr("tiff:A")));
  EXPECT_THAT(all.Text(), Not(HasSubstr("tiff:C")));
  EXPECT_THAT(all.Text(), HasSubstr("exif:B='2'"));
  EXPECT_FALSE(XmpPacket(all.Text()).IsDamaged());
}

TEST(XmpPacket, Lists_Should_BeReadAndSet) {
  const std::string text = Packet("",
                                  "<exif:SubjectArea><rdf:Seq><rdf:li>10</rdf:li> <rdf:li> 20 "
                                  "</rdf:li></rdf:Seq></exif:SubjectArea>");
  XmpPacket packet(text);
  EXPECT_THAT(packet.List(kExifUri, "SubjectArea"), ElementsAre("10", "20"));
  EXPECT_EQ(packet.Get(kExifUri, "SubjectArea"), std::nullopt);
  EXPECT_FALSE(packet.SetList(kExifUri, "SubjectArea", {"1"}));
  EXPECT_TRUE(packet.SetList(kExifUri, "SubjectArea", {"11", "20"}));
  EXPECT_THAT(XmpPacket(packet.Text()).List(kExifUri, "SubjectArea"), ElementsAre("11", "20"));
  EXPECT_THAT(packet.Text(), HasSubstr("<rdf:li>11</rdf:li> <rdf:li> 20 </rdf:li>"));
}

TEST(XmpPacket, Values_Should_BeEscaped) {
  XmpPacket packet(Packet(" tiff:Make='m'", "<tiff:Model>x</tiff:Model>"));
  const std::string value = "a<b>&\"c\"'d'";
  packet.Set(kTiffUri, "Make", value);
  packet.Set(kTiffUri, "Model", value);
  const XmpPacket again(packet.Text());
  EXPECT_EQ(again.Get(kTiffUri, "Make"), value);
  EXPECT_EQ(again.Get(kTiffUri, "Model"), value);
}

std::string Utf16(const std::string& ascii, bool isHighFirst, bool hasMark) {
  std::string text;
  const auto put = [&](uint8_t high, uint8_t low) {
    text += static_cast<char>(isHighFirst ? high : low);
    text += static_cast<char>(isHighFirst ? low : high);
  };
  if (hasMark) put(0xFE, 0xFF);
  for (size_t i = 0; i < ascii.size(); i++) {
    if (ascii.compare(i, 3, "\xEF\xBB\xBF") == 0) {
      put(0xFE, 0xFF);
      i += 2;
    } else {
      put(0, static_cast<uint8_t>(ascii[i]));
    }
  }
  return text;
}

TEST(XmpPacket, Utf16_Should_BeReadAndBecomeUtf8_When_Changed) {
  const std::string text = Packet(" tiff:Orientation='6'", "");
  for (const bool isHighFirst : {false, true}) {
    for (const bool hasMark : {false, true}) {
      const std::string wide = Utf16(text, isHighFirst, hasMark);
      XmpPacket packet(wide);
      ASSERT_FALSE(packet.IsDamaged());
      EXPECT_EQ(packet.Get(kTiffUri, "Orientation"), "6");
      EXPECT_EQ(packet.Text(), wide);
      packet.Set(kTiffUri, "Orientation", "6");
      EXPECT_EQ(packet.Text(), wide);
      packet.Set(kTiffUri, "Orientation", "1");
      EXPECT_EQ(packet.Text(), Packet(" tiff:Orientation='1'", ""));
    }
  }
}

TEST(XmpPacket, Damage_Should_BeNoticed) {
  const std::string text = Packet(" tiff:Orientation='6'", "");
  for (const std::string& damaged :
       {std::string(), std::string("no packet"), std::string("<a>"), text.substr(0, 400),
        "<!DOCTYPE a [<!ENTITY b 'c'>]>" + std::string("<a>&b;</a>"),
        std::string("<a b='1' b='2'/>"), std::string("<x:a/>"), std::string("<a>\xFF</a>")}) {
    XmpPacket packet(damaged);
    EXPECT_TRUE(packet.IsDamaged()) << damaged.substr(0, 40);
    EXPECT_EQ(packet.Get(kTiffUri, "Orientation"), std::nullopt);
    EXPECT_FALSE(packet.Set(kTiffUri, "Orientation", "1"));
    EXPECT_FALSE(packet.Remove(kTiffUri, "Orientation"));
    EXPECT_EQ(packet.Text(), damaged);
  }
  EXPECT_FALSE(XmpPacket(text + std::string(7, '\0')).IsDamaged());
}

TEST(XmpPacket, Depth_Should_BeBounded) {
  const auto nested = [](int depth) {
    std::string text;
    for (int i = 0; i < depth; i++) text += "<a>";
    for (int i = 0; i < depth; i++) text += "</a>";
    return text;
  };
  EXPECT_FALSE(XmpPacket(nested(200)).IsDamaged());
  EXPECT_TRUE(XmpPacket(nested(201)).IsDamaged());
}

TEST(XmpPacket, ExtendedPart_Should_JoinThePacket) {
  const std::string packet = Packet(
      " tiff:Make='m' xmlns:xmpNote='http://ns.adobe.com/xmp/note/' xmpNote:HasExtendedXMP='00'",
      "");
  // Its namespaces stand at different elements; one of them is declared anew within.
  const std::string extended =
      "<x:xmpmeta xmlns:x='adobe:ns:meta/' xmlns:q=\"http://ns.adobe.com/tiff/1.0/\">"
      "<r:RDF xmlns:r='http://www.w3.org/1999/02/22-rdf-syntax-ns#' xmlns:e = 'urn:outer'>"
      "<r:Description r:about='' e:Both='a = b' xmlns:e='urn:inner'><q:Model>n</q:Model>"
      "</r:Description><r:Description q:Software='s'/></r:RDF></x:xmpmeta>";
  const auto joined = JoinXmp(packet, extended);
  ASSERT_TRUE(joined);
  const XmpPacket read(*joined);
  ASSERT_FALSE(read.IsDamaged());
  EXPECT_EQ(read.Get(kTiffUri, "Make"), "m");
  EXPECT_EQ(read.Get(kTiffUri, "Model"), "n");
  EXPECT_EQ(read.Get(kTiffUri, "Software"), "s");
  EXPECT_EQ(read.Get("urn:inner", "Both"), "a = b");
  EXPECT_FALSE(read.Has("http://ns.adobe.com/xmp/note/", "HasExtendedXMP"));
  EXPECT_FALSE(JoinXmp(packet, "<damaged"));
  EXPECT_FALSE(JoinXmp("<damaged", extended));
  EXPECT_FALSE(JoinXmp("<a/>", extended));
}

/// Damaged bytes of a packet: each is refused, or its changed text is a packet with that change.
TEST(XmpPacket, AnyBytes_Should_BeRefusedOrChangedAsAsked) {
  const unsigned seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  const std::string text =
      Packet(" tiff:Orientation='6'", "<exif:A><rdf:Seq><rdf:li>1</rdf:li></rdf:Seq></exif:A>");
  int changed = 0;
  for (int i = 0; i < 3000; i++) {
    std::string bytes = text;
    for (unsigned k = 0; k < 1 + random() % 3; k++) {
      bytes[random() % bytes.size()] = static_cast<char>(random() % 128);
    }
    XmpPacket packet(bytes);
    if (!packet.Set(kTiffUri, "Orientation", "1") || !packet.IsChanged()) continue;
    changed++;
    const XmpPacket again(packet.Text());
    ASSERT_FALSE(again.IsDamaged()) << bytes;
    EXPECT_EQ(again.Get(kTiffUri, "Orientation"), "1") << bytes;
  }
  EXPECT_GT(changed, 0);
}

}  // namespace
}  // namespace rasterkit::test
