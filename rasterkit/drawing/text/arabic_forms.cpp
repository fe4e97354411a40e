#include <rasterkit/drawing/text/text_letters.h>

/// Arabic letters change their shape: isolated, final, initial and medial. Each shape has a code
/// point of its own: four consecutive ones per letter (two for letters that never join the next
/// one), in the order of the letters.
namespace rasterkit::detail {
namespace {

constexpr char32_t kFirst = 0x621, kLast = 0x64A, kTatweel = 0x640, kFirstForm = 0xFE80;
constexpr char32_t kLam = 0x644;

/// The number of forms of each letter from kFirst to kLast.
constexpr unsigned char kForms[] = {1, 2, 2, 2, 2, 4, 2, 4, 2, 4, 4, 4, 4, 4, 2, 2, 2, 2, 4, 4, 4,
                                    4, 4, 4, 4, 4, 0, 0, 0, 0, 0, 0, 4, 4, 4, 4, 4, 4, 4, 2, 2, 4};
static_assert(sizeof(kForms) == kLast - kFirst + 1);

unsigned FormsOf(char32_t letter) {
  return letter >= kFirst && letter <= kLast ? kForms[letter - kFirst] : 0;
}

char32_t FirstFormOf(char32_t letter) {
  char32_t form = kFirstForm;
  for (char32_t l = kFirst; l < letter; ++l) form += FormsOf(l);
  return form;
}

bool JoinsNext(char32_t letter) {
  return letter == kTatweel || FormsOf(letter) == 4;
}
bool JoinsPrevious(char32_t letter) {
  return letter == kTatweel || FormsOf(letter) >= 2;
}

/// Vowel marks above and below letters, which do not interrupt a joining.
bool IsMark(char32_t letter) {
  return (letter >= 0x64B && letter <= 0x65F) || letter == 0x670;
}

/// Returns the isolated ligature of lam and this letter; 0 if there is none.
char32_t WithLam(char32_t alef) {
  switch (alef) {
    case 0x622:
      return 0xFEF5;
    case 0x623:
      return 0xFEF7;
    case 0x625:
      return 0xFEF9;
    case 0x627:
      return 0xFEFB;
    default:
      return 0;
  }
}

}  // namespace

void JoinArabic(std::vector<TextLetter>& letters) {
  size_t kept = 0;
  bool isJoined = false;  // the previous letter joins this one
  for (size_t i = 0; i < letters.size(); ++i) {
    TextLetter letter = letters[i];
    const char32_t code = letter.codePoint;
    if (IsMark(code)) {
      letters[kept++] = letter;
      continue;
    }
    size_t next = i + 1;
    while (next < letters.size() && IsMark(letters[next].codePoint)) ++next;
    const char32_t following = next < letters.size() ? letters[next].codePoint : 0;
    const bool joinsBack = isJoined && JoinsPrevious(code);
    if (code == kLam && next == i + 1 && WithLam(following) != 0) {
      letter.codePoint = WithLam(following) + (joinsBack ? 1 : 0);
      letter.units += letters[next].units;
      isJoined = false;
      ++i;
    } else {
      isJoined = JoinsNext(code) && JoinsPrevious(following);
      if (FormsOf(code) > 0) {
        letter.codePoint = FirstFormOf(code) + (joinsBack ? 1 : 0) + (isJoined ? 2 : 0);
      }
    }
    letters[kept++] = letter;
  }
  letters.resize(kept);
}

}  // namespace rasterkit::detail
