#include "PlanPlaces.h"

#include <utility>

#include "CheckTwice.h"
#include "runtime/TextFunctions.h"

namespace talu::packcheck {
namespace {

/// Whether the log's text is this batch, before or after its files are moved.
bool IsTold(std::string_view told, const std::string& batch, const std::string& databaseFolder) {
  if (told == batch) return true;
  const std::string folder = MovedFolder(batch);
  return !folder.empty() && told == Replace(batch, folder, databaseFolder);
}

}  // namespace

ScriptPlaces::ScriptPlaces(std::string name, std::string text)
    : name_(std::move(name)), text_(std::move(text)), lines_(text_) {}

std::optional<DatabaseBuild::BatchOrigin> ScriptPlaces::Find(std::string_view batch,
                                                             const std::string& databaseFolder,
                                                             bool again) {
  if (again && IsTold(batch, found_, databaseFolder)) {
    return DatabaseBuild::BatchOrigin{name_, foundLine_};
  }
  found_.clear();
  std::string gathered;
  for (std::string_view line; lines_.Next(line);) {
    ++line_;
    const std::string_view trimmed = TrimView(line);
    if (trimmed.empty()) continue;
    const ScriptLine what = reader_.Take(line, trimmed);
    if (what == ScriptLine::Gathered) {
      if (gathered.empty()) foundLine_ = line_;
      AppendLine(gathered, trimmed);
      continue;
    }
    if (what == ScriptLine::Statement) {
      gathered = line;
      foundLine_ = line_;
    }
    if (!gathered.empty() && IsTold(batch, gathered, databaseFolder)) {
      found_ = std::move(gathered);
      return DatabaseBuild::BatchOrigin{name_, foundLine_};
    }
    gathered.clear();
  }
  return std::nullopt;
}

}  // namespace talu::packcheck
