// Makes packs by chance and tries to break what packcheck promises: a pack that `check` calls clean
// comes to Finish in every type and mode, its record names what it made, a build that fails leaves
// nothing, an upgrade backs up what it changes; and what a plan shows as failed, `check` names.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <filesystem>
#include <iostream>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>
#include <string>

#include "CheckCommand.h"
#include "PlanAccount.h"
#include "RandomPack.h"
#include "TakenBack.h"
#include "database/BatchNames.h"
#include "database/TypeScripts.h"
#include "runtime/TextFunctions.h"

namespace talu::packcheck {
namespace {

namespace fs = std::filesystem;
using Names = std::set<std::string>;

Names Upper(const std::vector<std::string>& names) {
  Names upper;
  for (const std::string& name : names) upper.insert(UCase(name));
  return upper;
}

std::string Listed(const Names& names) {
  std::string list;
  for (const std::string& name : names) list += " " + name;
  return list.empty() ? " none" : list;
}

/// What `check` says of a pack: how many findings of weight, and the files that have one.
struct Checked {
  int Errors = 0;
  int Warnings = 0;
  std::set<std::string> Files;
  std::string Codes;
};

Checked Check(const fs::path& folder) {
  std::ostringstream out;
  CheckCommand({.Pack = folder, .CodePage = 1252, .Json = true}, out);
  Checked checked;
  std::istringstream lines(out.str());
  for (std::string line; std::getline(lines, line);) {
    const auto finding = nlohmann::json::parse(line);
    const std::string weight = finding.at("severity");
    if (weight == "note") continue;
    (weight == "error" ? checked.Errors : checked.Warnings) += 1;
    checked.Files.insert(finding.at("file").get<std::string>());
    checked.Codes += " " + finding.at("code").get<std::string>();
  }
  return checked;
}

/// A planned run: how it went, what it sent and what it recorded.
struct Planned {
  bool Clean = false;
  std::string Trouble;
  /// The types that a pack has no script for cannot be chosen.
  bool Offered = true;
  std::string LastStatement;
  Names RecordedDatabases, RecordedLogins;
  Names MadeDatabases, MadeLogins;
  Names LostDatabases, LostLogins;
  Names Used, BackedUp;
};

/// The names of a line of the record: a count, and the names behind commas.
Names Recorded(const std::string& line) {
  Names names;
  std::vector<std::string> fields = Split(line.substr(line.find(':') + 1), ',');
  for (std::size_t i = 1; i < fields.size(); ++i) {
    names.insert(UCase(BackedUpName(Trim(Replace(fields[i], "\r\n", "")))));
  }
  return names;
}

Names Difference(const Names& from, const Names& without) {
  Names rest;
  for (const std::string& name : from) {
    if (!without.contains(name)) rest.insert(name);
  }
  return rest;
}

Planned Try(const PlanOptions& options) {
  Planned planned;
  std::ostringstream out;
  PlanAccount account(options, out);
  const Names databases = Upper(options.Databases);
  const Names logins = Upper(options.Logins);
  PlannedRun run(options, [&](PlannedRun& sofar, const JournalEvent& event) {
    account.Take(sofar, event);
    const std::string text = event.Text("text");
    if (event.Kind == "print" && text.starts_with("DBNames:")) {
      planned.RecordedDatabases = Recorded(text);
    } else if (event.Kind == "print" && text.starts_with("DBLogins:")) {
      planned.RecordedLogins = Recorded(text);
    } else if (event.Kind == "sql" && !event.Error) {
      sql::Lexer lexer(text);
      const sql::Token verb = lexer.Next();
      const sql::Token second = lexer.Next();
      if (verb.Is("USE")) planned.Used.insert(UCase(second.Value()));
      const std::size_t backup = text.find("BACKUP DATABASE ");
      if (backup != std::string::npos && Contains(text, " BackUp\\Talu_")) {
        sql::Lexer named(std::string_view(text).substr(backup + 16));
        planned.BackedUp.insert(UCase(named.Next().Value()));
      } else {
        planned.LastStatement = text;
      }
    }
  });
  account.End(run);
  planned.Offered = !Contains(run.Stop(), "cannot be chosen");
  planned.Clean = run.Finished() && account.Failures() == 0;
  planned.Trouble = run.Stop() + "\n" + out.str();
  const SimulatedServer& server = run.Machine.Server;
  planned.MadeDatabases = Difference(server.Databases, databases);
  planned.MadeLogins = Difference(server.Logins, logins);
  planned.LostDatabases = Difference(databases, server.Databases);
  planned.LostLogins = Difference(logins, server.Logins);
  return planned;
}

/// The scripts of which the account of a plan tells a failed statement.
std::set<std::string> FailedScripts(const std::string& account) {
  std::set<std::string> scripts;
  std::istringstream lines(account);
  for (std::string line; std::getline(lines, line);) {
    const std::size_t name = line.find(", ");
    const std::size_t end = line.find(" line ");
    if (line.starts_with("  statement ") && end != std::string::npos && Contains(line, ", fails")) {
      scripts.insert(line.substr(name + 2, end - name - 2));
    }
  }
  return scripts;
}

/// Looks for what a pack breaks.
class Trial {
 public:
  Trial(const RandomPack& pack, const fs::path& folder)
      : pack_(pack), folder_(folder), checked_(Check(folder)) {}

  std::string Broken() {
    for (const InstallType type : {InstallType::Fresh, InstallType::Demo, InstallType::Upgrade}) {
      for (const InstallMode mode : {InstallMode::Server, InstallMode::Client}) Install(type, mode);
    }
    return broken_;
  }
  bool Clean() const { return checked_.Errors + checked_.Warnings == 0; }
  const std::string& Codes() const { return checked_.Codes; }

 private:
  void Break(const std::string& what) { broken_ += (broken_.empty() ? "" : "\n") + what; }

  void Install(InstallType type, InstallMode mode) {
    PlanOptions options;
    options.Pack = folder_;
    options.Type = type;
    options.Mode = mode;
    if (type == InstallType::Upgrade) {
      options.Databases = pack_.Databases;
      options.Logins = pack_.Logins;
    }
    const std::string kind = std::string(kTypeScripts.at(static_cast<std::size_t>(type)).Type) +
                             (mode == InstallMode::Server ? " server" : " client");
    const Planned planned = Try(options);
    if (!planned.Offered) return;
    const auto weigh = [&](const std::string& what) {
      if (Clean()) Break(kind + ": check is clean, and " + what);
    };
    // What failed first may be a consequence: then its cause is named, where the pack was changed.
    for (const std::string& script : FailedScripts(planned.Trouble)) {
      const bool named = std::ranges::any_of(checked_.Files, [&](const std::string& file) {
        return file.ends_with("\\" + script) || pack_.Changed.contains(file) ||
               file == "AppCfg.txt";
      });
      if (!named) Break(kind + ": no finding in " + script + ", and it fails");
    }
    if (!planned.Clean) {
      weigh("the plan has trouble: " + planned.Trouble);
      return;
    }
    if (mode == InstallMode::Client) return;
    if (planned.RecordedDatabases != planned.MadeDatabases) {
      weigh("the record has databases" + Listed(planned.RecordedDatabases) + ", made were" +
            Listed(planned.MadeDatabases));
    }
    if (planned.RecordedLogins != planned.MadeLogins) {
      weigh("the record has logins" + Listed(planned.RecordedLogins) + ", made were" +
            Listed(planned.MadeLogins));
    }
    if (type == InstallType::Upgrade) {
      Names missed = Difference(planned.Used, planned.BackedUp);
      missed.erase("MASTER");
      if (!missed.empty()) weigh("the upgrade changes without a backup" + Listed(missed));
      return;
    }
    // What a few letters are part of, the rollback has, too.
    if (planned.LastStatement.size() < 8) return;
    options.FailSql = {{planned.LastStatement}};
    const Planned failed = Try(options);
    if (!failed.MadeDatabases.empty() || !failed.MadeLogins.empty()) {
      weigh("a failed build leaves" + Listed(failed.MadeDatabases) + ";" +
            Listed(failed.MadeLogins));
    }
  }

  const RandomPack& pack_;
  const fs::path& folder_;
  Checked checked_;
  std::string broken_;
};

int Run(std::uint64_t seed, std::uint64_t count, const fs::path& place, bool takeBack) {
  int broken = 0;
  int clean = 0;
  for (std::uint64_t i = seed; i < seed + count; ++i) {
    const RandomPack pack(i);
    fs::remove_all(place);
    pack.WriteTo(place);
    Trial trial(pack, place);
    const std::string what =
        takeBack ? BrokenByTakingBack(pack, place, trial.Clean()) : trial.Broken();
    clean += trial.Clean() ? 1 : 0;
    if (what.empty()) continue;
    ++broken;
    std::cout << "seed " << i << ":" << trial.Codes() << '\n';
    for (const std::string& change : pack.Changes) std::cout << "  " << change << '\n';
    std::cout << what << "\n\n";
  }
  fs::remove_all(place);
  std::cout << count << " packs, " << clean << " of them clean; " << broken << " break a promise\n";
  return broken == 0 ? 0 : 1;
}

}  // namespace
}  // namespace talu::packcheck

int main(int count, char** arguments) {
  CLI::App app("Makes packs by chance and tries to break what packcheck promises about each.");
  std::uint64_t seed = 1;
  std::uint64_t packs = 1;
  bool takeBack = false;
  std::string write;
  app.add_option("--seed", seed, "The first pack's number (1)");
  app.add_option("--count", packs, "How many (1)");
  app.add_flag("--take-back", takeBack, "Take each installation back, and look at nothing else");
  app.add_option("--write", write,
                 "Only write the pack into this new folder, and print its changes");
  CLI11_PARSE(app, count, arguments);
  namespace fs = std::filesystem;
  try {
    if (!write.empty()) {
      const talu::packcheck::RandomPack pack(seed);
      pack.WriteTo(write);
      for (const std::string& change : pack.Changes) std::cout << change << '\n';
      return 0;
    }
    std::string place = (fs::temp_directory_path() / "packs.XXXXXX").string();
    if (mkdtemp(place.data()) == nullptr) throw std::runtime_error("no temporary folder");
    return talu::packcheck::Run(seed, packs, place, takeBack);
  } catch (const std::exception& error) {
    std::cerr << "random_packs: " << error.what() << '\n';
    return 2;
  }
}
