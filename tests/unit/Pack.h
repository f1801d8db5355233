#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Main.h"
#include "Wizard.h"
#include "platform/simulated/SimulatedMachine.h"
#include "runtime/TextFunctions.h"

namespace talu {

/// Lines joined the way the platform's text files end them.
inline std::string CrLfLines(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + "\r\n";
  return text;
}

/// A configuration block.
inline std::string Block(const std::string& key, const std::vector<std::string>& values) {
  return CrLfLines({key, "{"}) + CrLfLines(values) + "}\r\n";
}

/// A machine with a small pack in D:\Pack, and a wizard that has not started.
class PackTest : public testing::Test {
 public:
  PackTest() { Configure({}); }

  /// Writes AppCfg.txt: the title and the folder names, then `blocks`.
  void Configure(const std::vector<std::string>& blocks) {
    std::string text = Block("AppTitle", {"Sales Desk"}) + Block("AppFolder", {"App"}) +
                       Block("DBFolder", {"Data"});
    for (const std::string& block : blocks) text += block;
    machine.Disk.WriteFile("D:\\Pack\\AppCfg.txt", text);
  }
  void Put(const std::string& path, const std::string& bytes) {
    machine.Disk.WriteFile("D:\\Pack\\" + path, bytes);
  }
  std::string Get(const std::string& path) {
    return machine.Disk.ReadFile(path).value_or("(none)");
  }

  void Start() {
    windows.Run([this] { Main(wizard); });
  }
  /// From the first page to the location page, the folder chosen; `server` is typed in client mode.
  void GoToLocation(const std::string& type, const std::string& mode, const std::string& root) {
    Start();
    windows.Click(type);
    windows.Click("CmdNext");
    windows.Click(mode);
    windows.Click("CmdNext");
    if (mode == "OptServer") {
      windows.Type("TxtUsrName", "sa");
      windows.Type("TxtPsWord", "secret");
      windows.Type("TxtServer", "SRV1");
      windows.Click("CmdNext");
    }
    windows.BrowseAnswers = {root};
    windows.Click("CmdLocation");
    if (mode == "OptClient") windows.Type("TxtServer", "SRV1");
  }
  /// A whole installation, to the last page or to where it stops.
  void Install(const std::string& mode, const std::string& type = "OptFresh") {
    GoToLocation(type, mode, "C:\\Progs");
    windows.Click("CmdNext");
  }

  std::string Shown(const std::string& control) {
    const ControlView* view = windows.Shown(control);
    return view != nullptr ? view->Text : "(none)";
  }
  int Width() { return windows.Shown("ShpProgBar")->Width; }
  std::vector<std::string> Statements() { return machine.Journal.Texts("sql", "text"); }
  /// The log's entries, without the frame that every entry has.
  std::vector<std::string> LogEntries() { return Entries("Ta-luErrLog.txt", "//\r\n"); }
  std::vector<std::string> Records() { return Entries("Uninstall.dat", ""); }

  /// From now on the journal tells where pending events are let through.
  void NoteEvents() {
    windows.DuringEvents = [this] { machine.Journal.Add({"events", {}}); };
  }
  /// The journal, a short line for each event: what a control was given, what an entry or a record
  /// says, of the rest its first text. A failed request is marked.
  std::vector<std::string> Story() {
    std::vector<std::string> story;
    for (const JournalEvent& event : machine.Journal.Events()) {
      std::string line = event.Kind;
      if (event.Kind == "set") {
        line = event.Text("control") + " " + event.Text("value");
      } else if (event.Kind == "print") {
        line = event.Text("path").ends_with("Ta-luErrLog.txt") ? "log " : "record ";
        line += event.Text("text");
      } else if (!event.Fields.empty()) {
        line += " " + event.Text(event.Fields.front().first);
      }
      line = Replace(line, "\r\n", "|").substr(0, 60);
      while (line.ends_with('|')) line.pop_back();
      story.push_back(line + (event.Error ? " FAILED" : ""));
    }
    return story;
  }

  SimulatedMachine machine;
  SimulatedWindows& windows = machine.Windows;
  Wizard wizard{machine.Parts};
  std::string app = "C:\\Progs\\TA-LU\\App";

 private:
  std::vector<std::string> Entries(const std::string& file, const std::string& head) {
    std::vector<std::string> entries;
    for (const JournalEvent& event : machine.Journal.Events()) {
      if (event.Kind != "print" || event.Error || !event.Text("path").ends_with(file)) continue;
      const std::string text = event.Text("text");
      EXPECT_TRUE(text.starts_with(head) && text.ends_with("\r\n\r\n")) << text;
      entries.push_back(text.substr(head.size(), text.size() - head.size() - 4));
    }
    return entries;
  }
};

/// A machine with its wizard, beside the test's own.
struct Stage : PackTest {
  void TestBody() override {}
};

/// Plays on a stage with a full disk for one request: the one that comes `behind` requests behind
/// the first entry or record that contains `text`. Which one that is shows a rehearsal.
inline std::unique_ptr<Stage> PlayFailing(const std::string& text, int behind,
                                          const std::function<void(PackTest&)>& play) {
  int request = 0;
  Stage rehearsal;
  const Journal& journal = rehearsal.machine.Journal;
  std::vector<std::pair<int, std::size_t>> prints;
  rehearsal.machine.Journal.OnRequest = [&](int number, const std::string& kind) {
    if (kind == "print") prints.emplace_back(number, journal.Events().size());
  };
  play(rehearsal);
  for (const auto& [number, event] : prints) {
    if (request == 0 && Contains(journal.Events().at(event).Text("text"), text))
      request = number + behind;
  }
  EXPECT_NE(request, 0) << text;
  auto stage = std::make_unique<Stage>();
  stage->machine.Journal.FailRequest(request, RuntimeError(error::kDiskFull));
  play(*stage);
  return stage;
}

}  // namespace talu
