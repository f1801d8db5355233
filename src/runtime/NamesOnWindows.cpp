// Sources: "File path formats on Windows systems", its steps "Evaluate relative components" and
// "Trim characters", and "Naming Files, Paths, and Namespaces", both on learn.microsoft.com.
// GetFullPathName and CreateDirectory of Wine 8.0 do the same. (Windows 11 has files that are
// called as devices are; packs are for the versions before it too.)

#include "runtime/NamesOnWindows.h"

#include <algorithm>
#include <vector>

#include "runtime/TextFunctions.h"

namespace talu {

std::string NormalizedPath(std::string_view path) {
  std::vector<std::string> kept;
  for (std::string& piece : Split(Replace(path, "/", "\\"), '\\')) {
    if (piece.empty() || piece == ".") continue;
    if (piece == "..") {
      if (kept.size() > 1) kept.pop_back();
      continue;
    }
    kept.push_back(std::move(piece));
  }
  const bool open = !path.ends_with('\\') && !path.ends_with('/');
  std::string whole;
  for (std::size_t i = 0; i < kept.size(); ++i) {
    std::string& piece = kept[i];
    if (open && i + 1 == kept.size()) {
      piece.resize(piece.find_last_not_of(" .") + 1);
    } else if (piece.ends_with('.')) {
      piece.pop_back();
    }
    if (!whole.empty() && !piece.empty()) whole += '\\';
    whole += piece;
  }
  return whole;
}

bool HasForbiddenCharacter(std::string_view name) {
  static constexpr std::string_view kForbidden = ":*?\"<>|";
  return std::ranges::any_of(name, [](const char character) {
    return static_cast<unsigned char>(character) < ' ' ||
           kForbidden.find(character) != std::string_view::npos;
  });
}

bool IsDeviceName(std::string_view name) {
  const std::string upper = UCase(TrimView(name.substr(0, name.find('.'))));
  if (upper == "CON" || upper == "PRN" || upper == "AUX" || upper == "NUL") return true;
  if (!upper.starts_with("COM") && !upper.starts_with("LPT")) return false;
  const std::string number = upper.substr(3);
  return (number.size() == 1 && number >= "1" && number <= "9") || number == "\u00b9" ||
         number == "\u00b2" || number == "\u00b3";
}

}  // namespace talu
