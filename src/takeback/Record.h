#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "platform/CodePage.h"

namespace talu {

/// What a line of the uninstall record is about, by its tag.
enum class RecordTag {
  AppFolder,
  DBFolder,
  Server,
  UsrName,
  PsWord,
  DBNames,
  DBLogins,
  ShotcutFolder,
  Shotcut,
  SystemDSN,
  AddOns,
  /// No tag that is known.
  Unknown
};

/// One line of the record. Blank lines are none.
struct RecordLine {
  RecordTag Tag = RecordTag::Unknown;
  /// What follows the tag; the whole line when the tag is not known. Line ends inside the value
  /// (names that were cut out of a script with one) are CR LF.
  std::string Value;
  /// As it stands in the file, without its end.
  std::string Raw;
  /// From 1.
  std::size_t Number = 0;
  /// The installation that it belongs to, an index of `Record::Installations`.
  std::size_t Installation = 0;
  /// The file ends inside this line: it may once have been longer.
  bool CutOff = false;
};

/// One installation of a record, which begins with its "AppFolder:". The last value of each tag.
struct RecordedInstallation {
  std::string AppFolder;
  std::string DBFolder;
  std::string Server;
  std::string User;
  std::string Password;
};

/// The uninstall record, "Uninstall.dat". Its reader takes any bytes.
struct Record {
  Record() = default;
  /// Lines may end in CR LF, CR or LF.
  Record(std::string_view bytes, const CodePage& codePage);

  std::vector<RecordLine> Lines;
  /// Those of lines before the first "AppFolder:" are without a folder. Never empty where `Lines`
  /// is not.
  std::vector<RecordedInstallation> Installations;
};

/// The value of "DBNames:" or "DBLogins:".
struct RecordedNames {
  /// The names that the line has, as the server knows them; none twice.
  std::vector<std::string> Names;
  /// Pieces of the line that are no name, and why the line as a whole is none when it is cut.
  std::vector<std::string> Unreadable;
};

/// Cuts the value at its commas; its first field is the count. Each further piece is a name when it
/// is a regular identifier or one in brackets or double quotes. A line without a count, or with
/// fewer names than it counts, has no names at all: its last one may be cut.
RecordedNames ReadNames(const RecordLine& line);

/// What the log of the last installation says of files, in the log's order, but for the backup that
/// it begins with. Paths are as in the log.
struct InstallationLog {
  InstallationLog() = default;
  InstallationLog(std::string_view bytes, const CodePage& codePage);

  struct Copy {
    std::string Target;
    std::string Source;
  };
  /// Files that were copied.
  std::vector<Copy> Copies;
  /// Folders that were made, or were there, on the way.
  std::vector<std::string> Folders;
  /// Files that were registered.
  std::vector<std::string> Registered;
};

}  // namespace talu
