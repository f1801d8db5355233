// The rollback of a failed build. It walks as many entries as this build counted, from the oldest
// of the lists on, which hold the entries of every build since the program started. The first
// statement that fails ends its list; the build's trap takes the error.

#include "pages/FrmSQLNonQuery.h"
#include "platform/Ado.h"
#include "runtime/TextFunctions.h"
#include "startup/Wizard.h"

namespace talu {

void FrmSQLNonQuery::DropCreatedDatabases() {
  InstallState& state = wizard_.State;
  state.CreatedDatabases = Split(state.CreatedDatabaseList, ',');
  for (Int16 index = 1; index <= DBCount; ++index) {
    const std::string& entry = Element(state.CreatedDatabases, index);
    if (TrimView(entry).empty()) continue;
    Send("USE Master");
    Send("ALTER DATABASE " + entry + " SET OFFLINE WITH ROLLBACK IMMEDIATE");
    Send("DROP DATABASE " + entry);
  }
}

void FrmSQLNonQuery::DropCreatedLogins() {
  InstallState& state = wizard_.State;
  state.CreatedLogins = Split(state.CreatedLoginList, ',');
  for (Int16 index = 1; index <= LoginCount; ++index) {
    const std::string& entry = Element(state.CreatedLogins, index);
    if (TrimView(entry).empty()) continue;
    Send("USE Master");
    Send("DROP LOGIN " + entry);
  }
}

void FrmSQLNonQuery::Send(const std::string& statement) {
  TheCommand().CommandText(statement);
  TheCommand().Execute();
}

}  // namespace talu
