#include "ConvertCommand.h"

#include <algorithm>
#include <stdexcept>

#include "ConvertedFiles.h"
#include "runtime/TextFunctions.h"

namespace talu::packcheck {
namespace {

namespace fs = std::filesystem;

/// The scripts that are meant by a path, in order of their names.
std::vector<fs::path> ScriptsAt(const fs::path& path) {
  if (!fs::exists(path)) throw std::runtime_error("there is no file " + Utf8Path(path));
  if (!fs::is_directory(path)) return {path};
  std::vector<fs::path> scripts;
  for (const auto& entry : fs::directory_iterator(path)) {
    if (entry.is_regular_file() && UCase(Utf8Path(entry.path())).ends_with(".SQL")) {
      scripts.push_back(entry.path());
    }
  }
  if (scripts.empty()) throw std::runtime_error(Utf8Path(path) + " has no .sql files");
  std::ranges::sort(scripts);
  return scripts;
}

}  // namespace

int ConvertCommand(const std::vector<fs::path>& scripts, const ConvertOptions& options,
                   const ConvertTarget& target, std::ostream& out) {
  ConvertedFiles files(options, target, out);
  for (const fs::path& path : scripts) {
    for (const fs::path& script : ScriptsAt(path)) {
      files.Take(script, script.filename(), FileKind::Script);
    }
  }
  files.Write();
  return files.Status();
}

}  // namespace talu::packcheck
