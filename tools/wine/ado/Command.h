#pragma once

#include <memory>
#include <string>

#include "Automation.h"
#include "OdbcSession.h"

namespace talu::wine {

/// "ADODB.Command": ActiveConnection, CommandTimeout, CommandText, Execute. It keeps the session of
/// the connection that it was bound to: closing the connection unbinds it, opening it again does
/// not bind it again.
class Command : public DispatchObject {
 public:
  Command();

 private:
  void PutActiveConnection(const Arguments& arguments);
  void PutTimeout(const Arguments& arguments);
  void Execute(const Arguments& arguments) const;

  std::shared_ptr<OdbcSession> session_;
  long timeout_ = 30;  // seconds: the data-access library's default
  std::wstring text_;
};

}  // namespace talu::wine
