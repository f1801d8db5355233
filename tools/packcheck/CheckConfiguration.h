#pragma once

#include <set>
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

/// AppCfg.txt as its author means it: misspelled keys and missing braces are corrected. The pack's
/// findings say what the wizard does with it instead.
class Configuration {
 public:
  /// Reads and checks the file.
  explicit Configuration(CheckedPack& pack);
  Configuration(const Configuration&) = delete;
  Configuration& operator=(const Configuration&) = delete;

  /// All values of a key, without empty lines.
  std::vector<CfgLine> Values(std::string_view key) const;
  /// The key's own line; the whole file when the key has no block.
  Place PlaceOf(std::string_view key) const;

 private:
  struct Block {
    std::string Key;
    int Line = 0;
    std::vector<CfgLine> Values;
    /// Number of lines of any kind so far, which is the index of the last value.
    int Lines = 0;
    /// A value that is the beginning of keys, and those keys; empty when there is none.
    std::string Beginning;
    std::string BegunKeys;
  };

  bool CheckText();
  void ReadLines();
  void TakeOutside(const CfgLine& line);
  void TakeInside(const CfgLine& line, std::string_view next);
  bool TakeCrowdedKey(const CfgLine& line);
  void OpenBlock(const CfgLine& brace);
  std::string IntendedKey(const CfgLine& brace);
  void CheckLimits();
  void CheckWhatIsThere();
  void CheckFolderNames();
  void CheckScriptLists();
  void CheckBackupCount();

  CheckedPack& pack_;
  std::string text_;
  std::vector<Block> blocks_;
  // While reading:
  std::set<std::string_view> keysThere_;  // those that have a line of their own
  bool inBlock_ = false;
  CfgLine keyLine_;    // a key's own line that waits for its "{"; number 0 for none
  CfgLine candidate_;  // the last line outside a block; number 0 for none
  std::vector<CfgLine> emptyLines_;
};

}  // namespace talu::packcheck
