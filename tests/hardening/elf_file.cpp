#include "tests/hardening/elf_file.h"

#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include <elf.h>

namespace rasterkit::test {
namespace {

/// Values that elf.h of older systems does not have.
constexpr uint32_t kPropertyType = 5, kX86Features = 0xC0000002, kArmFeatures = 0xC0000000;
constexpr uint64_t kNow = 1, kPie = 0x08000000;

/// The structures of one class of files.
struct Class32 {
  using Header = Elf32_Ehdr;
  using Segment = Elf32_Phdr;
  using Section = Elf32_Shdr;
  using Dynamic = Elf32_Dyn;
  using Symbol = Elf32_Sym;
  static constexpr size_t kPropertyAlignment = 4;
};
struct Class64 {
  using Header = Elf64_Ehdr;
  using Segment = Elf64_Phdr;
  using Section = Elf64_Shdr;
  using Dynamic = Elf64_Dyn;
  using Symbol = Elf64_Sym;
  static constexpr size_t kPropertyAlignment = 8;
};

/// Bounds-checked reads.
class Bytes {
 public:
  explicit Bytes(std::string_view bytes) : bytes_(bytes) {}

  template <class T>
  T At(uint64_t offset) const {
    T value;
    std::memcpy(&value, Part(offset, sizeof value).data(), sizeof value);
    return value;
  }
  std::string_view Part(uint64_t offset, uint64_t size) const {
    if (offset > bytes_.size() || size > bytes_.size() - offset)
      throw std::runtime_error("ELF: cut off");
    return bytes_.substr(offset, size);
  }
  std::string Text(uint64_t offset) const {
    const std::string_view rest = Part(offset, bytes_.size() - std::min(offset, Size()));
    return std::string(rest.substr(0, rest.find('\0')));
  }
  uint64_t Size() const { return bytes_.size(); }

 private:
  std::string_view bytes_;
};

constexpr size_t RoundUp(size_t value, size_t step) {
  return (value + step - 1) / step * step;
}

/// The features of a section of notes.
std::optional<uint32_t> FeaturesOf(const Bytes& notes, size_t alignment) {
  for (uint64_t at = 0; at + sizeof(Elf64_Nhdr) <= notes.Size();) {
    const auto note = notes.At<Elf64_Nhdr>(at);
    const uint64_t content = at + sizeof note + RoundUp(note.n_namesz, 4);
    if (note.n_type == kPropertyType) {
      const Bytes properties(notes.Part(content, note.n_descsz));
      for (uint64_t i = 0; i + 8 <= properties.Size();) {
        const auto kind = properties.At<uint32_t>(i), size = properties.At<uint32_t>(i + 4);
        if ((kind == kX86Features || kind == kArmFeatures) && size == 4)
          return properties.At<uint32_t>(i + 8);
        i += 8 + RoundUp(size, alignment);
      }
    }
    at = content + RoundUp(note.n_descsz, alignment);
  }
  return std::nullopt;
}

template <class Class>
class Parser {
 public:
  explicit Parser(const Bytes& bytes)
      : bytes_(bytes), header_(bytes.At<typename Class::Header>(0)) {}

  ElfFile Parse() {
    file_.type = header_.e_type;
    file_.machine = header_.e_machine;
    for (int i = 0; i < header_.e_phnum; ++i) {
      Take(bytes_.At<typename Class::Segment>(header_.e_phoff + uint64_t{header_.e_phentsize} * i));
    }
    for (int i = 0; i < header_.e_shnum; ++i) {
      const auto section = SectionAt(i);
      if (section.sh_type == SHT_DYNAMIC) TakeDynamic(section);
      if (section.sh_type == SHT_DYNSYM) TakeImports(section);
      if (section.sh_type == SHT_NOTE) TakeNotes(section);
    }
    return file_;
  }

 private:
  auto SectionAt(uint64_t index) const {
    return bytes_.At<typename Class::Section>(header_.e_shoff + header_.e_shentsize * index);
  }

  void Take(const typename Class::Segment& segment) {
    const bool canWrite = (segment.p_flags & PF_W) != 0;
    const bool canExecute = (segment.p_flags & PF_X) != 0;
    if (segment.p_type == PT_INTERP) file_.isProgram = true;
    if (segment.p_type == PT_GNU_RELRO) file_.hasRelro = true;
    if (segment.p_type == PT_GNU_STACK) file_.hasExecutableStack = canExecute;
    if (segment.p_type == PT_LOAD && canWrite && canExecute) file_.hasWritableCode = true;
  }

  void TakeDynamic(const typename Class::Section& section) {
    const uint64_t names = SectionAt(section.sh_link).sh_offset;
    for (uint64_t at = 0; at < section.sh_size; at += sizeof(typename Class::Dynamic)) {
      const auto entry = bytes_.At<typename Class::Dynamic>(section.sh_offset + at);
      const uint64_t value = entry.d_un.d_val;
      switch (entry.d_tag) {
        case DT_NULL:
          return;
        case DT_BIND_NOW:
          file_.bindsNow = true;
          break;
        case DT_TEXTREL:
          file_.hasTextRelocations = true;
          break;
        case DT_NEEDED:
          file_.needed.push_back(bytes_.Text(names + value));
          break;
        case DT_RPATH:
          file_.rpath = bytes_.Text(names + value);
          break;
        case DT_RUNPATH:
          file_.runpath = bytes_.Text(names + value);
          break;
        case DT_FLAGS:
          if (value & DF_BIND_NOW) file_.bindsNow = true;
          if (value & DF_TEXTREL) file_.hasTextRelocations = true;
          break;
        case DT_FLAGS_1:
          if (value & kNow) file_.bindsNow = true;
          if (value & kPie) file_.isPie = true;
          break;
        default:
          break;
      }
    }
  }

  void TakeImports(const typename Class::Section& section) {
    const uint64_t names = SectionAt(section.sh_link).sh_offset;
    for (uint64_t at = 0; at < section.sh_size; at += sizeof(typename Class::Symbol)) {
      const auto symbol = bytes_.At<typename Class::Symbol>(section.sh_offset + at);
      if (symbol.st_shndx == SHN_UNDEF) file_.imports.insert(bytes_.Text(names + symbol.st_name));
    }
  }

  void TakeNotes(const typename Class::Section& section) {
    const Bytes notes(bytes_.Part(section.sh_offset, section.sh_size));
    if (!file_.features) file_.features = FeaturesOf(notes, Class::kPropertyAlignment);
  }

  const Bytes& bytes_;
  const typename Class::Header header_;
  ElfFile file_;
};

}  // namespace

bool IsElf(const std::filesystem::path& file) {
  char magic[SELFMAG] = {};
  std::ifstream(file, std::ios::binary).read(magic, sizeof magic);
  return std::memcmp(magic, ELFMAG, SELFMAG) == 0;
}

ElfFile ParseElf(const std::string& bytes) {
  const Bytes checked(bytes);
  const std::string_view identity = checked.Part(0, EI_NIDENT);
  if (!identity.starts_with(ELFMAG)) throw std::runtime_error("not an ELF file");
  if (identity[EI_DATA] != ELFDATA2LSB) throw std::runtime_error("ELF: not little-endian");
  if (identity[EI_CLASS] == ELFCLASS32) return Parser<Class32>(checked).Parse();
  return Parser<Class64>(checked).Parse();
}

ElfFile ReadElf(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  const std::string bytes((std::istreambuf_iterator<char>(in)), {});
  try {
    return ParseElf(bytes);
  } catch (const std::runtime_error& error) {
    throw std::runtime_error(file.string() + ": " + error.what());
  }
}

}  // namespace rasterkit::test
