// What becomes of a step, and why.

#include <algorithm>

#include "runtime/RuntimeError.h"
#include "takeback/Paths.h"
#include "takeback/Undoing.h"

namespace talu {
namespace {

using Judgement = Undoing::Judgement;
using Fate = Verdict::Fate;

Judgement Goes(std::string why = "") {
  return {{Fate::Goes, std::move(why)}, true};
}
Judgement NothingToDo(std::string why = "It was gone already.") {
  return {{Fate::Goes, std::move(why)}, false};
}
Judgement Stays(std::string why) {
  return {{Fate::Stays, std::move(why)}, false};
}
Judgement Leave(std::string why) {
  return {{Fate::Left, std::move(why)}, false};
}

/// For what is no plain file or folder where one was made.
Judgement Changed(EntryKind kind) {
  return Stays(kind == EntryKind::Link ? "It is a link, which is not followed."
                                       : "Something else stands in its place.");
}

constexpr const char* kNotEmpty = "It is not empty.";

/// Whether a data source can have this name; source: the installer library's documentation
/// (SQLValidDSN).
bool IsSourceName(const std::string& name) {
  return !name.empty() && std::ranges::none_of(name, [](char character) {
    return static_cast<unsigned char>(character) < ' ' ||
           std::string_view("[]{}(),;?*=!@\\").find(character) != std::string_view::npos;
  });
}

}  // namespace

Undoing::Undoing(const Site& site, const TakeBackOptions& options)
    : site_(site), options_(options), removal_(site.Removal), databases_(site, options) {}

Judgement Undoing::Judge(const Step& step) {
  try {
    return Judged(step);
  } catch (...) {
    return Leave(WhyLeft(CaughtError()));
  }
}

Judgement Undoing::Judged(const Step& step) {
  switch (step.What) {
    case Step::Kind::AddOn:
      return JudgeAddOn(step);
    case Step::Kind::Shortcut:
      return JudgeShortcut(step);
    case Step::Kind::ShortcutFolder:
      return JudgeShortcutFolder(step);
    case Step::Kind::SystemComponent:
      return JudgeSystemComponent(step);
    case Step::Kind::Component: {
      const EntryKind kind = KindAt(step.Name);
      if (kind == EntryKind::Missing) return NothingToDo();
      return kind == EntryKind::File ? Goes() : Changed(kind);
    }
    case Step::Kind::Settings:
      return JudgeSettings(step);
    case Step::Kind::File:
      return JudgeFile(step);
    case Step::Kind::DataSource:
      return JudgeDataSource(step);
    case Step::Kind::Database:
    case Step::Kind::Login: {
      if (!options_.DropDatabases) return Stays("Databases and logins are kept.");
      const std::string never = DatabaseRemoval::WhyNever(step);
      if (!never.empty()) return Leave(never);
      if (databaseLeft_ && step.What == Step::Kind::Login) return Leave("A database is left.");
      return Goes(step.What == Step::Kind::Database ? "After a backup." : "");
    }
    case Step::Kind::Folder:
      return JudgeFolder(step);
    case Step::Kind::Added:
      return JudgeAdded(step);
    case Step::Kind::Line:
      return Leave(step.Detail);
    case Step::Kind::Backups: {
      const EntryKind kind = removal_.Look(step.Name).Kind;
      if (kind == EntryKind::Missing) return NothingToDo();
      if (kind != EntryKind::Folder) return Changed(kind);
      return WillBeEmpty(step.Name) ? Goes() : Stays("Backups stay.");
    }
    case Step::Kind::Program:
      break;
  }
  return NothingToDo("");
}

bool Undoing::WillBeEmpty(const std::string& folder) const {
  return std::ranges::all_of(removal_.List(folder), [&](const DiskEntry& entry) {
    return going_.contains(UCase(folder + "\\" + entry.Name));
  });
}

EntryKind Undoing::KindAt(const std::string& path) {
  const std::string folder(FolderOf(path));
  if (!SamePath(folder, clearFolder_)) {
    const auto below = Below(site_.Folder, folder);
    std::string above = site_.Folder;
    for (const std::string& name : Split(below.value_or(""), '\\')) {
      above += "\\" + name;
      const EntryKind kind = removal_.Look(above).Kind;
      if (kind != EntryKind::Folder) return kind;
    }
    clearFolder_ = folder;
  }
  return removal_.Look(path).Kind;
}

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
  return WillBeEmpty(CleanPath(step.Name)) ? Goes() : Stays(kNotEmpty);
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

Judgement Undoing::JudgeSettings(const Step& step) {
  const EntryKind kind = KindAt(step.Name);
  if (kind == EntryKind::Missing) return NothingToDo();
  if (kind != EntryKind::File) return Changed(kind);
  if (ReadBytes(site_.Machine.Files, step.Name) == step.Detail) return Goes();
  return Stays("It is not as the wizard wrote it.");
}

// By its bytes where the pack is at hand, else by the time: a copy is as old as the pack's file.
Judgement Undoing::JudgeFile(const Step& step) {
  const EntryKind kind = KindAt(step.Name);
  if (kind == EntryKind::Missing) return NothingToDo();
  if (kind != EntryKind::File) return Changed(kind);
  const std::string source = site_.SourceAtHand(step.Detail);
  const std::string folder(FolderOf(source));
  if (!SamePath(folder, sourceFolder_)) {
    sourceFolderThere_ = !folder.empty() && site_.Machine.Files.FolderExists(folder);
    sourceFolder_ = folder;
  }
  if (sourceFolderThere_) {
    try {
      return removal_.SameBytes(step.Name, source) ? Goes() : Stays("It is not the pack's file.");
    } catch (...) {
      const RuntimeError error = CaughtError();
      if (error.Number != error::kFileNotFound) throw RuntimeError(error);
    }
  }
  if (removal_.Look(step.Name).Written <= site_.LogWritten) return Goes();
  return Stays("It was written to after the installation.");
}

Judgement Undoing::JudgeFolder(const Step& step) {
  if (!step.Detail.empty()) return Leave(step.Detail);
  const EntryKind kind = KindAt(step.Name);
  if (kind == EntryKind::Missing) return NothingToDo();
  if (kind != EntryKind::Folder) return Changed(kind);
  return WillBeEmpty(step.Name) ? Goes() : Stays(kNotEmpty);
}

Judgement Undoing::JudgeAdded(const Step& step) {
  if (KindAt(step.Name) == EntryKind::Missing) return NothingToDo();
  if (!step.Detail.empty()) return Stays(step.Detail);
  const std::string databases = CleanPath(site_.Last().DBFolder);
  return Stays(!databases.empty() && Below(databases, step.Name)
                   ? "It is in the databases' folder."
                   : "The last installation did not put it there.");
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
