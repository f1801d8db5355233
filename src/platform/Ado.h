#pragma once

#include <memory>
#include <string>

namespace talu {

/// An "ADODB.Connection". Every call raises the provider's error with its number and text.
class Connection {
 public:
  virtual ~Connection() = default;
  virtual void ConnectionString(const std::string& text) = 0;
  /// Opens with `text`, or with the connection string set before when it is empty; user and
  /// password arguments empty, options -1 (unspecified). Raises -2147467259 when the server cannot
  /// be reached, -2147217843 for a refused login, 3705 when the connection is already open.
  virtual void Open(const std::string& text = "") = 0;
  /// Raises 3704 when the connection is not open.
  virtual void Close() = 0;
  /// 0 is closed, 1 is open.
  virtual int State() = 0;
};

/// An "ADODB.Command". Every call raises the provider's error with its number and text.
class Command {
 public:
  virtual ~Command() = default;
  /// Binds the command to a connection, by reference. Raises 3709 when it is not open.
  virtual void ActiveConnection(Connection& connection) = 0;
  /// In seconds; until it is set a statement may take as long as it likes.
  virtual void CommandTimeout(int seconds) = 0;
  virtual void CommandText(const std::string& text) = 0;
  /// Runs the command text, without the optional arguments; options -1 (unspecified).
  virtual void Execute() = 0;
};

/// ActiveX Data Objects.
class Ado {
 public:
  virtual ~Ado() = default;
  /// Raises 429 when the class cannot be created.
  virtual std::unique_ptr<Connection> CreateConnection() = 0;
  virtual std::unique_ptr<Command> CreateCommand() = 0;
  /// Makes objects that let window events be handled while a call waits for the server. They go
  /// with one another only.
  virtual Ado& Lively() { return *this; }
};

}  // namespace talu
