#pragma once

#include <memory>
#include <string>

#include "Automation.h"
#include "OdbcSession.h"

namespace talu::wine {

/// "ADODB.Command": ActiveConnection, by reference only, CommandTimeout, CommandText, Execute,
/// which returns the first rows, or a closed recordset when there are none. It keeps the session of
/// the connection that it was bound to: closing the connection unbinds it, opening that again does
/// not bind it anew. Its time-out is the data-access library's 30 s until it is set, or what the
/// variable WINEADO_COMMAND_TIMEOUT says, for a test that has less time.
class Command : public DispatchObject {
 public:
  Command();

 private:
  void PutActiveConnection(const Arguments& arguments);
  void PutTimeout(const Arguments& arguments);
  VARIANT Execute(const Arguments& arguments) const;

  std::shared_ptr<OdbcSession> session_;
  /// In seconds.
  long timeout_;
  std::wstring text_;
};

}  // namespace talu::wine
