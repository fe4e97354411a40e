#include <iostream>

#include <rasterkit/rasterkit.h>

namespace rk = rasterkit;

// document_pages IN.tif OUT.tif: the last page upside down and in front of the others
int main(int, char** arguments) {
  try {
    rk::Document document = rk::Document::Open(arguments[1]);  // header of the first page only
    const int last = document.Pages();
    document.Replace(last, document.Page(last).Turn(2)).Move(last, 1);

    const rk::Report report = document.Save(arguments[2]);
    for (const rk::Loss& loss : report.losses) {
      std::cout << rk::LossKindName(loss.kind) << ": " << loss.what << " (" << loss.why << ")\n";
    }
    return report.losses.empty() ? 0 : 5;
  } catch (const rk::Error& error) {
    std::cerr << error.what() << "\n";
    return 1;
  }
}
