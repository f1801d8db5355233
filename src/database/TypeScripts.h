#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace talu {

/// The scripts of one installation type: the type's word, alone and at the start of a sentence,
/// their folder in the pack, between backslashes, and the key that lists them.
struct TypeScripts {
  std::string_view Type;
  std::string_view WithArticle;
  std::string_view Folder;
  std::string_view Key;
};

/// Indexed by `InstallState::SetupType`.
inline constexpr std::array<TypeScripts, 3> kTypeScripts = {
    {{"fresh", "A fresh", "\\SQLScript\\Fresh\\", "FreshDBSript"},
     {"demo", "A demo", "\\SQLScript\\Demo\\", "DemoDBSript"},
     {"upgrade", "An upgrade", "\\SQLScript\\Upgrade\\", "UpgradeDBSript"}}};

/// The type whose scripts the backup before a build of `setupType` scans: demo and upgrade are
/// swapped. Packs rely on it.
constexpr std::size_t ScannedType(std::size_t setupType) {
  return (kTypeScripts.size() - setupType) % kTypeScripts.size();
}

}  // namespace talu
