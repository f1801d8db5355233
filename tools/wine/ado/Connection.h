#pragma once

#include <memory>
#include <string>

#include "Automation.h"
#include "OdbcSession.h"

namespace talu::wine {

/// Identifies a `Connection` of this library; it is not an interface of its own.
extern const IID kConnectionIdentity;

/// "ADODB.Connection": ConnectionString, Open, Close, State.
class Connection : public DispatchObject {
 public:
  Connection();

  /// Answers `kConnectionIdentity` with the `Connection` itself.
  STDMETHODIMP QueryInterface(REFIID id, void** object) override;

  /// The session with the server; null while the connection is closed.
  std::shared_ptr<OdbcSession> Session() const { return session_; }

 private:
  void PutConnectionString(const Arguments& arguments);
  void Open(const Arguments& arguments);
  void Close();
  void RefuseWhenOpen() const;

  std::wstring connectionString_;
  std::shared_ptr<OdbcSession> session_;
};

}  // namespace talu::wine
