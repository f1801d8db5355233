#pragma once

#include <functional>

#include "platform/Ado.h"

namespace talu {

/// "ADODB.Connection" and "ADODB.Command", late bound.
class Win32Ado : public Ado {
 public:
  /// `beforeWaiting` is called before a call that may block this thread for long.
  explicit Win32Ado(std::function<void()> beforeWaiting);

  std::unique_ptr<Connection> CreateConnection() override;
  std::unique_ptr<Command> CreateCommand() override;

 private:
  std::function<void()> beforeWaiting_;
};

}  // namespace talu
