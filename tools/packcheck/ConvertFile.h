#pragma once

#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

#include "ConvertEdits.h"
#include "ConvertText.h"

namespace talu::packcheck {

/// How files are converted.
struct ConvertOptions {
  /// That of the machine that the pack will be installed on.
  int CodePage = 1252;
  /// Letters that it lacks become "?" in texts and names, too.
  bool ReplaceLetters = false;
};

/// What a file in a pack is.
enum class FileKind {
  Configuration,
  Script,
  /// Behind one that is read line by line, which holds for those without a directive.
  ScriptBehindLines,
};

/// A file of a pack, and what has become of it.
struct ConvertedFile {
  /// The bytes before and after, the same when nothing was to be done.
  std::string Before;
  std::string After;
  DecodedText Decoded;
  std::vector<Edit> Edits;
  /// What no edit can mend, each a line with its number.
  std::vector<std::string> Left;
  /// The letters that the code page lacks, where no edit puts them in other words.
  std::vector<MissingLetter> Missing;
  /// Why the file is left as it is; empty when it is not.
  std::string LeftBecause;

  bool IsChanged() const { return After != Before; }
};

/// Converts a file's bytes. Raises nothing but std::bad_alloc and, for a code page that is not
/// known, std::runtime_error.
ConvertedFile Convert(std::string bytes, FileKind kind, const ConvertOptions& options);

/// Tells what was done to the file `from` on its way to `to`: a unified diff, and a few lines.
void WriteAccount(const ConvertedFile& file, const std::string& from, const std::string& to,
                  const ConvertOptions& options, std::ostream& out);

}  // namespace talu::packcheck
