#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/placement/aux_xml.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::test {
namespace {

using detail::AuxXml;
using detail::ParseAuxXml;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::string InDataset(const std::string& inner) {
  return "<PAMDataset>\n" + inner + "\n</PAMDataset>\n";
}

std::string ReasonAgainst(const std::string& text) {
  try {
    ParseAuxXml(text);
  } catch (const FormatError& error) {
    return error.Reason();
  }
  return "";
}

TEST(AuxXmlFiles, GiveThePositionOfPixelCenters) {
  const AuxXml aux = ParseAuxXml(InDataset(
      "<SRS dataAxisToSRSAxisMapping=\"1,2\">PROJCS[&quot;Grid&quot;]</SRS>\n"
      "<GeoTransform>  4.4072e+05,  60.0,  0.5,  3.75132e+06,  0.25, -60.0</GeoTransform>"));
  EXPECT_EQ(aux.affine, (Affine{60, 0.25, 0.5, -60, 440750.25, 3751290.125}));
  EXPECT_EQ(aux.wkt, "PROJCS[\"Grid\"]");
  EXPECT_THAT(aux.faults, IsEmpty());
}

TEST(AuxXmlFiles, GiveControlPoints) {
  const AuxXml aux =
      ParseAuxXml(InDataset("<GCPList Projection=\"GEOGCS[&quot;WGS 84&quot;]\">\n"
                            "<GCP Id=\"1\" Pixel=\"0.5\" Line=\"2\" X=\"7.5\" Y=\"51\" Z=\"3\"/>\n"
                            "<GCP Id=\"2\" Pixel=\"nan\" Line=\"2\" X=\"7.5\" Y=\"51\"/>\n"
                            "<GCP Id=\"3\" Pixel=\"9\" Line=\"8\" X=\"7\" Y=\"52\"/></GCPList>"));
  ASSERT_EQ(aux.controlPoints.size(), 2u);
  EXPECT_EQ(aux.controlPoints[0].column, 0.5);
  EXPECT_EQ(aux.controlPoints[0].z, 3);
  EXPECT_EQ(aux.controlPoints[1].y, 52);
  EXPECT_EQ(aux.wkt, "GEOGCS[\"WGS 84\"]");
  EXPECT_THAT(aux.faults, ElementsAre(HasSubstr("line 4: a control point")));
}

TEST(AuxXmlFiles, GiveNoDataOfBands) {
  const AuxXml aux = ParseAuxXml(
      InDataset("<PAMRasterBand band=\"1\"><NoDataValue>-9.99900000000000E+03</NoDataValue>"
                "<Histograms><HistItem><HistMin>0</HistMin></HistItem></Histograms></PAMRasterBand>"
                "<PAMRasterBand band=\"2\"><NoDataValue>nan</NoDataValue></PAMRasterBand>"));
  EXPECT_THAT(aux.noData, ElementsAre("-9.99900000000000E+03", "nan"));
}

TEST(AuxXmlFiles, GiveTheRationalModel) {
  std::string items = "<Metadata domain=\"RPC\">\n";
  int next = 1;
  for (const char* key : {"LINE_OFF", "SAMP_OFF", "LAT_OFF", "LONG_OFF", "HEIGHT_OFF", "LINE_SCALE",
                          "SAMP_SCALE", "LAT_SCALE", "LONG_SCALE", "HEIGHT_SCALE"}) {
    items += "<MDI key=\"" + std::string(key) + "\">" + std::to_string(next++) + "</MDI>\n";
  }
  const std::string missing = items;
  for (const char* key : {"LINE_NUM_COEFF", "LINE_DEN_COEFF", "SAMP_NUM_COEFF", "SAMP_DEN_COEFF"}) {
    items += "<MDI key=\"" + std::string(key) + "\">";
    for (int i = 0; i < 20; ++i) items += std::to_string(next++) + " ";
    items += "</MDI>\n";
  }
  const AuxXml aux = ParseAuxXml(InDataset(items + "</Metadata>"));
  ASSERT_EQ(aux.rationalModel.size(), 92u);
  EXPECT_EQ(aux.rationalModel[0], -1);
  for (size_t i = 2; i < 92; ++i) EXPECT_EQ(aux.rationalModel[i], i - 1) << i;
  const AuxXml broken = ParseAuxXml(InDataset(missing + "</Metadata>"));
  EXPECT_THAT(broken.rationalModel, IsEmpty());
  EXPECT_THAT(broken.faults, ElementsAre(HasSubstr("lacks numbers")));
}

TEST(AuxXmlFiles, IgnoreWhatStandsElsewhere) {
  const AuxXml aux = ParseAuxXml(
      "<Other><GeoTransform>1,1,0,1,0,-1</GeoTransform><PAMDataset><SRS>x</SRS></PAMDataset></"
      "Other>");
  EXPECT_FALSE(aux.affine);
  EXPECT_EQ(aux.wkt, "");
}

TEST(AuxXmlFiles, SayWhatIsWrong) {
  EXPECT_THAT(ParseAuxXml(InDataset("<GeoTransform>1, 2, 3</GeoTransform>")).faults,
              ElementsAre(HasSubstr("line 2: the transformation has 3 of 6 numbers")));
  EXPECT_THAT(ParseAuxXml(InDataset("<GeoTransform>1,0,0,1,0,0</GeoTransform>")).faults,
              ElementsAre(HasSubstr("no area")));
  EXPECT_THAT(ReasonAgainst("<PAMDataset>\n<SRS>"), HasSubstr("line 2: "));
  EXPECT_THAT(ReasonAgainst(""), HasSubstr("line 1: "));
  EXPECT_THAT(ReasonAgainst("1\n0\n0\n-1\n"), HasSubstr("line 1: "));
}

TEST(AuxXmlFiles, WithEntitiesOrDeepElementsAreRefused) {
  EXPECT_THAT(ReasonAgainst("<!DOCTYPE x [<!ENTITY a \"aaaa\">]>\n<PAMDataset>&a;</PAMDataset>"),
              HasSubstr("document type"));
  std::string deep;
  for (int i = 0; i < 70; ++i) deep += "<a>";
  EXPECT_THAT(ReasonAgainst(deep), HasSubstr("nested too deeply"));
}

}  // namespace
}  // namespace rasterkit::test
