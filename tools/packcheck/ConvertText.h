#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "platform/CodePage.h"

namespace talu::packcheck {

/// A text file as its author sees it.
struct DecodedText {
  /// In UTF-8, without a byte-order mark, every line that is ended ended by CR LF. Within texts and
  /// names of a script there may be line feeds.
  std::string Text;
  /// "UTF-16", "UTF-8", or nothing for the code page's own.
  std::string_view Encoding;
  /// How many lines ended otherwise.
  std::size_t OtherLineEnds = 0;
};

/// Reads a file's bytes; `number` is that of the code page. Raises std::runtime_error, with what is
/// wrong with them, for bytes that are no text.
DecodedText Decode(std::string_view bytes, const CodePage& codePage, int number, bool isScript);

/// The positions of the line feeds without a carriage return before them that end a line. Those in
/// the texts and names of a script do not: the build sends them as they are. Where one of these is
/// not closed, all do.
std::vector<std::size_t> LoneFeeds(std::string_view text, bool isScript);
/// The text with a carriage return before each of these line feeds.
std::string WithReturns(std::string_view text, const std::vector<std::size_t>& feeds);

/// Whether a letter can be seen, as a byte-order mark in the middle of a text cannot; and its
/// number as U+FEFF.
bool IsSeen(char32_t character);
std::string CodeOf(char32_t character);

/// A letter that a code page lacks.
struct MissingLetter {
  /// In UTF-8.
  std::string Letter;
  char32_t Character = 0;
  /// The lines, from 1, in which it is part of a text or a name; in others it is in a comment.
  std::vector<int> Lines;
  std::size_t InComments = 0;
};

/// The letters of `text` that the code page lacks, in order of their first place.
std::vector<MissingLetter> MissingLetters(std::string_view text, const CodePage& codePage);

/// The ANSI code pages that lack no letter of `text`.
std::vector<int> CodePagesFor(std::string_view text);

}  // namespace talu::packcheck
