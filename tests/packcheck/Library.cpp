// Source of the offsets: "PE Format" on learn.microsoft.com.

#include "CheckCases.h"
#include "runtime/TextFunctions.h"

namespace talu::packcheck {

std::string Library(const std::string& exported) {
  constexpr std::size_t kAddress = 0x1000;  // of the only section in memory
  constexpr std::size_t kSection = 0x200;   // of it in the file
  std::string bytes(kSection, '\0');
  const auto put = [&bytes](std::size_t at, std::size_t number, std::size_t size) {
    if (bytes.size() < at + size) bytes.resize(at + size);
    for (std::size_t i = 0; i < size; ++i)
      bytes[at + i] = static_cast<char>(number >> 8 * i & 0xFF);
  };
  bytes.replace(0, 2, "MZ");
  put(0x3C, 0x40, 4);
  bytes.replace(0x40, 2, "PE");
  put(0x46, 1, 2);               // sections
  put(0x54, 0xE0, 2);            // the length of what follows up to them
  put(0x58, 0x10B, 2);           // for 32 bits
  put(0xB8, kAddress, 4);        // the table of exports
  put(0x138 + 12, kAddress, 4);  // the section
  put(0x138 + 16, 0x1000, 4);
  put(0x138 + 20, kSection, 4);
  const std::vector<std::string> names = Split(exported, ' ');
  put(kSection + 24, names.size(), 4);
  put(kSection + 32, kAddress + 40, 4);
  std::size_t name = 40 + 4 * names.size();
  for (std::size_t i = 0; i < names.size(); ++i) {
    put(kSection + 40 + 4 * i, kAddress + name, 4);
    put(kSection + name + names[i].size(), 0, 1);
    bytes.replace(kSection + name, names[i].size(), names[i]);
    name += names[i].size() + 1;
  }
  return bytes;
}

}  // namespace talu::packcheck
