// What goes wrong within an installation, and what cannot be told of it.
#include <new>
#include <sstream>

#include "PackFolder.h"
#include "PlanCommand.h"

namespace talu::packcheck {
namespace {

class TroubleTest : public testing::Test {
 protected:
  TroubleTest() {
    pack.Put("AppCfg.txt",
             Block("AppTitle", "Sales\r\n") + Block("AppFolder", "App\r\n") +
                 Block("DBFolder", "Data\r\n") + Block("FreshDBSript", "f.sql\r\n") +
                 Block("SystemDSN", "SQL Server,A,Sales,u,p\r\nSQL Server,B,Sales,u,p\r\n") +
                 Block("AddOns", "there.exe\r\nmissing.exe\r\n"));
    pack.Put("SQLScript/Fresh/f.sql", "--taluGO\r\nUSE Master\r\nGO\r\n");
    pack.Put("Application/Help.txt", "help");
    pack.Put("AddOns/there.exe", "");
    options.Pack = pack.Path;
  }
  int Plan(bool json = false) {
    std::ostringstream out;
    const int status = PlanCommand({.Run = options, .Json = json, .Save = {}, .Compare = {}}, out);
    account = out.str();
    return status;
  }

  HostFolder pack;
  PlanOptions options;
  std::string account;
};

TEST_F(TroubleTest, APlanEndsWithOneWhenSomethingFailed) {
  // Two data sources, an add-on that is missing and one with an exit code are no failures.
  options.ExitCodes["there.exe"] = 3010;
  EXPECT_EQ(Plan(), 0) << account;
  EXPECT_NE(account.find("when the object is open."), std::string::npos) << account;
  EXPECT_NE(account.find("missing.exe  ends with -1"), std::string::npos) << account;
  const char* const requests[] = {"mkdir", "copy", "dsn", "read", "print", "sql"};
  for (const char* request : requests) {
    const auto isTheOne = [&] {
      const auto run = packcheck::Plan(options);
      return run->Machine.Journal.FailedRequest() == request && run->Finished();
    };
    options.FailRequest = 1;
    while (options.FailRequest < 1000 && !isTheOne()) ++options.FailRequest;
    if (std::string(request) == "sql") {  // stops at once
      options.FailRequest = 0;
      options.FailSql = {{"USE", StatementError("No.")}};
    }
    EXPECT_EQ(Plan(), 1) << request << "\n" << account;
    EXPECT_NE(account.find(" above.\n"), std::string::npos) << request << "\n" << account;
    EXPECT_EQ(Plan(true), 1) << request;
  }
}

TEST_F(TroubleTest, WhatCannotBeToldEndsThePlan) {
  for (const char* kind : {"set", "mkdir", "print", "copy", "end"}) {
    const auto watch = [&](const PlannedRun&, const JournalEvent& event) {
      if (event.Kind == kind) throw std::bad_alloc();
    };
    EXPECT_THROW(PlannedRun(options, watch), std::runtime_error) << kind;
  }
}

}  // namespace
}  // namespace talu::packcheck
