// How the simulated server handles the calls of procedures.

#include <optional>

#include "platform/simulated/ServerMessages.h"
#include "platform/simulated/SimulatedServer.h"
#include "runtime/TextFunctions.h"

namespace talu {

using Reason = Refusal::Reason;

// What a text does that is run, or a procedure that has such a text, is not seen.
void SimulatedServer::ApplyCall(StatementReader reader, std::string_view statement,
                                const DatabaseContents::Setting& setting) {
  StatementReader ahead = reader;  // EXEC @result = name
  if (ahead.Take().Kind == sql::TokenKind::Variable && ahead.SkipSymbol("=")) reader = ahead;
  const ObjectName called = reader.TakeName();
  const std::string name = called.Last();
  if (called.Parts.empty() || name == "SP_EXECUTESQL") unseen_.Add(UCase(statement));
  unseen_.Databases = unseen_.Databases || inProcedures_.Databases;
  unseen_.Logins = unseen_.Logins || inProcedures_.Logins;
  const bool login = name == "SP_ADDLOGIN" || name == "SP_GRANTLOGIN";
  const bool user = name == "SP_ADDUSER" || name == "SP_GRANTDBACCESS";
  const bool attach = name == "SP_ATTACH_DB" || name == "SP_ATTACH_SINGLE_FILE_DB";
  if (login || user || attach) {
    StatementReader values = reader;
    const auto arguments = values.TakeArguments();
    const auto made = arguments.empty() ? std::nullopt : arguments.front().Text();
    if (!made) {
      (login ? unseen_.Logins : unseen_.Databases) = true;
    } else if (user) {
      if (!RequireLogin(*made, called.At, setting.Refused)) return;
    } else if (Has(UCase(*made), login)) {
      setting.Refused.Add(Reason::Exists, called.At, Exists(*made, login));
    } else {
      (login ? Logins : Databases).insert(UCase(*made));
    }
  }
  if (!attach) contents_.Call(called, reader, setting);
}

// An account of Windows needs no login of its own.
bool SimulatedServer::RequireLogin(const std::string& name, std::size_t at, Refusals& refused) {
  if (name.empty() || Contains(name, "\\") || Has(UCase(name), true)) return true;
  if (unseen_.Logins) {
    doubt_ = "whether there is a login " + name;
    return true;
  }
  refused.Add(Reason::Missing, at, NoLogin(name));
  return false;
}

}  // namespace talu
