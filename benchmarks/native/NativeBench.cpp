// Throughput of the configuration readers, the script executor, the backup's scan and the copy, on
// the simulated machine, beside counting lines with memchr and splitting them plainly. Bytes a
// second count the file's bytes once a pass.

#include <benchmark/benchmark.h>

#include <cstring>
#include <string>

#include "Wizard.h"
#include "deploy/MdlCommon.h"
#include "pages/FrmApplication.h"
#include "pages/FrmSQLNonQuery.h"
#include "platform/simulated/SimulatedMachine.h"

namespace talu {
namespace {

std::string Configuration() {
  std::string text =
      "AppTitle\r\n{\r\nDesk\r\n}\r\nFreshDBSript\r\n{\r\na.sql\r\n}\r\nDBSript\r\n{\r\n"
      "a.sql\r\n}\r\nFinalMsg\r\n{\r\n";
  for (int i = 0; i < 30000; ++i)
    text += "a line of the closing message, number " + std::to_string(i) + "\r\n";
  return text + "}\r\n";
}

std::string Script(std::size_t megabytes) {
  std::string text = "--taluGO\r\n";
  int row = 0;
  while (text.size() < megabytes << 20) {
    text += "INSERT INTO dbo.Customer (Name, City) VALUES (N'Customer " + std::to_string(++row) +
            "', N'Somewhere')\r\n";
    if (row % 5 == 0) text += "GO\r\n";
  }
  return text + "GO\r\n";
}

void CountLines(benchmark::State& state, const std::string& text) {
  for (auto _ : state) {
    std::size_t lines = 0;
    const char* at = text.data();
    const char* end = at + text.size();
    while ((at = static_cast<const char*>(
                std::memchr(at, '\n', static_cast<std::size_t>(end - at)))) != nullptr) {
      ++lines;
      ++at;
    }
    benchmark::DoNotOptimize(lines);
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

void SplitLines(benchmark::State& state, const std::string& text) {
  for (auto _ : state) {
    std::string line;
    std::size_t bytes = 0;
    for (std::size_t at = 0; at < text.size();) {
      const std::size_t end = text.find("\r\n", at);
      line.assign(text, at, end - at);
      bytes += line.size();
      at = end + 2;
    }
    benchmark::DoNotOptimize(bytes);
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

void BM_CfgMemchr(benchmark::State& state) {
  CountLines(state, Configuration());
}

void BM_CfgRead(benchmark::State& state, bool count) {
  SimulatedMachine machine;
  const std::string text = Configuration();
  machine.Disk.WriteFile("D:\\Pack\\AppCfg.txt", text);
  Wizard wizard(machine.Parts);
  for (auto _ : state) {
    if (count) {
      benchmark::DoNotOptimize(wizard.GetCfgCount("FinalMsg"));
    } else {
      benchmark::DoNotOptimize(wizard.GetCfgValue("FinalMsg", 15000));
    }
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

void BM_ScriptMemchr(benchmark::State& state) {
  CountLines(state, Script(16));
}
void BM_ScriptPlainSplit(benchmark::State& state) {
  SplitLines(state, Script(16));
}

/// A server that takes every batch and windows that show nothing: what is left is the wizard's own.
class Taker : public Ado, public SimulatedWindows {
 public:
  using SimulatedWindows::SimulatedWindows;

  std::unique_ptr<Connection> CreateConnection() override {
    class Made : public Connection {
      void ConnectionString(const std::string&) override {}
      void Open(const std::string&) override { state_ = 1; }
      void Close() override { state_ = 0; }
      int State() override { return state_; }
      int state_ = 0;
    };
    return std::make_unique<Made>();
  }
  std::unique_ptr<Command> CreateCommand() override {
    class Made : public Command {
      void ActiveConnection(Connection&) override {}
      void CommandTimeout(int) override {}
      void CommandText(const std::string& text) override { text_ = text; }
      void Execute() override { benchmark::DoNotOptimize(text_.data()); }
      std::string text_;
    };
    return std::make_unique<Made>();
  }
  void UpdateControl(FormWindow&, std::size_t, Property) override {}
};

/// A whole build; with `backup` its scan of the same script alone (an empty database folder ends
/// the build behind it). `journal`: on the simulated server and windows, which write all down.
void BM_ScriptRun(benchmark::State& state, bool backup, bool journal) {
  const auto script = std::make_shared<FileContent>();
  script->Bytes = Script(16);
  script->Size = script->Bytes.size();
  for (auto _ : state) {
    state.PauseTiming();
    SimulatedMachine machine;
    Taker taker(machine.Journal, machine.Disk);
    machine.Server.AcceptAll = true;
    machine.Disk.WriteFile("D:\\Pack\\AppCfg.txt",
                           std::string("FreshDBSript\r\n{\r\na.sql\r\n}\r\n") +
                               (backup ? "DBSript\r\n{\r\na.sql\r\n}\r\n" : ""));
    machine.Disk.WriteFile("D:\\Pack\\SQLScript\\Fresh\\a.sql", "");
    machine.Disk.Find("D:\\Pack\\SQLScript\\Fresh\\a.sql")->Content = script;
    machine.Disk.MakeFolders("C:\\App");
    const Machine& whole = machine.Parts;
    Wizard wizard(journal ? whole
                          : Machine{.Windows = taker,
                                    .Files = whole.Files,
                                    .Shell = whole.Shell,
                                    .DataAccess = taker,
                                    .Odbc = whole.Odbc,
                                    .Programs = whole.Programs,
                                    .Scripting = whole.Scripting,
                                    .Settings = whole.Settings,
                                    .Clock = whole.Clock,
                                    .CodePage = whole.CodePage,
                                    .AppPath = whole.AppPath});
    wizard.State.AppFolderPath = "C:\\App";
    wizard.State.DBFolderPath = backup ? "" : "C:\\App\\Data";
    wizard.State.ServerName = "SRV1";
    wizard.State.LogFileNumber = 1;
    wizard.State.UninstallFileNumber = 2;
    state.ResumeTiming();
    machine.Windows.Run([&] { wizard.Page<FrmSQLNonQuery>().Show(); });
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(script->Size));
}

void BM_CopyFiles(benchmark::State& state) {
  constexpr int kFiles = 2000;
  for (auto _ : state) {
    state.PauseTiming();
    SimulatedMachine machine;
    for (int i = 0; i < kFiles; ++i) {
      machine.Disk.WriteFile(
          "D:\\Pack\\Application\\" + std::to_string(i % 50) + "\\" + std::to_string(i) + ".txt",
          "x");
    }
    machine.Disk.MakeFolders("C:\\App");
    Wizard wizard(machine.Parts);
    wizard.State.AppFolderPath = "C:\\App";
    wizard.State.LogFileNumber = 1;
    state.ResumeTiming();
    CopyFolderTree(wizard, wizard.Page<FrmApplication>().View, "D:\\Pack\\Application", "C:\\App");
  }
  state.SetItemsProcessed(state.iterations() * kFiles);
}

BENCHMARK(BM_CfgMemchr)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_CfgRead, GetCfgCount, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_CfgRead, GetCfgValue, false)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ScriptMemchr)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ScriptPlainSplit)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ScriptRun, BuildDatabase, false, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ScriptRun, BackupDatabases, true, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ScriptRun, BuildDatabaseJournal, false, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ScriptRun, BackupDatabasesJournal, true, true)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CopyFiles)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace talu

BENCHMARK_MAIN();
