#pragma once

#include <string>
#include <string_view>

#include "runtime/ErrorTrap.h"
#include "runtime/TextFiles.h"
#include "runtime/TextFunctions.h"

namespace talu {

/// The directives of a script, upper-cased. A line that contains one anywhere, in any case, is one.
inline constexpr std::string_view kBatchDirective = "--TALUGO";
inline constexpr std::string_view kLineDirective = "--TALULINEBYLINE";

/// Whether there is more to read under `number`: the condition of a reading loop. An error of the
/// test goes to the trap and ends the loop; a file that could not be opened has nothing to read.
bool MoreToRead(const ErrorTrap& step, TextFiles& files, int number);

/// Opens `path` for input under a free number and puts that into `number`; 0 stays when it cannot
/// be opened, after one error for the trap.
void OpenForReading(const ErrorTrap& step, TextFiles& files, const std::string& path, int& number);

/// What a line is: `Gathered` goes into the batch, `Batch` ends it, a `Statement` stands alone.
enum class ScriptLine { BatchDirective, LineDirective, Gathered, Batch, Statement, Malformed };

/// Reads scripts, one after the other: the batch mode ends with its script, the line mode stays.
class ScriptReader {
 public:
  void Begin() { batchMode_ = false; }
  bool BatchMode() const { return batchMode_; }
  /// Takes a line that is not blank; the first rule that applies decides.
  ScriptLine Take(std::string_view line, std::string_view trimmed) {
    if (ContainsUpper(line, kBatchDirective)) {
      batchMode_ = true;
      return ScriptLine::BatchDirective;
    }
    if (batchMode_) return EqualsUpper(trimmed, "GO") ? ScriptLine::Batch : ScriptLine::Gathered;
    if (ContainsUpper(line, kLineDirective)) {
      lineMode_ = true;
      return ScriptLine::LineDirective;
    }
    return lineMode_ ? ScriptLine::Statement : ScriptLine::Malformed;
  }

  /// Reads a script: `take` gets each line that is not blank, what it is, and the line trimmed.
  /// Where it returns false the reading ends, and the script stays open; returns what it did.
  template <class TakeLine>
  bool Read(const ErrorTrap& step, TextFiles& files, const std::string& path, TakeLine&& take) {
    OpenForReading(step, files, path, file_);
    Begin();
    LineNumber = 0;
    while (MoreToRead(step, files, file_)) {
      ++LineNumber;
      std::string_view line;  // empty when it cannot be read
      step.Assign(line, [&] { return files.LineInput(file_); });
      const std::string_view trimmed = TrimView(line);
      if (!trimmed.empty() && !take(line, Take(line, trimmed), trimmed)) return false;
    }
    files.Close(file_);
    return true;
  }
  /// Of the line that `Read` has read last, from 1.
  int LineNumber = 0;

 private:
  int file_ = 0;
  bool batchMode_ = false;
  bool lineMode_ = false;
};

}  // namespace talu
