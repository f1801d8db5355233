#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "platform/simulated/SimulatedMachine.h"
#include "runtime/TextFunctions.h"

namespace talu {

/// What an installation changes on a simulated machine: a text for each thing, "kind name", and
/// what there is to know of it.
struct MachineState {
  static MachineState Of(SimulatedMachine& machine) {
    MachineState state;
    for (const char* drive : {"C:", "D:"}) {
      if (const auto* node = machine.Disk.Find(drive)) state.AddFolder(*node, drive);
    }
    for (const auto& [name, attributes] : machine.Odbc.Sources()) {
      state.Things["source " + name] = attributes;
    }
    for (const std::string& name : machine.Server.Databases) state.Things["database " + name];
    for (const std::string& name : machine.Server.Logins) state.Things["login " + name];
    for (const JournalEvent& event : machine.Journal.Events()) {
      const std::string command = event.Text("command");
      if (event.Error || !command.starts_with("regsvr32 ")) continue;
      const std::string path = Split(command, '"').at(1);
      const bool removes = Contains(UCase(command), "/U");
      if (removes) state.Things.erase("registered " + UCase(path));
      if (!removes) state.Things["registered " + UCase(path)];
    }
    return state;
  }

  /// The texts of what is in one of the two only, or not the same in both.
  static std::set<std::string> Differences(const MachineState& one, const MachineState& other) {
    std::set<std::string> differences;
    const auto compare = [&](const MachineState& from, const MachineState& to) {
      for (const auto& [thing, value] : from.Things) {
        const auto same = to.Things.find(thing);
        if (same == to.Things.end() || same->second != value) differences.insert(thing);
      }
    };
    compare(one, other);
    compare(other, one);
    return differences;
  }

  std::map<std::string, std::string> Things;

 private:
  void AddFolder(const SimulatedDisk::Node& folder, const std::string& path) {
    Things["folder " + path];
    for (const auto& [upper, node] : folder.Children) {
      const std::string below = path + "\\" + node->Name;
      if (node->IsFolder) {
        AddFolder(*node, below);
      } else {
        Things["file " + below] = node->Content->All();
      }
    }
  }
};

}  // namespace talu
