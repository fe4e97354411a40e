#include <rasterkit/jpegexif/gps_data.h>

namespace rasterkit {

double TrecKoordGPS::Koord() const {
  const double degrees = Grad + GMin / 60 + GSec / 3600;
  return Ref == 'S' || Ref == 'W' ? -degrees : degrees;
}

}  // namespace rasterkit
