#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace talu {

/// The scripts of one installation type: the type's word, their folder in the pack, between
/// backslashes, and the key that lists them.
struct TypeScripts {
  std::string_view Type;
  std::string_view Folder;
  std::string_view Key;
};

/// By `InstallState::SetupType`.
inline constexpr std::array<TypeScripts, 3> kTypeScripts = {
    {{"fresh", "\\SQLScript\\Fresh\\", "FreshDBSript"},
     {"demo", "\\SQLScript\\Demo\\", "DemoDBSript"},
     {"upgrade", "\\SQLScript\\Upgrade\\", "UpgradeDBSript"}}};

/// The type whose scripts the backup before a build of `setupType` scans: demo and upgrade are
/// crossed. Packs rely on it.
constexpr std::size_t ScannedType(std::size_t setupType) {
  return (kTypeScripts.size() - setupType) % kTypeScripts.size();
}

}  // namespace talu
