#include "platform/simulated/SimulatedRemoval.h"

#include <utility>

#include "runtime/RuntimeError.h"
#include "runtime/TextFunctions.h"

namespace talu {
namespace {

DiskEntry EntryOf(const SimulatedDisk::Node& node) {
  const EntryKind kind = node.IsFolder ? EntryKind::Folder : EntryKind::File;
  return {node.Name, node.IsLink ? EntryKind::Link : kind, node.Written};
}

}  // namespace

DiskEntry SimulatedRemoval::Look(const std::string& path) {
  journal_.Count("look", path);
  const SimulatedDisk::Node* node = disk_.Find(path);
  return node != nullptr ? EntryOf(*node) : DiskEntry{};
}

std::vector<DiskEntry> SimulatedRemoval::List(const std::string& folder) {
  journal_.Count("list", folder);
  std::vector<DiskEntry> entries;
  for (const auto& [upper, node] : disk_.FolderAt(folder).Children) {
    entries.push_back(EntryOf(*node));
  }
  return entries;
}

void SimulatedRemoval::RemoveFile(const std::string& path) {
  journal_.Request({"delete", {{"path", path}}}, false, [&] {
    const SimulatedDisk::Node* node = disk_.Find(path);
    if (node != nullptr && (node->IsLink || node->IsFolder)) {
      throw RuntimeError(error::kPathFileAccess);
    }
    disk_.DeleteFile(path, true);
  });
}

void SimulatedRemoval::RemoveFolder(const std::string& path) {
  journal_.Request({"rmdir", {{"path", path}}}, false, [&] { disk_.RemoveFolder(path); });
}

void SimulatedRemoval::Replace(const std::string& from, const std::string& to) {
  journal_.Request({"replace", {{"from", from}, {"to", to}}}, false,
                   [&] { disk_.MoveOver(from, to); });
}

bool SimulatedRemoval::SameBytes(const std::string& one, const std::string& other) {
  journal_.Count("compare", one);
  return ContentOf(one).All() == ContentOf(other).All();
}

const FileContent& SimulatedRemoval::ContentOf(const std::string& path) {
  const SimulatedDisk::Node* node = disk_.Find(path);
  if (node == nullptr || node->IsFolder) throw RuntimeError(error::kFileNotFound);
  if (node->Denied) throw RuntimeError(error::kPermissionDenied);
  return *node->Content;
}

std::string SimulatedRemoval::ShortcutTarget(const std::string& path) {
  journal_.Count("shortcut target", path);
  std::string target = ContentOf(path).All();
  if (!Contains(target, ":\\")) throw RuntimeError(error::kInvalidProcedureCall);
  return target;
}

std::optional<DataSource> SimulatedRemoval::SystemDataSource(const std::string& name) {
  journal_.Count("data source", name);
  if (!odbc_.HasSource(name)) return std::nullopt;
  return DataSource{odbc_.Value(name, "DRIVER"), odbc_.Value(name, "SERVER"),
                    odbc_.Value(name, "DATABASE"), odbc_.Value(name, "DBQ")};
}

bool SimulatedRemoval::RemoveSystemDataSource(const std::string& driver, const std::string& name) {
  try {
    journal_.Request({"rmdsn", {{"driver", driver}, {"name", name}}}, true, [&] {
      if (odbc_.Value(name, "DRIVER") != driver || !odbc_.Remove(name)) {
        throw RuntimeError(error::kInvalidProcedureCall, "Driver or data source name not found");
      }
    });
    return true;
  } catch (const RuntimeError&) {
    return false;
  }
}

std::int32_t SimulatedRemoval::RunSystemProgram(const std::string& name,
                                                const std::string& arguments) {
  JournalEvent event{"run", {{"command", name + " " + arguments}}};
  std::int32_t exitCode = -1;
  try {
    journal_.Count("run");
    exitCode = 0;
    for (const auto& [part, code] : ExitCodes) {
      if (Contains(arguments, part)) exitCode = code;
    }
  } catch (const RuntimeError&) {
    exitCode = -1;
  }
  event.Fields.emplace_back("exit", std::int64_t{exitCode});
  journal_.Add(std::move(event));
  return exitCode;
}

}  // namespace talu
