#include "takeback/Site.h"

#include <algorithm>

#include "runtime/RuntimeError.h"
#include "runtime/TextFiles.h"
#include "runtime/TextFunctions.h"
#include "takeback/Paths.h"

namespace talu {
namespace {

[[noreturn]] void Refuse(const std::string& why) {
  throw RuntimeError(error::kInvalidProcedureCall, why);
}

}  // namespace

std::string ReadBytes(FileSystemObject& files, const std::string& path) {
  const std::unique_ptr<TextFile> file = files.OpenTextFile(path, OpenMode::Input);
  if (file->Size() > kLongestText) throw RuntimeError(error::kOutOfMemory);
  std::string bytes(static_cast<std::size_t>(file->Size()), '\0');
  std::size_t length = 0;
  while (length < bytes.size()) {
    const std::size_t got = file->Read(bytes.data() + length, bytes.size() - length);
    if (got == 0) break;
    length += got;
  }
  bytes.resize(length);
  return bytes;
}

Site::Site(const talu::Machine& machine, talu::Removal& removal, const std::string& program,
           const std::string& packFolder)
    : Machine(machine),
      Removal(removal),
      Folder(CleanPath(machine.AppPath)),
      Program(program),
      GivenPack(CleanPath(packFolder + "\\")) {
  if (!packFolder.empty() && GivenPack.empty()) Refuse(packFolder + " is no folder's path.");
  if (!GivenPack.empty() && !Machine.Files.FileExists(GivenPack + "\\AppCfg.txt")) {
    Refuse(packFolder + " is no pack: it has no AppCfg.txt.");
  }
  if (Folder.empty() || FolderOf(Folder).empty()) {
    Refuse(machine.AppPath + " cannot be an application folder.");
  }
  ReadRecord();
  ReadFolder();
  ReadLog();
  FindPack();
}

bool Site::IsOwn(std::string_view path) const {
  return SamePath(path, RecordPath()) || SamePath(path, LogPath()) ||
         SamePath(path, NewRecordPath()) || SamePath(path, Path(Program));
}

EntryKind Site::Found(const std::string& path) const {
  const auto entry = found_.find(UCase(path));
  return entry != found_.end() ? entry->second : EntryKind::Missing;
}

std::string Site::SourceAtHand(const std::string& source) const {
  const bool known = !GivenPack.empty() && !LoggedPack.empty();
  const auto below = known ? Below(LoggedPack, source) : std::nullopt;
  if (below) return GivenPack + "\\" + *below;
  return IsOnDrive(source) ? source : "";
}

// A copy of the folder, such as the wizard's own backups of it, has a copy of the record: what lies
// there is of another place.
void Site::ReadRecord() {
  const std::string path = RecordPath();
  const DiskEntry entry = Removal.Look(path);
  if (entry.Kind == EntryKind::Missing) {
    throw RuntimeError(error::kFileNotFound,
                       "There is no record of an installation: " + path + " is missing.");
  }
  if (entry.Kind != EntryKind::File) Refuse(path + " is a link or a folder.");
  Installed = entry.Written;
  RecordBytes = ReadBytes(Machine.Files, path);
  Record = talu::Record(RecordBytes, Machine.CodePage);
  std::string other;
  bool any = false;
  for (const RecordedInstallation& installation : Record.Installations) {
    here_.push_back(SamePath(CleanPath(installation.AppFolder), Folder));
    if (here_.back()) {
      LastHere = here_.size() - 1;
      any = true;
    } else {
      other = installation.AppFolder;
    }
  }
  if (any) return;
  Refuse(path + (other.empty() ? " does not say which folder it is about."
                               : " is about another folder, " + other + "."));
}

void Site::ReadFolder() {
  if (Removal.Look(Folder).Kind == EntryKind::Link) Refuse(Folder + " is a link.");
  AddEntries(Folder);
  for (std::size_t at = 0; at < Entries.size(); ++at) {
    if (Entries[at].Kind != EntryKind::Folder) continue;
    try {
      AddEntries(std::string(Entries[at].Path));
    } catch (...) {
      Entries[at].Unread = "What is in it could not be read: " + CaughtError().Description + ".";
    }
  }
}

void Site::AddEntries(const std::string& folder) {
  for (const DiskEntry& entry : Removal.List(folder)) {
    Entries.push_back({folder + "\\" + entry.Name, entry.Kind});
    found_[UCase(Entries.back().Path)] = entry.Kind;
  }
}

void Site::ReadLog() {
  if (Found(LogPath()) != EntryKind::File) return;
  Log = InstallationLog(ReadBytes(Machine.Files, LogPath()), Machine.CodePage);
  Installed = std::min(Installed, Removal.Look(LogPath()).Written);
}

// <pack>\Application\<below>\<name> was copied to <folder>\<below>\<name>.
void Site::FindPack() {
  for (const InstallationLog::Copy& copy : Log.Copies) {
    const std::string target = CleanPath(copy.Target);
    std::string_view source = FolderOf(copy.Source);
    if (!SamePath(target, Folder)) {
      const auto below = Below(Folder, target);
      if (!below || !SamePath(source.substr(source.size() - std::min(source.size(), below->size())),
                              *below)) {
        continue;
      }
      source.remove_suffix(std::min(source.size(), below->size() + 1));
    }
    if (!SamePath(NameOf(source), "Application")) continue;
    LoggedPack = CleanPath(std::string(FolderOf(source)) + "\\");  // may be a drive's root
    return;
  }
}

}  // namespace talu
