// What becomes of what is not in the application folder: shortcuts, add-ons, components of the
// system's folder, data sources.

#include <algorithm>

#include "takeback/Judgements.h"
#include "takeback/Paths.h"

namespace talu {
namespace {

/// Whether a data source can have this name; source: the installer library's documentation
/// (SQLValidDSN).
bool IsSourceName(const std::string& name) {
  return !name.empty() && std::ranges::none_of(name, [](char character) {
    return static_cast<unsigned char>(character) < ' ' ||
           std::string_view("[]{}(),;?*=!@\\").find(character) != std::string_view::npos;
  });
}

}  // namespace

EntryKind Undoing::ShortcutKindAt(const std::string& special, const std::string& below) {
  std::string path = special;
  EntryKind kind = EntryKind::Folder;
  for (const std::string& name : Split(below, '\\')) {
    if (kind != EntryKind::Folder) return kind;
    path += "\\" + name;
    kind = removal_.Look(path).Kind;
  }
  return kind;
}

const std::vector<std::string>& Undoing::SpecialFolders() {
  if (!specialFolders_) {
    std::vector<std::string> folders;
    for (const std::string& folder : site_.Machine.Scripting.CreateShell()->SpecialFolders()) {
      folders.push_back(CleanPath(folder));
    }
    specialFolders_ = std::move(folders);
  }
  return *specialFolders_;
}

std::optional<std::pair<std::string, std::string>> Undoing::PlaceOf(const std::string& path,
                                                                    bool folder) {
  const std::string clean = CleanPath(path);
  if (clean.empty() || (!folder && !UCase(clean).ends_with(".LNK"))) return std::nullopt;
  for (const std::string& special : SpecialFolders()) {
    const auto below = special.empty() ? std::nullopt : Below(special, clean);
    if (!below) continue;
    const std::vector<std::string> names = Split(*below, '\\');
    const bool inProducts = SamePath(names[0], "TALU") && names.size() == (folder ? 2 : 3);
    if (inProducts || (!folder && names.size() == 1)) return {{special, *below}};
  }
  return std::nullopt;
}

Judgement Undoing::JudgeShortcut(const Step& step) {
  const auto place = PlaceOf(step.Name, false);
  if (!place) return Leave("This is no place of a shortcut that the wizard makes.");
  const EntryKind kind = ShortcutKindAt(place->first, place->second);
  if (kind == EntryKind::Missing) return NothingToDo();
  if (kind != EntryKind::File) return Changed(kind);
  std::string target;
  try {
    target = removal_.ShortcutTarget(step.Name);
  } catch (...) {
    const RuntimeError error = CaughtError();
    if (error.Number != error::kInvalidProcedureCall) throw RuntimeError(error);
    return Stays("It is no shortcut.");
  }
  if (Below(site_.Folder, CleanPath(target))) return Goes();
  return Stays("It leads to " + (target.empty() ? std::string("another place") : target) + ".");
}

Judgement Undoing::JudgeShortcutFolder(const Step& step) {
  const auto place = PlaceOf(step.Name, true);
  if (!place) return Leave("This is no folder that the wizard makes for shortcuts.");
  const EntryKind kind = ShortcutKindAt(place->first, place->second);
  // The folder around it may have been left when the work was broken off.
  if (kind == EntryKind::Missing) return {{Fate::Goes, "It was gone already."}, true};
  if (kind != EntryKind::Folder) return Changed(kind);
  return JudgeEmpty(CleanPath(step.Name), kNotEmpty);
}

Judgement Undoing::JudgeAddOn(const Step& step) {
  if (!Contains(step.Name, ".msi")) {
    if (!Contains(step.Name, ".exe")) return NothingToDo("Nothing was run for it.");
    return Stays("It was a program of its own: it is removed by its own means.");
  }
  if (site_.GivenPack.empty()) {
    return Stays("Without the pack's folder, Windows' own list of programs removes it.");
  }
  const std::string package = PackageOf(step);
  if (package.empty()) return Leave("This is no file of a pack.");
  if (removal_.Look(package).Kind != EntryKind::File) return Leave(package + " is missing.");
  return Goes();
}

std::string Undoing::PackageOf(const Step& step) const {
  const std::string addOns = site_.GivenPack + "\\AddOns";
  std::string path = CleanPath(addOns + "\\" + step.Name);
  return Below(addOns, path) ? path : "";
}

Judgement Undoing::JudgeSystemComponent(const Step& step) {
  const EntryKind kind = removal_.Look(step.Name).Kind;
  if (kind == EntryKind::Missing) return NothingToDo();
  if (kind != EntryKind::File) return Changed(kind);
  if (site_.GivenPack.empty()) {
    return Stays("Other programs may use it; only the pack's own file would go.");
  }
  try {
    if (removal_.SameBytes(step.Name, site_.GivenPack + "\\SpecialRegn\\" + step.Detail)) {
      return Goes();
    }
  } catch (...) {
    const RuntimeError error = CaughtError();
    if (error.Number != error::kFileNotFound) throw RuntimeError(error);
  }
  return Stays("It is not the pack's file.");
}

Judgement Undoing::JudgeDataSource(const Step& step) {
  const std::vector<std::string> fields = Split(step.Detail, ',');
  const auto field = [&](std::size_t at) { return at < fields.size() ? Trim(fields[at]) : ""; };
  if (fields.size() < 2 || !IsSourceName(field(1))) return Stays("No data source has this name.");
  const std::optional<DataSource> source = removal_.SystemDataSource(field(1));
  if (!source) return NothingToDo();
  const bool server = field(0) == "SQL Server";
  const bool access = field(0) == "Microsoft Access Driver (*.mdb)";
  const RecordedInstallation& recorded = site_.Record.Installations.at(step.Installation);
  const bool same =
      SamePath(source->Driver, field(0)) && ((server && SamePath(source->Server, recorded.Server) &&
                                              SamePath(source->Database, field(2))) ||
                                             (access && SamePath(source->File, field(2))));
  return same ? Goes() : Stays("It is not as the wizard made it.");
}

}  // namespace talu
