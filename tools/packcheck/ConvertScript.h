#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "ConvertEdits.h"

namespace talu::packcheck {

/// The edits of a script, in order; and what is wrong with it that none can mend, each a line with
/// its number.
struct ScriptMends {
  std::vector<Edit> Edits;
  std::vector<std::string> Left;
};

/// What has to be changed in a script so that the build sends the batches that it was written to
/// send: those of the server's own tools, which look for GO outside of texts and comments only.
/// `text` is in UTF-8 with CR LF. A script that is read line by line gets none, nor does one
/// without a directive behind such a script (`lineMode`); nor does what is left open: a text, a
/// name or a comment without its end.
ScriptMends MendsOfScript(std::string_view text, bool lineMode = false);

/// Whether the script's own directive, or `lineMode` without one, has it read line by line.
bool IsReadByLines(std::string_view text, bool lineMode);

}  // namespace talu::packcheck
