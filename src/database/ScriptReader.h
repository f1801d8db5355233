#pragma once

#include <string>
#include <string_view>

#include "runtime/ErrorTrap.h"
#include "runtime/TextFiles.h"
#include "runtime/TextFunctions.h"

namespace talu {

/// The directives of a script, upper-cased. They count anywhere in a line, in any case.
inline constexpr std::string_view kBatchDirective = "--TALUGO";
inline constexpr std::string_view kLineDirective = "--TALULINEBYLINE";

/// Whether there is more to read from `number`: the condition of a reading loop. If the test fails,
/// the trap gets the error and the loop ends; a file that could not be opened has nothing to read.
bool MoreToRead(const ErrorTrap& step, TextFiles& files, int number);

/// Opens `path` for input under a free number and sets `number` to it. If it cannot be opened, the
/// trap gets one error and `number` stays 0.
void OpenForReading(const ErrorTrap& step, TextFiles& files, const std::string& path, int& number);

/// The kind of a line: `Gathered` is part of the batch, `Batch` ends it, `Statement` is one alone.
enum class ScriptLine { BatchDirective, LineDirective, Gathered, Batch, Statement, Malformed };

/// Reads scripts in turn: the batch mode ends with its script, the line mode stays.
class ScriptReader {
 public:
  void Begin() { batchMode_ = false; }
  bool BatchMode() const { return batchMode_; }
  /// Classifies a line that is not blank; the first matching rule decides.
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

  /// Reads a script: `take` gets each line that is not blank, its kind, and the line trimmed. When
  /// it returns false, reading ends and the script stays open. Returns the last result of `take`.
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
  /// Number of the last line that `Read` read, from 1.
  int LineNumber = 0;

 private:
  int file_ = 0;
  bool batchMode_ = false;
  bool lineMode_ = false;
};

}  // namespace talu
