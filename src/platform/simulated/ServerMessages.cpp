#include "platform/simulated/ServerMessages.h"

#include <cstdint>

#include "runtime/TextFunctions.h"
#include "sql/Names.h"

namespace talu {

RuntimeError StatementError(const std::string& text) {
  // The OLE DB error code DB_E_ERRORSINCOMMAND.
  constexpr std::int32_t kErrorsInCommand = -2147217900;
  return RuntimeError(kErrorsInCommand, "[Microsoft][ODBC SQL Server Driver][SQL Server]" + text,
                      kProvider);
}

RuntimeError Exists(const std::string& name, bool login) {
  return StatementError(login ? "The server principal '" + name + "' already exists."
                              : "Database '" + name +
                                    "' already exists. Choose a different database name.");
}
RuntimeError CannotDrop(const std::string& name, bool login) {
  return CannotFind(login ? "drop the login" : "drop the database", name);
}
RuntimeError CannotAlter(const std::string& name, bool login) {
  if (login) return CannotFind("alter the login", name);
  return StatementError("User does not have permission to alter database '" + name +
                        "', the database does not exist, or the database is not in a state that "
                        "allows access checks.");
}
RuntimeError CannotUse(const std::string& name) {
  return StatementError("Database '" + name +
                        "' does not exist. Make sure that the name is entered correctly.");
}

RuntimeError NoLogin(const std::string& name) {
  return StatementError("'" + name + "' is not a valid login or you do not have permission.");
}

RuntimeError NotFirst(std::string_view kind) {
  const std::string word = UCase(kind);
  const bool procedure = word == "PROC" || word == "PROCEDURE";
  return StatementError((procedure ? "'CREATE/ALTER PROCEDURE" : "'CREATE " + word) +
                        "' must be the first statement in a query batch.");
}

RuntimeError Misplaced(const sql::Token& token, const sql::Token& before) {
  const sql::Token& shown = token.Kind == sql::TokenKind::End ? before : token;
  if (!shown.IsClosed) {
    return StatementError("Unclosed quotation mark after the character string '" +
                          std::string(shown.Inside()) + "'.");
  }
  const bool keyword = shown.Kind == sql::TokenKind::Word && sql::IsReserved(shown.Raw);
  return StatementError(std::string("Incorrect syntax near ") + (keyword ? "the keyword '" : "'") +
                        shown.Value() + "'.");
}

RuntimeError CannotFind(const std::string& what, const std::string& name) {
  return StatementError("Cannot " + what + " '" + name +
                        "', because it does not exist or you do not have permission.");
}

RuntimeError NoObject(const std::string& name) {
  return StatementError("Cannot find the object \"" + name +
                        "\" because it does not exist or you do not have permissions.");
}

}  // namespace talu
