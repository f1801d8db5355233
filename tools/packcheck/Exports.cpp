// Source of the offsets: "PE Format" on learn.microsoft.com.

#include "Exports.h"

#include <algorithm>
#include <cstdint>
#include <string>

namespace talu::packcheck {
namespace {

class Image {
 public:
  explicit Image(const FileContent& content) : content_(content), front_(kFront, '\0') {
    front_.resize(content.Read(0, front_.data(), kFront));
    header_ = Number(0x3C, 4);
    if (Text(0, 2) != "MZ" || Text(header_, 4) != std::string_view("PE\0\0", 4)) return;
    sections_ = std::min<std::uint64_t>(Number(header_ + 6, 2), 96);  // the loader takes no more
    sectionTable_ = header_ + 24 + Number(header_ + 20, 2);
    const bool wide = Number(header_ + 24, 2) == 0x20B;
    exports_ = FileOffset(Number(header_ + 24 + (wide ? 112U : 96U), 4));
  }

  bool Exports(std::string_view name) const {
    if (exports_ == 0) return false;
    const std::uint64_t names = FileOffset(Number(exports_ + 32, 4));
    std::uint64_t first = 0;
    std::uint64_t behind = names == 0 ? 0 : Number(exports_ + 24, 4);
    // The loader, too, relies on their being sorted.
    while (first < behind) {
      const std::uint64_t middle = (first + behind) / 2;
      const std::uint64_t at = FileOffset(Number(names + middle * 4, 4));
      std::string found = Text(at, name.size() + 1);
      found.resize(std::min(found.size(), found.find('\0')));
      if (found == name) return true;
      (found < name ? first : behind) = found < name ? middle + 1 : middle;
    }
    return false;
  }

 private:
  /// What is there of these bytes.
  std::string Text(std::uint64_t at, std::size_t size) const {
    if (at + size <= front_.size()) return front_.substr(static_cast<std::size_t>(at), size);
    std::string bytes(size, '\0');
    bytes.resize(content_.Read(at, bytes.data(), size));
    return bytes;
  }
  /// A number of so many bytes; past the end of the file they are 0.
  std::uint64_t Number(std::uint64_t at, std::size_t size) const {
    std::uint64_t number = 0;
    const std::string bytes = Text(at, size);
    for (std::size_t i = bytes.size(); i > 0; --i) {
      number = number << 8U | static_cast<unsigned char>(bytes[i - 1]);
    }
    return number;
  }
  /// Where in the file an address of the loaded image lies; 0 when nowhere.
  std::uint64_t FileOffset(std::uint64_t address) const {
    for (std::uint64_t i = 0; i < sections_; ++i) {
      const std::uint64_t section = sectionTable_ + i * 40;
      const std::uint64_t begin = Number(section + 12, 4);
      if (address >= begin && address - begin < Number(section + 16, 4)) {
        return address - begin + Number(section + 20, 4);
      }
    }
    return 0;
  }

  // The headers are read at once.
  static constexpr std::size_t kFront = 4096;

  const FileContent& content_;
  std::string front_;
  std::uint64_t header_ = 0;
  std::uint64_t sections_ = 0;
  std::uint64_t sectionTable_ = 0;
  std::uint64_t exports_ = 0;
};

}  // namespace

bool Exports(const FileContent& library, std::string_view name) {
  return Image(library).Exports(name);
}

}  // namespace talu::packcheck
