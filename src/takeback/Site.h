#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "platform/Machine.h"
#include "platform/Removal.h"
#include "takeback/Record.h"

namespace talu {

/// Where an installation is taken back: the machine, and what the application folder says of it.
struct Site {
  /// Raises as `TakeBack` does.
  Site(const talu::Machine& machine, talu::Removal& removal, const std::string& program,
       const std::string& packFolder);

  /// In `Folder`.
  std::string Path(std::string_view name) const { return Folder + "\\" + std::string(name); }
  std::string RecordPath() const { return Path("Uninstall.dat"); }
  std::string LogPath() const { return Path("Ta-luErrLog.txt"); }
  /// Where the record is written anew before it takes the old one's place.
  std::string NewRecordPath() const { return Path("Uninstall.new"); }
  /// Whether this is one of those three or the program itself.
  bool IsOwn(std::string_view path) const;
  /// What was found at a path below the folder; links are not followed.
  EntryKind Found(const std::string& path) const;
  /// Whether the installation is the one of this folder.
  bool IsHere(std::size_t installation) const { return here_.at(installation); }
  /// The last one of this folder.
  const RecordedInstallation& Last() const { return Record.Installations.at(LastHere); }
  /// The place of a copied file's source in the pack that is at hand; empty when none is, or the
  /// source is on no drive of this machine.
  std::string SourceAtHand(const std::string& source) const;

  talu::Machine Machine;
  talu::Removal& Removal;
  /// The application folder, a clean path.
  std::string Folder;
  std::string Program;
  /// As it was read.
  std::string RecordBytes;
  talu::Record Record;
  InstallationLog Log;
  /// When the installation ended: the log or the record was last written to, which somebody may
  /// have done to one of them later.
  std::uint64_t Installed = 0;
  std::size_t LastHere = 0;
  /// The pack's folder as the log has it, or empty.
  std::string LoggedPack;
  /// As the operator has given it, or empty.
  std::string GivenPack;

  struct Entry {
    std::string Path;
    EntryKind Kind;
    /// Why a folder's entries are not known; empty where they are.
    std::string Unread = {};
  };
  /// All that is in the folder when the work begins, each folder before what is in it.
  std::vector<Entry> Entries;

 private:
  void ReadRecord();
  void ReadLog();
  void ReadFolder();
  void AddEntries(const std::string& folder);
  void FindPack();

  std::vector<bool> here_;
  std::map<std::string, EntryKind> found_;  // by upper-cased paths
};

/// All bytes of a file. Raises what opening and reading raise, and 7 for one that is longer than
/// any text.
std::string ReadBytes(FileSystemObject& files, const std::string& path);

}  // namespace talu
