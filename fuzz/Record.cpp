// The uninstall record and the log: whatever they hold, only what the installation may have made is
// touched, and nothing stays recorded but what was left.

#include "takeback/Record.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <iostream>

#include "platform/simulated/SimulatedMachine.h"
#include "takeback/TakeBack.h"

namespace talu {
namespace {

const std::string kFolder = "C:\\Progs\\TA-LU\\App";
const std::string kDesktop = "C:\\Users\\Public\\Desktop";

class NoView : public TakeBackView {
 public:
  void Begin(const Step&, std::size_t, std::size_t) override {}
  void End(const Step&, const Verdict&) override {}
};

[[noreturn]] void Stop(const std::string& why) {
  std::cerr << why << '\n';
  std::abort();
}

}  // namespace
}  // namespace talu

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace talu;
  // What stands before the first NUL is the record, the rest is the log.
  const std::string input(data, data + size);
  const std::size_t end = std::min(input.find('\0'), input.size());
  const std::string record = "AppFolder:" + kFolder + "\r\n" + input.substr(0, end);
  SimulatedMachine machine;
  const std::vector<std::string> strangers = {"C:\\Data\\keep.txt",
                                              "C:\\Progs\\TA-LU\\App2\\keep.txt",
                                              "C:\\Windows\\system\\shell.dll",
                                              kDesktop + "\\Other.lnk",
                                              kDesktop + "\\notes.txt",
                                              kFolder + "\\Link\\far.txt"};
  for (const std::string& path : strangers) machine.Disk.WriteFile(path, "C:\\Other\\x.exe");
  machine.Disk.Find(kFolder + "\\Link")->IsLink = true;
  machine.Disk.WriteFile(kFolder + "\\Desk.exe", "x");
  machine.Disk.WriteFile(kDesktop + "\\Desk.lnk", kFolder + "\\Desk.exe");
  machine.Disk.WriteFile(kFolder + "\\Uninstall.dat", record);
  machine.Disk.WriteFile(kFolder + "\\Ta-luErrLog.txt", input.substr(end));
  machine.Odbc.SQLConfigDataSource(
      4, "SQL Server", std::string("DSN=Other\0SERVER=another-server\0DATABASE=Own", 44));
  Machine parts = machine.Parts;
  parts.AppPath = kFolder;
  NoView view;
  bool done = false;
  try {
    TakeBack work(parts, machine.Removal, "Uninstall.exe");
    const std::vector<Verdict> planned = work.Plan({});
    if (planned.size() != work.Steps().size()) Stop("a step without a verdict");
    done = work.Run({}, view);
  } catch (const RuntimeError&) {
    done = !machine.Disk.FileExists(kFolder + "\\Uninstall.dat");
    if (done) Stop("the record is gone before the work began");
  }
  for (const std::string& path : strangers) {
    if (!machine.Disk.FileExists(path)) Stop(path + " is gone");
  }
  if (!machine.Odbc.HasSource("Other")) Stop("the data source of others is gone");
  for (const JournalEvent& event : machine.Journal.Events()) {
    if (event.Kind == "sql" || event.Kind == "connect") Stop("the server was asked");
  }
  if (done) return 0;
  // What stays recorded is of the same lines, in their order.
  const Record before(record, machine.CodePage);
  const Record after(machine.Disk.ReadFile(kFolder + "\\Uninstall.dat").value_or(""),
                     machine.CodePage);
  std::size_t at = 0;
  for (const RecordLine& line : after.Lines) {
    while (at < before.Lines.size() && before.Lines[at].Raw != line.Raw) ++at;
    if (at++ == before.Lines.size()) Stop("the record has a new line");
  }
  return 0;
}
