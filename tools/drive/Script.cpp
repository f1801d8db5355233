#include "Script.h"

#include <windows.h>

#include <algorithm>
#include <cstdlib>
#include <stdexcept>

#include "Text.h"

namespace talu::drive {

namespace {

struct ScriptError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// The arguments of a command.
enum class Shape {
  Nothing,
  Form,
  Control,
  ControlText,
  Expectation,
  Text,
  Folder,
  Folders,
  Number,
  Keys,
  MaybeCode
};

struct Grammar {
  Command What;
  Shape Arguments;
};

const std::map<std::string, Grammar, std::less<>> kCommands = {
    {"wait", {Command::Wait, Shape::Form}},
    {"click", {Command::Click, Shape::Control}},
    {"type", {Command::Type, Shape::ControlText}},
    {"expect", {Command::Expect, Shape::Expectation}},
    {"expect-tree", {Command::ExpectTree, Shape::Folders}},
    {"message", {Command::Message, Shape::Text}},
    {"message-begins", {Command::MessageBegins, Shape::Text}},
    {"message-title", {Command::MessageTitle, Shape::Text}},
    {"browse", {Command::Browse, Shape::Folder}},
    {"key", {Command::Key, Shape::Keys}},
    {"close", {Command::Close, Shape::Form}},
    {"shot", {Command::Shot, Shape::Text}},
    {"timeout", {Command::Timeout, Shape::Number}},
    {"pause", {Command::Pause, Shape::Number}},
    {"finish", {Command::Finish, Shape::Nothing}},
    {"ended", {Command::Ended, Shape::MaybeCode}}};

constexpr std::string_view kBlanks = " \t\r";

std::string_view Trim(std::string_view text) {
  const auto first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

/// Removes the first word from `rest` and returns it.
std::string_view TakeWord(std::string_view& rest) {
  const auto end = std::min(rest.find_first_of(kBlanks), rest.size());
  const std::string_view word = rest.substr(0, end);
  rest = Trim(rest.substr(end));
  return word;
}

char Escaped(char c) {
  switch (c) {
    case 'n':
      return '\n';
    case 'r':
      return '\r';
    case 't':
      return '\t';
    case '\\':
    case '"':
    case '$':
      return c;
    default:
      throw ScriptError(std::string("unknown escape \\") + c +
                        R"( (known: \n \r \t \\ \" \$; a backslash itself is \\))");
  }
}

/// The text of an argument, without quotes, with escapes and variables replaced. Escapes count only
/// in quotes, so that a path can be written as it is, unless `escapes` allows them everywhere.
std::string ReadText(std::string_view raw, bool escapes, Variables& variables) {
  const bool quoted = raw.starts_with('"');
  std::string text;
  std::size_t i = quoted ? 1 : 0;
  for (; i < raw.size() && !(quoted && raw[i] == '"'); ++i) {
    if (raw[i] == '\\' && (escapes || quoted)) {
      if (++i == raw.size()) throw ScriptError("the line ends in the middle of an escape");
      text += Escaped(raw[i]);
    } else if (raw.substr(i, 2) == "${") {
      const auto end = raw.find('}', i);
      if (end == std::string_view::npos) throw ScriptError("\"${\" without \"}\"");
      text += variables.Get(std::string(raw.substr(i + 2, end - i - 2)));
      i = end;
    } else {
      text += raw[i];
    }
  }
  if (quoted && i == raw.size()) throw ScriptError("the closing quote is missing");
  if (quoted && i + 1 != raw.size()) throw ScriptError("text after the closing quote");
  return text;
}

int ReadNumber(std::string_view text) {
  const bool digits =
      std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
  if (text.empty() || text.size() > 7 || !digits) {
    throw ScriptError("a whole number expected, not " + Quoted(text));
  }
  return std::atoi(std::string(text).c_str());
}

std::string ReadName(std::string_view word) {
  const bool plain =
      std::all_of(word.begin(), word.end(), [](unsigned char c) { return std::isalnum(c); });
  if (word.empty()) throw ScriptError("the name of a control is missing");
  if (!plain) throw ScriptError(Quoted(word) + " is no name of a control");
  return std::string(word);
}

std::string ReadForm(std::string_view word) {
  const auto& forms = FormNames();
  if (word.empty()) throw ScriptError("the name of a form is missing");
  if (std::find(forms.begin(), forms.end(), word) == forms.end()) {
    throw ScriptError(Quoted(word) + " is no form of the wizard");
  }
  return std::string(word);
}

void ReadExpectation(std::string_view rest, Step& step, Variables& variables) {
  step.Name = ReadName(TakeWord(rest));
  step.Property = TakeWord(rest);
  if (rest.empty()) throw ScriptError("expect CONTROL PROPERTY VALUE");
  step.Value = ReadText(rest, false, variables);
  const std::string& property = step.Property;
  if (property == "text" || property == "begins") return;
  if (property == "width") {
    step.Number = ReadNumber(step.Value);
  } else if (property == "enabled" || property == "visible" || property == "value" ||
             property == "focus") {
    if (step.Value != "true" && step.Value != "false") {
      throw ScriptError(property + " is true or false, not " + Quoted(step.Value));
    }
  } else {
    throw ScriptError("unknown property " + Quoted(property) +
                      " (known: text begins enabled visible value focus width)");
  }
}

void ReadKeys(std::string_view rest, Step& step) {
  while (!rest.empty()) {
    const auto word = TakeWord(rest);
    const auto chord = ReadChord(word);
    if (!chord) throw ScriptError("unknown key " + Quoted(word));
    step.Keys.push_back(*chord);
  }
  if (step.Keys.empty()) throw ScriptError("the key is missing");
}

std::string ReadFolder(std::string_view rest, Variables& variables) {
  if (rest.empty()) throw ScriptError("the folder is missing (cancel chooses none)");
  if (rest == "cancel") return {};
  std::string folder = ReadText(rest, false, variables);
  const bool onDrive = folder.size() >= 2 && std::isalpha(static_cast<unsigned char>(folder[0])) &&
                       folder[1] == ':' && (folder.size() == 2 || folder[2] == '\\');
  if (!onDrive)
    throw ScriptError("a folder like C:\\Program Files expected, not " + Quoted(folder));
  return folder;
}

/// Removes one argument from `rest` and returns it: a word, or a text in quotes.
std::string_view TakeArgument(std::string_view& rest) {
  if (!rest.starts_with('"')) return TakeWord(rest);
  std::size_t end = 1;
  while (end < rest.size() && rest[end] != '"') end += rest[end] == '\\' ? 2 : 1;
  end = std::min(end + 1, rest.size());
  const std::string_view argument = rest.substr(0, end);
  rest = Trim(rest.substr(end));
  return argument;
}

std::string ReadTree(std::string_view& rest, Variables& variables) {
  std::string folder = ReadText(TakeArgument(rest), false, variables);
  if (folder.empty()) throw ScriptError("expect-tree PACK-APPLICATION-FOLDER INSTALLED-FOLDER");
  return folder;
}

void ReadArguments(Shape shape, std::string_view rest, Step& step, Variables& variables) {
  const bool message = step.What == Command::Message || step.What == Command::MessageBegins ||
                       step.What == Command::MessageTitle;
  switch (shape) {
    case Shape::Form:
      step.Name = ReadForm(TakeWord(rest));
      break;
    case Shape::Control:
      step.Name = ReadName(TakeWord(rest));
      break;
    case Shape::ControlText:
      step.Name = ReadName(TakeWord(rest));
      if (rest.empty()) throw ScriptError("the text is missing (\"\" empties the box)");
      step.Value = ReadText(rest, false, variables);
      return;
    case Shape::Expectation:
      return ReadExpectation(rest, step, variables);
    case Shape::Text:
      if (rest.empty()) throw ScriptError(message ? "the text is missing" : "the file is missing");
      step.Value = ReadText(rest, message, variables);
      return;
    case Shape::Folder:
      step.Value = ReadFolder(rest, variables);
      return;
    case Shape::Folders:
      step.Name = ReadTree(rest, variables);
      step.Value = ReadTree(rest, variables);
      break;
    case Shape::Number:
      step.Number = ReadNumber(ReadText(rest, false, variables));
      return;
    case Shape::Keys:
      return ReadKeys(rest, step);
    case Shape::MaybeCode:
      if (!rest.empty()) step.Number = ReadNumber(rest);
      step.Value = rest;
      return;
    case Shape::Nothing:
      break;
  }
  if (!rest.empty()) throw ScriptError("too much on the line: " + Quoted(rest));
}

Step ReadStep(std::string_view line, Variables& variables) {
  Step step;
  step.Source = line;
  const auto word = TakeWord(line);
  const auto command = kCommands.find(word);
  if (command == kCommands.end()) throw ScriptError("unknown command " + Quoted(word));
  step.What = command->second.What;
  ReadArguments(command->second.Arguments, line, step, variables);
  return step;
}

}  // namespace

std::string Variables::Get(const std::string& name) {
  if (!name.starts_with("env:")) {
    const auto found = values_.find(name);
    if (found == values_.end())
      throw ScriptError("${" + name + "} is not given (--set " + name + "=VALUE)");
    return found->second;
  }
  const std::wstring wide = Wide(name.substr(4));
  const DWORD size = GetEnvironmentVariableW(wide.c_str(), nullptr, 0);
  if (size == 0) throw ScriptError("${" + name + "}: no such environment variable");
  std::wstring value(size, L'\0');
  value.resize(GetEnvironmentVariableW(wide.c_str(), value.data(), size));
  std::string secret = Utf8(value);
  const std::string quoted = Quoted(secret);
  // It may appear in a message as it is or as Quoted() writes it.
  for (const std::string& form : {secret, quoted.substr(1, quoted.size() - 2)}) {
    if (!form.empty()) secrets_.emplace(form.size(), form);
  }
  return secret;
}

std::string Variables::Mask(std::string text) const {
  for (const auto& [size, secret] : secrets_) {
    for (auto at = text.find(secret); at != std::string::npos; at = text.find(secret, at + 3)) {
      text.replace(at, size, "***");
    }
  }
  return text;
}

Script ReadScript(std::string_view text, Variables& variables) {
  Script script;
  for (int number = 1; !text.empty(); ++number) {
    const auto end = std::min(text.find('\n'), text.size());
    const auto line = Trim(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.empty() || line.starts_with('#')) continue;
    try {
      script.Steps.push_back(ReadStep(line, variables));
      script.Steps.back().Line = number;
    } catch (const ScriptError& error) {
      script.Errors.push_back(std::to_string(number) + ": " + variables.Mask(error.what()));
    }
  }
  return script;
}

const std::vector<std::string>& FormNames() {
  static const std::vector<std::string> kNames = {
      "FrmType",        "FrmMode",        "FrmAuthentication", "FrmLocation",
      "FrmSQLNonQuery", "FrmApplication", "FrmTakeBack"};
  return kNames;
}

}  // namespace talu::drive
