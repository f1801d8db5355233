#include "ConvertEdits.h"

#include <algorithm>
#include <ostream>

#include "runtime/TextFunctions.h"
#include "sql/Passwords.h"

namespace talu::packcheck {
namespace {

using Lines = std::vector<std::string>;

/// Unchanged lines that are shown on either side of a change.
constexpr std::size_t kContext = 3;

/// Lines that make place for others; lines are numbered from 0.
struct Change {
  std::size_t First = 0;
  Lines Old;
  Lines New;

  std::size_t End() const { return First + Old.size(); }
};

/// A line without what ends it.
std::string Unended(std::string_view line) {
  if (line.ends_with('\n')) line.remove_suffix(line.ends_with(kCrLf) ? 2 : 1);
  return std::string(line);
}

/// The lines of a text that begins at the beginning of one, as an editor shows them.
Lines LinesOf(std::string_view text) {
  Lines lines;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size() - 1) + 1;
    lines.push_back(Unended(text.substr(0, end)));
    text.remove_prefix(end);
  }
  return lines;
}

/// A text, and where its lines begin.
class NumberedText {
 public:
  explicit NumberedText(std::string_view text) : text_(text) {
    for (std::size_t at = 0; at < text.size();) {
      begins_.push_back(at);
      const std::size_t end = text.find('\n', at);
      at = end == std::string_view::npos ? text.size() : end + 1;
    }
    begins_.push_back(text.size());
  }

  std::size_t Count() const { return begins_.size() - 1; }
  /// The line that a position is in; `Count()` behind the last one, if that is ended.
  std::size_t LineAt(std::size_t at) const {
    if (at > 0 && at == text_.size() && !text_.ends_with('\n')) return Count() - 1;
    const auto next = std::ranges::upper_bound(begins_, at);
    return static_cast<std::size_t>(next - begins_.begin()) - 1;
  }
  std::size_t Begin(std::size_t line) const { return begins_[line]; }
  std::string_view Text(std::size_t first, std::size_t end) const {
    return text_.substr(begins_[first], begins_[end] - begins_[first]);
  }

 private:
  std::string_view text_;
  std::vector<std::size_t> begins_;
};

/// Takes the lines away that are the same at both ends.
void Shorten(Change& change) {
  const auto same = std::ranges::mismatch(change.Old, change.New).in1 - change.Old.begin();
  change.Old.erase(change.Old.begin(), change.Old.begin() + same);
  change.New.erase(change.New.begin(), change.New.begin() + same);
  change.First += static_cast<std::size_t>(same);
  while (!change.Old.empty() && !change.New.empty() && change.Old.back() == change.New.back()) {
    change.Old.pop_back();
    change.New.pop_back();
  }
}

/// What the edits do to whole lines. Edits that touch the same line make one change.
std::vector<Change> Changes(const NumberedText& text, const std::vector<Edit>& edits) {
  std::vector<Change> changes;
  for (std::size_t i = 0; i < edits.size();) {
    const std::size_t first = text.LineAt(edits[i].At);
    std::size_t end = first;
    std::vector<Edit> inside;
    for (; i < edits.size() && (inside.empty() || text.LineAt(edits[i].At) < end); ++i) {
      const Edit& edit = edits[i];
      const bool wholeLines =
          edit.At + edit.Length == text.Begin(text.LineAt(edit.At + edit.Length)) &&
          (edit.New.empty() || edit.New.ends_with(kCrLf));
      end = std::min(text.LineAt(edit.At + edit.Length) + (wholeLines ? 0 : 1), text.Count());
      inside.push_back(edit);
      inside.back().At -= text.Begin(first);
    }
    const std::string_view old = text.Text(first, end);
    Change change{first, LinesOf(old), LinesOf(Applied(old, inside))};
    Shorten(change);
    changes.push_back(std::move(change));
  }
  return changes;
}

/// The lines of a text as they may be shown. It is masked as a whole: what is a password may depend
/// on lines far above.
class ShownLines {
 public:
  explicit ShownLines(std::string_view text) : mask_(text), lines_(mask_.Text()) {}

  /// The line with this number; a text that hides everything to its end has no more lines.
  std::string Line(std::size_t number) const {
    if (number >= lines_.Count()) return "***";
    return Unended(lines_.Text(number, number + 1));
  }

 private:
  sql::PasswordMask mask_;
  NumberedText lines_;
};

std::string Range(std::size_t first, std::size_t count) {
  // Where there are no lines, the one before them is named.
  return std::to_string(count > 0 ? first + 1 : first) + "," + std::to_string(count);
}

/// Counts the lines of one hunk.
class Hunk {
 public:
  void Keep(std::size_t first, std::size_t end) {
    marks_.append(end - first, ' ');
    old_ += end - first;
    new_ += end - first;
  }
  void Take(const Change& change) {
    marks_ += std::string(change.Old.size(), '-') + std::string(change.New.size(), '+');
    old_ += change.Old.size();
    new_ += change.New.size();
  }
  /// Writes it, with the numbers of its first lines.
  void Write(std::size_t firstOld, const ShownLines& before, std::size_t firstNew,
             const ShownLines& after, std::ostream& out) const {
    out << "@@ -" << Range(firstOld, old_) << " +" << Range(firstNew, new_) << " @@\n";
    for (const char mark : marks_) {
      out << mark << (mark == '+' ? after.Line(firstNew) : before.Line(firstOld)) << '\n';
      if (mark != '+') ++firstOld;
      if (mark != '-') ++firstNew;
    }
  }
  /// How many lines more there are than before.
  std::ptrdiff_t Grown() const {
    return static_cast<std::ptrdiff_t>(new_) - static_cast<std::ptrdiff_t>(old_);
  }

 private:
  std::string marks_;
  std::size_t old_ = 0;
  std::size_t new_ = 0;
};

}  // namespace

std::string Applied(std::string_view text, const std::vector<Edit>& edits) {
  std::string result;
  result.reserve(text.size());
  std::size_t copied = 0;
  for (const Edit& edit : edits) {
    result.append(text.substr(copied, edit.At - copied)).append(edit.New);
    copied = edit.At + edit.Length;
  }
  return result.append(text.substr(copied));
}

void WriteDiff(std::string_view text, const std::vector<Edit>& edits, std::ostream& out) {
  if (edits.empty()) return;
  const NumberedText numbered(text);
  const std::vector<Change> changes = Changes(numbered, edits);
  const ShownLines before(text);
  const ShownLines after(Applied(text, edits));
  std::ptrdiff_t grown = 0;
  for (std::size_t i = 0; i < changes.size();) {
    const std::size_t first = changes[i].First - std::min(changes[i].First, kContext);
    Hunk hunk;
    std::size_t at = first;
    do {
      hunk.Keep(at, changes[i].First);
      hunk.Take(changes[i]);
      at = changes[i].End();
    } while (++i < changes.size() && changes[i].First <= at + 2 * kContext);
    hunk.Keep(at, std::min(at + kContext, numbered.Count()));
    hunk.Write(first, before, static_cast<std::size_t>(static_cast<std::ptrdiff_t>(first) + grown),
               after, out);
    grown += hunk.Grown();
  }
}

}  // namespace talu::packcheck
