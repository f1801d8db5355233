#include "PlanComparison.h"

#include <algorithm>
#include <ostream>

#include "Passwords.h"
#include "runtime/TextFunctions.h"

namespace talu::packcheck {
namespace {

using Node = SimulatedDisk::Node;

/// Whether the server writes it: the plan has no such files but those of the pack.
bool IsTheServers(const std::string& name) {
  const std::string ending = UCase(Right(name, 4));
  return ending == ".MDF" || ending == ".LDF" || ending == ".BKP";
}

bool IsText(const std::string& line) {
  return std::ranges::none_of(
      line, [](char c) { return static_cast<unsigned char>(c) < ' ' && c != '\t'; });
}

class Comparison {
 public:
  Comparison(const CodePage& codePage, const std::string& password, std::ostream& out)
      : codePage_(codePage), password_(password), out_(out) {}

  void Compare(const Node& planned, const Node& there, const std::string& folder) {
    for (const auto& [upper, node] : planned.Children) {
      ++Seen;
      const std::string path = folder + "\\" + node->Name;
      const auto found = there.Children.find(upper);
      if (found == there.Children.end()) {
        Tell(path, "is missing");
      } else if (node->IsFolder != found->second->IsFolder) {
        Tell(path, node->IsFolder ? "is no folder" : "is a folder");
      } else if (node->IsFolder) {
        Compare(*node, *found->second, path);
      } else if (!IsTheServers(node->Name)) {
        CompareFiles(node->Content->All(), found->second->Content->All(), path);
      }
    }
    for (const auto& [upper, node] : there.Children) {
      if (planned.Children.contains(upper) || IsTheServers(node->Name)) continue;
      Tell(folder + "\\" + node->Name, "is not planned");
    }
  }

  void Tell(const std::string& path, const std::string& what) {
    out_ << path << ' ' << what << '\n';
    ++Wrong;
  }

  int Seen = 0;
  int Wrong = 0;

 private:
  void CompareFiles(const std::string& planned, const std::string& there, const std::string& path) {
    if (planned == there) return;
    const std::vector<std::string> wanted = Split(codePage_.ToText(planned), '\n');
    const std::vector<std::string> found = Split(codePage_.ToText(there), '\n');
    const auto line = [](const std::vector<std::string>& lines, std::size_t at) {
      return at < lines.size() ? Replace(lines[at], "\r", "") : "";
    };
    std::size_t at = 0;
    while (at < wanted.size() && at < found.size() && wanted[at] == found[at]) ++at;
    std::string what = "differs in line " + std::to_string(at + 1);
    const std::string want = line(wanted, at);
    const std::string have = line(found, at);
    if (!IsText(want + have)) {
      what = "differs";
    } else if (Hidden(want) != want || Hidden(have) != have) {
      what += ", which has a password";  // what is there may be the password but for a letter
    } else {
      what.append(": \"").append(want).append("\" is planned, \"").append(have).append("\" there");
    }
    Tell(path, what);
  }

  std::string Hidden(const std::string& line) const {
    return Replace(WithoutPasswords(line), password_, kHiddenPassword);
  }

  const CodePage& codePage_;
  const std::string& password_;
  std::ostream& out_;
};

/// The host's path of one on the machine's C:.
std::filesystem::path HostPath(const std::filesystem::path& drive, const std::string& path) {
  const std::string below = Replace(path.substr(3), "\\", "/");
  return drive / std::u8string(below.begin(), below.end());
}

}  // namespace

bool IsAsPlanned(PlannedRun& run, const PlanOptions& options,
                 const std::vector<std::string>& shortcuts, const std::filesystem::path& drive,
                 std::ostream& out) {
  const std::string& folder = options.InstallPath;
  SimulatedDisk disk(folder);
  disk.AddHostFolder(HostPath(drive, folder), folder);
  Comparison comparison(run.Machine.CodePage, options.Password, out);
  comparison.Compare(run.Machine.Disk.FolderAt(folder), disk.FolderAt(folder), folder);
  for (const std::string& path : shortcuts) {
    if (!std::filesystem::exists(HostPath(drive, path))) comparison.Tell(path, "is missing");
  }
  if (comparison.Wrong == 0) {
    out << comparison.Seen << " files and folders and " << shortcuts.size()
        << " shortcuts are as planned\n";
  }
  return comparison.Wrong == 0;
}

}  // namespace talu::packcheck
