#include "Passwords.h"

#include <algorithm>
#include <array>

#include "Lexer.h"
#include "Text.h"

namespace talu::standin {
namespace {

constexpr std::string_view stars = "***";
constexpr std::string_view quotedStars = "'***'";
/// Texts within texts: beyond this depth a text that may hold a password is hidden whole.
constexpr int deepest = 8;

std::string LowerLetters(std::string_view text) {
  std::string lower(text);
  for (char& c : lower)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
  return lower;
}

/// Whether a text has anything of a word that a password stands behind.
bool MayHoldPassword(std::string_view text) {
  static constexpr std::array<std::string_view, 9> marks = {
      "pass",        "pwd",      "secret",     "key_source",    "approle",
      "sp_addlogin", "srvlogin", "openrowset", "opendatasource"};
  const std::string lower = LowerLetters(text);
  return std::any_of(marks.begin(), marks.end(), [&lower](std::string_view mark) {
    return lower.find(mark) != std::string::npos;
  });
}

/// PASSWORD, OLD_PASSWORD, MEDIAPASSWORD, @rmtpassword, PWD of a connection text ...
bool NamesPassword(const Token& token) {
  if (!token.IsName() && token.Kind != TokenKind::Variable) return false;
  const std::string name = LowerLetters(token.Value());
  static constexpr std::array<std::string_view, 6> ends = {"password", "passwd",     "pwd",
                                                           "secret",   "passphrase", "key_source"};
  return std::any_of(ends.begin(), ends.end(),
                     [&name](std::string_view end) { return name.ends_with(end); });
}

/// A procedure or function that is told a password.
bool TakesPassword(const Token& token) {
  static constexpr std::array<std::string_view, 12> names = {
      "sp_addlogin",        "sp_password",          "sp_setapprole",         "sp_addapprole",
      "sp_approlepassword", "sp_addlinkedsrvlogin", "sp_change_users_login", "sp_adddistributor",
      "pwdencrypt",         "pwdcompare",           "encryptbypassphrase",   "decryptbypassphrase"};
  if (!token.IsName()) return false;
  const std::string name = LowerLetters(token.Value());
  return std::find(names.begin(), names.end(), name) != names.end();
}

bool IsText(const Token& token) {
  return token.Kind == TokenKind::String || token.Kind == TokenKind::Binary ||
         (token.Kind == TokenKind::Name && token.Raw.front() == '"');
}

/// Walks a batch, and the texts and comments in it, and notes the passwords.
class Walk {
 public:
  Walk(std::vector<std::string>& passwords, bool& isDoubtful)
      : passwords_(passwords), isDoubtful_(isDoubtful) {}

  /// The text masked. What it ends in the middle of ("PASSWORD = " within quotes) goes on behind
  /// it.
  std::string Mask(std::string_view text, int depth);

 private:
  enum class Awaits { Nothing, Equals, Value, Plus };

  bool IsPassword(const Token& token);
  void Follow(const Token& token);

  std::vector<std::string>& passwords_;
  bool& isDoubtful_;
  Awaits awaits_ = Awaits::Nothing;
  /// Among the arguments of a procedure that takes a password; and at the place of one.
  bool inArguments_ = false;
  bool atArgument_ = false;
  bool afterSemicolon_ = false;
};

/// Whether a token stands where a password does.
bool Walk::IsPassword(const Token& token) {
  if (token.Kind == TokenKind::Symbol || token.Kind == TokenKind::Variable || token.Is("NULL")) {
    return false;
  }
  if (awaits_ == Awaits::Value || (inArguments_ && atArgument_)) return true;
  // A statement cannot begin with a text: it is OPENROWSET's 'server';'user';'password'.
  return IsText(token) && (awaits_ == Awaits::Equals || inArguments_ || afterSemicolon_);
}

/// What a token that is no password says of those that follow.
void Walk::Follow(const Token& token) {
  afterSemicolon_ = token.IsSymbol(";");
  const bool opens = token.IsSymbol("(") || token.IsSymbol("{");
  if (NamesPassword(token)) {
    awaits_ = Awaits::Equals;
  } else if (token.IsSymbol("=") && awaits_ == Awaits::Equals) {
    awaits_ = Awaits::Value;
  } else if (token.IsSymbol("+") && awaits_ == Awaits::Plus) {
    awaits_ = Awaits::Value;
  } else if (awaits_ != Awaits::Value || !(opens || token.IsSymbol("+"))) {
    awaits_ = Awaits::Nothing;
  }
  if (TakesPassword(token)) {
    inArguments_ = atArgument_ = true;
  } else if (opens || token.IsSymbol(",") || token.IsSymbol("=") || token.IsSymbol("+")) {
    atArgument_ = true;
  } else if (token.Kind == TokenKind::Variable || token.Is("NULL") || token.IsSymbol("}")) {
    atArgument_ = false;
  } else {
    inArguments_ = false;
  }
}

std::string Walk::Mask(std::string_view text, int depth) {
  const bool isExpected = awaits_ != Awaits::Nothing || inArguments_ || afterSemicolon_;
  if (!isExpected && !MayHoldPassword(text)) return std::string(text);
  if (depth > deepest) {
    isDoubtful_ = true;
    return std::string(stars);
  }
  std::string masked;
  std::size_t copied = 0;
  const auto put = [&](std::size_t from, std::size_t to, std::string_view with) {
    masked.append(text.substr(copied, from - copied)).append(with);
    copied = to;
  };
  std::optional<std::size_t> beforeFirst;  // bytes of `masked` in front of the first password
  const auto hide = [&](std::size_t from, std::size_t to, std::string_view with) {
    put(from, from, "");
    if (!beforeFirst) beforeFirst = masked.size();
    put(from, to, with);
  };
  // From the first password on nothing is certain.
  const auto hideRest = [&](std::size_t from) {
    isDoubtful_ = true;
    if (!beforeFirst) hide(from, from, "");
    masked.resize(*beforeFirst);
    masked += quotedStars;
    copied = text.size();
    awaits_ = Awaits::Plus;
  };
  // A password without quotes ends where its statement goes on, in a connection text at the next
  // part.
  const auto endOfBare = [&](std::size_t at) {
    return std::min(text.find_first_of(depth == 0 ? " \t\r\n,;)" : ";\r\n", at), text.size());
  };

  Lexer lexer(text);
  std::size_t end = 0;
  try {
    while (true) {
      const Token token = lexer.Next();
      const std::string_view between = text.substr(end, token.At - end);
      if (between.size() > 2 && MayHoldPassword(between)) {  // a comment
        std::string plain(between);
        std::replace_if(
            plain.begin(), plain.end(), [](char c) { return c == '-' || c == '/' || c == '*'; },
            ' ');
        if (Walk(passwords_, isDoubtful_).Mask(plain, depth + 1) != plain) {
          put(end, token.At, " /****/ ");
        }
      }
      if (token.Kind == TokenKind::End) break;
      end = token.At + token.Raw.size();

      if (IsPassword(token)) {
        const bool isBare = token.Kind == TokenKind::Word || token.Kind == TokenKind::Number;
        if (isBare) {
          const std::size_t next = text.find_first_not_of(" \t\r\n", end);
          const bool isExpression = depth == 0 && next != std::string_view::npos &&
                                    (text[next] == '.' || text[next] == '(');
          if (isExpression) {
            awaits_ = Awaits::Nothing;
            continue;
          }
          end = endOfBare(token.At);
          lexer = Lexer(text, end, text.size());
        }
        const std::string_view raw = text.substr(token.At, end - token.At);
        passwords_.emplace_back(raw);
        passwords_.push_back(token.Value());
        hide(token.At, end, depth > 0 && isBare ? stars : quotedStars);
        awaits_ = Awaits::Plus;
        // {Encrypt N'...'}
        atArgument_ = token.Is("ENCRYPT");
        afterSemicolon_ = false;
        const bool isGlued =
            end < text.size() && (IsWordPart(text[end]) || text[end] == '\'' || text[end] == '"');
        if (!isBare && isGlued) {  // 'it's ...': the quotes do not match
          hideRest(end);
          return masked;
        }
        continue;
      }
      if (IsText(token) && token.Kind != TokenKind::Binary) {
        const std::string inner = token.Value();
        const std::string shown = Mask(inner, depth + 1);
        if (shown != inner) {
          const char quote = token.Raw.back();
          std::string again(token.Raw.substr(0, token.Raw.find(quote) + 1));
          for (const char c : shown) again.append(c == quote ? 2 : 1, c);
          put(token.At, end, again + quote);
        }
        const bool goesOn = awaits_ != Awaits::Nothing || (inArguments_ && atArgument_);
        if (!goesOn) Follow(token);
        continue;
      }
      Follow(token);
      if (awaits_ == Awaits::Value && token.IsSymbol("=")) {
        // PWD=!a b; in a connection text, or what no statement can go on with.
        const std::size_t from = std::min(text.find_first_not_of(" \t\r\n", end), text.size());
        const std::string_view next = text.substr(from, 2);
        const bool isQuoted = next.find_first_of("'\"") != std::string_view::npos;
        const bool isToken =
            depth == 0 && !next.empty() &&
            (IsWordPart(next.front()) || next == "--" || next == "/*" ||
             std::string_view("[({+").find(next.front()) != std::string_view::npos);
        if (!next.empty() && !isQuoted && !isToken) {
          end = endOfBare(from);
          lexer = Lexer(text, end, text.size());
          passwords_.emplace_back(text.substr(from, end - from));
          hide(from, end, stars);
          awaits_ = Awaits::Nothing;
        }
      }
    }
  } catch (const SqlFailure&) {  // a quote or a comment that is not closed
    const std::size_t open = std::min(text.find_first_not_of(" \t\r\n", end), text.size());
    const std::size_t inside = std::min(open + 1, text.size());
    if (beforeFirst || awaits_ != Awaits::Nothing || inArguments_ || afterSemicolon_) {
      hideRest(open);
      return masked;
    }
    const std::string rest(text.substr(inside));
    const std::string shown = Mask(rest, depth + 1);
    if (shown != rest) {
      isDoubtful_ = true;
      put(inside, text.size(), shown);
    }
  }
  return masked.append(text.substr(copied));
}

}  // namespace

PasswordMask::PasswordMask(std::string_view batch)
    : batch_(Walk(passwords_, isDoubtful_).Mask(batch, 0)) {}

bool PasswordMask::Hides(std::string_view quoted) const {
  if (isDoubtful_) return true;
  return std::any_of(passwords_.begin(), passwords_.end(), [quoted](const std::string& password) {
    return !password.empty() && (password.find(quoted) != std::string::npos ||
                                 quoted.find(password) != std::string_view::npos);
  });
}

SqlMessage PasswordMask::Masked(const SqlMessage& message) const {
  SqlMessage masked = message;
  for (auto argument = message.Arguments.rbegin(); argument != message.Arguments.rend();
       ++argument) {
    const auto [begin, end] = *argument;
    if (Hides(std::string_view(message.Text).substr(begin, end - begin))) {
      masked.Text.replace(begin, end - begin, stars);
    }
  }
  return masked;
}

}  // namespace talu::standin
