#include <iostream>

#include <rasterkit/rasterkit.h>

namespace rk = rasterkit;

// whole_picture IN OUT: half as wide and high, turned by 10 degrees
int main(int, char** arguments) {
  try {
    rk::Picture picture = rk::Picture::Open(arguments[1]);  // headers only; upright from here on
    picture.Resize((picture.Width() + 1) / 2, (picture.Height() + 1) / 2).Rotate(10);

    rk::Run run;
    run.progress = [](double done) { std::cerr << "\r" << static_cast<int>(100 * done) << " %"; };
    const rk::Report report = picture.Save(arguments[2], {}, run);

    std::cerr << "\n";
    for (const rk::Loss& loss : report.losses) {
      std::cout << rk::LossKindName(loss.kind) << ": " << loss.what << " (" << loss.why << ")\n";
    }
    return report.losses.empty() ? 0 : 5;
  } catch (const rk::Error& error) {  // missing, damaged, too large, not writable
    std::cerr << error.what() << "\n";
    return 1;
  }
}
