#include "platform/simulated/SimulatedDisk.h"

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "runtime/NamesOnWindows.h"
#include "runtime/RuntimeError.h"
#include "runtime/TextFiles.h"
#include "runtime/TextFunctions.h"

namespace talu {

std::size_t FileContent::Read(std::uint64_t at, char* buffer, std::size_t size) const {
  if (at >= Size) return 0;
  const auto length = static_cast<std::size_t>(std::min<std::uint64_t>(size, Size - at));
  if (HostFile.empty()) {
    std::copy_n(Bytes.data() + at, length, buffer);
    return length;
  }
  errno = 0;
  std::ifstream host(HostFile, std::ios::binary);
  host.seekg(static_cast<std::streamoff>(at));
  if (!host.read(buffer, static_cast<std::streamsize>(length))) {
    const std::u8string name = HostFile.u8string();
    throw std::runtime_error(
        std::string(name.begin(), name.end()) + " cannot be read" +
        (errno == 0 ? std::string() : ": " + std::generic_category().message(errno)));
  }
  return length;
}

std::string FileContent::All() const {
  if (HostFile.empty()) return Bytes;
  if (Size > kLongestText) throw RuntimeError(error::kOutOfMemory);
  std::string bytes(static_cast<std::size_t>(Size), '\0');
  bytes.resize(Read(0, bytes.data(), bytes.size()));
  return bytes;
}

SimulatedDisk::SimulatedDisk(std::string currentFolder) : currentFolder_(std::move(currentFolder)) {
  root_.IsFolder = true;
  MakeFolders(currentFolder_);
}

std::string SimulatedDisk::FullPath(const std::string& path) const {
  std::string whole = Replace(path, "/", "\\");
  if (whole.starts_with('\\')) {
    whole = currentFolder_.substr(0, 2) + whole;
  } else if (whole.size() < 2 || whole[1] != ':') {
    whole = currentFolder_ + "\\" + whole;
  }
  return NormalizedPath(whole);
}

std::string SimulatedDisk::OwnSpelling(const std::string& path) {
  if (Find(path) == nullptr) return path;
  std::string spelled;
  const Node* node = &root_;
  for (const std::string& piece : Split(FullPath(path), '\\')) {
    node = node->Children.at(UCase(piece)).get();
    spelled += (spelled.empty() ? "" : "\\") + node->Name;
  }
  return spelled;
}

SimulatedDisk::Node* SimulatedDisk::Find(const std::string& path) {
  if (path.empty() || Length(path) >= kMaxPath) return nullptr;
  return NodeAt(FullPath(path));
}

SimulatedDisk::Node* SimulatedDisk::NodeAt(const std::string& fullPath) {
  Node* node = &root_;
  for (const std::string& piece : Split(fullPath, '\\')) {
    const auto child = node->Children.find(UCase(piece));
    if (child == node->Children.end()) return nullptr;
    node = child->second.get();
  }
  return node;
}

SimulatedDisk::Node* SimulatedDisk::Parent(const std::string& fullPath, std::string& name) {
  const std::size_t at = fullPath.rfind('\\');
  if (at == std::string::npos) return nullptr;
  name = fullPath.substr(at + 1);
  Node* parent = NodeAt(fullPath.substr(0, at));
  return parent != nullptr && parent->IsFolder ? parent : nullptr;
}

bool SimulatedDisk::FileExists(const std::string& path) {
  const Node* node = Find(path);
  return node != nullptr && !node->IsFolder;
}

bool SimulatedDisk::FolderExists(const std::string& path) {
  const Node* node = Find(path);
  return node != nullptr && node->IsFolder;
}

void SimulatedDisk::CreateFolder(const std::string& path) {
  if (path.empty()) throw RuntimeError(error::kInvalidProcedureCall);
  if (Find(path) != nullptr) throw RuntimeError(error::kFileAlreadyExists);
  const std::string full = FullPath(path);
  std::string name;
  Node* parent = Length(full) < kMaxFolderPath ? Parent(full, name) : nullptr;
  if (parent == nullptr) throw RuntimeError(error::kPathNotFound);
  if (HasForbiddenCharacter(name)) throw RuntimeError(error::kBadFileNumber);
  if (parent->Denied || IsDeviceName(name)) throw RuntimeError(error::kPermissionDenied);
  auto node = std::make_unique<Node>();
  node->Name = name;
  node->IsFolder = true;
  parent->Children[UCase(name)] = std::move(node);
}

SimulatedDisk::Node& SimulatedDisk::MakeFolders(const std::string& path) {
  Node* node = &root_;
  for (const std::string& piece : Split(FullPath(path), '\\')) {
    auto& child = node->Children[UCase(piece)];
    if (!child) {
      child = std::make_unique<Node>();
      child->Name = piece;
      child->IsFolder = true;
    }
    node = child.get();
  }
  return *node;
}

SimulatedDisk::Node& SimulatedDisk::FolderAt(const std::string& path) {
  Node* node = Find(path);
  if (node == nullptr || !node->IsFolder) throw RuntimeError(error::kPathNotFound);
  if (node->Denied) throw RuntimeError(error::kPermissionDenied);
  return *node;
}

SimulatedDisk::Node& SimulatedDisk::FileForWriting(const std::string& path) {
  if (path.empty()) throw RuntimeError(error::kPathFileAccess);
  Node* node = Find(path);
  if (node != nullptr) {
    if (node->IsFolder || node->ReadOnly) throw RuntimeError(error::kPathFileAccess);
    if (node->Denied || node->Writers > 0) throw RuntimeError(error::kPermissionDenied);
    Touch(*node);
    return *node;
  }
  const std::string full = FullPath(path);
  std::string name;
  Node* parent = Length(full) < kMaxPath ? Parent(full, name) : nullptr;
  if (parent == nullptr) throw RuntimeError(error::kPathNotFound);
  if (HasForbiddenCharacter(name)) throw RuntimeError(error::kBadFileNumber);
  if (parent->Denied || IsDeviceName(name)) throw RuntimeError(error::kPathFileAccess);
  auto made = std::make_unique<Node>();
  made->Name = name;
  made->Content = std::make_shared<FileContent>();
  Touch(*made);
  return *(parent->Children[UCase(name)] = std::move(made));
}

void SimulatedDisk::DeleteFile(const std::string& path, bool force) {
  Node* node = Find(path);
  if (node == nullptr || node->IsFolder) throw RuntimeError(error::kFileNotFound);
  if (node->Denied || node->Writers > 0 || (node->ReadOnly && !force)) {
    throw RuntimeError(error::kPermissionDenied);
  }
  std::string name;
  Node* parent = Parent(FullPath(path), name);
  if (freeSpace_ != UINT64_MAX) freeSpace_ += node->Content->Size;
  parent->Children.erase(UCase(name));
}

void SimulatedDisk::RemoveFolder(const std::string& path) {
  const Node& node = FolderAt(path);
  if (node.IsLink || !node.Children.empty()) throw RuntimeError(error::kPathFileAccess);
  std::string name;
  Node* parent = Parent(FullPath(path), name);
  if (parent == nullptr) throw RuntimeError(error::kPathFileAccess);
  parent->Children.erase(UCase(name));
}

void SimulatedDisk::MoveOver(const std::string& from, const std::string& to) {
  Node* source = Find(from);
  Node* target = Find(to);
  if (source == nullptr || source->IsFolder) throw RuntimeError(error::kFileNotFound);
  if (target != nullptr && (target->IsFolder || target->Denied || target->Writers > 0)) {
    throw RuntimeError(error::kPermissionDenied);
  }
  std::string name;
  Node* folder = Parent(FullPath(to), name);
  std::string sourceName;
  if (folder == nullptr || folder != Parent(FullPath(from), sourceName)) {
    throw RuntimeError(error::kPermissionDenied);
  }
  if (target != nullptr) name = target->Name;
  auto moved = std::move(folder->Children.at(UCase(sourceName)));
  folder->Children.erase(UCase(sourceName));
  moved->Name = name;
  folder->Children[UCase(name)] = std::move(moved);
}

bool SimulatedDisk::CopyFile(const std::string& from, const std::string& to) {
  Node* source = Find(from);
  if (source == nullptr || source->IsFolder || source->Denied) return false;
  try {
    Use(source->Content->Size);
    Node& target = FileForWriting(FolderExists(to) ? to + "\\" + source->Name : to);
    target.Content = source->Content;
    target.Written = source->Written;
    return true;
  } catch (const RuntimeError&) {
    return false;
  }
}

void SimulatedDisk::WriteFile(const std::string& path, std::string bytes) {
  MakeFolders(ParentPath(FullPath(path)));
  auto content = std::make_shared<FileContent>();
  content->Size = bytes.size();
  content->Bytes = std::move(bytes);
  FileForWriting(path).Content = std::move(content);
}

std::optional<std::string> SimulatedDisk::ReadFile(const std::string& path) {
  const Node* node = Find(path);
  if (node == nullptr || node->IsFolder) return std::nullopt;
  return node->Content->All();
}

void SimulatedDisk::Use(std::uint64_t bytes) {
  if (freeSpace_ == UINT64_MAX) return;
  if (bytes > freeSpace_) throw RuntimeError(error::kDiskFull);
  freeSpace_ -= bytes;
}

}  // namespace talu
