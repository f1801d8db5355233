#include "FixPack.h"

#include <algorithm>
#include <array>
#include <limits>
#include <map>
#include <set>
#include <tuple>
#include <utility>
#include <vector>

#include "CheckConfiguration.h"
#include "ConvertScript.h"
#include "database/TypeScripts.h"
#include "runtime/TextFunctions.h"

namespace talu::packcheck {
namespace {

/// The lines of an edited text that stand for a line of the text.
class EditedLines {
 public:
  explicit EditedLines(const ConvertedFile& file) : counted_(file.Decoded.OtherLineEnds == 0) {
    const std::string_view text = file.Decoded.Text;
    std::size_t at = 0;
    int line = 1;
    for (const Edit& edit : file.Edits) {
      line += Ends(text.substr(at, edit.At - at));
      at = edit.At;
      steps_.push_back({line, Ends(text.substr(at, edit.Length)), Ends(edit.New)});
    }
  }

  /// The first and the last one; all where lines ended in other ways, which count otherwise.
  std::pair<int, int> Of(int line) const {
    if (!counted_) return {0, std::numeric_limits<int>::max()};
    int first = line;
    int more = 0;
    for (const Step& step : steps_) {
      if (step.Line > line) break;
      if (step.Line == line) {
        more += step.Added;
      } else {
        first += step.Added - step.Removed;
      }
    }
    return {first, first + more};
  }

 private:
  struct Step {
    int Line = 0;
    int Removed = 0;
    int Added = 0;
  };

  static int Ends(std::string_view text) {
    return static_cast<int>(std::ranges::count(text, '\n'));
  }

  bool counted_;
  std::vector<Step> steps_;
};

/// The same for every path of a file: Fresh\A.sql may be listed as ..\Fresh\A.sql elsewhere.
std::string KeyOf(const CheckedPack& pack, const std::string& path) {
  return UCase(pack.Machine.Disk.FullPath(pack.Machine.Parts.AppPath + "\\" + path));
}

/// Whether there may be something to mend.
bool MayBeMended(const Finding& finding) {
  const std::string_view code = finding.Rule->Code;
  return (code.starts_with("SQL-") && code != "SQL-TEXT-LINES") || code == "CFG-ENCODING" ||
         code == "CFG-LINE-ENDS" || code == "CFG-UTF8";
}

}  // namespace

void MendPack(CheckedPack& pack, const MendFile& mend) {
  const auto put = [&](const std::string& path, FileKind kind) {
    ConvertedFile file = mend(path, kind);
    if (file.IsChanged()) {
      pack.Machine.Disk.WriteFile(pack.Machine.Parts.AppPath + "\\" + path, file.After);
    }
    return file;
  };
  if (!pack.HasFile("AppCfg.txt")) return;
  put("AppCfg.txt", FileKind::Configuration);
  const Configuration configuration(pack);
  // The files so far: whether each is read by lines, without and behind a script that is.
  std::map<std::string, std::array<bool, 2>> taken;
  for (const TypeScripts& type : kTypeScripts) {
    FileKind kind = FileKind::Script;
    for (const CfgLine& listed : configuration.Values(type.Key)) {
      const std::string path = std::string(type.Folder.substr(1)) + std::string(listed.Text);
      if (!pack.HasFile(path)) continue;
      const auto [file, isNew] = taken.try_emplace(KeyOf(pack, path));
      if (isNew) {
        const std::string text = put(path, kind).Decoded.Text;
        file->second = {IsReadByLines(text, false), IsReadByLines(text, true)};
      }
      if (file->second[kind == FileKind::ScriptBehindLines ? 1 : 0]) {
        kind = FileKind::ScriptBehindLines;
      }
    }
  }
}

void MarkMended(CheckedPack& pack, const std::filesystem::path& folder, int codePage,
                const std::function<void(CheckedPack&)>& check) {
  // The scripts of a large pack are not read again for nothing.
  if (std::ranges::none_of(pack.Findings.All(), MayBeMended)) return;
  CheckedPack mended(folder, codePage);
  std::map<std::string, EditedLines> lines;
  MendPack(mended, [&](const std::string& path, FileKind kind) {
    ConvertedFile file = Convert(mended.Read(path).value_or(""), kind, {.CodePage = codePage});
    if (file.IsChanged()) lines.emplace(KeyOf(mended, path), EditedLines(file));
    return file;
  });
  if (lines.empty()) return;
  CheckedPack again(folder, codePage);
  again.Machine.Disk = std::move(mended.Machine.Disk);
  check(again);
  std::set<std::tuple<std::string, std::string_view, int>> left;
  for (const Finding& finding : again.Findings.All()) {
    left.emplace(UCase(finding.Place.File), finding.Rule->Code, finding.Place.Line);
  }
  for (Finding& finding : pack.Findings.All()) {
    const std::string file = UCase(finding.Place.File);
    const auto edited = lines.find(KeyOf(pack, finding.Place.File));
    const auto [first, last] = edited == lines.end()
                                   ? std::pair(finding.Place.Line, finding.Place.Line)
                                   : edited->second.Of(finding.Place.Line);
    const auto next = left.lower_bound({file, finding.Rule->Code, first});
    finding.Mended = next == left.end() || std::get<0>(*next) != file ||
                     std::get<1>(*next) != finding.Rule->Code || std::get<2>(*next) > last;
  }
}

}  // namespace talu::packcheck
