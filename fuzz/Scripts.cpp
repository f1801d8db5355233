// The backup's scan, the build and the rollback over two scripts of any content, and once more over
// the second one alone: which statements reach the server, in which order, and which names are
// recorded.

#include <cstdint>
#include <utility>

#include "Naive.h"
#include "Wizard.h"
#include "pages/FrmSQLNonQuery.h"
#include "platform/simulated/SimulatedMachine.h"

namespace talu::naive {
namespace {

const std::string kFolder = "C:\\App\\Data";

/// One reading of the scripts: what each line does, whoever reads.
class Reader {
 public:
  virtual ~Reader() = default;
  /// False: a line that no mode takes ends the reading, where the reader minds.
  bool Read(const std::string& script) {
    batchMode_ = false;
    for (const std::string& line : Lines(script)) {
      if (Trim(line).empty()) continue;
      if (Has(Upper(line), "--TALUGO")) {
        batchMode_ = true;
      } else if (batchMode_ && Upper(Trim(line)) == "GO") {
        Batch(batch_);
        batch_.clear();
      } else if (batchMode_) {
        batch_ += "\r\n" + Trim(line);
      } else if (Has(Upper(line), "--TALULINEBYLINE")) {
        lineMode_ = true;
      } else if (lineMode_) {
        Line(line);
        batch_.clear();
      } else if (Minds()) {
        return false;
      }
    }
    return true;
  }
  std::vector<std::string> Sent;

 protected:
  virtual void Batch(std::string text) = 0;
  virtual void Line(const std::string& text) = 0;
  virtual bool Minds() const = 0;

 private:
  bool batchMode_ = false;
  bool lineMode_ = false;
  std::string batch_;
};

class Backup : public Reader {
 public:
  void Send() {
    const std::vector<std::string> names = Split(list_, ',');
    for (std::size_t i = 1; i <= count_; ++i) {
      std::string name = Trim(At(names, i));
      if (name.empty()) continue;
      if (Has(name, "[")) name.erase(0, 1);
      if (!name.empty() && name.back() == ']') name.pop_back();
      name = Trim(name);
      Sent.push_back("USE Master");
      Sent.push_back("IF  EXISTS (SELECT name FROM sys.databases WHERE name = N'" + name +
                     "') BACKUP DATABASE " + name + " TO  DISK = N'C:\\App BackUp\\Talu_" + name +
                     "_7_3_2012_9_5.bkp ' WITH NOFORMAT, INIT,  NAME = N'" + name +
                     "-Full Database Backup', SKIP, NOREWIND, NOUNLOAD,  STATS = 10");
    }
  }

 protected:
  void Batch(std::string text) override { Line(text); }
  void Line(const std::string& text) override {
    try {
      for (const std::string statement : {"CREATE DATABASE", "ALTER DATABASE"}) {
        if (!Has(text, statement)) continue;
        const long keyword = In(In(1, text, statement), text, "DATABASE");
        const long start = In(keyword, text, " ");
        std::string name = Trim(Cut(text, start, In(start + 1, text, " ") - start));
        if (Has(name, "[")) {
          const long open = In(keyword, text, "[");
          name = Trim(Cut(text, open, In(open, text, "]") - open + 1));
        }
        Add(name);
      }
      if (Has(text, "DROP DATABASE")) {
        const long keyword = In(In(1, text, "DROP DATABASE"), text, "DATABASE");
        Add(Trim(Cut(text, In(keyword, text, " "), static_cast<long>(text.size()))));
      }
      if (Has(text, "USE ")) {
        const long start = In(In(1, text, "USE"), text, " ");
        Add(Trim(Cut(text, start, static_cast<long>(text.size()))));
      }
    } catch (const Error&) {
      // The rest of this batch is not searched.
    }
  }
  bool Minds() const override { return false; }

 private:
  void Add(const std::string& name) {
    if (Has(list_, name) || name.size() > 128) return;
    list_ += "," + name;
    ++count_;
  }

  std::string list_;
  std::size_t count_ = 0;
};

class Build : public Reader {
 public:
  /// The next one: the lists, what was gathered and the line mode stay.
  void Begin(bool failed) {
    DatabaseCount = LoginCount = 0;
    Failed = failed;
  }
  void RollBack() {
    Drop(Databases, DatabaseCount, [this](const std::string& name) {
      Sent.push_back("ALTER DATABASE " + name + " SET OFFLINE WITH ROLLBACK IMMEDIATE");
      Sent.push_back("DROP DATABASE " + name);
    });
    Drop(Logins, LoginCount,
         [this](const std::string& name) { Sent.push_back("DROP LOGIN " + name); });
  }

  std::string Databases;
  std::string Logins;
  std::size_t DatabaseCount = 0;
  std::size_t LoginCount = 0;
  bool Failed = false;

 protected:
  void Batch(std::string text) override {
    if (Has(text, "FILENAME") && Has(text, "CREATE DATABASE")) {
      Move(text);
      Record(text, "CREATE DATABASE", "DATABASE", Databases);
      ++DatabaseCount;
    }
    if (Has(text, "CREATE LOGIN")) {
      Record(text, "CREATE LOGIN", "LOGIN", Logins);
      ++LoginCount;
    }
    if (!text.empty()) Sent.push_back(text);
  }
  void Line(const std::string& text) override { Sent.push_back(text); }
  bool Minds() const override { return true; }

 private:
  void Move(std::string& text) {
    try {
      const long drive = In(1, text, ":\\") - 1;
      const long ending = In(drive, text, ".mdf");
      if (ending == 0) throw Error{};
      long backslash = ending;
      while (backslash > 0 && text[static_cast<std::size_t>(backslash) - 1] != '\\') --backslash;
      const std::string old = Cut(text, drive, backslash - drive);
      std::string moved;
      for (std::size_t at = 0; at < text.size();) {
        if (!old.empty() && text.substr(at, old.size()) == old) {
          moved += kFolder;
          at += old.size();
        } else {
          moved += text[at++];
        }
      }
      text = moved;
    } catch (const Error&) {
      Failed = true;
    }
  }

  void Record(const std::string& text, const char* statement, const char* keyword,
              std::string& list) {
    try {
      const long start = In(In(In(1, text, statement), text, keyword), text, " ");
      list += "," + Cut(text, start, In(start + 1, text, " ") - start);
    } catch (const Error&) {
      Failed = true;
    }
  }

  template <class Do>
  void Drop(const std::string& list, std::size_t count, Do drop) {
    const std::vector<std::string> names = Split(list, ',');
    for (std::size_t i = 1; i <= count && i < names.size(); ++i) {
      if (Trim(names[i]).empty()) continue;
      Sent.push_back("USE Master");
      drop(names[i]);
    }
  }
};

}  // namespace
}  // namespace talu::naive

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace talu;
  // The first byte may put blanks before the first script, so that it lies across two reads.
  const std::string both(data, data + size);
  std::string blanks;
  if (!both.empty() && both[0] == '\1') blanks = std::string(65536 - both.size() / 2, ' ') + "\r";
  const std::size_t half = both.find('\0');
  std::string scripts[] = {blanks + both.substr(0, half),
                           half == std::string::npos ? "" : both.substr(half + 1)};

  SimulatedMachine machine;
  machine.Server.AcceptAll = true;
  machine.Disk.WriteFile("D:\\Pack\\AppCfg.txt", naive::Block("FreshDBSript", {"a.sql", "b.sql"}) +
                                                     naive::Block("DBSript", {"A", "B"}));
  machine.Disk.MakeFolders("C:\\App");
  Wizard wizard(machine.Parts);
  wizard.State.AppFolderPath = "C:\\App";
  wizard.State.AppFolderName = "App";
  wizard.State.DBFolderPath = naive::kFolder;
  wizard.State.ServerName = "SRV1";
  wizard.State.LogFileNumber = 1;
  wizard.State.UninstallFileNumber = 2;

  naive::Backup backup;
  naive::Build build;
  bool formed = true;
  // A byte of the code page is one character: what was counted in bytes is counted right.
  const auto text = [&machine](const std::string& bytes) { return machine.CodePage.ToText(bytes); };
  std::vector<std::string> expected;
  std::vector<std::string> recorded;
  const auto expect = [&](naive::Reader& reader) {
    for (const std::string& statement : reader.Sent) expected.push_back(text(statement));
    reader.Sent.clear();
  };
  for (int builds = 0; builds < 2; ++builds) {
    machine.Disk.WriteFile("D:\\Pack\\SQLScript\\Fresh\\a.sql", scripts[0]);
    machine.Disk.WriteFile("D:\\Pack\\SQLScript\\Fresh\\b.sql", scripts[1]);
    machine.Windows.Run([&] { wizard.Page<FrmSQLNonQuery>().Show(); });
    for (const std::string& script : scripts) backup.Read(script);
    backup.Send();
    expect(backup);
    // What is malformed leaves its connection open, which the next build cannot open.
    build.Begin(!formed);
    formed = build.Read(scripts[0]) && build.Read(scripts[1]);
    const bool succeeds = !build.Failed && formed;
    if (!succeeds) build.RollBack();
    expect(build);
    naive::Same(machine.Journal.Texts("sql", "text"), expected, "statement");
    naive::Same(wizard.State.CreatedDatabaseList, text(build.Databases), "databases");
    naive::Same(wizard.State.CreatedLoginList, text(build.Logins), "logins");
    const bool succeeded = machine.Windows.VisibleForm() == "FrmApplication";
    naive::Same(succeeded ? "yes" : "no", succeeds ? "yes" : "no", "succeeded");
    if (succeeds) {
      recorded.push_back("DBNames:" + std::to_string(build.DatabaseCount) + text(build.Databases));
      recorded.push_back("DBLogins:" + std::to_string(build.LoginCount) + text(build.Logins));
    }
    scripts[0] = std::exchange(scripts[1], "");
  }
  std::vector<std::string> records;
  for (const std::string& print : machine.Journal.Texts("print", "text")) {
    if (print.starts_with("DB")) records.push_back(print.substr(0, print.size() - 4));
  }
  naive::Same(records, recorded, "record");
  return 0;
}
