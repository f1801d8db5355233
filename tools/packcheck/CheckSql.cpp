#include "CheckSql.h"

#include <algorithm>
#include <array>

#include "runtime/TextFunctions.h"

namespace talu::packcheck {
namespace {

enum class CharClass : unsigned char { Blank, Word, Sign };

constexpr std::array<CharClass, 256> MakeClasses() {
  std::array<CharClass, 256> classes{};
  for (std::size_t i = 0; i < classes.size(); ++i) {
    const bool letter = (i >= 'a' && i <= 'z') || (i >= 'A' && i <= 'Z');
    const bool word = letter || (i >= '0' && i <= '9') || i >= 0x80 || i == '_' || i == '@' ||
                      i == '#' || i == '$';
    classes[i] = word ? CharClass::Word : i <= ' ' ? CharClass::Blank : CharClass::Sign;
  }
  return classes;
}

constexpr std::array<CharClass, 256> kClasses = MakeClasses();

CharClass ClassOf(char character) {
  return kClasses[static_cast<unsigned char>(character)];
}

bool IsOneOf(std::string_view word, std::initializer_list<std::string_view> upperWords) {
  return std::ranges::any_of(upperWords,
                             [&](std::string_view upper) { return EqualsUpper(word, upper); });
}

char Closing(SqlFollower::Region region) {
  switch (region) {
    case SqlFollower::Region::Text:
      return '\'';
    case SqlFollower::Region::BracketName:
      return ']';
    default:
      return '"';
  }
}

}  // namespace

void SqlFollower::TakeLine(const std::string& file, int number, std::string_view line) {
  file_ = &file;
  number_ = number;
  line_ = line;
  regionStart_ = 0;
  std::size_t at = 0;
  while (at < line.size()) {
    if (region_ == Region::Code) {
      at = TakeCode(at);
    } else {
      at = region_ == Region::Comment ? TakeComment(at) : TakeRegion(at);
    }
  }
}

void SqlFollower::Restart() {
  region_ = Region::Code;
  depth_ = 0;
  waiting_ = Waiting::Nothing;
  verb_.clear();
  aboutLogin_ = false;
}

// Goes on to where something else than code begins; returns the position behind its first mark.
std::size_t SqlFollower::TakeCode(std::size_t at) {
  const std::size_t size = line_.size();
  while (at < size) {
    const CharClass kind = ClassOf(line_[at]);
    if (kind == CharClass::Blank) {
      ++at;
      continue;
    }
    if (kind == CharClass::Word) {
      std::size_t end = at + 1;
      while (end < size && ClassOf(line_[end]) == CharClass::Word) ++end;
      TakeWord(at, end);
      at = end;
      continue;
    }
    const char next = at + 1 < size ? line_[at + 1] : '\0';
    switch (line_[at]) {
      case '\'':
        return Enter(Region::Text, at);
      case '"':
        return Enter(Region::QuotedName, at);
      case '[':
        return Enter(Region::BracketName, at);
      case '-':
        if (next != '-') break;
        NoteComment(line_.substr(at));
        return size;
      case '/':
        if (next != '*') break;
        commentDepth_ = 1;
        return Enter(Region::Comment, at) + 1;
      case '(':
        ++depth_;
        break;
      case ')':
        depth_ = std::max(depth_ - 1, 0);
        break;
      case '=':
        ++at;
        continue;  // between FILENAME or PASSWORD and its text
      default:
        break;
    }
    waiting_ = Waiting::Nothing;
    verb_.clear();
    if (line_[at] == ';') aboutLogin_ = false;
    ++at;
  }
  return at;
}

std::size_t SqlFollower::Enter(Region region, std::size_t at) {
  region_ = region;
  regionLine_ = number_;
  regionStart_ = at;
  return at + 1;
}

// Goes on behind the end of a text or a quoted name. A doubled mark is one inside.
std::size_t SqlFollower::TakeRegion(std::size_t at) {
  const char mark = Closing(region_);
  for (std::size_t end = line_.find(mark, at); end != std::string_view::npos;
       end = line_.find(mark, end + 2)) {
    if (end + 1 < line_.size() && line_[end + 1] == mark) continue;
    const std::string_view whole = line_.substr(regionStart_, end + 1 - regionStart_);
    if (region_ == Region::Text) {
      TakeText(whole.substr(std::min<std::size_t>(1, whole.size()), whole.size() - 2));
    } else if (waiting_ == Waiting::Name) {
      TakeName(whole);
    }
    verb_.clear();
    region_ = Region::Code;
    return end + 1;
  }
  return line_.size();
}

// Comments hold comments.
std::size_t SqlFollower::TakeComment(std::size_t at) {
  const std::size_t start = at;
  while (at < line_.size() && commentDepth_ > 0) {
    at = line_.find_first_of("*/", at);
    if (at >= line_.size() - 1) {
      at = line_.size();
    } else if (line_[at] == '*' && line_[at + 1] == '/') {
      --commentDepth_;
      at += 2;
    } else if (line_[at] == '/' && line_[at + 1] == '*') {
      ++commentDepth_;
      at += 2;
    } else {
      ++at;
    }
  }
  NoteComment(line_.substr(start, at - start));
  if (commentDepth_ == 0) region_ = Region::Code;
  return at;
}

void SqlFollower::NoteComment(std::string_view comment) {
  if (Contains(comment, "CREATE DATABASE")) Facts.CommentCreatesDatabase = true;
  if (Contains(comment, "CREATE LOGIN")) Facts.CommentCreatesLogin = true;
}

void SqlFollower::TakeWord(std::size_t at, std::size_t end) {
  const std::string_view word = line_.substr(at, end - at);
  if (waiting_ == Waiting::Name) {
    // DROP DATABASE IF EXISTS name
    if (!IsOneOf(word, {"IF", "EXISTS"})) TakeName(word);
    return;
  }
  if (waiting_ != Waiting::Nothing) {
    if (EqualsUpper(word, "N")) return;  // N'...'
    waiting_ = Waiting::Nothing;
  }
  // Most words are none of those looked for; few tests tell.
  constexpr std::string_view kFirst = "CADULFPcadulfp";
  if (word.size() < 3 || word.size() > 8 || kFirst.find(word[0]) == std::string_view::npos) {
    verb_.clear();
    return;
  }
  TakeKeyword(word, at);
}

void SqlFollower::TakeKeyword(std::string_view word, std::size_t at) {
  if (IsOneOf(word, {"CREATE", "ALTER", "DROP"})) {
    verb_ = word;
    verbAt_ = at;
    verbLine_ = number_;
    return;
  }
  const bool database = EqualsUpper(word, "DATABASE");
  const bool login = EqualsUpper(word, "LOGIN");
  if (EqualsUpper(word, "USE")) {
    statement_ = {SqlStatement::Kind::Use, false, std::string(word), "", Here()};
    waiting_ = Waiting::Name;
  } else if ((database || login) && !verb_.empty()) {
    statement_ = {SqlStatement::Kind::Create, login, "", "", Here()};
    if (EqualsUpper(verb_, "ALTER")) statement_.Verb = SqlStatement::Kind::Alter;
    if (EqualsUpper(verb_, "DROP")) statement_.Verb = SqlStatement::Kind::Drop;
    statement_.Spelled = verbLine_ == number_
                             ? std::string(line_.substr(verbAt_, at + word.size() - verbAt_))
                             : verb_.append(kCrLf).append(word);
    aboutLogin_ = login;
    waiting_ = Waiting::Name;
  } else if (EqualsUpper(word, "FILENAME")) {
    waiting_ = Waiting::FileName;
  } else if (aboutLogin_ && EqualsUpper(word, "PASSWORD")) {
    waiting_ = Waiting::Password;
  }
  verb_.clear();
}

void SqlFollower::TakeText(std::string_view text) {
  if (waiting_ == Waiting::FileName) Facts.FileNames.push_back({std::string(text), Here()});
  if (waiting_ == Waiting::Password && !text.empty()) {
    Facts.Passwords.push_back({std::string(text), Here()});
  }
  waiting_ = Waiting::Nothing;
}

void SqlFollower::TakeName(std::string_view name) {
  waiting_ = Waiting::Nothing;
  // These go on as other statements: USE HINT, ALTER DATABASE SCOPED ..., GRANT CREATE DATABASE TO.
  if (IsOneOf(name, {"HINT", "PLAN", "SCOPED", "AUDIT", "ENCRYPTION", "TO", "CURRENT"})) return;
  if (statement_.Login && statement_.Verb != SqlStatement::Kind::Create) return;
  statement_.Name = name;
  Facts.Statements.push_back(statement_);
}

std::string BareName(std::string_view name) {
  if (name.size() >= 2 && (name.front() == '[' || name.front() == '"')) {
    name = name.substr(1, name.size() - 2);
  }
  return UCase(name);
}

}  // namespace talu::packcheck
