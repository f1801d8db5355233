#pragma once

#include <memory>

#include "platform/Ado.h"

namespace talu {

/// The connection and the command of a class that uses the server: made at first use and kept.
class AdoObjects {
 protected:
  explicit AdoObjects(Ado& dataAccess) : dataAccess_(dataAccess) {}
  ~AdoObjects() = default;

  /// Both raise what making the object raises.
  Connection& TheConnection() {
    if (!connection_) connection_ = dataAccess_.CreateConnection();
    return *connection_;
  }
  Command& TheCommand() {
    if (!command_) command_ = dataAccess_.CreateCommand();
    return *command_;
  }
  /// The next use makes a new connection.
  void ForgetConnection() { connection_.reset(); }

 private:
  Ado& dataAccess_;
  std::unique_ptr<Connection> connection_;
  std::unique_ptr<Command> command_;
};

}  // namespace talu
