// The lines of data sources and shortcuts: what is asked of the machine, and what is recorded.

#include <cstdint>
#include <memory>

#include "Naive.h"
#include "Wizard.h"
#include "pages/FrmApplication.h"
#include "platform/simulated/SimulatedMachine.h"

namespace talu {
namespace {

using Calls = std::vector<std::string>;

class AnyConnection : public Connection {
 public:
  explicit AnyConnection(Calls& asked) : asked_(asked) {}
  void ConnectionString(const std::string&) override {}
  void Open(const std::string& text) override { asked_.push_back("open " + text); }
  void Close() override {}
  int State() override { return 0; }

 private:
  Calls& asked_;
};

class AnyShortcut : public Shortcut {
 public:
  AnyShortcut(Calls& asked, const std::string& path) : asked_(asked), call_("link " + path) {}
  void TargetPath(const std::string& path) override { call_ += "|" + path; }
  void WorkingDirectory(const std::string& path) override { call_ += "|" + path; }
  void IconLocation(const std::string& path) override { call_ += "|" + path; }
  void Save() override { asked_.push_back(call_); }

 private:
  Calls& asked_;
  std::string call_;
};

const std::vector<std::string> kFolders = {"C:\\All\\Desktop", "C:\\All\\Start Menu",
                                           "C:\\All\\Start Menu\\Programs", "C:\\Own\\Desktop"};

/// Grants every request and writes it down.
class Accepting : public Ado, public OdbcInstaller, public ScriptingHost, public ScriptShell {
 public:
  bool SQLConfigDataSource(int, const std::string& driver, const std::string& attributes) override {
    Asked.push_back("dsn " + driver + "|" + attributes);
    return true;
  }
  std::unique_ptr<Connection> CreateConnection() override {
    return std::make_unique<AnyConnection>(Asked);
  }
  std::unique_ptr<Command> CreateCommand() override { return nullptr; }
  std::unique_ptr<ScriptShell> CreateShell() override { return std::make_unique<Accepting>(*this); }
  std::vector<std::string> SpecialFolders() override { return kFolders; }
  std::unique_ptr<Shortcut> CreateShortcut(const std::string& path) override {
    return std::make_unique<AnyShortcut>(Asked, path);
  }

  Calls& Asked;
  explicit Accepting(Calls& asked) : Asked(asked) {}
};

/// What the data-source lines should ask for and record, the last line first.
void Sources(const std::vector<std::string>& lines, Calls& asked, Calls& records) {
  const std::string nul(1, '\0');
  std::string attributes;
  for (std::size_t at = lines.size(); at > 0; --at) {
    const std::vector<std::string> pieces = naive::Split(lines[at - 1], ',');
    const auto field = [&](std::size_t index) { return naive::Trim(naive::At(pieces, index)); };
    try {
      // Without a first field the test for the driver fails, and goes on with what it guards.
      if (pieces.empty() || field(0) == "SQL Server") {
        attributes = "DSN=" + field(1) + nul + "SERVER=SRV1" + nul + "DATABASE=" + field(2);
      } else if (field(0) == "Microsoft Access Driver (*.mdb)") {
        attributes = "DSN=" + field(1) + nul + "DBQ=" + field(2) + nul + "UID=" + field(3) + nul +
                     "PWD=" + field(4);
      }
    } catch (const naive::Error&) {
      // The text of the line before stays.
    }
    if (!pieces.empty()) asked.push_back("dsn " + field(0) + "|" + attributes);
    if (pieces.size() > 4)
      asked.push_back("open DSN=" + field(1) + "; UID=" + field(3) + "; PWD=" + field(4));
    records.push_back("SystemDSN:" + lines[at - 1]);
  }
}

void Links(const std::vector<std::string>& lines, Calls& asked, Calls& records) {
  for (const std::string& line : lines) {
    const std::vector<std::string> fields = naive::Split(line, ',');
    if (fields.size() < 3) continue;
    const std::string wanted = naive::Upper(naive::Trim(fields[1]));
    std::string folder;
    if (wanted == "DESKTOP") folder = kFolders[0];
    if (wanted == "STARTMENU") folder = kFolders[1] + "\\TALU\\App";
    if (wanted == "PROGRAMS") folder = kFolders[2] + "\\TALU\\App";
    if (folder.empty()) continue;
    const std::string link = folder + "\\" + fields[2] + ".lnk";
    const std::string target = "C:\\Progs\\App" + fields[0];
    asked.push_back("link " + link + "|" + target + "||" + target);
    if (wanted != "DESKTOP") records.push_back("ShotcutFolder:" + folder);
    records.push_back("Shotcut:" + link);
  }
}

}  // namespace
}  // namespace talu

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace talu;
  // One line of the input is one value line; the first half are data sources.
  std::vector<std::string> sources;
  std::vector<std::string> links;
  for (const std::string& line : naive::Split(std::string(data, data + size), '\n')) {
    const bool plain =
        line.find('\r') == std::string::npos && !naive::Trim(line).empty() && line != "}";
    if (!plain) continue;
    (links.size() < sources.size() ? links : sources).push_back(line);
  }
  SimulatedMachine machine;
  for (const std::string& folder : kFolders) machine.Disk.MakeFolders(folder);
  machine.Disk.MakeFolders("D:\\Pack\\Application");
  machine.Disk.MakeFolders("C:\\Progs\\App");
  machine.Disk.WriteFile("D:\\Pack\\AppCfg.txt",
                         naive::Block("SystemDSN", sources) + naive::Block("Shotcut", links));
  Calls asked;
  Accepting outside(asked);
  talu::Machine parts{.Windows = machine.Windows,
                      .Files = machine.Files,
                      .Shell = machine.Files,
                      .DataAccess = outside,
                      .Odbc = outside,
                      .Programs = machine.Programs,
                      .Scripting = outside,
                      .Settings = machine.Settings,
                      .Clock = machine.Clock,
                      .CodePage = machine.CodePage,
                      .AppPath = "D:\\Pack"};
  Wizard wizard(parts);
  wizard.State.InstallPath = "C:\\Progs";
  wizard.State.AppFolderName = "App";
  wizard.State.AppFolderPath = "C:\\Progs\\App";
  wizard.State.ServerName = "SRV1";
  wizard.State.LogFileNumber = 1;
  wizard.State.UninstallFileNumber = 2;
  machine.Windows.Run([&] { wizard.Page<FrmApplication>().Show(); });

  Calls expected;
  Calls records;
  Sources(sources, expected, records);
  Links(links, expected, records);
  for (Calls* calls : {&expected, &records}) {
    for (std::string& call : *calls) call = machine.CodePage.ToText(call);
  }
  naive::Same(asked, expected, "asked");
  Calls printed;
  for (const JournalEvent& event : machine.Journal.Events()) {
    const std::string text = event.Text("text");
    if (event.Kind == "print" && event.Text("path").ends_with("Uninstall.dat"))
      printed.push_back(text.substr(0, text.size() - 4));
  }
  naive::Same(printed, records, "recorded");
  return 0;
}
