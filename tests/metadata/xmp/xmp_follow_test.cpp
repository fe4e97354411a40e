#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/metadata/xmp_follow.h>

#include "tests/metadata/xmp/xmp_packets.h"

namespace rasterkit::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

/// A quarter turn clockwise of 400 x 200: (x, y) goes to (200 - y, x).
PixelChange QuarterTurn() {
  PixelChange change;
  change.oldWidth = 400;
  change.oldHeight = 200;
  change.width = 200;
  change.height = 400;
  change.toNew = {0, -1, 200, 1, 0, 0};
  change.pixelsChanged = change.placesChanged = true;
  return change;
}

/// The right half of 400 x 200.
PixelChange RightHalf() {
  PixelChange change = QuarterTurn();
  change.width = 200;
  change.height = 200;
  change.toNew = {1, 0, -200, 0, 1, 0};
  return change;
}

PixelChange Colors() {
  PixelChange change;
  change.oldWidth = change.width = 400;
  change.oldHeight = change.height = 200;
  change.pixelsChanged = true;
  return change;
}

std::string Followed(std::string xmp, const PixelChange& change, Changes* changes = nullptr) {
  Changes ignored;
  std::string extended;
  FollowPixelsInXmp(xmp, extended, change, changes ? *changes : ignored);
  return xmp;
}

TEST(XmpFollow, Sizes_Should_BeTheNewOnes) {
  const std::string text = Packet(
      " tiff:Orientation=\"6\" tiff:ImageWidth=\"400\" tiff:XResolution=\"72/1\" "
      "tiff:YResolution=\"72\" tiff:ResolutionUnit=\"2\"",
      "<tiff:ImageLength>200</tiff:ImageLength><exif:PixelXDimension>400</exif:PixelXDimension>"
      "<exif:PixelYDimension>200</exif:PixelYDimension><xmp:MetadataDate>d</xmp:MetadataDate>");
  PixelChange change = QuarterTurn();
  change.resolution = {300, 72};
  const std::string after = Followed(text, change);
  EXPECT_EQ(after.size(), text.size());
  const XmpPacket packet(after);
  EXPECT_EQ(packet.Get(kTiffUri, "Orientation"), "1");
  EXPECT_EQ(packet.Get(kTiffUri, "ImageWidth"), "200");
  EXPECT_EQ(packet.Get(kTiffUri, "ImageLength"), "400");
  EXPECT_EQ(packet.Get(kExifUri, "PixelXDimension"), "200");
  EXPECT_EQ(packet.Get(kExifUri, "PixelYDimension"), "400");
  EXPECT_EQ(packet.Get(kTiffUri, "XResolution"), "300/1");
  EXPECT_EQ(packet.Get(kTiffUri, "YResolution"), "72");
  EXPECT_EQ(packet.Get("http://ns.adobe.com/xap/1.0/", "MetadataDate"), "d");
}

TEST(XmpFollow, Resolution_Should_BeInTheUnitOfThePacket) {
  PixelChange change = Colors();
  change.resolution = {254, 127};
  const XmpPacket packet(
      Followed(Packet(" tiff:XResolution='1/1' tiff:YResolution='1/1' tiff:ResolutionUnit='3'", ""),
               change));
  EXPECT_EQ(packet.Get(kTiffUri, "XResolution"), "100/1");
  EXPECT_EQ(packet.Get(kTiffUri, "YResolution"), "50/1");
}

TEST(XmpFollow, Bytes_Should_Stay_When_NothingIsStale) {
  const std::string text = Packet(
      " tiff:Orientation='1' dc:format='x' xmlns:photoshop='http://ns.adobe.com/photoshop/1.0/'"
      " photoshop:History='h'",
      "<xmp:CreateDate>d</xmp:CreateDate>");
  for (const PixelChange& change : {QuarterTurn(), Colors(), PixelChange()}) {
    Changes changes;
    EXPECT_EQ(Followed(text, change, &changes), text);
    EXPECT_THAT(changes.losses, IsEmpty());
    EXPECT_THAT(changes.notes, IsEmpty());
  }
}

TEST(XmpFollow, OnlyOrientationAndResolution_Should_Change_When_NoPixelsDo) {
  const std::string text =
      Packet(" tiff:Orientation='8' tiff:ImageWidth='7'", "<xmp:Thumbnails>t</xmp:Thumbnails>");
  EXPECT_EQ(Followed(text, PixelChange()), Packet(" tiff:Orientation='1' tiff:ImageWidth='7'",
                                                  "<xmp:Thumbnails>t</xmp:Thumbnails>"));
}

std::string SubjectArea(const std::vector<int>& numbers) {
  std::string items;
  for (const int number : numbers) items += "<rdf:li>" + std::to_string(number) + "</rdf:li>";
  return Packet("", "<exif:SubjectArea><rdf:Seq>" + items + "</rdf:Seq></exif:SubjectArea>");
}

std::vector<std::string> SubjectAreaAfter(const std::vector<int>& numbers,
                                          const PixelChange& change) {
  return XmpPacket(Followed(SubjectArea(numbers), change)).List(kExifUri, "SubjectArea");
}

TEST(XmpFollow, SubjectArea_Should_Follow) {
  EXPECT_THAT(SubjectAreaAfter({100, 50}, QuarterTurn()), ElementsAre("150", "100"));
  EXPECT_THAT(SubjectAreaAfter({100, 50, 20}, QuarterTurn()), ElementsAre("150", "100", "20"));
  EXPECT_THAT(SubjectAreaAfter({100, 50, 40, 20}, QuarterTurn()),
              ElementsAre("150", "100", "20", "40"));
  EXPECT_THAT(SubjectAreaAfter({200, 50, 40, 20}, RightHalf()),
              ElementsAre("10", "50", "20", "20"));
  EXPECT_THAT(SubjectAreaAfter({100, 50, 40, 20}, RightHalf()), IsEmpty());
  EXPECT_THAT(Followed(SubjectArea({100, 50}), RightHalf()), Not(HasSubstr("SubjectArea")));
  EXPECT_THAT(SubjectAreaAfter({100, 50}, Colors()), ElementsAre("100", "50"));
}

/// A face as attributes of a description, and one as elements.
std::string Faces(bool inPixels) {
  const std::string unit = inPixels ? "pixel" : "normalized";
  const auto number = [&](double part, double side) {
    std::string text = std::to_string(inPixels ? part * side : part);
    return text;
  };
  return Packet(
      " xmlns:mwg-rs='http://www.metadataworkinggroup.com/schemas/regions/'"
      " xmlns:stArea='http://ns.adobe.com/xmp/sType/Area#'"
      " xmlns:stDim='http://ns.adobe.com/xap/1.0/sType/Dimensions#'",
      "<mwg-rs:Regions rdf:parseType='Resource'>"
      "<mwg-rs:AppliedToDimensions stDim:w='400' stDim:h='200' stDim:unit='pixel'/>"
      "<mwg-rs:RegionList><rdf:Bag>"
      "<rdf:li><rdf:Description mwg-rs:Name='Left' mwg-rs:Type='Face'><mwg-rs:Area stArea:x='" +
          number(0.25, 400) + "' stArea:y='" + number(0.5, 200) + "' stArea:w='" +
          number(0.1, 400) + "' stArea:h='" + number(0.2, 200) + "' stArea:unit='" + unit +
          "'/></rdf:Description></rdf:li>"
          "<rdf:li rdf:parseType='Resource'><mwg-rs:Name>Right</mwg-rs:Name>"
          "<mwg-rs:Area rdf:parseType='Resource'><stArea:x>" +
          number(0.75, 400) + "</stArea:x><stArea:y>" + number(0.25, 200) +
          "</stArea:y><stArea:w>" + number(0.1, 400) + "</stArea:w><stArea:h>" + number(0.1, 200) +
          "</stArea:h><stArea:unit>" + unit +
          "</stArea:unit></mwg-rs:Area></rdf:li>"
          "</rdf:Bag></mwg-rs:RegionList></mwg-rs:Regions>");
}

TEST(XmpFollow, Faces_Should_Turn) {
  const std::string after = Followed(Faces(false), QuarterTurn());
  EXPECT_THAT(after, HasSubstr("stDim:w='200' stDim:h='400'"));
  EXPECT_THAT(after, HasSubstr("stArea:x='0.5' stArea:y='0.25' stArea:w='0.2' stArea:h='0.1'"));
  EXPECT_THAT(after, HasSubstr("<stArea:x>0.75</stArea:x><stArea:y>0.75</stArea:y>"
                               "<stArea:w>0.1</stArea:w><stArea:h>0.1</stArea:h>"));
  const std::string pixels = Followed(Faces(true), QuarterTurn());
  EXPECT_THAT(pixels, HasSubstr("stArea:x='100' stArea:y='100' stArea:w='40' stArea:h='40'"));
}

TEST(XmpFollow, FacesOutside_Should_Go) {
  Changes changes;
  const std::string after = Followed(Faces(false), RightHalf(), &changes);
  EXPECT_THAT(after, Not(HasSubstr("Left")));
  EXPECT_THAT(after, HasSubstr("<stArea:x>0.5</stArea:x><stArea:y>0.25</stArea:y>"
                               "<stArea:w>0.2</stArea:w><stArea:h>0.1</stArea:h>"));
  EXPECT_THAT(changes.losses, IsEmpty());
  EXPECT_THAT(changes.notes, ElementsAre("1 image region outside the picture removed"));
  PixelChange corner = RightHalf();
  corner.toNew = {1, 0, -395, 0, 1, -195};
  corner.width = corner.height = 5;
  EXPECT_THAT(Followed(Faces(false), corner), Not(HasSubstr("mwg-rs:Regions")));
  EXPECT_FALSE(XmpPacket(Followed(Faces(false), corner)).IsDamaged());
  EXPECT_EQ(Followed(Faces(false), Colors()), Faces(false));
}

TEST(XmpFollow, BoxesAndOtherRegions_Should_Follow) {
  const std::string boxes = Packet(
      " xmlns:MP='http://ns.microsoft.com/photo/1.2/'"
      " xmlns:MPRI='http://ns.microsoft.com/photo/1.2/t/RegionInfo#'"
      " xmlns:MPReg='http://ns.microsoft.com/photo/1.2/t/Region#'",
      "<MP:RegionInfo><rdf:Description><MPRI:Regions><rdf:Bag><rdf:li>"
      "<rdf:Description MPReg:Rectangle='0.5, 0.25, 0.1, 0.2' MPReg:PersonDisplayName='n'/>"
      "</rdf:li></rdf:Bag></MPRI:Regions></rdf:Description></MP:RegionInfo>");
  EXPECT_THAT(Followed(boxes, QuarterTurn()), HasSubstr("Rectangle='0.55, 0.5, 0.2, 0.1'"));
  PixelChange leftHalf = RightHalf();
  leftHalf.toNew[2] = 0;
  EXPECT_THAT(Followed(boxes, leftHalf), Not(HasSubstr("RegionInfo>")));

  const std::string others = Packet(
      " xmlns:acdsee-rs='http://ns.acdsee.com/regions/'"
      " xmlns:acdsee-stArea='http://ns.acdsee.com/sType/Area#'",
      "<acdsee-rs:Regions rdf:parseType='Resource'><acdsee-rs:RegionList><rdf:Bag><rdf:li>"
      "<rdf:Description><acdsee-rs:DLYArea acdsee-stArea:h='0.2' acdsee-stArea:w='0.1'"
      " acdsee-stArea:x='0.25' acdsee-stArea:y='0.5'/></rdf:Description></rdf:li></rdf:Bag>"
      "</acdsee-rs:RegionList></acdsee-rs:Regions>");
  EXPECT_THAT(Followed(others, QuarterTurn()), HasSubstr("h='0.1'"));

  Changes changes;
  const std::string iptc = Packet(
      " xmlns:Iptc4xmpExt='http://iptc.org/std/Iptc4xmpExt/2008-02-29/'",
      "<Iptc4xmpExt:ImageRegion><rdf:Bag><rdf:li>x</rdf:li></rdf:Bag></Iptc4xmpExt:ImageRegion>");
  EXPECT_THAT(Followed(iptc, QuarterTurn(), &changes), Not(HasSubstr("ImageRegion")));
  ASSERT_EQ(changes.losses.size(), 1u);
  EXPECT_EQ(changes.losses[0].kind, LossKind::xmp);
  EXPECT_EQ(Followed(iptc, Colors()), iptc);
}

TEST(XmpFollow, Panorama_Should_Go_When_PlacesChange) {
  const std::string text = Packet(
      " xmlns:GPano='http://ns.google.com/photos/1.0/panorama/' GPano:FullPanoWidthPixels='400'",
      "<GPano:ProjectionType>equirectangular</GPano:ProjectionType>");
  Changes changes;
  EXPECT_EQ(Followed(text, Colors(), &changes), text);
  EXPECT_THAT(changes.losses, IsEmpty());
  EXPECT_THAT(Followed(text, RightHalf(), &changes), Not(HasSubstr("GPano:")));
  ASSERT_EQ(changes.losses.size(), 1u);
  EXPECT_EQ(changes.losses[0].what, "panorama properties (XMP)");
}

TEST(XmpFollow, GainMapsAndMotion_Should_Go_When_PixelsChange) {
  const std::string text = Packet(
      " xmlns:hdrgm='http://ns.adobe.com/hdr-gain-map/1.0/' hdrgm:Version='1.0'"
      " xmlns:GCamera='http://ns.google.com/photos/1.0/camera/' GCamera:MotionPhoto='1'"
      " GCamera:MotionPhotoVersion='1' GCamera:SpecialTypeID='x'",
      "<Container:Directory xmlns:Container='http://ns.google.com/photos/1.0/container/'>"
      "<rdf:Seq><rdf:li>i</rdf:li></rdf:Seq></Container:Directory><xmp:Thumbnails>t</"
      "xmp:Thumbnails>");
  Changes changes;
  const std::string after = Followed(text, Colors(), &changes);
  EXPECT_THAT(after, Not(HasSubstr("hdrgm:Version")));
  EXPECT_THAT(after, Not(HasSubstr("GCamera:MotionPhoto")));
  EXPECT_THAT(after, Not(HasSubstr("Directory")));
  EXPECT_THAT(after, Not(HasSubstr("Thumbnails")));
  EXPECT_THAT(after, HasSubstr("GCamera:SpecialTypeID='x'"));
  std::vector<std::string> lost;
  for (const Loss& loss : changes.losses) lost.push_back(loss.what);
  EXPECT_THAT(lost, ElementsAre("gain-map properties (XMP)", "list of embedded pictures (XMP)",
                                "motion-photo properties (XMP)"));
  EXPECT_THAT(changes.notes, ElementsAre("thumbnail in XMP removed"));
  EXPECT_EQ(Followed(text, PixelChange()), text);
}

TEST(XmpFollow, FocalPlane_Should_FollowAxesAndScale) {
  const std::string text =
      Packet(" exif:FocalPlaneXResolution='1000/1' exif:FocalPlaneYResolution='500/1'", "");
  const XmpPacket turned(Followed(text, QuarterTurn()));
  EXPECT_EQ(turned.Get(kExifUri, "FocalPlaneXResolution"), "500/1");
  EXPECT_EQ(turned.Get(kExifUri, "FocalPlaneYResolution"), "1000/1");
  PixelChange half = RightHalf();
  half.toNew = {0.5, 0, 0, 0, 0.25, 0};
  const XmpPacket scaled(Followed(text, half));
  EXPECT_EQ(scaled.Get(kExifUri, "FocalPlaneXResolution"), "500/1");
  EXPECT_EQ(scaled.Get(kExifUri, "FocalPlaneYResolution"), "125/1");
  EXPECT_EQ(Followed(text, RightHalf()), text);
}

TEST(XmpFollow, DamagedPacket_Should_BeDropped_When_PixelsChange) {
  const std::string damaged = Packet(" tiff:Orientation='6'", "").substr(0, 430);
  Changes changes;
  EXPECT_EQ(Followed(damaged, PixelChange(), &changes), damaged);
  EXPECT_THAT(changes.losses, IsEmpty());
  EXPECT_EQ(Followed(damaged, Colors(), &changes), "");
  ASSERT_EQ(changes.losses.size(), 1u);
  EXPECT_EQ(changes.losses[0].kind, LossKind::xmp);
}

TEST(XmpFollow, ExtendedPart_Should_Follow) {
  std::string xmp =
      Packet(" xmlns:xmpNote='http://ns.adobe.com/xmp/note/' xmpNote:HasExtendedXMP='00'", "");
  std::string extended = Packet(" tiff:Orientation='6'", "");
  const std::string before = xmp;
  Changes changes;
  FollowPixelsInXmp(xmp, extended, Colors(), changes);
  EXPECT_EQ(xmp, before);
  EXPECT_EQ(extended, Packet(" tiff:Orientation='1'", ""));
  extended = "<damaged";
  FollowPixelsInXmp(xmp, extended, Colors(), changes);
  EXPECT_EQ(extended, "");
  EXPECT_THAT(xmp, Not(HasSubstr("HasExtendedXMP")));
}

}  // namespace
}  // namespace rasterkit::test
