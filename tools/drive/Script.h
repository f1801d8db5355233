#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "Keys.h"

namespace talu::drive {

enum class Command {
  Wait,
  Click,
  Type,
  Expect,
  ExpectTree,
  Message,
  MessageBegins,
  MessageTitle,
  Browse,
  Key,
  Close,
  Shot,
  Timeout,
  Pause,
  Finish,
  Ended
};

/// One line of a script, checked and with its variables replaced.
struct Step {
  int Line = 0;
  /// The line as written, with its variables: this may be shown.
  std::string Source;
  Command What = Command::Wait;
  /// The form of `wait` and `close`, the control of `click`, `type` and `expect`, the pack's folder
  /// of `expect-tree`.
  std::string Name;
  /// For `expect`: text, begins, enabled, visible, value, focus or width.
  std::string Property;
  /// The text of `type`, `expect` and `message`, the file of `shot`, the exit code of `ended`,
  /// the folder of `browse`, empty for `browse cancel`, the installed folder of `expect-tree`.
  std::string Value;
  /// Seconds for `timeout`, milliseconds for `pause`.
  int Number = 0;
  std::vector<Chord> Keys;
};

/// The values of ${NAME} (given with --set) and ${env:NAME} (the environment) in a script.
class Variables {
 public:
  void Set(const std::string& name, const std::string& value) { values_[name] = value; }
  /// The value of "NAME" or "env:NAME". Raises ScriptError when there is none. A value from the
  /// environment is a secret from then on.
  std::string Get(const std::string& name);
  /// `text` with every secret replaced by "***".
  std::string Mask(std::string text) const;

 private:
  std::map<std::string, std::string> values_;
  /// By length, the longest first, so that no secret hides only a part of another one.
  std::multimap<std::size_t, std::string, std::greater<>> secrets_;
};

struct Script {
  std::vector<Step> Steps;
  /// One text per faulty line, "line: what is wrong"; a script with errors must not be played.
  std::vector<std::string> Errors;
};

/// Reads a whole script (UTF-8).
Script ReadScript(std::string_view text, Variables& variables);

/// The wizard's six pages and the one of Uninstall.exe, by the names of their windows.
const std::vector<std::string>& FormNames();

}  // namespace talu::drive
