#include <string_view>

#include "runtime/TextFunctions.h"
#include "startup/InstallContext.h"

namespace talu {
namespace {

/// Whether the key begins with the line. So a line with only the beginning of the key, even an
/// empty one, counts as the key.
bool IsKeyLine(std::string_view key, std::string_view line) {
  return !key.empty() && key.starts_with(line);
}

}  // namespace

std::string InstallContext::ReadCfg() {
  return TextFiles.ReadWhole(Machine.AppPath + "\\AppCfg.txt");
}

std::string InstallContext::GetCfgValue(const std::string& key, Int16 index) {
  const std::string text = ReadCfg();
  LineScanner lines(text);
  std::string_view line;
  std::string_view lastValue;
  std::string_view result;
  bool found = false;
  bool inBlock = false;
  Int16 count = 0;
  while (lines.Next(line)) {
    if (IsKeyLine(key, line)) found = true;
    if (!found) continue;
    if (line == "}") {
      inBlock = false;
      found = false;
    }
    if (inBlock) {
      lastValue = line;
      ++count;
    }
    if (line == "{") inBlock = true;
    if (!lastValue.empty() && inBlock && count == index) result = lastValue;
  }
  return std::string(result);
}

// Unlike `GetCfgValue`, skips blank lines. Packs rely on the difference.
Int16 InstallContext::GetCfgCount(const std::string& key) {
  const std::string text = ReadCfg();
  LineScanner lines(text);
  std::string_view line;
  bool found = false;
  bool inBlock = false;
  Int16 count = 0;
  while (lines.Next(line)) {
    if (TrimView(line).empty()) continue;
    if (IsKeyLine(key, line)) found = true;
    if (!found) continue;
    if (line == "}") {
      inBlock = false;
      found = false;
    }
    if (inBlock) ++count;
    if (line == "{") inBlock = true;
  }
  return count;
}

std::string InstallContext::ServerConnectionString() const {
  return "driver={SQL Server};server=" + State.ServerName + ";uid=" + State.SqlUser +
         ";pwd=" + State.SqlPassword + ";database=Master";
}

}  // namespace talu
