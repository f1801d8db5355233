// Carries out what goes.

#include "takeback/Undoing.h"

#include "runtime/RuntimeError.h"
#include "takeback/Paths.h"

namespace talu {
namespace {

using Fate = Verdict::Fate;

// Exit codes of Windows Installer; source: its documentation (ERROR_SUCCESS_REBOOT_INITIATED,
// ERROR_SUCCESS_REBOOT_REQUIRED, ERROR_UNKNOWN_PRODUCT).
constexpr std::int32_t kRestarting = 1641;
constexpr std::int32_t kRestartNeeded = 3010;
constexpr std::int32_t kNotInstalled = 1605;

Verdict Gone(std::string why = "") {
  return {Fate::Goes, std::move(why)};
}

bool IsMissing(const RuntimeError& error) {
  return error.Number == error::kFileNotFound || error.Number == error::kPathNotFound;
}

}  // namespace

std::string WhyLeft(const RuntimeError& error) {
  return error.Number == error::kPermissionDenied ? "It is in use or protected."
                                                  : error.Description;
}

Verdict Undoing::CarryOut(const Step& step) {
  Verdict verdict;
  try {
    verdict = Done(step);
  } catch (...) {
    const RuntimeError error = CaughtError();
    if (IsMissing(error) && step.What != Step::Kind::DataSource) {
      verdict = Gone("It was gone already.");
    } else {
      verdict = {Fate::Left, WhyLeft(error)};
    }
  }
  if (verdict.What == Fate::Left) NoteLeft(step);
  return verdict;
}

Verdict Undoing::Done(const Step& step) {
  switch (step.What) {
    case Step::Kind::AddOn: {
      const std::int32_t code =
          removal_.RunSystemProgram("msiexec", "/x \"" + PackageOf(step) + "\" /quiet /norestart");
      if (code == 0 || code == kNotInstalled) return Gone();
      if (code == kRestartNeeded || code == kRestarting) return Gone("Windows wants a restart.");
      return {Fate::Left, "msiexec ended with " + std::to_string(code) + "."};
    }
    case Step::Kind::SystemComponent: {
      std::string why = Unregister(step.Name);
      removal_.RemoveFile(step.Name);
      return Gone(std::move(why));
    }
    case Step::Kind::Component: {
      std::string why = Unregister(step.Name);
      return {why.empty() ? Fate::Goes : Fate::Stays, std::move(why)};
    }
    case Step::Kind::Shortcut:
    case Step::Kind::Settings:
    case Step::Kind::File:
      removal_.RemoveFile(step.Name);
      return Gone();
    case Step::Kind::ShortcutFolder:
      return RemoveShortcutFolder(step);
    case Step::Kind::Folder:
    case Step::Kind::Backups:
      removal_.RemoveFolder(step.Name);
      return Gone();
    case Step::Kind::DataSource: {
      const std::vector<std::string> fields = Split(step.Detail, ',');
      if (removal_.RemoveSystemDataSource(Trim(fields.at(0)), Trim(fields.at(1)))) return Gone();
      return {Fate::Left, "The data sources' library refused to remove it."};
    }
    case Step::Kind::Database:
      return Gone(databases_.DropDatabase(step));
    case Step::Kind::Login:
      return Gone(databases_.DropLogin(step));
    case Step::Kind::Added:
    case Step::Kind::Line:
    case Step::Kind::Program:
      break;
  }
  return Gone();
}

// The folder of all products goes with the last of theirs.
Verdict Undoing::RemoveShortcutFolder(const Step& step) {
  const std::string path = CleanPath(step.Name);
  const std::string products(FolderOf(path));
  std::string why;
  if (removal_.Look(path).Kind == EntryKind::Folder) {
    removal_.RemoveFolder(path);
  } else {
    why = "It was gone already.";
  }
  if (removal_.Look(products).Kind == EntryKind::Folder && removal_.List(products).empty()) {
    removal_.RemoveFolder(products);
  }
  return Gone(std::move(why));
}

std::string Undoing::Unregister(const std::string& path) {
  const std::int32_t code = removal_.RunSystemProgram("regsvr32", "/s /u \"" + path + "\"");
  if (code == 0) return "";
  const std::string what = "regsvr32 ended with " + std::to_string(code) + ".";
  if (code == -1) throw RuntimeError(error::kInvalidProcedureCall, what);
  return what + " What it had registered stays.";
}

}  // namespace talu
