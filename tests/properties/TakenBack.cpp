#include "TakenBack.h"

#include <algorithm>
#include <vector>

#include "MachineState.h"
#include "Plan.h"
#include "takeback/TakeBack.h"

namespace talu::packcheck {
namespace {

using Fate = Verdict::Fate;

class Fates : public TakeBackView {
 public:
  void Begin(const Step&, std::size_t, std::size_t) override {}
  void End(const Step&, const Verdict& verdict) override { Given.push_back(verdict); }
  std::vector<Verdict> Given;
};

/// One installation, and what becomes of it.
class TakenBack {
 public:
  TakenBack(const PlanOptions& options, bool drop, bool clean)
      : clean_(clean), run_(options), app_(run_.Wizard.State.AppFolderPath) {
    TextFiles& files = run_.Wizard.TextFiles;
    files.Close(run_.Wizard.State.LogFileNumber);
    files.Close(run_.Wizard.State.UninstallFileNumber);
    SimulatedMachine before(options.PackPath, options.CodePage);
    before.Disk.AddHostFolder(options.Pack, options.PackPath);
    for (const std::string& name : options.Databases) before.Server.Databases.insert(UCase(name));
    for (const std::string& name : options.Logins) before.Server.Logins.insert(UCase(name));
    before_ = MachineState::Of(before);
    if (run_.Machine.Disk.FileExists(app_ + "\\Uninstall.dat")) Try(drop);
  }

  const std::string& Broken() const { return broken_; }

 private:
  void Break(const std::string& what) { broken_ += "\n" + what; }

  void Try(bool drop) {
    Machine parts = run_.Machine.Parts;
    parts.AppPath = app_;
    TakeBackOptions options;
    options.DropDatabases = drop;
    installed_ = MachineState::Of(run_.Machine);
    try {
      TakeBack work(parts, run_.Machine.Removal, "Uninstall.exe", "D:\\Pack");
      const std::vector<Verdict> planned = work.Plan(options);
      if (!MachineState::Differences(installed_, MachineState::Of(run_.Machine)).empty()) {
        Break("the plan changes the machine");
      }
      Fates fates;
      const bool done = work.Run(options, fates);
      if (clean_ && !done) Break("something is left");
      Compare(work.Steps(), planned, fates.Given);
    } catch (const RuntimeError& error) {
      if (clean_) Break("it cannot be taken back: " + error.Description);
    }
  }

  void Compare(const std::vector<Step>& steps, const std::vector<Verdict>& planned,
               const std::vector<Verdict>& given) {
    for (std::size_t i = 0; i < steps.size(); ++i) {
      if (planned[i].What == given[i].What) continue;
      Break(std::string(KindName(steps[i].What)) + " " + steps[i].Name + " was planned otherwise");
    }
    const MachineState after = MachineState::Of(run_.Machine);
    for (const std::string& thing : MachineState::Differences(before_, after)) {
      if (!after.Things.contains(thing)) {
        // A script that asks first has a database recorded that it may have found: check tells it.
        const bool had = installed_.Things.contains(thing);
        if (had && (clean_ || !IsOfServer(thing))) Break("lost: " + thing);
      } else if ((clean_ || Contains(UCase(thing), UCase(app_) + "\\")) &&
                 !IsNamed(steps, given, thing)) {
        Break("stays, and is not named: " + thing);
      }
    }
  }

  static bool IsOfServer(const std::string& thing) {
    return thing.starts_with("database ") || thing.starts_with("login ");
  }
  static bool IsOwn(const std::string& upper) {
    return upper.ends_with("\\UNINSTALL.DAT") || upper.ends_with("\\TA-LUERRLOG.TXT");
  }

  /// Whether a step that did not go is about the thing, what it is in or what is in it.
  static bool IsNamed(const std::vector<Step>& steps, const std::vector<Verdict>& given,
                      const std::string& thing) {
    const std::string name = UCase(thing.substr(thing.find(' ') + 1));
    for (std::size_t i = 0; i < steps.size(); ++i) {
      const bool program = steps[i].What == Step::Kind::Program;
      if (program && given[i].What == Fate::Left && IsOwn(name)) return true;
      const bool folderStays = program && !given[i].Why.empty();
      if (given[i].What == Fate::Goes && !folderStays) continue;
      const std::string step = UCase(steps[i].Name);
      if (step == name || step.starts_with(name + "\\") || name.starts_with(step + "\\")) {
        // What is below a folder has a name of its own.
        const bool folder = steps[i].What == Step::Kind::Folder || folderStays;
        if (!folder || !name.starts_with(step + "\\")) return true;
      }
    }
    return false;
  }

  bool clean_;
  PlannedRun run_;
  std::string app_;
  MachineState before_;
  MachineState installed_;
  std::string broken_;
};

}  // namespace

std::string BrokenByTakingBack(const RandomPack& pack, const std::filesystem::path& folder,
                               bool clean) {
  std::string broken;
  for (const InstallType type : {InstallType::Fresh, InstallType::Demo, InstallType::Upgrade}) {
    for (const InstallMode mode : {InstallMode::Server, InstallMode::Client}) {
      for (const bool drop : {false, true}) {
        if (drop && mode == InstallMode::Client) continue;
        PlanOptions options;
        options.Pack = folder;
        options.Type = type;
        options.Mode = mode;
        if (type == InstallType::Upgrade) {
          options.Databases = pack.Databases;
          options.Logins = pack.Logins;
        }
        const TakenBack taken(options, drop, clean);
        if (taken.Broken().empty()) continue;
        broken += "type " + std::to_string(static_cast<int>(type)) +
                  (mode == InstallMode::Server ? ", server" : ", client") +
                  (drop ? ", with databases:" : ":") + taken.Broken() + "\n";
      }
    }
  }
  return broken;
}

}  // namespace talu::packcheck
