// The three readers of the configuration: count, value, and the build's own.

#include <cstdint>

#include "Naive.h"
#include "Wizard.h"
#include "pages/FrmSQLNonQuery.h"
#include "platform/simulated/SimulatedMachine.h"

namespace talu {
namespace {

/// `GetCfgValue` once more: blank lines have numbers too, and the numbers run on through every
/// block that counts for the key.
std::string Value(const std::string& text, const std::string& key, int index) {
  std::string last;
  std::string result;
  bool found = false;
  bool inBlock = false;
  int count = 0;
  for (const std::string& line : naive::Lines(text)) {
    if (key.substr(0, line.size()) == line) found = true;
    if (!found) continue;
    if (line == "}") found = inBlock = false;
    if (inBlock) {
      last = line;
      ++count;
    }
    if (line == "{") inBlock = true;
    if (!last.empty() && inBlock && count == index) result = last;
  }
  return result;
}

/// How many scripts the build opens; none of them is there. A block's end stays as a name until the
/// next block that counts for the key begins.
int ScriptsOf(const std::string& text) {
  int scripts = 0;
  std::string name;
  bool found = false;
  bool inBlock = false;
  for (const std::string& line : naive::Lines(text)) {
    if (std::string("FreshDBSript").substr(0, line.size()) == line) found = true;
    if (!found) continue;
    if (inBlock) name = line;
    if (line == "{") inBlock = true;
    if (line == "}") found = inBlock = false;
    if (name.empty() || !inBlock) continue;
    ++scripts;
    name.clear();
  }
  return scripts;
}

}  // namespace
}  // namespace talu

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace talu;
  const std::string text(data, data + size);
  SimulatedMachine machine;
  machine.Disk.WriteFile("D:\\Pack\\AppCfg.txt", text);
  machine.Disk.MakeFolders("D:\\Pack\\SQLScript\\Fresh");
  machine.Disk.MakeFolders("C:\\App");
  Wizard wizard(machine.Parts);
  for (const char* key : {"FreshDBSript", "DBSript", "AppTitle"}) {
    const std::size_t count = naive::Values(text, key, true).size();
    naive::Same(std::to_string(int{wizard.GetCfgCount(key)}), std::to_string(count), "count");
    for (int index = 0; index < 6; ++index)
      naive::Same(wizard.GetCfgValue(key, index), machine.CodePage.ToText(Value(text, key, index)),
                  "value");
  }

  // The backup opens a script for each name, and so does the build.
  std::size_t opened = 0;
  for (std::size_t i = 1; i <= naive::Values(text, "DBSript", true).size(); ++i)
    opened += Value(text, "FreshDBSript", static_cast<int>(i)).empty() ? 0 : 1;
  opened += static_cast<std::size_t>(ScriptsOf(text));
  wizard.State.AppFolderPath = "C:\\App";
  wizard.State.DBFolderPath = "C:\\App\\Data";
  wizard.State.ServerName = "SRV1";
  wizard.State.LogFileNumber = 1;
  wizard.State.UninstallFileNumber = 2;
  machine.Windows.Run([&] { wizard.Page<FrmSQLNonQuery>().Show(); });
  std::size_t errors = 0;
  for (const JournalEvent& event : machine.Journal.Events()) {
    if (event.Kind == "print" && event.Text("text").starts_with("//\r\n//\r\n")) ++errors;
    if (event.Text("form") == "FrmApplication") break;
  }
  naive::Same(std::to_string(errors), std::to_string(opened), "scripts");
  return 0;
}
