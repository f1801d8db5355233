#pragma once

#include <optional>
#include <string>
#include <vector>

#include "PlanCommand.h"

namespace talu::packcheck {

/// The arguments of `packcheck plan` as given, in UTF-8. An empty text is a missing option.
struct PlanArguments {
  std::string Pack;
  std::string Type;
  std::string Mode;
  std::string Server, User, InstallPath, OldPath, PackPath, Now, Disk, Compare;
  std::optional<std::string> Password;
  std::vector<std::string> Databases;
  std::vector<std::string> Logins;
  std::vector<std::string> FailSql;
  std::string FailRequest;
  std::vector<std::string> Exits;
  std::string SpecialFolders;
  int CodePage = 1252;
  bool AcceptAll = false;
  bool Twice = false;
  bool Uninstall = false;
  bool DropDatabases = false;
  bool Json = false;
  bool Brief = false;
  bool Full = false;
  std::string Save;
};

/// The options that the arguments mean. Raises std::runtime_error with a line for the user that
/// names the option.
PlanCommandOptions ReadPlanArguments(const PlanArguments& arguments);

}  // namespace talu::packcheck
