#include <rasterkit/metafiles/emf/emf_player.h>

namespace rasterkit::detail {

PaletteObject EmfPlayer::PaletteOf(uint32_t handle) const {
  const auto found = objects_.find(handle);
  const auto* palette =
      found == objects_.end() ? nullptr : std::get_if<PaletteObject>(&found->second);
  return palette == nullptr ? nullptr : *palette;
}

bool EmfPlayer::PlayPalette(const EmfRecord& record) {
  MetafileBytes fields = record.Fields();
  switch (record.type) {
    case EmfType::createPalette: {
      const uint32_t handle = fields.Long();
      fields.Skip(2);  // version
      const uint16_t count = fields.Word();
      Keep(handle, std::make_shared<HPALETTE>(ReadPaletteEntries(fields, count)));
      return true;
    }
    case EmfType::selectPalette:
      context_.SelectPalette(PaletteOf(fields.Long()));
      return true;
    case EmfType::setPaletteEntries: {
      const PaletteObject palette = PaletteOf(fields.Long());
      const uint32_t start = fields.Long(), count = fields.Long();
      const auto changes = ReadPaletteEntries(fields, count);
      if (palette) ChangeEntries(*palette, start, changes);
      return true;
    }
    case EmfType::resizePalette: {
      const PaletteObject palette = PaletteOf(fields.Long());
      const uint32_t count = fields.Long();
      if (palette) ResizePalette(*palette, count);
      return true;
    }
    default:
      return false;
  }
}

}  // namespace rasterkit::detail
