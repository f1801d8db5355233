#include "Installation.h"

#include <gtest/gtest.h>

#include <map>

#include "unit/Pack.h"

namespace talu {
namespace {

// A build may be the second one over the same server.
constexpr const char* kDatabases =
    "--taluGO|"
    "IF NOT EXISTS (SELECT name FROM sys.databases WHERE name = N'Sales') CREATE DATABASE Sales ON "
    "(FILENAME='C:\\Old\\Sales.mdf')|GO|"
    "IF NOT EXISTS (SELECT name FROM sys.databases WHERE name = N'Stock') CREATE DATABASE Stock ON "
    "(FILENAME='C:\\Old\\Stock.mdf')|GO|"
    "IF NOT EXISTS (SELECT name FROM sys.server_principals WHERE name = N'Seller') CREATE LOGIN "
    "Seller WITH PASSWORD='x'|GO|";

}  // namespace

Installation::Installation(const Scenario& scenario) : scenario_(scenario) {
  PutPack();
  Disk().MakeFolders("C:\\Progs");
  if (scenario.End == Scenario::Ending::Refused) {
    Machine.Server.FailStatements("INSERT 2", StatementError("Refused."));
  }
  if (!scenario.Over) return;
  Run();
  Machine.Clock.Time.Minute += 10;
}

void Installation::PutPack() {
  const std::map<std::string, std::string> pack = {
      {"AppCfg.txt",
       Block("AppTitle", "Sales Desk") + Block("AppFolder", "App") + Block("DBFolder", "DB") +
           Block("FreshDBSript", "a.sql|b.sql") + Block("UpgradeDBSript", "a.sql|b.sql") +
           Block("DemoDBSript", "a.sql|b.sql") + Block("DBSript", "Sales|Stock") +
           Block("SystemDSN", "SQL Server,Sales,Sales,Seller,x|SQL Server,Stock,Stock,Seller,x") +
           Block("Shotcut", "\\app.exe,Desktop,Sales|\\app.exe,StartMenu,Sales") +
           Block("RegnLocation", "\\Parts") + Block("SpecialRegn", "link.ocx") +
           Block("AddOns", "a.exe|b.msi") +
           Block("WriteSettings", "\\s.txt,S=,SERVER|\\u.txt,U=,USERNAME") +
           Block("FinalMsg", "Done")},
      {"Skin\\WindowBack.jpg", "\xFF\xD8"},
      {"Application\\app.exe", "program"},
      {"Application\\help.txt", "text"},
      {"Application\\Parts\\grid.ocx", "component"},
      {"Application\\Parts\\Deep\\readme.txt", "text"},
      {"Application\\Zones\\zone.txt", "text"},
      {"SpecialRegn\\link.ocx", "component"},
      {"AddOns\\a.exe", "program"},
      {"AddOns\\b.msi", "package"}};
  for (const auto& [path, bytes] : pack) Disk().WriteFile("D:\\Pack\\" + path, bytes);
  for (const char* type : {"Fresh", "Upgrade", "Demo"}) {
    const std::string folder = std::string("D:\\Pack\\SQLScript\\") + type;
    // The backup finds the type's own database, and the server takes it for a comment.
    Disk().WriteFile(folder + "\\a.sql",
                     Lines(kDatabases + ("INSERT 0 -- USE " + std::string(type)) + "|GO"));
    const bool malformed = scenario_.End == Scenario::Ending::Malformed;
    Disk().WriteFile(folder + "\\b.sql",
                     Lines(malformed ? "INSERT 1" : "--taluLineByLine|INSERT 1|INSERT 2"));
  }
}

void Installation::Run() {
  finished_ = false;
  wizard_.reset();  // before the windows that it shows
  Windows = std::make_unique<SimulatedWindows>(Machine.Journal, Disk());
  wizard_ = std::make_unique<talu::Wizard>(With(Machine, *Windows));
  Windows->Run([this] { Main(*wizard_); });
  std::map<std::string, int> tries;
  for (;;) {
    const std::string page = Windows->VisibleForm();
    if (page.empty() || ++tries[page] > 3 || !Act(page)) return;
  }
}

bool Installation::Act(const std::string& page) {
  if (page == "FrmType") {
    Windows->Click(scenario_.Type);
  } else if (page == "FrmMode") {
    Windows->Click(scenario_.Mode);
  } else if (page == "FrmAuthentication") {
    for (const auto& [box, text] :
         {std::pair("TxtUsrName", "sa"), {"TxtPsWord", "operator's"}, {"TxtServer", "SRV1"}}) {
      Windows->Type(box, "");
      Windows->Type(box, text);
    }
  } else if (page == "FrmLocation") {
    // Told of an error there, the operator chooses the folder again.
    std::size_t messages = 0;
    do {
      messages = Windows->Messages().size();
      Windows->BrowseAnswers = {"C:\\Progs"};
      Windows->Click("CmdLocation");
    } while (messages != Windows->Messages().size());
    Windows->Type("TxtServer", "SRV1");
  } else if (page == "FrmApplication") {
    finished_ = Shown("Lblmsg") == "Installation finished. Click Finish to Exit." &&
                Windows->Shown("ShpProgBar")->Width == 7325 && Windows->Click("CmdNext");
    return false;
  }
  // A refused click leaves the page to the next try; the database page leaves nothing to press.
  Windows->Click("CmdNext");
  return page != "FrmSQLNonQuery";
}

std::string Installation::Shown(const std::string& control) const {
  const ControlView* view = Windows->Shown(control);
  return view != nullptr ? view->Text : "";
}

std::string Installation::Printed(const std::string& name, std::size_t events) const {
  std::string text;
  for (std::size_t at = 0; at < events; ++at) {
    const JournalEvent& event = Machine.Journal.Events()[at];
    if (event.Kind != "delete" && event.Kind != "print") continue;
    if (event.Error || event.Text("path") != App + name) continue;
    if (event.Kind == "delete") text.clear();
    if (event.Kind == "print") text += event.Text("text");
  }
  return text;
}

std::vector<std::string> Installation::Records() {
  const std::string end = "\r\n\r\n";
  std::string rest = Read("Uninstall.dat");
  std::vector<std::string> records;
  while (!rest.empty()) {
    const std::size_t length = rest.find(end);
    if (length == std::string::npos) {
      ADD_FAILURE() << "half a record: " << rest;
      break;
    }
    records.push_back(rest.substr(0, length));
    rest.erase(0, length + end.size());
  }
  return records;
}

}  // namespace talu
