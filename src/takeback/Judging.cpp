// What becomes of a step, and why.

#include <algorithm>

#include "runtime/RuntimeError.h"
#include "takeback/Judgements.h"
#include "takeback/Paths.h"

namespace talu {

Undoing::Undoing(const Site& site, const TakeBackOptions& options)
    : site_(site), options_(options), removal_(site.Removal), databases_(site, options) {}

Judgement Undoing::Judge(const Step& step) {
  Judgement judged;
  try {
    judged = Judged(step);
  } catch (...) {
    judged = Leave(WhyLeft(CaughtError()));
  }
  if (judged.What == Fate::Left) NoteLeft(step);
  return judged;
}

void Undoing::Expect(const std::string& path) {
  going_.insert(UCase(CleanPath(path)));
}

void Undoing::NoteLeft(const Step& step) {
  left_.insert(UCase(CleanPath(step.Name)));
  if (step.What == Step::Kind::Database) databaseLeft_ = true;
}

Judgement Undoing::JudgeEmpty(const std::string& folder, const char* whyStays) {
  bool empty = true;
  for (const DiskEntry& entry : removal_.List(folder)) {
    const std::string path = UCase(folder + "\\" + entry.Name);
    if (left_.contains(path)) return Leave("Something in it is left.");
    if (!going_.contains(path)) empty = false;
  }
  return empty ? Goes() : Stays(whyStays);
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
      if (kind == EntryKind::Missing) return NothingToDo("There are none.");
      if (kind != EntryKind::Folder) return Changed(kind);
      return JudgeEmpty(step.Name, "Backups stay.");
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

Judgement Undoing::JudgeSettings(const Step& step) {
  const EntryKind kind = KindAt(step.Name);
  if (kind == EntryKind::Missing) return NothingToDo();
  if (kind != EntryKind::File) return Changed(kind);
  FileSystemObject& files = site_.Machine.Files;
  const bool sameSize =
      files.OpenTextFile(step.Name, OpenMode::Input)->Size() == step.Detail.size();
  if (sameSize && ReadBytes(files, step.Name) == step.Detail) return Goes();
  return Stays("It is not as the wizard wrote it.");
}

// By its bytes where the pack is at hand and no newer one by now, else by the time: a copy is as
// old as the pack's file.
Judgement Undoing::JudgeFile(const Step& step) {
  const EntryKind kind = KindAt(step.Name);
  if (kind == EntryKind::Missing) return NothingToDo();
  if (kind != EntryKind::File) return Changed(kind);
  if (left_.contains(UCase(step.Name))) return Leave("It is registered.");
  const std::string source = site_.SourceAtHand(step.Detail);
  const std::string folder(FolderOf(source));
  if (!SamePath(folder, sourceFolder_)) {
    sourceFolderThere_ = !folder.empty() && site_.Machine.Files.FolderExists(folder);
    sourceFolder_ = folder;
  }
  if (sourceFolderThere_) {
    try {
      if (removal_.SameBytes(step.Name, source)) return Goes();
      if (removal_.Look(source).Written <= site_.Installed) {
        return Stays("It is not the pack's file.");
      }
    } catch (...) {
      const RuntimeError error = CaughtError();
      if (error.Number != error::kFileNotFound) throw RuntimeError(error);
    }
  }
  if (removal_.Look(step.Name).Written <= site_.Installed) return Goes();
  return Stays("It was written to after the installation.");
}

Judgement Undoing::JudgeFolder(const Step& step) {
  if (!step.Detail.empty()) return Leave(step.Detail);
  const EntryKind kind = KindAt(step.Name);
  if (kind == EntryKind::Missing) return NothingToDo();
  if (kind != EntryKind::Folder) return Changed(kind);
  return JudgeEmpty(step.Name, kNotEmpty);
}

Judgement Undoing::JudgeAdded(const Step& step) {
  if (KindAt(step.Name) == EntryKind::Missing) return NothingToDo();
  if (!step.Detail.empty()) return Stays(step.Detail);
  const std::string databases = CleanPath(site_.Last().DBFolder);
  return Stays(!databases.empty() && Below(databases, step.Name)
                   ? "It is in the databases' folder."
                   : "The last installation did not put it there.");
}

}  // namespace talu
