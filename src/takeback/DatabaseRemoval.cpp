#include "takeback/DatabaseRemoval.h"

#include <algorithm>
#include <array>

#include "runtime/NamesOnWindows.h"
#include "runtime/RuntimeError.h"
#include "runtime/TextFunctions.h"
#include "startup/BackupFolder.h"
#include "startup/InstallContext.h"
#include "takeback/Paths.h"

namespace talu {
namespace {

[[noreturn]] void Fail(const std::string& why) {
  throw RuntimeError(error::kInvalidProcedureCall, why);
}

/// The text as the server reads it between N' and '.
std::string Quoted(const std::string& text) {
  return "N'" + Replace(text, "'", "''") + "'";
}

std::string Bracketed(const std::string& name) {
  return "[" + Replace(name, "]", "]]") + "]";
}

std::string IfThere(const char* view, const std::string& name) {
  return "IF EXISTS (SELECT name FROM sys." + std::string(view) + " WHERE name = " + Quoted(name) +
         ") ";
}

/// The text as a part of a file's name: none else has this name, and it is one in every folder.
std::string InFileName(const std::string& text) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string name;
  for (const char character : text) {
    if (std::string_view("\\/%").find(character) == std::string_view::npos &&
        !HasForbiddenCharacter({&character, 1})) {
      name += character;
      continue;
    }
    const auto code = static_cast<unsigned char>(character);
    name += {'%', kDigits[code / 16U], kDigits[code % 16U]};
  }
  return name;
}

/// Whether the value can stand in a connection text, where nothing is quoted.
bool IsPlainValue(const std::string& value) {
  return !value.starts_with('{') && std::ranges::none_of(value, [](char character) {
    return character == ';' || static_cast<unsigned char>(character) < ' ';
  });
}

}  // namespace

DatabaseRemoval::DatabaseRemoval(const Site& site, const TakeBackOptions& options)
    // A backup may take hours: the windows stay alive.
    : AdoObjects(site.Machine.DataAccess.Lively()), site_(site), options_(options) {}

std::string DatabaseRemoval::WhyNever(const Step& step) {
  constexpr std::array<std::string_view, 6> kServersOwn = {"MASTER", "MODEL", "MSDB",
                                                           "TEMPDB", "SA",    "DISTRIBUTION"};
  if (!step.Detail.empty()) return step.Detail;
  const std::string upper = UCase(TrimView(step.Name));
  const bool own = std::ranges::find(kServersOwn, upper) != kServersOwn.end() ||
                   upper.starts_with("##") || upper.starts_with("BUILTIN\\") ||
                   upper.starts_with("NT ");
  return own ? "It is one of the server's own." : "";
}

void DatabaseRemoval::Connect(std::size_t installation) {
  const RecordedInstallation& recorded = site_.Record.Installations.at(installation);
  InstallContext context(site_.Machine);
  InstallState& state = context.State;
  // The last one's, which was offered, is in no other's place.
  const bool accepted = options_.Server.empty() || SamePath(options_.Server, site_.Last().Server);
  state.ServerName = accepted ? recorded.Server : options_.Server;
  state.SqlUser = options_.Login.empty() ? recorded.User : options_.Login;
  state.SqlPassword = options_.Password;
  if (state.SqlPassword.empty() && state.SqlUser == recorded.User) {
    state.SqlPassword = recorded.Password;
  }
  if (state.ServerName.empty()) Fail("No server is recorded or given.");
  for (const std::string* value : {&state.ServerName, &state.SqlUser, &state.SqlPassword}) {
    if (!IsPlainValue(*value)) {
      Fail("The server, the login or the password has a character that it cannot have.");
    }
  }
  const std::string text = context.ServerConnectionString();
  user_ = state.SqlUser;
  if (text == connected_) return;
  if (failed_.contains(text)) Fail(failure_);
  if (!connected_.empty()) {
    connected_.clear();
    TheConnection().Close();
  }
  try {
    TheConnection().ConnectionString(text);
    TheConnection().Open();
    TheCommand().ActiveConnection(TheConnection());
    TheCommand().CommandTimeout(0);
  } catch (...) {
    const RuntimeError error = CaughtError();
    failed_.insert(text);
    failure_ = error.Description;
    ForgetConnection();
    throw RuntimeError(error);
  }
  connected_ = text;
}

void DatabaseRemoval::Send(const std::string& statement) {
  TheCommand().CommandText(statement);
  TheCommand().Execute();
}

// Read-only from before the backup on: what is committed is in it, and whoever is connected to the
// database notices. That the backup is there and whole is asked of the server, before anything is
// dropped: a backup that was cut off may raise nothing. Single user first, so that no connection
// holds the drop up; a database that is offline would leave its files.
std::string DatabaseRemoval::DropDatabase(const Step& step) {
  Connect(step.Installation);
  const std::string folder = BackupFolderFor(site_.Folder, std::string(NameOf(site_.Folder)));
  const std::string& server = site_.Record.Installations.at(step.Installation).Server;
  const bool last = SamePath(server, site_.Last().Server);
  // Two servers may write into the same folder.
  const std::string file = folder + "\\Talu_" +
                           InFileName(last ? step.Name : step.Name + "@" + server) + "_" +
                           DateStamp(site_.Machine.Clock.Now()) + "_last.bkp";
  const std::string name = Bracketed(step.Name);
  const std::string ifThere = IfThere("databases", step.Name);
  try {
    FileSystemObject& files = site_.Machine.Files;
    if (!files.FolderExists(folder)) files.CreateFolder(folder);
  } catch (...) {
    CaughtError();  // the server may be another machine, which has it or refuses the backup
  }
  Send("USE Master");
  const std::string set = ifThere + "ALTER DATABASE " + name + " SET ";
  Send(set + "READ_ONLY WITH ROLLBACK IMMEDIATE");
  try {
    Send(ifThere + "BACKUP DATABASE " + name + " TO DISK = " + Quoted(file) +
         " WITH NOFORMAT, INIT, NAME = " + Quoted(step.Name + "-Full Database Backup") +
         ", SKIP, NOREWIND, NOUNLOAD");
    Send(ifThere + "RESTORE VERIFYONLY FROM DISK = " + Quoted(file));
    Send(set + "SINGLE_USER WITH ROLLBACK IMMEDIATE");
    Send(ifThere + "DROP DATABASE " + name);
  } catch (...) {
    const RuntimeError error = CaughtError();
    for (const char* option : {"MULTI_USER", "READ_WRITE WITH ROLLBACK IMMEDIATE"}) {
      try {
        Send(set + option);
      } catch (...) {
        CaughtError();
      }
    }
    throw RuntimeError(error);
  }
  return "If it was there, its backup is " + file + ".";
}

std::string DatabaseRemoval::DropLogin(const Step& step) {
  Connect(step.Installation);
  if (SamePath(step.Name, user_)) Fail("It is the login that this is done with.");
  Send("USE Master");
  Send(IfThere("server_principals", step.Name) + "DROP LOGIN " + Bracketed(step.Name));
  return "";
}

}  // namespace talu
