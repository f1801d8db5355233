#include "CheckConfiguration.h"

#include <algorithm>
#include <array>

#include "Wizard.h"
#include "database/TypeScripts.h"
#include "runtime/TextFunctions.h"
#include "runtime/Unicode.h"

namespace talu::packcheck {
namespace {

constexpr auto kKeys = std::to_array<std::string_view>(
    {"AppTitle", "AppFolder", "DBFolder", "FreshDBSript", "DemoDBSript", "SystemDSN", "Shotcut",
     "RegnLocation", "SpecialRegn", "AddOns", "DBSript", "FinalMsg", "WriteSettings",
     "UpgradeDBSript"});

bool IsKey(std::string_view text) {
  return std::ranges::find(kKeys, text) != kKeys.end();
}

bool IsScriptKey(std::string_view key) {
  return std::ranges::find(kTypeScripts, key, &TypeScripts::Key) != kTypeScripts.end();
}

/// The keys except `own` that begin with `line`, as part of a sentence; empty when there are none.
std::string KeysBegunBy(std::string_view line, std::string_view own) {
  std::string keys;
  for (const std::string_view key : kKeys) {
    if (key == own || !key.starts_with(line)) continue;
    if (!keys.empty()) keys += ", ";
    keys += key;
  }
  return keys;
}

/// The number of letters to insert, remove or change to turn one word into the other.
std::size_t Distance(std::string_view one, std::string_view other) {
  std::vector<std::size_t> row(other.size() + 1);
  for (std::size_t j = 0; j < row.size(); ++j) row[j] = j;
  for (std::size_t i = 0; i < one.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i + 1;
    for (std::size_t j = 0; j < other.size(); ++j) {
      const std::size_t changed = diagonal + (one[i] == other[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({changed, row[j] + 1, diagonal + 1});
    }
  }
  return row.back();
}

/// What to do about an unknown key.
std::string Suggestion(std::string_view name) {
  for (const std::string_view key : kKeys) {
    if (Distance(UCase(name), UCase(key)) <= 2) return "Write " + std::string(key) + ".";
  }
  return "Delete the block, or give it the key that was meant.";
}

}  // namespace

Configuration::Configuration(CheckedPack& pack) : pack_(pack) {
  if (!pack.HasFile("AppCfg.txt")) {
    pack.Findings.Add("CFG-MISSING", {"AppCfg.txt", 0, ""});
    return;
  }
  text_ = *pack.Read("AppCfg.txt");
  if (!CheckText()) return;
  ReadLines();
  CheckLimits();
  CheckWhatIsThere();
  CheckFolderNames();
  CheckScriptLists();
  CheckBackupCount();
}

std::vector<CfgLine> Configuration::Values(std::string_view key) const {
  std::vector<CfgLine> values;
  for (const Block& block : blocks_) {
    if (block.Key == key) values.insert(values.end(), block.Values.begin(), block.Values.end());
  }
  return values;
}

Place Configuration::PlaceOf(std::string_view key) const {
  for (const Block& block : blocks_) {
    if (block.Key == key) return {"AppCfg.txt", block.Line, block.Key};
  }
  return {"AppCfg.txt", 0, ""};
}

// Returns false when the text has no usable lines.
bool Configuration::CheckText() {
  const TextMark mark = MarkOf(text_);
  if (mark.Utf16) {
    pack_.Findings.Add("CFG-ENCODING", {"AppCfg.txt", 0, ""},
                       {"UTF-16 characters", "no key is found"});
    return false;
  }
  if (mark.Utf8) {
    pack_.Findings.Add("CFG-ENCODING", {"AppCfg.txt", 1, ""},
                       {"a UTF-8 mark", "its first line is no key"});
    text_.erase(0, 3);
  }
  const bool utf8 = !mark.Utf8 && !pack_.IsUtf8 && OnlyCharacters(text_) == text_;
  text_ = pack_.Machine.CodePage.ToText(std::move(text_));
  NumberedLines lines(text_);
  CfgLine line;
  while (utf8 && lines.Next(line.Text, line.Number)) {
    if (IsAscii(line.Text)) continue;
    pack_.Findings.Add("CFG-UTF8", line.Place(), {Shown(line.Text)});
  }
  lines = NumberedLines(text_);
  while (lines.Next(line.Text, line.Number)) {
    if (!Contains(line.Text, "\n")) continue;
    line.Text = line.Text.substr(0, line.Text.find('\n'));
    pack_.Findings.Add("CFG-LINE-ENDS", line.Place());
    // For the other checks each line feed counts as CR LF, which is what was meant.
    text_ = Replace(Replace(text_, "\r\n", "\n"), "\n", "\r\n");
    break;
  }
  return true;
}

void Configuration::ReadLines() {
  std::vector<CfgLine> lines;
  NumberedLines scanner(text_);
  CfgLine line;
  while (scanner.Next(line.Text, line.Number)) {
    lines.push_back(line);
    if (IsKey(line.Text)) keysThere_.insert(line.Text);
  }
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const std::string_view next = i + 1 < lines.size() ? lines[i + 1].Text : "";
    if (inBlock_) {
      TakeInside(lines[i], next);
    } else {
      TakeOutside(lines[i]);
    }
  }
  if (inBlock_) {
    pack_.Findings.Add("CFG-LAST-OPEN", {"AppCfg.txt", blocks_.back().Line, blocks_.back().Key},
                       {blocks_.back().Key});
  } else if (keyLine_.Number != 0) {
    pack_.Findings.Add("CFG-NOT-OPENED", keyLine_.Place(),
                       {std::string(keyLine_.Text), "it has no values"});
  }
}

void Configuration::TakeOutside(const CfgLine& line) {
  const std::string_view stripped = Stripped(line.Text);
  if (line.Text.empty()) emptyLines_.push_back(line);
  if (stripped.empty()) return;
  if (stripped == "{") {
    if (line.Text != "{") {
      pack_.Findings.Add("CFG-BRACE", line.Place(), {"opens no block", "{"});
    }
    OpenBlock(line);
    return;
  }
  const bool key = IsKey(line.Text);
  if (keyLine_.Number != 0 && (key || stripped == "}")) {
    pack_.Findings.Add(
        "CFG-NOT-OPENED", keyLine_.Place(),
        {std::string(keyLine_.Text),
         key ? "the block of " + std::string(line.Text) + " is read for it" : "it has no values"});
    keyLine_ = {};
  }
  if (stripped == "}") {
    emptyLines_.clear();
    return;
  }
  if (!key && TakeCrowdedKey(line)) return;
  candidate_ = line;
  if (key) {
    keyLine_ = line;
  } else if (const std::string keys = KeysBegunBy(line.Text, ""); !keys.empty()) {
    pack_.Findings.Add("CFG-KEY-BEGINNING", line.Place(), {keys});
  }
}

// A line such as "AppTitle {" or "AppTitle = Desk", unless the key has a line of its own elsewhere.
bool Configuration::TakeCrowdedKey(const CfgLine& line) {
  const std::string_view stripped = Stripped(line.Text);
  const std::size_t end = std::min(stripped.find_first_of("{=: \t"), stripped.size());
  const auto key = std::ranges::find(kKeys, UCase(stripped.substr(0, end)),
                                     [](std::string_view known) { return UCase(known); });
  if (key == kKeys.end() || end == stripped.size() || keysThere_.contains(*key)) return false;
  pack_.Findings.Add("CFG-KEY-LINE", line.Place(), {std::string(*key)});
  const std::size_t value = stripped.find_first_not_of("=: \t", end);
  const std::string_view rest = value == std::string_view::npos ? "" : stripped.substr(value);
  keyLine_ = {line.Number, *key};
  if (rest == "{") {
    OpenBlock(line);
  } else if (!rest.empty()) {
    blocks_.push_back({std::string(*key), line.Number, {{line.Number, rest}}, 1, "", ""});
    keyLine_ = {};
  }
  return true;
}

void Configuration::OpenBlock(const CfgLine& brace) {
  const std::string key = IntendedKey(brace);
  for (const CfgLine& empty : emptyLines_) {
    pack_.Findings.Add("CFG-BLANK-LINE", empty.Place(), {key.empty() ? "no key" : key});
  }
  const Place earlier = PlaceOf(key);
  if (earlier.Line != 0 && IsKey(key)) {
    pack_.Findings.Add("CFG-KEY-TWICE", candidate_.Place(), {key, std::to_string(earlier.Line)});
  }
  blocks_.push_back(
      {key, candidate_.Number != 0 ? candidate_.Number : brace.Number, {}, 0, "", ""});
  inBlock_ = true;
  keyLine_ = {};
  candidate_ = {};
  emptyLines_.clear();
}

std::string Configuration::IntendedKey(const CfgLine& brace) {
  if (keyLine_.Number != 0) {
    candidate_ = keyLine_;
    return std::string(keyLine_.Text);
  }
  if (candidate_.Number == 0) {
    pack_.Findings.Add("CFG-KEY-UNKNOWN", brace.Place(),
                       {"no key", "Put the key's line before it, or delete the block."});
    return "";
  }
  const std::string_view name = Stripped(candidate_.Text);
  for (const std::string_view key : kKeys) {
    if (UCase(name) != UCase(key)) continue;
    pack_.Findings.Add(name == key ? KnownRule("CFG-KEY-BLANKS") : KnownRule("CFG-KEY-CASE"),
                       candidate_.Place(), {std::string(key)});
    return std::string(key);
  }
  if (KeysBegunBy(candidate_.Text, "").empty()) {
    pack_.Findings.Add("CFG-KEY-UNKNOWN", candidate_.Place(), {Shown(name), Suggestion(name)});
  }
  return std::string(name);
}

void Configuration::TakeInside(const CfgLine& line, std::string_view next) {
  Block& block = blocks_.back();
  const std::string_view stripped = Stripped(line.Text);
  if (stripped == "}") {
    if (line.Text != "}") {
      pack_.Findings.Add("CFG-BRACE", line.Place(), {"does not end the block", "}"});
    }
    inBlock_ = false;
    return;
  }
  if (IsKey(line.Text) && Stripped(next) == "{") {
    pack_.Findings.Add("CFG-NOT-CLOSED", line.Place(), {block.Key});
    inBlock_ = false;
    TakeOutside(line);
    return;
  }
  const std::string number = std::to_string(++block.Lines);
  if (line.Text.empty()) {
    pack_.Findings.Add(
        "CFG-EMPTY-VALUE", line.Place(),
        {block.Key, number, IsScriptKey(block.Key) ? "by the backup before the build" : "at all"});
  } else if (TrimView(line.Text).empty()) {
    pack_.Findings.Add(
        "CFG-BLANKS-VALUE", line.Place(),
        {block.Key, number,
         IsScriptKey(block.Key) ? "the build fails, as there is no script of that name"
                                : "not counted, so the last value is not read"});
  } else if (line.Text == "{") {
    if (block.BegunKeys.empty()) {
      pack_.Findings.Add("CFG-VALUE-BRACE", line.Place(), {block.Key});
    } else {
      pack_.Findings.Add("CFG-VALUE-OPENS", line.Place(), {block.Beginning, block.BegunKeys});
    }
  } else {
    block.Values.push_back(line);
  }
  const std::string begun = KeysBegunBy(line.Text, block.Key);
  if (begun.empty()) return;
  block.Beginning = line.Text.empty() ? "the empty line" : Shown(line.Text);
  block.BegunKeys = line.Text.empty() ? "every key" : begun;
  if (!line.Text.empty()) pack_.Findings.Add("CFG-VALUE-KEY", line.Place(), {begun});
}

// Uses the wizard's own readers.
void Configuration::CheckLimits() {
  Wizard wizard(pack_.Machine.Parts);
  for (const std::string_view key : kKeys) {
    try {
      wizard.GetCfgCount(std::string(key));
      wizard.GetCfgValue(std::string(key), 1);
    } catch (const RuntimeError&) {
      const bool ends = key == "AppTitle" || IsScriptKey(key);
      pack_.Findings.Add("CFG-TOO-MANY", PlaceOf(key),
                         {std::string(key), ends ? "Setup.exe ends" : "its step does nothing"});
    }
  }
}

}  // namespace talu::packcheck
