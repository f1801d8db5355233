#include "sql/Passwords.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <optional>

#include "runtime/TextFunctions.h"
#include "sql/Lexer.h"

namespace talu::sql {
namespace {

constexpr std::string_view kStars = "***";
constexpr std::string_view kQuotedStars = "'***'";
constexpr const char* kBlanks = " \t\r\n";
/// Texts within texts: below this depth a text that may contain a password is hidden whole.
constexpr int kDeepest = 8;

/// A part of the words that precede a password, with the position of its rarest letter, which is
/// what the search looks for.
struct Mark {
  std::string_view Upper;
  std::size_t Rare;
};
constexpr std::array<Mark, 9> kMarks = {{{"PASS", 0},
                                         {"PWD", 0},
                                         {"SECRET", 2},
                                         {"KEY_SOURCE", 0},
                                         {"APPROLE", 1},
                                         {"LOGIN", 2},
                                         {"DISTRIBUTOR", 6},
                                         {"OPENROWSET", 1},
                                         {"OPENDATASOURCE", 1}}};

/// Whether a text contains such a part. Most do not, and a large pack has millions.
bool MayHoldPassword(std::string_view text) {
  for (std::size_t at = 0; at < text.size(); ++at) {
    const int hunted = text[at] | 0x20;
    if (hunted != 'p' && hunted != 'c' && hunted != 'k' && hunted != 'g' && hunted != 'b') continue;
    for (const Mark& mark : kMarks) {
      if (at < mark.Rare || (mark.Upper[mark.Rare] | 0x20) != hunted) continue;
      if (EqualsUpper(text.substr(at - mark.Rare, mark.Upper.size()), mark.Upper)) return true;
    }
  }
  return false;
}

/// PASSWORD, OLD_PASSWORD, MEDIAPASSWORD, PWD of a connection text; @rmtpassword, @pwd2 ...
bool NamesPassword(const Token& token) {
  if (!token.IsName() && token.Kind != TokenKind::Variable) return false;
  const std::string name = UCase(token.Value());
  static constexpr std::array<std::string_view, 6> kEnds = {"PASSWORD", "PASSWD",     "PWD",
                                                            "SECRET",   "PASSPHRASE", "KEY_SOURCE"};
  return std::ranges::any_of(kEnds, [&](std::string_view end) {
    return token.Kind == TokenKind::Variable ? Contains(name, end) : name.ends_with(end);
  });
}

/// A procedure or function that takes a password.
bool TakesPassword(const Token& token) {
  static constexpr std::array<std::string_view, 12> kNames = {
      "SP_ADDLOGIN",        "SP_PASSWORD",          "SP_SETAPPROLE",         "SP_ADDAPPROLE",
      "SP_APPROLEPASSWORD", "SP_ADDLINKEDSRVLOGIN", "SP_CHANGE_USERS_LOGIN", "SP_ADDDISTRIBUTOR",
      "PWDENCRYPT",         "PWDCOMPARE",           "ENCRYPTBYPASSPHRASE",   "DECRYPTBYPASSPHRASE"};
  return token.IsName() && std::ranges::find(kNames, UCase(token.Value())) != kNames.end();
}

bool IsText(const Token& token) {
  return token.Kind == TokenKind::String || token.Kind == TokenKind::Binary ||
         (token.Kind == TokenKind::Name && token.Raw.front() == '"');
}

/// Reads a batch, and the texts and comments in it, and collects the passwords.
class Walk {
 public:
  Walk(std::vector<std::string>& passwords, bool& isDoubtful)
      : passwords_(passwords), isDoubtful_(isDoubtful) {}

  /// The text masked. What is still open at its end ("PASSWORD = " within quotes) continues after
  /// it.
  std::string Mask(std::string_view text, int depth);

 private:
  enum class Awaits { Nothing, Equals, Assignment, Value, Plus };

  bool IsPassword(const Token& token);
  void Follow(const Token& token);

  std::vector<std::string>& passwords_;
  bool& isDoubtful_;
  Awaits awaits_ = Awaits::Nothing;
  /// In the arguments of a procedure that takes a password; and in the place of one.
  bool inArguments_ = false;
  bool atArgument_ = false;
  bool afterSemicolon_ = false;
};

/// Whether a token is where a password is.
bool Walk::IsPassword(const Token& token) {
  if (token.Kind == TokenKind::Symbol || token.Kind == TokenKind::Variable || token.Is("NULL")) {
    return false;
  }
  if (awaits_ == Awaits::Value || (inArguments_ && atArgument_)) return true;
  // A statement cannot begin with a text: it is OPENROWSET's 'server';'user';'password'.
  return IsText(token) && (awaits_ == Awaits::Equals || inArguments_ || afterSemicolon_);
}

/// Updates what the following tokens mean, after a token that is not a password.
void Walk::Follow(const Token& token) {
  afterSemicolon_ = token.IsSymbol(";");
  const bool opens = token.IsSymbol("(") || token.IsSymbol("{");
  if (NamesPassword(token)) {
    awaits_ = token.Kind == TokenKind::Variable ? Awaits::Assignment : Awaits::Equals;
  } else if (token.IsSymbol("=") ? awaits_ == Awaits::Equals || awaits_ == Awaits::Assignment
                                 : token.IsSymbol("+") && awaits_ == Awaits::Plus) {
    awaits_ = Awaits::Value;
  } else if (awaits_ == Awaits::Assignment &&
             (token.Kind == TokenKind::Word || token.Kind == TokenKind::Number || opens ||
              token.IsSymbol(")"))) {
    // DECLARE @pwd AS nvarchar(20) = ...
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
  if (depth > kDeepest) {
    isDoubtful_ = true;
    return std::string(kStars);
  }
  std::string masked;
  std::size_t copied = 0;
  const auto put = [&](std::size_t from, std::size_t to, std::string_view with) {
    masked.append(text.substr(copied, from - copied)).append(with);
    copied = to;
  };
  // Lines keep their numbers.
  const auto keepLines = [&](std::size_t from, std::size_t to) {
    std::ranges::copy_if(text.substr(from, to - from), std::back_inserter(masked),
                         [](char c) { return c == '\r' || c == '\n'; });
  };
  std::optional<std::size_t> beforeFirst;  // bytes of `masked` before the first password
  const auto hide = [&](std::size_t from, std::size_t to, std::string_view with) {
    put(from, from, "");
    if (!beforeFirst) beforeFirst = masked.size();
    put(from, to, with);
    keepLines(from, to);
  };
  // Nothing is certain after the first password.
  const auto hideRest = [&](std::size_t from) {
    isDoubtful_ = true;
    if (!beforeFirst) hide(from, from, "");
    masked.resize(*beforeFirst);
    masked += kQuotedStars;
    copied = text.size();
    awaits_ = Awaits::Plus;
  };
  // A password without quotes ends where its statement continues; in a connection text, at the next
  // part.
  const auto endOfBare = [&](std::size_t at) {
    return std::min(text.find_first_of(depth == 0 ? " \t\r\n,;)" : ";\r\n", at), text.size());
  };

  Lexer lexer(text);
  std::size_t end = 0;
  while (true) {
    const Token token = lexer.NextOrComment();
    if (token.Kind == TokenKind::End) break;
    end = token.At + token.Raw.size();
    if (!token.IsClosed) {
      const std::size_t inside = token.At + token.Opening;
      if (beforeFirst || awaits_ != Awaits::Nothing || inArguments_ || afterSemicolon_) {
        hideRest(token.At);
        return masked;
      }
      const std::string rest(text.substr(inside));
      const std::string shown = Mask(rest, depth + 1);
      if (shown != rest) {
        isDoubtful_ = true;
        put(inside, text.size(), shown);
      }
      break;
    }
    if (token.Kind == TokenKind::Comment) {
      std::string plain(token.Raw);
      std::ranges::replace_if(
          plain, [](char c) { return c == '-' || c == '/' || c == '*'; }, ' ');
      if (Walk(passwords_, isDoubtful_).Mask(plain, depth + 1) != plain) {
        put(token.At, end, "/****/");
        keepLines(token.At, end);
      }
      continue;
    }
    if (IsPassword(token)) {
      const bool isBare = token.Kind == TokenKind::Word || token.Kind == TokenKind::Number;
      if (isBare) {
        const std::size_t next = text.find_first_not_of(kBlanks, end);
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
      hide(token.At, end, depth > 0 && isBare ? kStars : kQuotedStars);
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
      // PWD=!a b; in a connection text, or what cannot continue a statement.
      const std::size_t from = std::min(text.find_first_not_of(kBlanks, end), text.size());
      const std::string_view next = text.substr(from, 2);
      const bool isQuoted = next.find_first_of("'\"") != std::string_view::npos;
      const bool isToken = depth == 0 && !next.empty() &&
                           (IsWordPart(next.front()) || next == "--" || next == "/*" ||
                            std::string_view("[({+").find(next.front()) != std::string_view::npos);
      if (!next.empty() && !isQuoted && !isToken) {
        end = endOfBare(from);
        lexer = Lexer(text, end, text.size());
        passwords_.emplace_back(text.substr(from, end - from));
        hide(from, end, kStars);
        awaits_ = Awaits::Nothing;
      }
    }
  }
  return masked.append(text.substr(copied));
}

}  // namespace

PasswordMask::PasswordMask(std::string_view text, Form form)
    : text_(Walk(passwords_, isDoubtful_).Mask(text, form == Form::Statements ? 0 : 1)) {}

bool PasswordMask::Hides(std::string_view quoted) const {
  return isDoubtful_ || std::ranges::any_of(passwords_, [quoted](const std::string& password) {
           return !password.empty() && (password.find(quoted) != std::string::npos ||
                                        quoted.find(password) != std::string_view::npos);
         });
}

}  // namespace talu::sql
