#pragma once

#include <functional>
#include <memory>

#include "platform/Ado.h"
#include "platform/win32/Apartment.h"

namespace talu {

/// "ADODB.Connection" and "ADODB.Command", late bound.
class Win32Ado : public Ado {
 public:
  /// Does a piece of work, here or in another thread, and raises what that raises.
  using Caller = std::function<void(const std::function<void()>& work, bool takesLong)>;

  /// `beforeWaiting` is called before a call that may block this thread for long; `wait` waits for
  /// the lively objects.
  Win32Ado(std::function<void()> beforeWaiting, Apartment::Wait wait);

  std::unique_ptr<Connection> CreateConnection() override;
  std::unique_ptr<Command> CreateCommand() override;
  Ado& Lively() override { return lively_; }

 private:
  /// The objects live in a thread that is made with the first of them.
  class LivelyAdo : public Ado {
   public:
    explicit LivelyAdo(Apartment::Wait wait);
    std::unique_ptr<Connection> CreateConnection() override;
    std::unique_ptr<Command> CreateCommand() override;

   private:
    std::unique_ptr<Apartment> apartment_;
    Caller caller_;
  };

  Caller caller_;
  LivelyAdo lively_;
};

}  // namespace talu
