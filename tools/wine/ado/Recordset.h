#pragma once

#include <memory>

#include "Automation.h"
#include "OdbcSession.h"

namespace talu::wine {

/// "ADODB.Recordset" as `Execute` returns it: State, Close. While it is open it has the connection
/// for itself; closed or let go, it ends what is left of its batch.
class Recordset : public DispatchObject {
 public:
  /// Over the rows of the session, or closed when there is none.
  explicit Recordset(std::shared_ptr<OdbcSession> session);
  ~Recordset() override;

 private:
  bool IsOpen() const { return session_ && session_->HasRows(); }
  void Close();

  std::shared_ptr<OdbcSession> session_;
};

}  // namespace talu::wine
