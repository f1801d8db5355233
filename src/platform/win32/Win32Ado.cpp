#include "platform/win32/Win32Ado.h"

#include <optional>
#include <utility>

#include "platform/win32/LateBound.h"

namespace talu {
namespace {

/// The options argument "unspecified" for `Open` and `Execute`.
constexpr std::int32_t kUnspecified = -1;

/// An automation object that is used, and let go, through a caller only.
class Called {
 public:
  Called(const Win32Ado::Caller& caller, const char* className) : caller_(caller) {
    caller_([&] { object_.emplace(className); }, false);
  }
  ~Called() {
    caller_([&] { object_.reset(); }, false);
  }
  Called(const Called&) = delete;
  Called& operator=(const Called&) = delete;

  template <class Work>
  void operator()(Work&& work, bool takesLong = false) {
    caller_([&] { work(*object_); }, takesLong);
  }
  const LateBound& Object() const { return *object_; }

 private:
  const Win32Ado::Caller& caller_;
  std::optional<LateBound> object_;
};

constexpr bool kTakesLong = true;

class Win32Connection : public Connection {
 public:
  explicit Win32Connection(const Win32Ado::Caller& caller) : on_(caller, "ADODB.Connection") {}

  void ConnectionString(const std::string& text) override {
    on_([&](LateBound& object) { object.Put("ConnectionString", text); });
    text_ = text;
  }

  void Open(const std::string& text) override {
    const std::string& given = text.empty() ? text_ : text;
    on_([&](LateBound& object) { object.Call("Open", {given, "", "", kUnspecified}); }, kTakesLong);
  }

  void Close() override {
    on_([](LateBound& object) { object.Call("Close"); });
  }

  int State() override {
    int state = 0;
    on_([&](LateBound& object) { state = object.Get("State").Number(); });
    return state;
  }

  const LateBound& Object() const { return on_.Object(); }

 private:
  Called on_;
  std::string text_;
};

class Win32Command : public Command {
 public:
  explicit Win32Command(const Win32Ado::Caller& caller) : on_(caller, "ADODB.Command") {
    // The library's own half a minute would cancel every backup that matters.
    CommandTimeout(0);
  }

  void ActiveConnection(Connection& connection) override {
    // Connections and commands of one machine come from the same class.
    const LateBound& other = static_cast<Win32Connection&>(connection).Object();
    on_([&](LateBound& object) { object.PutRef("ActiveConnection", other); });
  }

  void CommandTimeout(int seconds) final {
    on_([&](LateBound& object) { object.Put("CommandTimeout", seconds); });
  }

  void CommandText(const std::string& text) override {
    on_([&](LateBound& object) { object.Put("CommandText", text); });
  }

  void Execute() override {
    on_(
        [](LateBound& object) {
          object.Call("Execute", {Variant::Missing(), Variant::Missing(), kUnspecified});
        },
        kTakesLong);
  }

 private:
  Called on_;
};

}  // namespace

Win32Ado::Win32Ado(std::function<void()> beforeWaiting, Apartment::Wait wait)
    : caller_([before = std::move(beforeWaiting)](const std::function<void()>& work, bool isLong) {
        if (isLong) before();
        work();
      }),
      lively_(std::move(wait)) {}

std::unique_ptr<Connection> Win32Ado::CreateConnection() {
  return std::make_unique<Win32Connection>(caller_);
}

std::unique_ptr<Command> Win32Ado::CreateCommand() {
  return std::make_unique<Win32Command>(caller_);
}

Win32Ado::LivelyAdo::LivelyAdo(Apartment::Wait wait)
    : caller_([this, wait = std::move(wait)](const std::function<void()>& work, bool isLong) {
        if (!apartment_) apartment_ = std::make_unique<Apartment>(wait);
        apartment_->Do(work, isLong);
      }) {}

std::unique_ptr<Connection> Win32Ado::LivelyAdo::CreateConnection() {
  return std::make_unique<Win32Connection>(caller_);
}

std::unique_ptr<Command> Win32Ado::LivelyAdo::CreateCommand() {
  return std::make_unique<Win32Command>(caller_);
}

}  // namespace talu
