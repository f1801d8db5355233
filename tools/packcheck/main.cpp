// packcheck: tells the author of a pack what Setup.exe would do with it.

#include <CLI/CLI.hpp>
#include <exception>
#include <filesystem>
#include <iostream>
#include <new>
#include <string>
#include <vector>

#include "CheckCommand.h"
#include "CommandLine.h"
#include "ConvertCommand.h"
#include "PlanArguments.h"
#include "PlanCommand.h"
#include "runtime/RuntimeError.h"

namespace talu::packcheck {
namespace {

constexpr int kUsage = 2;
constexpr const char* kCodePageHelp =
    "The code page of its text files (1252), as 932, 936, 1250, 1251 or 65001";

CLI::App& AddPlan(CLI::App& app, PlanArguments& given) {
  CLI::App& plan = *app.add_subcommand("plan", "Tell what an installation would do");
  plan.footer(
      "Exit status: 0 the installation came to Finish and nothing failed; 1 the wizard stopped "
      "before, or something is shown as failed (\"fails\", \"error\"), but for the error that the "
      "wizard logs at each data source after the first; 2 it could not be planned. How add-ons end "
      "does not count.");
  std::string group;
  const auto add = [&](const char* name, auto& value, const char* valueName, const char* help) {
    CLI::Option* const option = plan.add_option(name, value, help)->type_name(valueName);
    if (!group.empty()) option->group(group);
    return option->allow_extra_args(false);  // one value each time, or it would take PACK too
  };
  add("PACK", given.Pack, "", "The pack folder")->required();
  add("--type", given.Type, "TYPE", "fresh, demo or upgrade")->required();
  add("--mode", given.Mode, "MODE", "server or client")->required();
  CLI::Option* const json =
      plan.add_flag("--json", given.Json, "Print the journal, one JSON object a line");
  CLI::Option* const brief = plan.add_flag(
      "--brief", given.Brief, "Show what fails and count the rest (a page shows 100 of a kind)");
  plan.add_flag("--full", given.Full, "Show all, however much it is")
      ->excludes(brief)
      ->excludes(json);
  brief->excludes(json);
  add("--save", given.Save, "DIR", "Save the drives at the end into a new folder");
  CLI::Option* const compare = add(
      "--compare", given.Compare, "DIR",
      "A folder that is C: of a machine after this installation: tell what differs from the plan");
  CLI::Option* const uninstall =
      plan.add_flag("--uninstall", given.Uninstall,
                    "Take the installation back at the end, and tell what goes and what stays")
          ->excludes(compare);
  plan.add_flag("--drop-databases", given.DropDatabases, "Its databases and logins go too")
      ->needs(uninstall);

  group = "What the operator does";
  add("--server", given.Server, "NAME", "Type this database server (SERVER)");
  add("--user", given.User, "NAME", "Type this SQL user (sa)");
  add("--password", given.Password, "TEXT", "Type this password (password)");
  plan.add_option_function<std::string>(
          "--password-from",
          [&](const std::string& name) { given.Password = Utf8Environment(name); },
          "Type what this environment variable holds")
      ->type_name("NAME")
      ->group(group);
  add("--install-path", given.InstallPath, "PATH",
      "Browse for this folder (what the page shows, else C:\\Program Files)");
  add("--old-path", given.OldPath, "PATH",
      "Tick the box of the existing application folder and browse for it (upgrade only)");
  plan.add_flag("--twice", given.Twice, "Go back once from every page that allows it")
      ->group(group);

  group = "What the machine is like";
  add("--pack-path", given.PackPath, "PATH", "Where it has the pack (D:\\Pack)");
  add("--code-page", given.CodePage, "NUMBER", kCodePageHelp);
  add("--now", given.Now, "TIME", "What its clock says (\"2012-03-07 09:05\")");
  add("--disk", given.Disk, "DIR", "A folder that is its C: at the start (a new machine's)");
  add("--special-folders", given.SpecialFolders, "FILE",
      "Its special folders in order, one path a line (a new machine's)");
  add("--exit", given.Exits, "NAME=CODE", "How an add-on ends (0); repeatable");
  add("--fail-request", given.FailRequest, "K[=NUMBER]",
      "Request K to the machine fails, with run-time error NUMBER (57)");

  group = "What the server is like";
  add("--database", given.Databases, "NAME", "A database that is there; repeatable");
  add("--login", given.Logins, "NAME", "A login that is there; repeatable");
  add("--fail-sql", given.FailSql, "TEXT[=NUMBER:MESSAGE]",
      "Statements that contain TEXT fail; repeatable");
  plan.add_flag("--accept-all", given.AcceptAll,
                "It keeps no names and accepts all but what --fail-sql says")
      ->group(group);
  return plan;
}

struct CheckArguments {
  std::string Pack;
  std::string Code;
  int CodePage = 1252;
  bool Json = false;
};

CLI::App& AddCheck(CLI::App& app, CheckArguments& given) {
  CLI::App& check = *app.add_subcommand("check", "Find what is likely not meant");
  check.footer(
      "Exit status: 0 the pack is clean, 1 there are warnings, 2 there are errors or it "
      "could not be checked.");
  CLI::Option* const pack = check.add_option("PACK", given.Pack, "The pack folder")->type_name("");
  CLI::Option* const json = check.add_flag("--json", given.Json, "Print one JSON object a finding");
  check.add_option("--code-page", given.CodePage, kCodePageHelp)->type_name("NUMBER");
  check.add_option("--explain", given.Code, "Explain a finding's code")
      ->type_name("CODE")
      ->excludes(pack)
      ->excludes(json);
  return check;
}

int RunCheck(const CheckArguments& given) {
  if (!given.Code.empty()) {
    ExplainCommand(given.Code, std::cout);
    return 0;
  }
  if (given.Pack.empty()) throw std::runtime_error("check: a pack folder is wanted");
  const std::u8string pack(given.Pack.begin(), given.Pack.end());
  return CheckCommand({.Pack = pack, .CodePage = given.CodePage, .Json = given.Json}, std::cout);
}

struct ConvertArguments {
  std::vector<std::string> Paths;
  std::string To;
  ConvertOptions Options;
  ConvertTarget Target;
};

/// What `convert` and `fix` have in common.
void AddConversion(CLI::App& command, ConvertArguments& given) {
  command.footer(
      "Every change is shown before anything is written. Exit status: 0 done, 1 a file was left as "
      "it is, 2 it could not be done.");
  command.add_flag("--in-place", given.Target.InPlace,
                   "Write the files where they are, and keep each as it was beside it (.bak)");
  command.add_flag("--dry-run", given.Target.DryRun, "Write nothing");
  command.add_option("--code-page", given.Options.CodePage, kCodePageHelp)->type_name("NUMBER");
  command.add_flag("--replace-letters", given.Options.ReplaceLetters,
                   "Letters that the code page lacks become ?");
}

CLI::App& AddConvert(CLI::App& app, ConvertArguments& given) {
  CLI::App& convert =
      *app.add_subcommand("convert", "Make scripts of other tools into scripts of a pack");
  convert.add_option("SCRIPT", given.Paths, "Scripts, or folders of them")
      ->type_name("")
      ->required();
  convert.add_option("--to", given.To, "Write them into this folder, over nothing")
      ->type_name("DIR")
      ->allow_extra_args(false);
  AddConversion(convert, given);
  return convert;
}

CLI::App& AddFix(CLI::App& app, ConvertArguments& given) {
  CLI::App& fix = *app.add_subcommand("fix", "Mend what is mechanical in a pack");
  given.Paths.resize(1);
  fix.add_option("PACK", given.Paths.front(), "The pack folder")->type_name("")->required();
  AddConversion(fix, given);
  return fix;
}

std::filesystem::path FromUtf8(const std::string& text) {
  return std::u8string(text.begin(), text.end());
}

int RunConvert(const ConvertArguments& given) {
  std::vector<std::filesystem::path> paths;
  for (const std::string& path : given.Paths) paths.push_back(FromUtf8(path));
  ConvertTarget target = given.Target;
  target.Folder = FromUtf8(given.To);
  if (!given.To.empty() && target.InPlace) {
    throw std::runtime_error("convert: --to and --in-place exclude each other");
  }
  return ConvertCommand(paths, given.Options, target, std::cout);
}

int Run(int count, char** arguments) {
  CLI::App app("packcheck tells what Setup.exe would do with an installation pack.");
  app.name("packcheck");
  app.require_subcommand(1);
  PlanArguments planned;
  const CLI::App& plan = AddPlan(app, planned);
  CheckArguments checked;
  AddCheck(app, checked);
  ConvertArguments converted;
  const CLI::App& convert = AddConvert(app, converted);
  ConvertArguments fixed;
  const CLI::App& fix = AddFix(app, fixed);
  try {
    app.parse(Utf8Arguments(count, arguments));
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : kUsage;
  }
  if (plan.parsed()) return PlanCommand(ReadPlanArguments(planned), std::cout);
  if (convert.parsed()) return RunConvert(converted);
  if (fix.parsed()) {
    return FixCommand(FromUtf8(fixed.Paths.front()), fixed.Options, fixed.Target, std::cout);
  }
  return RunCheck(checked);
}

int Main(int count, char** arguments) {
  std::ios::sync_with_stdio(false);
  HoldStandardFiles();
  int status = kUsage;
  std::string trouble;
  try {
    status = Run(count, arguments);
  } catch (const std::filesystem::filesystem_error& error) {
    const std::u8string name = error.path1().u8string();
    trouble = std::string(name.begin(), name.end()) + ": " + error.code().message();
  } catch (const std::bad_alloc&) {
    trouble = StandardDescription(error::kOutOfMemory);
  } catch (const std::exception& error) {
    trouble = error.what();
  }
  if (!std::cout.flush() && trouble.empty()) trouble = "standard output cannot be written";
  if (trouble.empty()) return status;
  std::cerr << "packcheck: " + trouble + "\n";
  return kUsage;
}

}  // namespace
}  // namespace talu::packcheck

int main(int count, char** arguments) {
  return talu::packcheck::Main(count, arguments);
}
