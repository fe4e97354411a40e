#include <algorithm>

#include <rasterkit/drawing/text/font_names.h>

namespace rasterkit::detail {
namespace {

constexpr const char* kSans[] = {"Arial",       "Liberation Sans", "Arimo",      "Helvetica",
                                 "Nimbus Sans", "FreeSans",        "DejaVu Sans"};
constexpr const char* kNarrow[] = {"Liberation Sans Narrow", "Nimbus Sans Narrow",
                                   "DejaVu Sans Condensed", "Liberation Sans"};
constexpr const char* kSerif[] = {"Times New Roman", "Liberation Serif", "Tinos",       "Times",
                                  "Nimbus Roman",    "FreeSerif",        "DejaVu Serif"};
constexpr const char* kMono[] = {"Courier New",    "Liberation Mono", "Cousine",         "Courier",
                                 "Nimbus Mono PS", "FreeMono",        "DejaVu Sans Mono"};
constexpr const char* kWide[] = {"Verdana", "DejaVu Sans", "Bitstream Vera Sans",
                                 "Liberation Sans"};
constexpr const char* kOffice[] = {"Carlito", "Liberation Sans", "DejaVu Sans"};
constexpr const char* kOfficeSerif[] = {"Caladea", "Liberation Serif", "DejaVu Serif"};
constexpr const char* kScreen[] = {"Tahoma", "Segoe UI", "Noto Sans", "Liberation Sans",
                                   "DejaVu Sans"};
constexpr const char* kBook[] = {"Georgia", "Gelasio", "DejaVu Serif", "Liberation Serif"};
constexpr const char* kSymbols[] = {"OpenSymbol", "Standard Symbols PS", "DejaVu Sans"};
constexpr const char* kNarrowMono[] = {"Consolas", "Inconsolata", "DejaVu Sans Mono",
                                       "Liberation Mono"};

struct StandIn {
  std::string_view name;
  std::span<const char* const> families;
};

const StandIn kStandIns[] = {
    {"Arial", kSans},
    {"Arial Black", kSans},
    {"Arial Unicode MS", kSans},
    {"Helvetica", kSans},
    {"Helv", kSans},
    {"MS Sans Serif", kSans},
    {"Microsoft Sans Serif", kSans},
    {"MS Shell Dlg", kSans},
    {"MS Shell Dlg 2", kScreen},
    {"System", kSans},
    {"Univers", kSans},
    {"Swiss", kSans},
    {"Arial Narrow", kNarrow},
    {"Helvetica-Narrow", kNarrow},
    {"Times New Roman", kSerif},
    {"Times", kSerif},
    {"Tms Rmn", kSerif},
    {"MS Serif", kSerif},
    {"Roman", kSerif},
    {"Garamond", kSerif},
    {"Book Antiqua", kSerif},
    {"Bookman Old Style", kBook},
    {"Century", kBook},
    {"Century Schoolbook", kBook},
    {"Georgia", kBook},
    {"Courier New", kMono},
    {"Courier", kMono},
    {"Fixedsys", kMono},
    {"Terminal", kMono},
    {"Modern", kMono},
    {"Lucida Console", kNarrowMono},
    {"Consolas", kNarrowMono},
    {"Verdana", kWide},
    {"Tahoma", kScreen},
    {"Segoe UI", kScreen},
    {"Trebuchet MS", kScreen},
    {"Calibri", kOffice},
    {"Cambria", kOfficeSerif},
    {"Symbol", kSymbols},
    {"Wingdings", kSymbols},
};

char Lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}

}  // namespace

bool IsSameName(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return Lower(x) == Lower(y); });
}

std::span<const char* const> StandInsFor(std::string_view faceName) {
  for (const StandIn& known : kStandIns) {
    if (IsSameName(known.name, faceName)) return known.families;
  }
  return {};
}

const char* GenericFamily(unsigned pitchAndFamily) {
  constexpr unsigned kSerifs = 1, kTypewriter = 3, kFixedPitch = 1;
  const unsigned family = pitchAndFamily >> 4;
  if (family == kTypewriter || (pitchAndFamily & 3) == kFixedPitch) return "monospace";
  return family == kSerifs ? "serif" : "sans-serif";
}

}  // namespace rasterkit::detail
