#include "tests/codecs/tiff/rows/made_pages.h"

#include <tiffio.h>

#include <rasterkit/codecs/tiff/pages/tag_reader.h>

namespace rasterkit::test {

namespace {

constexpr unsigned kSeed = 21;
constexpr int kWidth = 75, kHeight = 61;

/// Places and sizes of the blocks, which can be changed.
class BlockTags {
 public:
  explicit BlockTags(std::vector<uint8_t>& bytes)
      : bytes_(bytes), stream_(bytes), reader_(stream_) {
    const auto first = reader_.Directory(reader_.First());
    isTiled_ = first->Has(TIFFTAG_TILEOFFSETS);
    places_ = *first->Find(isTiled_ ? TIFFTAG_TILEOFFSETS : TIFFTAG_STRIPOFFSETS);
    counts_ = *first->Find(isTiled_ ? TIFFTAG_TILEBYTECOUNTS : TIFFTAG_STRIPBYTECOUNTS);
  }

  size_t Blocks() const { return static_cast<size_t>(places_.count); }
  uint64_t Place(size_t block) const { return Number(places_, block); }
  uint64_t Count(size_t block) const { return Number(counts_, block); }
  void SetPlace(size_t block, uint64_t place) { SetNumber(places_, block, place); }
  void SetCount(size_t block, uint64_t count) { SetNumber(counts_, block, count); }

 private:
  uint8_t* At(const detail::TagPlace& place, size_t index) const {
    return bytes_.data() + place.at + index * Bytes();
  }
  size_t Bytes() const { return reader_.IsBig() ? 8 : 4; }
  size_t ByteOf(size_t i) const { return reader_.IsBigEndian() ? Bytes() - 1 - i : i; }
  uint64_t Number(const detail::TagPlace& place, size_t index) const {
    uint64_t number = 0;
    for (size_t i = Bytes(); i-- > 0;) number = number << 8 | At(place, index)[ByteOf(i)];
    return number;
  }
  void SetNumber(const detail::TagPlace& place, size_t index, uint64_t number) {
    for (size_t i = 0; i < Bytes(); i++) {
      At(place, index)[ByteOf(i)] = static_cast<uint8_t>(number >> 8 * i);
    }
  }

  std::vector<uint8_t>& bytes_;
  TSpanStream stream_;
  detail::TagReader reader_;
  bool isTiled_ = false;
  detail::TagPlace places_, counts_;
};

}  // namespace

std::vector<TiffForm> MadeForms() {
  std::vector<TiffForm> forms;
  for (const int compression : {COMPRESSION_NONE, COMPRESSION_LZW, COMPRESSION_ADOBE_DEFLATE,
                                COMPRESSION_PACKBITS, COMPRESSION_CCITTFAX4, COMPRESSION_JPEG}) {
    const TiffForm strips = StripForm(compression, compression == COMPRESSION_LZW ? 2 : 1);
    TiffForm form = strips;
    forms.push_back(form);
    form.rowsPerStrip = kHeight;
    forms.push_back(form);
    form = strips;
    form.isBigEndian = form.isBigTiff = true;
    form.fillOrder = 2;
    forms.push_back(form);
    form = strips;
    form.isPlanar = true;
    forms.push_back(form);
    form = strips;
    form.rowsPerStrip = 0;
    form.tileWidth = 32;
    form.tileHeight = 16;
    forms.push_back(form);
    form.isPlanar = form.isBigEndian = true;
    forms.push_back(form);
  }
  return forms;
}

std::vector<uint8_t> PageOf(const Pixels& pixels, const TiffForm& form, int threads) {
  PictureWriting writing;
  writing.form = form;
  writing.threads = threads;
  return Written(pixels, writing);
}

std::vector<MadePage> Damaged(const std::string& name, const std::vector<uint8_t>& bytes,
                              std::mt19937& random) {
  std::vector<MadePage> pages;
  pages.push_back({name, bytes});
  const auto add = [&](const std::string& damage, const auto& change) {
    MadePage page{name + ", " + damage, bytes};
    BlockTags tags(page.bytes);
    const size_t block = random() % tags.Blocks();
    change(page.bytes, tags, block);
    pages.push_back(std::move(page));
  };
  using Bytes = std::vector<uint8_t>;
  add("noise", [&](Bytes& file, BlockTags& tags, size_t block) {
    const auto at = static_cast<size_t>(tags.Place(block) + random() % tags.Count(block));
    for (size_t i = at; i < std::min<size_t>(at + 9, file.size() / 2); i++) {
      file[i] = static_cast<uint8_t>(random());
    }
  });
  add("beyond the end", [&](Bytes& file, BlockTags& tags, size_t block) {
    tags.SetPlace(block, file.size() - std::min<uint64_t>(tags.Count(block) / 2, 700));
  });
  add("too short", [&](Bytes&, BlockTags& tags, size_t block) {
    tags.SetCount(block, tags.Count(block) / 2 + 1);
  });
  add("left out", [&](Bytes&, BlockTags& tags, size_t block) {
    tags.SetCount(block, 0);
    tags.SetPlace(block, 0);
  });
  add("without bytes", [&](Bytes&, BlockTags& tags, size_t block) { tags.SetCount(block, 0); });
  add("all beyond the end", [&](Bytes& file, BlockTags& tags, size_t) {
    for (size_t i = 0; i < tags.Blocks(); i++) tags.SetPlace(i, file.size() + 100);
  });
  return pages;
}

std::vector<MadePage> MadePages(bool damaged) {
  std::mt19937 random(kSeed);
  std::vector<MadePage> pages;
  const std::vector<TiffForm> forms = MadeForms();
  size_t number = 0;
  for (const PageKind& kind : AllPageKinds()) {
    const Pixels pixels = kind.make(kWidth, kHeight, random);
    for (const TiffForm& form : forms) {
      // Each kind meets each form when it is damaged somewhere; the number of both is odd enough.
      if (damaged && number++ % 5 != 0) continue;
      const std::string name = kind.name + ", " + Describe(form);
      const std::vector<uint8_t> bytes = PageOf(pixels, form);
      if (!damaged) {
        pages.push_back({name, bytes});
        continue;
      }
      for (MadePage& page : Damaged(name, bytes, random)) pages.push_back(std::move(page));
    }
  }
  return pages;
}

}  // namespace rasterkit::test
