// The data-source step. A server that cannot be reached through a new data source ends the program.

#include "deploy/Deployment.h"
#include "runtime/ErrorTrap.h"
#include "runtime/TextFunctions.h"
#include "startup/InstallContext.h"

namespace talu {
namespace {

constexpr int kAddSystemDsn = 4;
constexpr char kNul = '\0';

std::string Field(const std::vector<std::string>& fields, std::ptrdiff_t index) {
  return Trim(Element(fields, index));
}

std::string SqlServerAttributes(const std::vector<std::string>& fields, const std::string& server) {
  return "DSN=" + Field(fields, 1) + kNul + "SERVER=" + server + kNul +
         "DATABASE=" + Field(fields, 2);
}

std::string AccessAttributes(const std::vector<std::string>& fields) {
  return "DSN=" + Field(fields, 1) + kNul + "DBQ=" + Field(fields, 2) + kNul +
         "UID=" + Field(fields, 3) + kNul + "PWD=" + Field(fields, 4);
}

}  // namespace

bool Deployment::CreateDSN(const std::string& driver, const std::string& attributes) {
  return install_.Machine.Odbc.SQLConfigDataSource(kAddSystemDsn, driver, attributes);
}

void Deployment::CreateSystemDSNs() {
  const ErrorTrap step([this](const RuntimeError& error) {
    install_.WriteErrorEntry(error);
    if (error.Number != error::kUnspecified) return;
    const std::string failed = "Connection to Server failed, Can not continue installation";
    install_.Machine.Windows.MessageBox(failed, "");
    install_.WriteErrLog(failed);
    view_.Status.Caption = failed;
    install_.Machine.Windows.EndProgram();
  });
  view_.Status.Caption = "DSN creation started. Please Wait...";
  step([&] { install_.WriteErrLog("DSN creation started..."); });
  std::unique_ptr<Connection> connection;
  std::vector<std::string> fields;
  std::string line;
  std::string attributes;
  bool ok = false;
  Int16 n;
  step.Assign(n, [&] { return install_.GetCfgCount("SystemDSN"); });
  while (n != 0) {
    step.Assign(line, [&] { return install_.GetCfgValue("SystemDSN", n); });
    step([&] { install_.WriteErrLog("creating - " + line); });
    step.Assign(fields, [&] { return Split(line, ','); });
    // A test that fails continues with what it guards; any other driver gets the text of the line
    // before.
    bool sqlServer = true;
    bool access = false;
    step.Assign(sqlServer, [&] { return Field(fields, 0) == "SQL Server"; });
    if (!sqlServer)
      step.Assign(access, [&] { return Field(fields, 0) == "Microsoft Access Driver (*.mdb)"; });
    if (sqlServer) {
      step.Assign(attributes,
                  [&] { return SqlServerAttributes(fields, install_.State.ServerName); });
    } else if (access) {
      step.Assign(attributes, [&] { return AccessAttributes(fields); });
    }
    step.Assign(ok, [&] { return CreateDSN(Field(fields, 0), attributes); });
    step([&] {
      if (!connection) connection = install_.Machine.DataAccess.CreateConnection();
      connection->Open("DSN=" + Field(fields, 1) + "; UID=" + Field(fields, 3) +
                       "; PWD=" + Field(fields, 4));
    });
    step([&] {
      if (view_.Bar.Width < Int16(kProgressWidth) - StepWeight) {
        view_.Bar.Width = view_.Bar.Width + StepWeight;
      }
    });
    step([&] { --n; });
    step([&] { install_.WriteUninstall("SystemDSN:" + line); });
  }
  const std::string created = "DSN(s) created successfully";
  if (ok) view_.Status.Caption = created;
  step([&] { install_.WriteErrLog(created); });
}

}  // namespace talu
