#pragma once

#include <string>
#include <vector>

#include "CheckConfiguration.h"
#include "CheckPack.h"

namespace talu::packcheck {

/// The listed scripts of every type, searched for names.
class ScriptTexts {
 public:
  ScriptTexts(CheckedPack& pack, const Configuration& configuration);

  /// Whether there are scripts, and none has this name as a word, in any case of ASCII letters,
  /// wherever it stands.
  /// False for an empty name, and where a script is not 8-bit text.
  bool Lack(const std::string& name) const;

 private:
  CheckedPack& pack_;
  std::vector<std::string> files_;
};

}  // namespace talu::packcheck
