#include "takeback/Record.h"

#include <array>
#include <utility>

#include "runtime/Unicode.h"

namespace talu {
namespace {

constexpr std::array<std::pair<std::string_view, RecordTag>, 11> kTags = {{
    {"AppFolder:", RecordTag::AppFolder},
    {"DBFolder:", RecordTag::DBFolder},
    {"Server:", RecordTag::Server},
    {"UsrName:", RecordTag::UsrName},
    {"PsWord:", RecordTag::PsWord},
    {"DBNames:", RecordTag::DBNames},
    {"DBLogins:", RecordTag::DBLogins},
    {"ShotcutFolder:", RecordTag::ShotcutFolder},
    {"Shotcut:", RecordTag::Shotcut},
    {"SystemDSN:", RecordTag::SystemDSN},
    {"AddOns:", RecordTag::AddOns},
}};

/// Takes the next line, without its end, from `rest`; `ended` is whether it had one.
std::string_view TakeLine(std::string_view& rest, bool& ended) {
  const std::size_t end = rest.find_first_of("\r\n");
  ended = end != std::string_view::npos;
  const std::string_view line = rest.substr(0, end);
  if (!ended) {
    rest = {};
    return line;
  }
  rest.remove_prefix(rest.substr(end).starts_with("\r\n") ? end + 2 : end + 1);
  return line;
}

bool IsBlank(std::string_view line) {
  return line.find_first_not_of(" \t") == std::string_view::npos;
}

/// The tag that the line begins with, which is then cut off `text`.
RecordTag TakeTag(std::string& text) {
  for (const auto& [name, tag] : kTags) {
    if (!text.starts_with(name)) continue;
    text.erase(0, name.size());
    return tag;
  }
  return RecordTag::Unknown;
}

bool HasNames(RecordTag tag) {
  return tag == RecordTag::DBNames || tag == RecordTag::DBLogins;
}

void Note(const RecordLine& line, RecordedInstallation& installation) {
  if (line.CutOff) return;
  if (line.Tag == RecordTag::AppFolder) installation.AppFolder = line.Value;
  if (line.Tag == RecordTag::DBFolder) installation.DBFolder = line.Value;
  if (line.Tag == RecordTag::Server) installation.Server = line.Value;
  if (line.Tag == RecordTag::UsrName) installation.User = line.Value;
  if (line.Tag == RecordTag::PsWord) installation.Password = line.Value;
}

/// The path after the target's, at the first backslash that a drive or a place on the network
/// follows; npos where there is none.
std::size_t SourceAt(std::string_view text) {
  const std::size_t colon = text.find(':', 2);
  if (colon != std::string_view::npos) {
    return colon >= 2 && text[colon - 2] == '\\' ? colon - 1 : std::string_view::npos;
  }
  const std::size_t network = text.find("\\\\\\", 2);
  return network == std::string_view::npos ? network : network + 1;
}

/// Cuts `start` off the line; returns whether it begins with it.
bool TakeStart(std::string_view& line, std::string_view start) {
  if (!line.starts_with(start)) return false;
  line.remove_prefix(start.size());
  return true;
}

}  // namespace

Record::Record(std::string_view bytes, const CodePage& codePage) {
  bool apart = true;
  for (std::size_t number = 1; !bytes.empty(); ++number) {
    bool ended = false;
    const std::string_view raw = TakeLine(bytes, ended);
    if (IsBlank(raw)) {
      apart = true;
      continue;
    }
    RecordLine line;
    line.Value = codePage.ToText(std::string(raw));
    line.Tag = TakeTag(line.Value);
    line.Raw = raw;
    line.Number = number;
    line.CutOff = !ended;
    if (line.Tag == RecordTag::Unknown && !apart && HasNames(Lines.back().Tag)) {
      // A name that was cut out of a script with the end of its line.
      RecordLine& names = Lines.back();
      names.Value += "\r\n" + line.Value;
      names.Raw += "\r\n" + line.Raw;
      names.CutOff = line.CutOff;
      continue;
    }
    apart = false;
    if (Installations.empty() || line.Tag == RecordTag::AppFolder) Installations.emplace_back();
    line.Installation = Installations.size() - 1;
    Note(line, Installations.back());
    Lines.push_back(std::move(line));
  }
}

InstallationLog::InstallationLog(std::string_view bytes, const CodePage& codePage) {
  bool begun = false;
  while (!bytes.empty()) {
    bool ended = false;
    const std::string_view raw = TakeLine(bytes, ended);
    if (raw == "//") {
      begun = true;
      continue;
    }
    // Only the first line of an entry is one of the wizard's own texts.
    if (!std::exchange(begun, false) || !ended) continue;
    const std::string text = IsAscii(raw) ? std::string(raw) : codePage.ToText(std::string(raw));
    std::string_view line(text);
    if (line == "Installation Started...") {
      // Before it the application folder was backed up, which may be into itself.
      *this = {};
    } else if (TakeStart(line, "Copying file - ")) {
      const std::size_t source = SourceAt(line);
      if (source == std::string_view::npos) continue;
      Copies.push_back({std::string(line.substr(0, source - 1)), std::string(line.substr(source))});
    } else if (TakeStart(line, "Creating New Folder - ") ||
               TakeStart(line, "Folder Already exists - ")) {
      Folders.emplace_back(line);
    } else if (TakeStart(line, "regsvr32 /s \"") && line.ends_with('"')) {
      Registered.emplace_back(line.substr(0, line.size() - 1));
    }
  }
}

}  // namespace talu
