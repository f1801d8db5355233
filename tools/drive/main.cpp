// drive: plays a script of clicks against the real windows of Setup.exe.

#include <windows.h>
// Needs windows.h before it.
#include <objbase.h>
#include <shellapi.h>

#include <CLI/CLI.hpp>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include "Player.h"
#include "Script.h"
#include "Text.h"

namespace talu::drive {

namespace {

enum ExitStatus { Played = 0, StepFailed = 1, NothingPlayed = 2 };

struct CommandLine {
  std::string ScriptFile;
  std::string Program;
  DWORD ProcessId = 0;
  int Timeout = 60;
  std::string ShotFolder;
  std::vector<std::string> Values;
  bool Verbose = false;
  bool CheckOnly = false;
  bool EndOnFailure = false;
};

/// The arguments in reverse order, as CLI11 takes them.
std::vector<std::string> Arguments() {
  int count = 0;
  wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::string> arguments;
  for (int i = count - 1; i > 0; --i) arguments.push_back(Utf8(wide[i]));
  LocalFree(wide);
  return arguments;
}

std::string ReadFile(const std::string& name) {
  std::ifstream file(std::filesystem::path(Wide(name)), std::ios::binary);
  if (!file) throw std::runtime_error("cannot read the script " + Quoted(name));
  return DecodeFile({std::istreambuf_iterator<char>(file), {}});
}

Variables ReadValues(const std::vector<std::string>& values) {
  Variables variables;
  for (const std::string& value : values) {
    const auto equals = value.find('=');
    if (equals == 0 || equals == std::string::npos) {
      throw std::runtime_error("--set " + value + ": NAME=VALUE expected");
    }
    variables.Set(value.substr(0, equals), value.substr(equals + 1));
  }
  return variables;
}

int Run(const CommandLine& line) {
  Variables variables = ReadValues(line.Values);
  const Script script = ReadScript(ReadFile(line.ScriptFile), variables);
  for (const std::string& error : script.Errors) PrintError(line.ScriptFile + ":" + error);
  if (!script.Errors.empty()) return NothingPlayed;
  if (line.CheckOnly) return Played;

  if (!HasDesktop()) {
    throw std::runtime_error(
        "this session has no desktop, and Setup has windows: start drive in the session of a user "
        "who is logged on");
  }
  SetupProcess setup;
  if (!line.Program.empty()) setup.Start(line.Program);
  if (line.ProcessId != 0) setup.Attach(line.ProcessId);
  PlayOptions options;
  options.ScriptName = line.ScriptFile;
  options.ShotFolder = line.ShotFolder;
  if (options.ShotFolder.empty()) {
    options.ShotFolder = Utf8(std::filesystem::path(Wide(line.ScriptFile)).parent_path().native());
  }
  options.Timeout = std::chrono::seconds(line.Timeout);
  options.Verbose = line.Verbose;
  if (Player(setup, options).Play(script, variables)) return Played;
  if (line.EndOnFailure) setup.Terminate();
  return StepFailed;
}

}  // namespace

int Main() {
  // The shell names folders only to threads that have done this.
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  CommandLine line;
  CLI::App app("Plays a script of clicks against the real windows of Setup.exe.", "drive");
  app.add_option("SCRIPT", line.ScriptFile, "The script, one command a line")->required();
  auto* const start = app.add_option("--start", line.Program, "Start this program and drive it");
  app.add_option("--pid", line.ProcessId, "Drive the process with this id")->excludes(start);
  app.add_option("--timeout", line.Timeout, "Seconds that a step may take to come true")
      ->check(CLI::Range(1, 86400))
      ->capture_default_str();
  app.add_option("--shots", line.ShotFolder, "Folder for screenshots (default: the script's)");
  app.add_option("--set", line.Values, "NAME=VALUE, what ${NAME} stands for in the script")
      ->expected(1)
      ->take_all();
  app.add_flag("--check", line.CheckOnly, "Check the script and play nothing");
  app.add_flag("--end-on-failure", line.EndOnFailure, "End Setup when a step fails");
  app.add_flag("-v,--verbose", line.Verbose, "Print one line a step");
  try {
    app.parse(Arguments());
    return Run(line);
  } catch (const CLI::Success&) {
    PrintLine(app.help());
    return Played;
  } catch (const CLI::ParseError& error) {
    PrintError(std::string("drive: ") + error.what());
  } catch (const std::runtime_error& error) {
    PrintError(std::string("drive: ") + error.what());
  }
  return NothingPlayed;
}

}  // namespace talu::drive

int main() {
  return talu::drive::Main();
}
