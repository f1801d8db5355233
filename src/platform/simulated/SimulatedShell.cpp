#include "platform/simulated/SimulatedShell.h"

#include <algorithm>
#include <utility>

#include "runtime/RuntimeError.h"
#include "runtime/TextFunctions.h"

namespace talu {
namespace {

// Windows Installer's exit code for a package that cannot be opened; source: its documentation
// (ERROR_INSTALL_PACKAGE_OPEN_FAILED).
constexpr std::int32_t kPackageOpenFailed = 1619;

std::string FileNameOf(const std::string& path) {
  return path.substr(path.rfind('\\') + 1);
}

class SimulatedShortcut : public Shortcut {
 public:
  SimulatedShortcut(Journal& journal, SimulatedDisk& disk, std::string path)
      : journal_(journal), disk_(disk), path_(std::move(path)) {}

  void TargetPath(const std::string& path) override { target_ = path; }
  void WorkingDirectory(const std::string& path) override { workingDirectory_ = path; }
  void IconLocation(const std::string& path) override { icon_ = path; }
  void Save() override {
    const JournalEvent event{"shortcut",
                             {{"path", path_},
                              {"target", target_},
                              {"workingDirectory", workingDirectory_},
                              {"icon", icon_}}};
    journal_.Request(event, false, [&] {
      disk_.Use(target_.size());
      auto& node = disk_.FileForWriting(path_);
      node.Content = std::make_shared<FileContent>();
      node.Content->Bytes = target_;
      node.Content->Size = target_.size();
    });
  }

 private:
  Journal& journal_;
  SimulatedDisk& disk_;
  std::string path_;
  std::string target_;
  std::string workingDirectory_;
  std::string icon_;
};

class SimulatedScriptShell : public ScriptShell {
 public:
  SimulatedScriptShell(Journal& journal, SimulatedDisk& disk, std::vector<std::string> folders)
      : journal_(journal), disk_(disk), folders_(std::move(folders)) {}

  std::vector<std::string> SpecialFolders() override {
    journal_.Count("special folders", "");
    return folders_;
  }
  std::unique_ptr<Shortcut> CreateShortcut(const std::string& path) override {
    journal_.Count("create shortcut", path);
    return std::make_unique<SimulatedShortcut>(journal_, disk_, path);
  }

 private:
  Journal& journal_;
  SimulatedDisk& disk_;
  std::vector<std::string> folders_;
};

/// A new machine's special folders, in the host's documented order.
std::vector<std::string> NewMachinesFolders() {
  const std::string all = "C:\\ProgramData\\Microsoft\\Windows\\Start Menu";
  const std::string own = "C:\\Users\\Operator";
  const std::string roaming = own + "\\AppData\\Roaming";
  const std::string shell = roaming + "\\Microsoft\\Windows";
  return {"C:\\Users\\Public\\Desktop",
          all,
          all + "\\Programs",
          all + "\\Programs\\Startup",
          own + "\\Desktop",
          roaming,
          shell + "\\Printer Shortcuts",
          shell + "\\Templates",
          "C:\\Windows\\Fonts",
          shell + "\\Network Shortcuts",
          own + "\\Desktop",
          shell + "\\Start Menu",
          shell + "\\SendTo",
          shell + "\\Recent",
          shell + "\\Start Menu\\Programs\\Startup",
          own + "\\Favorites",
          own + "\\Documents",
          shell + "\\Start Menu\\Programs"};
}

}  // namespace

bool SimulatedOdbc::SQLConfigDataSource(int, const std::string& driver,
                                        const std::string& attributes) {
  const JournalEvent event{"dsn", {{"driver", driver}, {"attributes", attributes}}};
  try {
    journal_.Request(event, true, [&] {
      std::string name;
      for (const std::string& pair : Split(attributes, '\0')) {
        if (pair.starts_with("DSN=")) name = pair.substr(4);
      }
      if (name.empty() || std::ranges::find(Drivers, driver) == Drivers.end()) {
        throw RuntimeError(error::kInvalidProcedureCall, "Driver or data source name is not valid");
      }
      sources_[UCase(name)] = attributes + '\0' + "DRIVER=" + driver;
    });
    return true;
  } catch (const RuntimeError&) {
    return false;
  }
}

bool SimulatedOdbc::HasSource(const std::string& name) const {
  return sources_.contains(UCase(name));
}

std::string SimulatedOdbc::Value(const std::string& name, const std::string& attribute) const {
  const auto source = sources_.find(UCase(name));
  if (source == sources_.end()) return "";
  std::string value;
  for (const std::string& pair : Split(source->second, '\0')) {
    if (pair.starts_with(attribute + "=")) value = pair.substr(attribute.size() + 1);
  }
  return value;
}

bool SimulatedOdbc::IsOfServer(const std::string& name) const {
  const auto source = sources_.find(UCase(name));
  return source != sources_.end() && Contains(source->second, "SERVER=");
}

std::string SimulatedProcesses::ProgramOf(const std::string& commandLine) const {
  if (commandLine.starts_with('"')) {
    const std::string path = commandLine.substr(1, commandLine.find('"', 1) - 1);
    return disk_.FileExists(path) ? path : "";
  }
  // Without quotes the path may end at each blank, tried from the first one on.
  for (std::size_t blank = commandLine.find(' ');; blank = commandLine.find(' ', blank + 1)) {
    std::string path = commandLine.substr(0, blank);
    const std::string name = UCase(FileNameOf(path));
    if (name == "MSIEXEC" || name == "REGSVR32") return path;
    if (disk_.FileExists(path)) return path;
    if (!Contains(name, ".") && disk_.FileExists(path + ".exe")) return path + ".exe";
    if (blank == std::string::npos) return "";
  }
}

std::int32_t SimulatedProcesses::RunAndWait(const std::string& commandLine) {
  JournalEvent event{"run", {{"command", commandLine}}};
  std::int32_t exitCode = -1;
  try {
    journal_.Count("run");
    std::string file = ProgramOf(commandLine);
    if (UCase(file) == "MSIEXEC") {
      const std::vector<std::string> pieces = Split(commandLine, '"');
      file = pieces.size() > 1 ? pieces[1] : "";
      exitCode = disk_.FileExists(file) ? 0 : kPackageOpenFailed;
    } else if (!file.empty()) {
      exitCode = 0;
    }
    const auto known = ExitCodes.find(UCase(FileNameOf(file)));
    if (exitCode == 0 && known != ExitCodes.end()) exitCode = known->second;
  } catch (const RuntimeError&) {
    exitCode = -1;
  }
  event.Fields.emplace_back("exit", std::int64_t{exitCode});
  journal_.Add(std::move(event));
  return exitCode;
}

void SimulatedProcesses::Start(const std::string& commandLine, int windowStyle) {
  const JournalEvent event{
      "start", {{"command", commandLine}, {"window", static_cast<std::int64_t>(windowStyle)}}};
  journal_.Request(event, false, [&] {
    if (ProgramOf(commandLine).empty()) throw RuntimeError(error::kFileNotFound);
  });
}

SimulatedScripting::SimulatedScripting(Journal& journal, SimulatedDisk& disk)
    : SpecialFolders(NewMachinesFolders()), journal_(journal), disk_(disk) {
  for (const std::string& folder : SpecialFolders) disk_.MakeFolders(folder);
}

std::unique_ptr<ScriptShell> SimulatedScripting::CreateShell() {
  journal_.Count("create shell", "");
  return std::make_unique<SimulatedScriptShell>(journal_, disk_, SpecialFolders);
}

void SimulatedSettings::SaveSetting(const std::string& application, const std::string& section,
                                    const std::string& key, const std::string& value) {
  const JournalEvent event{
      "setting",
      {{"application", application}, {"section", section}, {"key", key}, {"value", value}}};
  journal_.Request(event, false, [] {});
}

DateTime SimulatedClock::Now() {
  if (!Coming.empty()) {
    Time = Coming.front();
    Coming.pop_front();
  }
  return Time;
}

}  // namespace talu
