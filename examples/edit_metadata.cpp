#include <rasterkit/rasterkit.h>

namespace rk = rasterkit;

// edit_metadata PHOTO.jpg
int main(int, char** arguments) {
  rk::OpenOptions asStored;
  asStored.turnsUpright = false;
  rk::Picture photo = rk::Picture::Open(arguments[1], asStored);
  rk::MetadataEdit edit;
  edit.stripGps = true;
  edit.set = {{"Artist", "A. Person"}, {"IPTC:Keywords", "harbor"}, {"xmp:Rating", "5"}};
  edit.date = "2019-07-04T13:05:09";
  photo.Edit(edit);
  photo.Save(arguments[1]);
}
