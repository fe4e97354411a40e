#include <rasterkit/runtime/errors.h>

#include "tests/jpegexif/exif_fixture.h"

namespace rasterkit {
namespace {

using test::ByteOrder;
using test::TiffEntry;

class Gps : public test::ExifInBothOrders {
 protected:
  void ReadGps(const std::vector<TiffEntry>& entries) {
    ReadTiff(writer_.Tiff({writer_.GpsPointer()}, entries));
  }
  const TGPSData& Data() const { return *image_->GPSData; }
  std::string Text(size_t row) const { return Entry(row).Inhalt; }
};
INSTANTIATE_TEST_SUITE_P(Orders, Gps, ::testing::Values(ByteOrder::intel, ByteOrder::motorola),
                         test::OrderName);

TEST_P(Gps, Coordinates_Should_BeDegreesMinutesSeconds) {
  ReadGps({writer_.Ascii(1, "S"), writer_.Rationals(2, {{38, 1}, {24, 1}, {1870, 100}}),
           writer_.Ascii(3, "E"), writer_.Rationals(4, {{144, 1}, {11, 1}, {2025, 100}})});
  EXPECT_EQ(Data().Latitude.Ref, 'S');
  EXPECT_EQ(Data().Latitude.Grad, 38);
  EXPECT_EQ(Data().Latitude.GMin, 24);
  EXPECT_EQ(Data().Latitude.GSec, 18.7);
  EXPECT_DOUBLE_EQ(Data().Latitude.Koord(), -(38 + 24 / 60.0 + 18.7 / 3600));
  EXPECT_DOUBLE_EQ(Data().Longitude.Koord(), 144 + 11 / 60.0 + 20.25 / 3600);
  EXPECT_EQ(Text(0), "S");
  EXPECT_EQ(Text(1), "38° 24' 18.70''");
}

TEST_P(Gps, MinutesWithAFraction_Should_BecomeSeconds_When_SecondsAreZero) {
  ReadGps({writer_.Rationals(2, {{51, 1}, {25, 2}, {0, 1}})});
  EXPECT_EQ(Data().Latitude.GMin, 12);
  EXPECT_DOUBLE_EQ(Data().Latitude.GSec, 30);
  EXPECT_EQ(Text(0), "51° 12' 30.00''");
}

TEST_P(Gps, MinutesWithAFraction_Should_Stay_When_SecondsAreThere) {
  ReadGps({writer_.Rationals(4, {{51, 1}, {25, 2}, {1, 1}})});
  EXPECT_EQ(Data().Longitude.GMin, 12.5);
  EXPECT_EQ(Data().Longitude.GSec, 1);
}

TEST_P(Gps, MinutesWithAFraction_Should_BecomeSecondsInTwoSteps) {
  ReadGps({writer_.Rationals(2, {{51, 1}, {536, 100}, {0, 1}})});
  const double fraction = 5.36 - 5;
  EXPECT_EQ(Data().Latitude.GSec, fraction * 100 * 0.6);
  EXPECT_NE(Data().Latitude.GSec, fraction * 60);
}

TEST_P(Gps, MinutesWithAFraction_Should_Stay_When_SecondsAreNotExactlyZero) {
  ReadGps({writer_.Rationals(2, {{51, 1}, {25, 2}, {1, 1000000}})});
  EXPECT_EQ(Data().Latitude.GMin, 12.5);
  EXPECT_EQ(Data().Latitude.GSec, 1e-6);
}

TEST_P(Gps, NegativeMinutes_Should_BeCutTowardZero) {
  ReadGps({writer_.Rationals(2, {{51, 1}, {static_cast<uint32_t>(-25), 2}, {0, 1}})});
  EXPECT_EQ(Data().Latitude.GMin, -12);
  EXPECT_EQ(Data().Latitude.GSec, -30);
}

TEST_P(Gps, Coordinates_Should_NotBeStored_When_DecodingIsOff) {
  const std::string file = test::JpegOf({test::ExifSection(
      writer_.Tiff({writer_.GpsPointer()}, {writer_.Rationals(2, {{51, 1}, {25, 2}})}))});
  TSpanStream stream({reinterpret_cast<const uint8_t*>(file.data()), file.size()});
  image_->ExifDecode = false;
  EXPECT_TRUE(image_->ReadJpegSections(stream));
  EXPECT_EQ(Data().Latitude.Koord(), 0);
  EXPECT_EQ(Text(0), "51/1, 25/2");
}

TEST_P(Gps, ZeroDenominators_Should_CountAsZero) {
  ReadGps({writer_.Rationals(2, {{51, 0}, {25, 0}, {7, 0}})});
  EXPECT_EQ(Data().Latitude.Koord(), 0);
  EXPECT_EQ(Text(0), "0° 0' 0.00''");
}

TEST_P(Gps, Destination_Should_BeStoredApart) {
  ReadGps({writer_.Ascii(19, "N"), writer_.Rationals(20, {{1, 1}, {2, 1}, {3, 1}}),
           writer_.Ascii(21, "W"), writer_.Rationals(22, {{4, 1}, {5, 1}, {6, 1}}),
           writer_.Ascii(23, "T"), writer_.Rationals(24, {{90, 4}}), writer_.Ascii(25, "K"),
           writer_.Rationals(26, {{7, 2}})});
  EXPECT_DOUBLE_EQ(Data().DestLatitude.Koord(), 1 + 2 / 60.0 + 3 / 3600.0);
  EXPECT_DOUBLE_EQ(Data().DestLongitude.Koord(), -(4 + 5 / 60.0 + 6 / 3600.0));
  EXPECT_EQ(Data().DestBearing.Ref, 'T');
  EXPECT_EQ(Data().DestBearing.Winkel, 22.5);
  EXPECT_EQ(Data().DestDistanceRef, 'K');
  EXPECT_EQ(Data().DestDistance, 3.5);
  EXPECT_EQ(Data().Latitude.Koord(), 0);
}

TEST_P(Gps, Koord_Should_BeNegativeInTheSouthAndTheWestOnly) {
  for (const char ref : {'N', 'E', '\0', 's', 'w', 'X'}) {
    EXPECT_EQ((TrecKoordGPS{ref, 1, 30, 0}.Koord()), 1.5) << ref;
  }
  EXPECT_EQ((TrecKoordGPS{'S', 1, 30, 0}.Koord()), -1.5);
  EXPECT_EQ((TrecKoordGPS{'W', 1, 30, 0}.Koord()), -1.5);
}

TEST_P(Gps, CoordinateWithFewRationals_Should_Throw) {
  EXPECT_THROW(ReadGps({writer_.Rationals(2, {{51, 1}, {25, 2}})}), ConversionError);
  EXPECT_THROW(ReadGps({writer_.Rationals(4, {{51, 1}})}), ConversionError);
  EXPECT_THROW(ReadGps({writer_.Short(20, 7)}), ConversionError);
  EXPECT_THROW(ReadGps({writer_.Ascii(22, "51.5")}), ConversionError);
}

TEST_P(Gps, CoordinateWithMoreRationals_Should_TakeTheFirstThree) {
  ReadGps({writer_.Rationals(2, {{1, 1}, {2, 1}, {3, 1}, {4, 1}})});
  EXPECT_EQ(Data().Latitude.GSec, 3);
}

TEST_P(Gps, CoordinateBeyondTheBuffer_Should_BeZero) {
  ReadGps({{2, 5, 3, writer_.Long(0x00FFFFFF)}});
  EXPECT_EQ(Data().Latitude.Koord(), 0);
}

TEST_P(Gps, TimeStamp_Should_BeATimeOfDay) {
  ReadGps({writer_.Rationals(7, {{6, 1}, {30, 1}, {5999, 100}})});
  EXPECT_EQ(Data().TimeStamp, EncodeTime(6, 30, 59, 0)) << "parts are cut to whole numbers";
  EXPECT_EQ(Text(0), "06:30:59");
}

TEST_P(Gps, TimeStamp_Should_KeepItsStartValue_When_ThereIsNoSuchTime) {
  ReadGps({writer_.Rationals(7, {{24, 1}, {0, 1}, {0, 1}})});
  EXPECT_EQ(Data().TimeStamp, TGPSData().TimeStamp);
  EXPECT_EQ(Text(0), "24:00:00");
  ReadGps({writer_.Rationals(7, {{7, 1}, {60, 1}, {5, 1}})});
  EXPECT_EQ(Data().TimeStamp, TGPSData().TimeStamp);
  EXPECT_EQ(Text(0), "07:60:05");
  ReadGps({writer_.Rationals(7, {{0x7FFFFFFF, 1}, {0xFFFFFFFF, 1}, {99, 1}})});
  EXPECT_EQ(Data().TimeStamp, TGPSData().TimeStamp);
  EXPECT_EQ(Text(0), "2147483647:-1:99");
}

TEST_P(Gps, TimeStamp_Should_Throw_When_ItIsIncomplete) {
  EXPECT_THROW(ReadGps({writer_.Rationals(7, {{1, 1}, {2, 1}})}), ConversionError);
}

TEST_P(Gps, Elevation_Should_BeZero_When_ThePlaceLiesBelowTheSea) {
  ReadGps({writer_.Bytes(5, std::string(1, '\1')), writer_.Rationals(6, {{85, 10}})});
  EXPECT_EQ(Data().AltitudeRef, 1);
  EXPECT_EQ(Data().Altitude, 8.5);
  EXPECT_EQ(Data().Elevation(), 0);
  EXPECT_EQ(Text(1), "8.50 m");
  ReadGps({writer_.Bytes(5, std::string(1, '\0')), writer_.Rationals(6, {{85, 10}})});
  EXPECT_EQ(Data().Elevation(), 8.5);
}

TEST_P(Gps, Altitude_Should_KeepItsSign_When_ItsTypeHasOne) {
  TiffEntry altitude = writer_.Rationals(6, {{static_cast<uint32_t>(-85), 10}});
  altitude.type = 10;
  ReadGps({altitude});
  EXPECT_EQ(Data().Altitude, -8.5);
  EXPECT_EQ(Data().Elevation(), -8.5) << "the reference, not the sign, says what lies below";
  EXPECT_EQ(Text(0), "-8.50 m");
}

TEST_P(Gps, VersionId_Should_WeighItsBytes) {
  ReadGps({writer_.Bytes(0, std::string("\2\3\4\5", 4))});
  EXPECT_EQ(Data().VersionID, 2 * 1000 + 3 * 100 + 4 * 11);
  ASSERT_EQ(Exif().FTagCount, 2);
  EXPECT_EQ(Entry(0).Tag, 0) << "in a GPS directory tag 0 is a tag like any other";
}

TEST_P(Gps, VersionId_Should_StayZero_When_ItHasNotFourBytes) {
  ReadGps({writer_.Bytes(0, "\2\3\4")});
  EXPECT_EQ(Data().VersionID, 0);
  ReadGps({writer_.Bytes(0, "\2\3\4\5\6")});
  EXPECT_EQ(Data().VersionID, 0);
}

TEST_P(Gps, SpeedTrackAndDirection_Should_BeStored) {
  ReadGps({writer_.Ascii(12, "K"), writer_.Rationals(13, {{5, 2}}), writer_.Ascii(14, "T"),
           writer_.Rationals(15, {{180, 1}}), writer_.Ascii(16, "M"),
           writer_.Rationals(17, {{271, 2}}), writer_.Ascii(18, "WGS-84")});
  EXPECT_EQ(Data().SpeedRef, 'K');
  EXPECT_EQ(Data().Speed, 2.5);
  EXPECT_EQ(Data().Track.Ref, 'T');
  EXPECT_EQ(Data().Track.Winkel, 180);
  EXPECT_EQ(Data().ImageDirection.Ref, 'M');
  EXPECT_EQ(Data().ImageDirection.Winkel, 135.5);
  EXPECT_EQ(Data().MapDatum, "WGS-84");
}

TEST_P(Gps, OtherFields_Should_StayEmpty_ThoughTheirEntriesAreKept) {
  ReadGps({writer_.Ascii(8, "3"), writer_.Ascii(9, "A"), writer_.Ascii(10, "3"),
           writer_.Rationals(11, {{1, 2}}), writer_.Bytes(27, "ASCII", 7),
           writer_.Bytes(28, "area", 7), writer_.Ascii(29, "2019:07:04"), writer_.Short(30, 1),
           writer_.Short(31, 1)});
  EXPECT_EQ(Exif().FTagCount, 8 + 1);
  EXPECT_EQ(Data().Satellites, "");
  EXPECT_EQ(Data().Status, '\0');
  EXPECT_EQ(Data().DOP, 0);
  EXPECT_EQ(Data().DateStamp, 0);
  EXPECT_EQ(Data().Differential, 0);
  EXPECT_EQ(Text(6), "2019:07:04");
}

TEST_P(Gps, Reference_Should_BeAQuote_When_ItsBytesAreUndefined) {
  ReadGps({writer_.Bytes(1, "N", 7)});
  EXPECT_EQ(Data().Latitude.Ref, '"') << "the first character of the display text";
}

TEST_P(Gps, EmptyReference_Should_NameNoDirection) {
  ReadGps({writer_.Ascii(1, "")});
  EXPECT_EQ(Data().Latitude.Ref, '\0');
}

TEST_P(Gps, Callbacks_Should_OnlyFormat_When_ThereIsNoGpsData) {
  TImageData image;
  EXPECT_EQ(detail::CoordinateText("1/1, 2/1, 3/1", 2, image), "1° 2' 3.00''");
  EXPECT_EQ(detail::TimeText("1/1, 2/1, 3/1", 7, image), "01:02:03");
  EXPECT_EQ(image.GPSData, nullptr);
}

}  // namespace
}  // namespace rasterkit
