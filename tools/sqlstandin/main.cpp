#include <signal.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include "Catalogue.h"
#include "Journal.h"
#include "Mishaps.h"
#include "Server.h"

namespace {

using namespace talu::standin;

constexpr const char* kDescription =
    "A small server that speaks SQL Server's wire protocol (TDS 7.x) and keeps its databases with\n"
    "SQLite, for trying and testing an installation on a machine without SQL Server.\n"
    "It is NOT a SQL Server: it knows the statements that installation scripts use, only takes\n"
    "note of others, checks no permissions and encrypts nothing. It listens on 127.0.0.1 only.\n"
    "Never keep data in it that you need.";

constexpr const char* kPasswordVariable = "SQLSTANDIN_PASSWORD";

/// Reads the password from a file or the environment, never from the command line, which every user
/// of the machine can read.
std::string ReadPassword(const std::string& file) {
  std::string password;
  if (file.empty()) {
    const char* value = std::getenv(kPasswordVariable);
    if (value == nullptr) {
      throw std::runtime_error(std::string("no password: give --password-file or set ") +
                               kPasswordVariable);
    }
    password = value;
  } else {
    std::ifstream stream(file, std::ios::binary);
    if (!stream) throw std::runtime_error("the password file cannot be read: " + file);
    password.assign(std::istreambuf_iterator<char>(stream), {});
    while (!password.empty() && (password.back() == '\n' || password.back() == '\r')) {
      password.pop_back();
    }
  }
  if (password.empty()) throw std::runtime_error("the password is empty");
  return password;
}

struct Options {
  std::uint16_t Port = 14330;
  std::string Data;
  std::vector<std::string> Drives;
  std::string User = "sa";
  std::string PasswordFile;
  std::string Journal;
  std::string Report;
  bool IsStrict = false;
  std::vector<std::string> NoWrite;
  std::vector<std::string> FailStatements, FailTexts, CutStatements, CutTexts, DelayTexts;
  int Delay = 0;
};

void Declare(CLI::App& app, Options& options) {
  app.add_option("--port", options.Port, "TCP port on 127.0.0.1; 0 takes any free one")
      ->capture_default_str();
  app.add_option("--data", options.Data,
                 "Folder of the server's own state: its catalogue, master, and databases that name "
                 "no files")
      ->required();
  app.add_option("--drive", options.Drives,
                 "C=FOLDER: where file paths that begin with C:\\ lead (repeatable)");
  app.add_option("--user", options.User, "The administrator's login")->capture_default_str();
  app.add_option("--password-file", options.PasswordFile,
                 "File with the administrator's password; without it the environment variable " +
                     std::string(kPasswordVariable) + " is read");
  app.add_option(
      "--journal", options.Journal,
      "File to which every batch received is appended, one JSON object a line, passwords "
      "masked");
  app.add_option(
      "--report", options.Report,
      "File that receives what became of every batch and what there is on the server, as "
      "JSON: at the end, and at SIGUSR1");
  app.add_flag("--strict", options.IsStrict,
               "Refuses what the server does not know; otherwise it is taken note of");
  app.add_option("--no-write", options.NoWrite,
                 "FOLDER: no database file and no backup can be made in C:\\FOLDER or below "
                 "(repeatable)");
  app.add_option("--fail-statement", options.FailStatements,
                 "N[=NUMBER:MESSAGE]: the N-th batch received fails, with error 50000 or this one "
                 "(repeatable)");
  app.add_option("--fail-text", options.FailTexts,
                 "TEXT[=NUMBER:MESSAGE]: every batch that contains the text fails (repeatable)");
  app.add_option("--cut-statement", options.CutStatements,
                 "N: the N-th batch received cuts the connection (repeatable)");
  app.add_option("--cut-text", options.CutTexts,
                 "TEXT: a batch that contains the text cuts the connection (repeatable)");
  app.add_option("--delay", options.Delay, "Milliseconds to wait before each batch")
      ->check(CLI::NonNegativeNumber);
  app.add_option("--delay-text", options.DelayTexts,
                 "TEXT=MILLISECONDS: waits before a batch that contains the text (repeatable)");
  app.footer(
      "Prints \"listening on 127.0.0.1:PORT\" when it is ready. SIGTERM or SIGINT ends it; the "
      "next "
      "start with the same --data goes on with the same databases and logins.");
}

int Run(const Options& options) {
  using Effect = Mishaps::Effect;
  Mishaps mishaps;
  for (const auto& rule : options.FailStatements) mishaps.Add(Effect::Fail, rule, true);
  for (const auto& rule : options.FailTexts) mishaps.Add(Effect::Fail, rule);
  for (const auto& rule : options.CutStatements) mishaps.Add(Effect::Cut, rule, true);
  for (const auto& rule : options.CutTexts) mishaps.Add(Effect::Cut, rule);
  for (const auto& rule : options.DelayTexts) mishaps.Add(Effect::Delay, rule);
  mishaps.DelayAll(std::chrono::milliseconds(options.Delay));
  Drives drives;
  for (const std::string& drive : options.Drives) drives.Add(drive);
  for (const std::string& folder : options.NoWrite) drives.Protect(folder);

  // Every thread inherits this, so that only this one gets the signals.
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGTERM);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGUSR1);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  const Descriptor signal(signalfd(-1, &signals, SFD_CLOEXEC));

  // For a journal that is a pipe: writing fails, and the server reports it.
  ::signal(SIGPIPE, SIG_IGN);

  Catalogue catalogue(options.Data, drives, options.User, ReadPassword(options.PasswordFile));
  Journal journal(options.Journal);
  ServerParts parts{catalogue, journal, mishaps, ServerParts::kUsualLoginTime, options.IsStrict};
  const auto account = [&] {
    if (!options.Report.empty()) parts.Account.Write(options.Report, catalogue, options.IsStrict);
  };
  account();  // before anyone relies on it
  Server server(parts, options.Port);
  std::cout << "listening on 127.0.0.1:" << server.Port() << std::endl;
  server.Run(signal.Number(), [&] {
    signalfd_siginfo which{};
    const bool isRead = read(signal.Number(), &which, sizeof which) == sizeof which;
    if (!isRead || which.ssi_signo != SIGUSR1) return false;
    account();
    return true;
  });
  account();
  return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  CLI::App app{kDescription, "sqlstandin"};
  Declare(app, options);
  CLI11_PARSE(app, argc, argv);
  try {
    return Run(options);
  } catch (const std::exception& error) {
    std::cerr << "sqlstandin: " << error.what() << '\n';
    return EXIT_FAILURE;
  }
}
