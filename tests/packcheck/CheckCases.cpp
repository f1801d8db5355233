#include "CheckCases.h"

#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "runtime/TextFunctions.h"

namespace talu::packcheck {
namespace {

constexpr auto kClient = InstallMode::Client;
constexpr auto kUpgrade = InstallType::Upgrade;

using nlohmann::json;

/// Lines, each "|" a line end.
std::string Lines(const std::string& text) {
  return Replace(text, "|", "\r\n");
}

const std::string kTitle = "AppTitle|{|Desk|}|";
const std::string kRest =
    "AppFolder|{|Shop|}|DBFolder|{|Data|}|FreshDBSript|{|A.sql|}|DBSript|{|Sales|}|";
const char* const kA = "SQLScript/Fresh/A.sql";
const std::string kMade =
    "--taluGO|CREATE DATABASE Sales ON (FILENAME = 'C:\\D\\s.mdf')|GO|USE Sales|GO|";
const std::string kPlain = "--taluGO|use master|GO|";

Files Config(const std::string& text) {
  return {{"AppCfg.txt", Lines(text)}};
}
const std::string kLong(100, 'd');

/// What is too long for a line of the data, is no text, or has its mark for a line's end.
const CheckCase kCases[] = {
    {"CFG-TOO-MANY",
     Config("AppTitle|{|" + Replace(std::string(32768, 'x'), "x", "x|") + "}|" + kRest),
     "msgbox Run-time error '6'"},
    {"SQL-BACKUP-LONG",
     {{kA, Lines("--taluGO|PRINT '" + std::string(32767, 'x') + "'|USE master|GO|")}},
     "//\r\nOverflow"},
    {"REG-EXPORT",
     {{"AppCfg.txt", Lines(kTitle + kRest + "RegnLocation|{|\\Parts|}|")},
      {"Application/Parts/a.ocx", Library("Alpha DllRegisterServer")},
      {"Application/Parts/b.ocx", Library("Alpha Beta Gamma")}},
     "start regsvr32 /s \"C:\\Program Files\\TA-LU\\Shop\\Parts\\b.ocx\"",
     kClient,
     InstallType::Fresh,
     "Parts\\b.ocx: warning",
     "a library that is no component"},
    {"APP-LONG-PATH",
     {{"Application/" + kLong + "/" + std::string(131, 'f'), "x"}},
     "copy D:\\Pack\\Application\\" + kLong + "\\f",
     kClient,
     InstallType::Fresh,
     "its path has 260 characters",
     "a file one letter too long"},
    {"", {{"Application/" + kLong + "/" + std::string(130, 'f'), "x"}}, "", kClient},
    {"APP-LONG-PATH",
     {{"Application/" + kLong + "/" + std::string(119, 'f') + "/a.txt", "x"}},
     "!a.txt",
     kClient,
     InstallType::Fresh,
     "its path has 248 characters",
     "a folder one letter too long"},
    {"",
     {{"Application/" + kLong + "/" + std::string(118, 'f') + "/a.txt", "x"}},
     "a.txt",
     kClient},
    {"ACC-LINE", {{"packcheck.ignore", "ADD-FILE | AppCfg.txt | a.exe | not yet there"}}, "!a.exe"},
};

/// The text of a line of the data, a byte for each of its characters.
std::string Bytes(const json& text) {
  const std::string utf8 = text;
  std::string bytes;
  for (std::size_t at = 0; at < utf8.size(); ++at) {
    const unsigned lead = static_cast<unsigned char>(utf8[at]);
    if (lead > 0xC3) throw std::runtime_error("beyond \\u00ff: " + utf8);
    bytes += static_cast<char>(lead < 0x80 ? lead : (lead << 6 | (utf8.at(++at) & 0x3FU)) & 0xFFU);
  }
  return Lines(bytes);
}

CheckCase Mistake(const json& line) {
  CheckCase test;
  for (const auto& [key, value] : line.items()) {
    if (key == "mistake") {
      test.Mistake = value;
    } else if (key == "finds") {
      test.Codes = value == "none" ? "" : value;
    } else if (key == "says") {
      test.Says = value;
    } else if (key == "plan") {
      test.Proof = Lines(value);
    } else if (key == "batches") {
      test.Pack[kA] = "--taluGO\r\n" + Bytes(value);
    } else if (key == "within") {
      test.Pack[kA] = Lines(kMade) + Bytes(value);
    } else if (key == "script") {
      test.Pack[kA] = Bytes(value);
    } else if (key == "blocks") {
      test.Pack["AppCfg.txt"] = Lines(kTitle + kRest) + Bytes(value);
    } else if (key == "config") {
      test.Pack["AppCfg.txt"] = Bytes(value);
    } else if (key == "files") {
      for (const auto& [path, text] : value.items()) {
        test.Pack[path] = text.is_null() ? "-" : Bytes(text);
      }
    } else if (key == "mode" && value == "client") {
      test.Mode = kClient;
    } else if (key == "type" && (value == "demo" || value == "upgrade")) {
      test.Type = value == "demo" ? InstallType::Demo : kUpgrade;
    } else {
      throw std::runtime_error("what is " + key + "?");
    }
  }
  if (test.Mistake.empty() || !line.contains("finds"))
    throw std::runtime_error("no mistake, or no finds");
  return test;
}

}  // namespace

Files PlainPack() {
  Files files = Config(kTitle + kRest);
  files[kA] = Lines(kPlain);
  files["Application/Shop.exe"] = "MZ";
  files["Setup.exe"] = "MZ";
  return files;
}

std::vector<CheckCase> CheckCases() {
  std::vector<CheckCase> cases(std::begin(kCases), std::end(kCases));
  std::ifstream mistakes(TALU_MISTAKES);
  for (std::string line; std::getline(mistakes, line);) {
    if (!line.starts_with("//")) cases.push_back(Mistake(json::parse(line)));
  }
  return cases;
}

}  // namespace talu::packcheck
