#pragma once

#include <string>
#include <utility>

#include "takeback/Undoing.h"

namespace talu {

// The words of a judge.

using Judgement = Undoing::Judgement;
using Fate = Verdict::Fate;

inline Judgement Goes(std::string why = "") {
  return {{Fate::Goes, std::move(why)}, true};
}
inline Judgement NothingToDo(std::string why = "It was gone already.") {
  return {{Fate::Goes, std::move(why)}, false};
}
inline Judgement Stays(std::string why) {
  return {{Fate::Stays, std::move(why)}, false};
}
inline Judgement Leave(std::string why) {
  return {{Fate::Left, std::move(why)}, false};
}

/// For what is no plain file or folder where one was made.
inline Judgement Changed(EntryKind kind) {
  return Stays(kind == EntryKind::Link ? "It is a link, which is not followed."
                                       : "Something else stands in its place.");
}

inline constexpr const char* kNotEmpty = "It is not empty.";

}  // namespace talu
