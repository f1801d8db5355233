#pragma once

#include <windows.h>

#include <string>

namespace talu::wine {

/// One session with a server through the platform's ODBC driver manager. Each failure is raised as
/// an `AutomationError` with the number that the OLE DB provider for ODBC drivers gives it and the
/// driver's own text.
class OdbcSession {
 public:
  /// Connects without asking the user. Blanks around names and values in `connectionString` are
  /// ignored. Raises 0x80040E4D for a refused login, 0x80004005 for everything else.
  explicit OdbcSession(const std::wstring& connectionString);
  ~OdbcSession();
  OdbcSession(const OdbcSession&) = delete;
  OdbcSession& operator=(const OdbcSession&) = delete;

  /// Ends the session with the server; a second call does nothing.
  void Close();
  bool IsOpen() const { return connection_ != nullptr; }

  /// Runs a batch to its first rows, which stay unread, and returns true; or to its end when it has
  /// none. Raises the first error on the way: 0x80040E14, or the more specific number where the
  /// provider has one; 0x80040E31 after `timeout` (seconds, 0 for none); 0x80004005 when the server
  /// is gone, or rows of an earlier batch are unread.
  bool Execute(const std::wstring& batch, int timeout);
  bool HasRows() const { return rows_ != nullptr; }
  /// Ends the batch whose rows are unread: statements that the server has not come to are not run,
  /// and errors of those that it has come to are lost.
  void Discard();

 private:
  HANDLE environment_ = nullptr;
  HANDLE connection_ = nullptr;
  /// The statement with unread rows.
  HANDLE rows_ = nullptr;
};

}  // namespace talu::wine
