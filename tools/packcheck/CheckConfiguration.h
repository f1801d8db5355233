#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "CheckPack.h"

namespace talu::packcheck {

/// One value line of AppCfg.txt.
struct CfgLine {
  int Number = 0;
  std::string_view Text;

  packcheck::Place Place() const { return {"AppCfg.txt", Number, std::string(Text)}; }
};

/// AppCfg.txt as its author means it: with every misspelled key and lost brace put right. What the
/// wizard makes of it instead is among the pack's findings.
class Configuration {
 public:
  /// Reads and checks the file.
  explicit Configuration(CheckedPack& pack);
  Configuration(const Configuration&) = delete;
  Configuration& operator=(const Configuration&) = delete;

  /// All values of a key, empty lines left out.
  std::vector<CfgLine> Values(std::string_view key) const;
  /// The key's own line; the file as a whole when it has no block.
  Place PlaceOf(std::string_view key) const;

 private:
  struct Block {
    std::string Key;
    int Line = 0;
    std::vector<CfgLine> Values;
    /// Lines of any kind so far: the number of the last value.
    int Lines = 0;
    /// A value that is the beginning of keys, and those keys; empty without one.
    std::string Beginning;
    std::string BegunKeys;
  };

  bool CheckText();
  void ReadLines();
  void TakeOutside(const CfgLine& line);
  void TakeInside(const CfgLine& line, std::string_view next);
  void OpenBlock(const CfgLine& brace);
  std::string IntendedKey(const CfgLine& brace);
  void CheckLimits();
  void CheckWhatIsThere();
  void CheckFolderNames();
  void CheckBackupCount();

  CheckedPack& pack_;
  std::string text_;
  std::vector<Block> blocks_;
  // While reading:
  bool inBlock_ = false;
  CfgLine keyLine_;    // a key's own line that waits for its "{"; number 0: none
  CfgLine candidate_;  // the last line outside a block; number 0: none
  std::vector<CfgLine> emptyLines_;
};

}  // namespace talu::packcheck
