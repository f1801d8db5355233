#include "takeback/Commands.h"

#include <array>
#include <utility>

#include "runtime/JsonText.h"
#include "runtime/RuntimeError.h"
#include "takeback/TakeBack.h"

namespace talu {
namespace {

using Fate = Verdict::Fate;

constexpr const char* kUsage =
    "plan|run [--drop-databases] [--server NAME] [--login NAME] [--password-from VARIABLE] "
    "[--pack FOLDER] [--json]";

struct Wanted {
  bool Run = false;
  bool Json = false;
  std::string PackFolder;
  TakeBackOptions Options;
};

[[noreturn]] void Refuse(const std::string& why) {
  throw RuntimeError(error::kInvalidProcedureCall, why);
}

Wanted Read(const std::vector<std::string>& arguments, const CommandLineHost& host) {
  Wanted wanted;
  if (arguments.empty() || (arguments[0] != "plan" && arguments[0] != "run")) {
    Refuse(std::string("usage: ") + kUsage);
  }
  wanted.Run = arguments[0] == "run";
  for (std::size_t i = 1; i < arguments.size(); ++i) {
    const std::string& option = arguments[i];
    if (option == "--drop-databases") {
      wanted.Options.DropDatabases = true;
      continue;
    }
    if (option == "--json") {
      wanted.Json = true;
      continue;
    }
    const std::array<std::pair<const char*, std::string*>, 4> texts = {
        {{"--server", &wanted.Options.Server},
         {"--login", &wanted.Options.Login},
         {"--password-from", &wanted.Options.Password},
         {"--pack", &wanted.PackFolder}}};
    std::string* text = nullptr;
    for (const auto& [name, value] : texts) {
      if (option == name) text = value;
    }
    if (text == nullptr) Refuse(option + " is no option; " + kUsage);
    if (++i == arguments.size() || arguments[i].empty()) Refuse(option + " wants a value");
    *text = arguments[i];
    if (text != &wanted.Options.Password) continue;
    const std::optional<std::string> password = host.Environment(*text);
    if (!password) Refuse(option + ": there is no variable " + *text);
    *text = *password;
  }
  return wanted;
}

/// A line for each step, and one with the sums.
class Account : public TakeBackView {
 public:
  Account(const Wanted& wanted, const CommandLineHost& host) : wanted_(wanted), host_(host) {}

  void Begin(const Step&, std::size_t, std::size_t) override {}
  void End(const Step& step, const Verdict& verdict) override {
    ++counts_.at(static_cast<std::size_t>(verdict.What));
    const std::string fate = Words().at(static_cast<std::size_t>(verdict.What));
    if (wanted_.Json) {
      std::string line = "{\"step\":";
      AppendJson(line, KindName(step.What));
      AddField(line, "name", step.Name);
      AddField(line, "fate", fate);
      if (!verdict.Why.empty()) AddField(line, "why", verdict.Why);
      host_.Out(line + "}");
      return;
    }
    std::string line = fate;
    line.resize(7, ' ');
    line += KindName(step.What);
    line.resize(24, ' ');
    host_.Out(line + step.Name + (verdict.Why.empty() ? "" : " - " + verdict.Why));
  }
  /// Returns the exit code.
  int Close() {
    std::string line = wanted_.Json ? "{\"result\":" : "";
    const bool left = counts_[2] != 0;
    if (wanted_.Json) AppendJson(line, left ? "left" : "done");
    for (std::size_t i = 0; i < counts_.size(); ++i) {
      const std::string count = std::to_string(counts_.at(i));
      if (wanted_.Json) {
        line += std::string(",\"") + Words().at(i) + "\":" + count;
      } else {
        line += std::string(i == 0 ? "" : ", ") + Words().at(i) + ": " + count;
      }
    }
    host_.Out(line + (wanted_.Json ? "}" : ""));
    return left ? kSomethingLeft : kTakenBack;
  }

 private:
  static void AddField(std::string& line, const char* name, const std::string& value) {
    line += std::string(",\"") + name + "\":";
    AppendJson(line, value);
  }
  /// In the order of `Fate`.
  std::array<const char*, 3> Words() const {
    return {wanted_.Run ? "gone" : "goes", "stays", "left"};
  }

  const Wanted& wanted_;
  const CommandLineHost& host_;
  std::array<int, 3> counts_{};
};

}  // namespace

int TakeBackCommand(const std::vector<std::string>& arguments, const Machine& machine,
                    Removal& removal, const std::string& program, const CommandLineHost& host) {
  try {
    const Wanted wanted = Read(arguments, host);
    TakeBack takeBack(machine, removal, program, wanted.PackFolder);
    Account account(wanted, host);
    if (wanted.Run) {
      takeBack.Run(wanted.Options, account);
    } else {
      const std::vector<Verdict> verdicts = takeBack.Plan(wanted.Options);
      for (std::size_t i = 0; i < verdicts.size(); ++i)
        account.End(takeBack.Steps()[i], verdicts[i]);
    }
    return account.Close();
  } catch (...) {
    host.Error(CaughtError().Description);
    return kCannotBegin;
  }
}

}  // namespace talu
