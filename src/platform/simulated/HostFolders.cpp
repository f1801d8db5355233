// Loads folders of the host into a simulated disk, and saves it to them.

#include <fstream>
#include <set>
#include <stdexcept>

#include "platform/simulated/SimulatedDisk.h"
#include "runtime/NamesOnWindows.h"
#include "runtime/TextFunctions.h"
#include "runtime/Unicode.h"

namespace talu {
namespace {

namespace fs = std::filesystem;

std::string Utf8(const fs::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}

fs::path FromUtf8(const std::string& text) {
  return std::u8string(text.begin(), text.end());
}

/// The name of a host file on a Windows machine.
std::string NameOnWindows(const fs::path& path) {
  std::string name = Utf8(path.filename());
  if (OnlyCharacters(name) != name) {
    throw std::runtime_error(OnlyCharacters(Utf8(path)) + ": the name is not UTF-8");
  }
  if (Contains(name, "\\") || HasForbiddenCharacter(name) || IsDeviceName(name) ||
      name.ends_with('.') || name.ends_with(' ')) {
    throw std::runtime_error(Utf8(path) + ": Windows does not allow this name");
  }
  return name;
}

void AddTree(const fs::path& hostFolder, SimulatedDisk::Node& folder) {
  std::set<std::string> names;
  for (const auto& entry : fs::directory_iterator(hostFolder)) {
    const bool isFolder = entry.is_directory();
    if (!isFolder && !entry.is_regular_file()) continue;
    const std::string name = NameOnWindows(entry.path());
    if (!names.insert(UCase(name)).second) {
      throw std::runtime_error(Utf8(entry.path()) +
                               ": another name in this folder differs from it in case only");
    }
    auto& node = folder.Children[UCase(name)];
    if (!node || node->IsFolder != isFolder) node = std::make_unique<SimulatedDisk::Node>();
    node->Name = name;
    node->IsFolder = isFolder;
    if (isFolder) {
      AddTree(entry.path(), *node);
    } else {
      node->Content = std::make_shared<FileContent>();
      node->Content->HostFile = entry.path();
      node->Content->Size = entry.file_size();
    }
  }
}

void SaveFile(const FileContent& content, const fs::path& target) {
  if (!content.HostFile.empty()) {
    fs::copy_file(content.HostFile, target, fs::copy_options::overwrite_existing);
    return;
  }
  std::ofstream file(target, std::ios::binary);
  if (!file.write(content.Bytes.data(), static_cast<std::streamsize>(content.Bytes.size())).flush())
    throw std::runtime_error("cannot write " + Utf8(target));
}

void SaveTree(const SimulatedDisk::Node& folder, const fs::path& hostFolder,
              const SimulatedDisk::Node* except) {
  fs::create_directories(hostFolder);
  for (const auto& [upper, node] : folder.Children) {
    if (node.get() == except) continue;
    const fs::path target = hostFolder / FromUtf8(node->Name);
    if (node->IsFolder) {
      SaveTree(*node, target, except);
    } else {
      SaveFile(*node->Content, target);
    }
  }
}

}  // namespace

void SimulatedDisk::AddHostFolder(const fs::path& hostFolder, const std::string& path) {
  AddTree(hostFolder, MakeFolders(path));
}

void SimulatedDisk::SaveTo(const fs::path& hostFolder, const std::string& except) {
  const Node* const left = Find(except);
  for (const auto& [name, drive] : root_.Children) {
    SaveTree(*drive, hostFolder / name.substr(0, 1), left);
  }
}

}  // namespace talu
