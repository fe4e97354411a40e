#include <iostream>

#include <rasterkit/rasterkit.h>

int main() {
  try {
    // Reads headers only. The photo is upright from here on, in all eight orientations.
    const rasterkit::Picture photo = rasterkit::Picture::Open("photo.jpg");
    // The file keeps date, GPS, texts, profile and resolution. What it cannot hold is a loss.
    const rasterkit::Report report = photo.Save("upright.png");
    for (const rasterkit::Loss& loss : report.losses) {
      std::cerr << "lost: " << loss.what << ": " << loss.why << '\n';
    }
  } catch (const rasterkit::Error& error) {  // names the file and says why
    std::cerr << error.what() << '\n';
    return 1;
  }
}
