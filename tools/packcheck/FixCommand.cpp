#include <ostream>
#include <stdexcept>
#include <utility>

#include "CheckCommand.h"
#include "ConvertedFiles.h"
#include "FixPack.h"

namespace talu::packcheck {

namespace fs = std::filesystem;

int FixCommand(const fs::path& folder, const ConvertOptions& options, const ConvertTarget& target,
               std::ostream& out) {
  if (!fs::is_directory(folder)) throw std::runtime_error("there is no folder " + Utf8Path(folder));
  ConvertedFiles files(options, target, out);
  CheckedPack pack(folder, options.CodePage);
  if (!pack.HasFile("AppCfg.txt")) {
    throw std::runtime_error(Utf8Path(folder) + " is no pack: it has no AppCfg.txt");
  }
  MendPack(pack, [&](const std::string& path, FileKind kind) {
    return files.Take(pack.Find(path)->Content->HostFile, "", kind);
  });
  files.Write();
  CheckedPack mended(folder, options.CodePage);
  mended.Machine.Disk = std::move(pack.Machine.Disk);
  CheckEverything(mended);
  out << "packcheck check " << (target.InPlace && !target.DryRun ? "finds" : "would then find")
      << " " << CountFindings(mended.Findings) << '\n';
  return files.Status();
}

}  // namespace talu::packcheck
