// The rollback of a failed build. It drops as many entries as this build counted, starting with the
// oldest of the lists, which hold the entries of every build since the program started. The first
// failing statement ends its list; the build's trap gets the error.

#include "database/DatabaseBuild.h"
#include "platform/Ado.h"
#include "runtime/TextFunctions.h"
#include "startup/InstallContext.h"

namespace talu {

void DatabaseBuild::DropCreatedDatabases() {
  InstallState& state = install_.State;
  state.CreatedDatabases = Split(state.CreatedDatabaseList, ',');
  for (Int16 index = 1; index <= DBCount; ++index) {
    const std::string& entry = Element(state.CreatedDatabases, index);
    if (TrimView(entry).empty()) continue;
    Send("USE Master");
    Send("ALTER DATABASE " + entry + " SET OFFLINE WITH ROLLBACK IMMEDIATE");
    Send("DROP DATABASE " + entry);
  }
}

void DatabaseBuild::DropCreatedLogins() {
  InstallState& state = install_.State;
  state.CreatedLogins = Split(state.CreatedLoginList, ',');
  for (Int16 index = 1; index <= LoginCount; ++index) {
    const std::string& entry = Element(state.CreatedLogins, index);
    if (TrimView(entry).empty()) continue;
    Send("USE Master");
    Send("DROP LOGIN " + entry);
  }
}

void DatabaseBuild::Send(const std::string& statement) {
  TheCommand().CommandText(statement);
  TheCommand().Execute();
}

}  // namespace talu
