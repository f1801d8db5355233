#include "PlanArguments.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <stdexcept>
#include <utility>

#include "PlanAccount.h"
#include "database/TypeScripts.h"
#include "runtime/Unicode.h"

namespace talu::packcheck {
namespace {

[[noreturn]] void Refuse(const std::string& option, const std::string& text,
                         const std::string& wanted) {
  throw std::runtime_error(option + ": \"" + text + "\" is not " + wanted);
}

std::filesystem::path HostPath(const std::string& utf8) {
  return std::u8string(utf8.begin(), utf8.end());
}

std::filesystem::path HostFolder(const std::string& option, const std::string& utf8) {
  std::filesystem::path folder = HostPath(utf8);
  if (!std::filesystem::is_directory(folder)) Refuse(option, utf8, "a folder");
  return folder;
}

std::int32_t Number(const std::string& option, const std::string& text) {
  std::int32_t number = 0;
  const char* const last = text.data() + text.size();
  const auto [end, failure] = std::from_chars(text.data(), last, number);
  if (failure != std::errc() || end != last) Refuse(option, text, "a whole number of 32 bits");
  return number;
}

InstallType TypeOf(const std::string& text) {
  const auto* found = std::ranges::find(kTypeScripts, text, &TypeScripts::Type);
  if (found != kTypeScripts.end()) return static_cast<InstallType>(found - kTypeScripts.begin());
  Refuse("--type", text, "fresh, demo or upgrade");
}

InstallMode ModeOf(const std::string& text) {
  if (text == "server") return InstallMode::Server;
  if (text == "client") return InstallMode::Client;
  Refuse("--mode", text, "server or client");
}

DateTime TimeOf(const std::string& text) {
  DateTime now;
  int read = 0;
  const int numbers = std::sscanf(text.c_str(), "%4d-%2d-%2d %2d:%2d%n", &now.Year, &now.Month,
                                  &now.Day, &now.Hour, &now.Minute, &read);
  const std::chrono::year_month_day day{std::chrono::year(now.Year),
                                        std::chrono::month(static_cast<unsigned>(now.Month)),
                                        std::chrono::day(static_cast<unsigned>(now.Day))};
  const bool time = now.Hour >= 0 && now.Hour < 24 && now.Minute >= 0 && now.Minute < 60;
  if (numbers != 5 || text.size() != static_cast<std::size_t>(read) || !day.ok() || !time) {
    Refuse("--now", text, "a time such as \"2012-03-07 09:05\"");
  }
  return now;
}

/// A path with a drive letter, without a backslash at its end except for the root of a drive.
std::string MachinePath(const std::string& option, const std::string& text) {
  std::string path = OnlyCharacters(text);
  const bool drive = path.size() >= 3 && path[1] == ':' && path[2] == '\\' &&
                     std::isalpha(static_cast<unsigned char>(path[0])) != 0;
  if (!drive) Refuse(option, text, "a path such as C:\\Folder");
  while (path.size() > 3 && path.ends_with('\\')) path.pop_back();
  return path;
}

/// TEXT or TEXT=NUMBER:MESSAGE, where TEXT may hold "=" too.
StatementFailure FailureOf(const std::string& text) {
  for (std::size_t equals = text.find('=', 1); equals != std::string::npos;
       equals = text.find('=', equals + 1)) {
    const std::size_t colon = text.find_first_not_of("-0123456789", equals + 1);
    if (colon == equals + 1 || colon == std::string::npos || text[colon] != ':') continue;
    const std::int32_t number = Number("--fail-sql", text.substr(equals + 1, colon - equals - 1));
    return {OnlyCharacters(text.substr(0, equals)),
            RuntimeError(number, OnlyCharacters(text.substr(colon + 1)))};
  }
  return {OnlyCharacters(text)};
}

void ReadFailRequest(const std::string& text, PlanOptions& run) {
  const std::size_t equals = text.find('=');
  run.FailRequest = Number("--fail-request", text.substr(0, equals));
  if (run.FailRequest < 1) Refuse("--fail-request", text, "a request, which count from 1");
  if (equals != std::string::npos) {
    run.FailRequestError = Number("--fail-request", text.substr(equals + 1));
  }
}

void ReadExit(const std::string& text, PlanOptions& run) {
  const std::size_t equals = text.rfind('=');
  if (equals == 0 || equals == std::string::npos) Refuse("--exit", text, "NAME=CODE");
  const std::string name = text.substr(0, equals);
  run.ExitCodes[OnlyCharacters(name)] = Number("--exit", text.substr(equals + 1));
}

std::vector<std::string> ReadSpecialFolders(const std::string& file) {
  const std::string option = "--special-folders";
  std::ifstream stream(HostPath(file), std::ios::binary);
  if (!stream) throw std::runtime_error(option + ": cannot read " + file);
  std::vector<std::string> folders;
  for (std::string line; std::getline(stream, line);) {
    if (line.ends_with('\r')) line.pop_back();
    if (!line.empty()) folders.push_back(MachinePath(option, line));
  }
  if (folders.empty()) Refuse(option, file, "a file with one path a line");
  return folders;
}

std::vector<std::string> Texts(const std::vector<std::string>& arguments) {
  std::vector<std::string> texts;
  texts.reserve(arguments.size());
  for (const std::string& argument : arguments) texts.push_back(OnlyCharacters(argument));
  return texts;
}

}  // namespace

PlanCommandOptions ReadPlanArguments(const PlanArguments& arguments) {
  PlanCommandOptions options;
  options.Json = arguments.Json;
  options.TakeBack = arguments.Uninstall;
  options.DropDatabases = arguments.DropDatabases;
  if (arguments.Brief) options.Listed = 0;
  if (arguments.Full) options.Listed = PlanAccount::kAll;
  options.Save = HostPath(arguments.Save);
  PlanOptions& run = options.Run;
  run.Pack = HostFolder("PACK", arguments.Pack);
  run.Type = TypeOf(arguments.Type);
  run.Mode = ModeOf(arguments.Mode);
  if (!arguments.OldPath.empty() && run.Type != InstallType::Upgrade) {
    throw std::runtime_error("--old-path goes with --type upgrade only");
  }
  if (!arguments.Server.empty()) run.Server = OnlyCharacters(arguments.Server);
  if (!arguments.User.empty()) run.User = OnlyCharacters(arguments.User);
  if (arguments.Password) run.Password = OnlyCharacters(*arguments.Password);
  if (!arguments.InstallPath.empty()) {
    run.InstallPath = MachinePath("--install-path", arguments.InstallPath);
  }
  if (!arguments.OldPath.empty()) run.OldPath = MachinePath("--old-path", arguments.OldPath);
  if (!arguments.PackPath.empty()) {
    run.PackPath = MachinePath("--pack-path", arguments.PackPath);
    // A program in the root of a drive has the drive alone as its folder.
    if (run.PackPath.ends_with('\\')) run.PackPath.pop_back();
  }
  run.CodePage = arguments.CodePage;
  if (!arguments.Now.empty()) run.Now = TimeOf(arguments.Now);
  if (!arguments.Disk.empty()) run.Disk = HostFolder("--disk", arguments.Disk);
  if (!arguments.Compare.empty()) {
    options.Compare = HostFolder("--compare", arguments.Compare);
    if (!run.InstallPath.starts_with("C:\\")) {
      throw std::runtime_error("--compare wants --install-path with a folder of C:");
    }
  }
  run.Databases = Texts(arguments.Databases);
  run.Logins = Texts(arguments.Logins);
  for (const std::string& text : arguments.FailSql) run.FailSql.push_back(FailureOf(text));
  run.AcceptAll = arguments.AcceptAll;
  if (!arguments.FailRequest.empty()) ReadFailRequest(arguments.FailRequest, run);
  for (const std::string& text : arguments.Exits) ReadExit(text, run);
  if (!arguments.SpecialFolders.empty()) {
    run.SpecialFolders = ReadSpecialFolders(arguments.SpecialFolders);
  }
  run.Twice = arguments.Twice;
  return options;
}

}  // namespace talu::packcheck
