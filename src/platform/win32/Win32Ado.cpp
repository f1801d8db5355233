#include "platform/win32/Win32Ado.h"

#include <utility>

#include "platform/win32/LateBound.h"

namespace talu {
namespace {

/// The options argument "unspecified" for `Open` and `Execute`.
constexpr std::int32_t kUnspecified = -1;

class Win32Connection : public Connection {
 public:
  explicit Win32Connection(const std::function<void()>& beforeWaiting)
      : beforeWaiting_(beforeWaiting), object_("ADODB.Connection") {}

  void ConnectionString(const std::string& text) override {
    object_.Put("ConnectionString", text);
    text_ = text;
  }

  void Open(const std::string& text) override {
    beforeWaiting_();
    object_.Call("Open", {text.empty() ? text_ : text, "", "", kUnspecified});
  }

  void Close() override { object_.Call("Close"); }
  int State() override { return object_.Get("State").Number(); }
  const LateBound& Object() const { return object_; }

 private:
  const std::function<void()>& beforeWaiting_;
  LateBound object_;
  std::string text_;
};

class Win32Command : public Command {
 public:
  explicit Win32Command(const std::function<void()>& beforeWaiting)
      : beforeWaiting_(beforeWaiting), object_("ADODB.Command") {}

  void ActiveConnection(Connection& connection) override {
    // Connections and commands of one machine come from the same class.
    object_.PutRef("ActiveConnection", static_cast<Win32Connection&>(connection).Object());
  }

  void CommandTimeout(int seconds) override { object_.Put("CommandTimeout", seconds); }
  void CommandText(const std::string& text) override { object_.Put("CommandText", text); }

  void Execute() override {
    beforeWaiting_();
    object_.Call("Execute", {Variant::Missing(), Variant::Missing(), kUnspecified});
  }

 private:
  const std::function<void()>& beforeWaiting_;
  LateBound object_;
};

}  // namespace

Win32Ado::Win32Ado(std::function<void()> beforeWaiting)
    : beforeWaiting_(std::move(beforeWaiting)) {}

std::unique_ptr<Connection> Win32Ado::CreateConnection() {
  return std::make_unique<Win32Connection>(beforeWaiting_);
}

std::unique_ptr<Command> Win32Ado::CreateCommand() {
  return std::make_unique<Win32Command>(beforeWaiting_);
}

}  // namespace talu
