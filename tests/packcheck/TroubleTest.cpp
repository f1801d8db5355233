// What goes wrong within an installation, and what goes wrong with packcheck itself.
#include <linux/capability.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <functional>
#include <new>
#include <sstream>

#include "CheckCommand.h"
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

/// While it lives even root cannot read what the permissions do not allow. (Another user could not
/// even come to the folder where it lies below root's own.)
class WithoutPrivilege {
 public:
  WithoutPrivilege() {
    EXPECT_EQ(syscall(SYS_capget, &header_, usual_.data()), 0);
    auto fewer = usual_;
    fewer[0].effective &= ~(1U << CAP_DAC_OVERRIDE | 1U << CAP_DAC_READ_SEARCH);
    EXPECT_EQ(syscall(SYS_capset, &header_, fewer.data()), 0);
  }
  ~WithoutPrivilege() { EXPECT_EQ(syscall(SYS_capset, &header_, usual_.data()), 0); }
  WithoutPrivilege(const WithoutPrivilege&) = delete;
  WithoutPrivilege& operator=(const WithoutPrivilege&) = delete;

 private:
  __user_cap_header_struct header_{_LINUX_CAPABILITY_VERSION_3, 0};
  std::array<__user_cap_data_struct, 2> usual_{};
};

TEST_F(TroubleTest, AFileThatCannotBeReadIsNamed) {
  namespace fs = std::filesystem;
  fs::permissions(pack.Path, fs::perms(0755));
  std::ostringstream out;
  const std::pair<const char*, std::function<void()>> commands[] = {
      {"check", [&] { CheckCommand({pack.Path}, out); }}, {"plan", [&] { Plan(); }}};
  for (const char* file : {"AppCfg.txt", "SQLScript/Fresh/f.sql"}) {
    fs::permissions(pack.Path / file, fs::perms::none);
    for (const auto& [name, command] : commands) {
      std::string said = "(nothing)";
      try {
        const WithoutPrivilege without;
        command();
      } catch (const std::runtime_error& error) {
        said = error.what();
      }
      EXPECT_EQ(said, (pack.Path / file).string() + " cannot be read: Permission denied") << name;
    }
    fs::permissions(pack.Path / file, fs::perms(0644));
  }
}

}  // namespace
}  // namespace talu::packcheck
