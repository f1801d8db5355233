#include "database/BatchNames.h"

#include "runtime/ErrorTrap.h"
#include "runtime/Int16.h"

namespace talu {

std::optional<std::string> CreatedName(const ErrorTrap& step, std::string_view batch,
                                       std::string_view thing) {
  Position at = 0;
  Position start = 0;
  Position end = 0;
  std::optional<std::string> name;
  step.Assign(at, [&] { return InStr(batch, "CREATE " + std::string(thing)); });
  step.Assign(at, [&] { return InStr(at, batch, thing); });
  step.Assign(start, [&] { return InStr(at, batch, " "); });
  step.Assign(end, [&] { return InStr(start + 1, batch, " "); });
  step.Assign(name, [&] { return Mid(batch, start, end - start); });
  return name;
}

std::string DataFolder(const ErrorTrap& step, std::string_view batch) {
  Position drive = 0;
  Position ending = 0;
  Position backslash = 0;
  std::string folder;
  step.Assign(drive, [&] { return InStr(batch, ":\\") - 1; });
  step.Assign(ending, [&] { return InStr(drive, batch, ".mdf"); });
  step.Assign(backslash, [&] { return InStrRev(batch, "\\", ending); });
  step.Assign(folder, [&] { return Mid(batch, drive, backslash - drive); });
  return folder;
}

std::optional<std::string> NamedDatabase(std::string_view batch, std::string_view statement) {
  if (!Contains(batch, statement)) return {};
  // Without the blank after USE, so that an earlier word with these letters is found first.
  const std::string_view words = TrimView(statement);
  const Int16 at = InStr(batch, words);
  const Int16 keyword = InStr(at, batch, words.substr(words.find(' ') + 1));
  Int16 start = InStr(keyword, batch, " ");
  if (words == "DROP DATABASE" || words == "USE") return Trim(Mid(batch, start));
  Int16 end = InStr(start + 1, batch, " ");
  std::string name = Trim(Mid(batch, start, end - start));
  if (Contains(name, "[")) {
    start = InStr(keyword, batch, "[");
    end = InStr(start, batch, "]");
    name = Trim(Mid(batch, start, end - start + 1));
  }
  return name;
}

std::string BackedUpName(std::string name) {
  if (Contains(name, "[")) name = Mid(name, 2);
  if (name.ends_with(']')) name.pop_back();
  return Trim(name);
}

}  // namespace talu
