#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Main.h"
#include "Wizard.h"
#include "platform/simulated/SimulatedMachine.h"
#include "runtime/TextFunctions.h"

namespace talu {

using Texts = std::vector<std::string>;

/// Lines as the platform's text files end them: each "|" is a line end, and one more comes last.
inline std::string Lines(const std::string& text) {
  return Replace(text, "|", "\r\n") + "\r\n";
}

/// A configuration block of lines that "|" divides.
inline std::string Block(const std::string& key, const std::string& values) {
  return Lines(key + "|{" + (values.empty() ? "" : "|" + values) + "|}");
}

/// The parts of a simulated machine, `part` in place of its own of that kind.
template <class Part>
Machine With(SimulatedMachine& machine, Part& part) {
  const auto choose = [&part]<class Kind>(Kind& own) -> Kind& {
    if constexpr (std::is_base_of_v<Kind, Part>) return part;
    return own;
  };
  Machine& own = machine.Parts;
  return {.Windows = choose(own.Windows),
          .Files = own.Files,
          .Shell = own.Shell,
          .DataAccess = choose(own.DataAccess),
          .Odbc = choose(own.Odbc),
          .Programs = own.Programs,
          .Scripting = own.Scripting,
          .Settings = own.Settings,
          .Clock = own.Clock,
          .CodePage = own.CodePage,
          .AppPath = own.AppPath};
}

/// The lists joined.
inline Texts All(std::initializer_list<Texts> parts) {
  Texts joined;
  for (const Texts& part : parts) joined.insert(joined.end(), part.begin(), part.end());
  return joined;
}

/// A text of these lines, as a raw string holds them.
inline std::string Joined(const Texts& lines) {
  std::string text = "\n";
  for (const std::string& line : lines) text += line + "\n";
  return text;
}

/// A machine with a small pack in D:\Pack, and a wizard that has not started. Line ends in the
/// texts that its members return are shown as "|".
class PackTest : public testing::Test {
 public:
  PackTest() { Configure({}); }

  /// Writes AppCfg.txt: the title and the folder names, then blocks, each "KEY=LINE|LINE".
  void Configure(const Texts& blocks) {
    std::string text =
        Block("AppTitle", "Sales Desk") + Block("AppFolder", "App") + Block("DBFolder", "Data");
    for (const std::string& block : blocks) {
      const std::size_t equals = block.find('=');
      text += Block(block.substr(0, equals), block.substr(equals + 1));
    }
    Put("AppCfg.txt", text);
  }
  void Put(const std::string& path, const std::string& bytes) {
    machine.Disk.WriteFile("D:\\Pack\\" + path, bytes);
  }
  std::string Get(const std::string& path) {
    return Replace(machine.Disk.ReadFile(path).value_or("(none)"), "\r\n", "|");
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
  Texts Statements() {
    Texts statements = machine.Journal.Texts("sql", "text");
    for (std::string& statement : statements) statement = Replace(statement, "\r\n", "|");
    return statements;
  }
  /// The log's entries, without the frame that every entry has.
  Texts LogEntries() { return Entries("Ta-luErrLog.txt", "//|"); }
  Texts Records() { return Entries("Uninstall.dat", ""); }
  /// The log's entries between two of them.
  Texts Between(const std::string& first, const std::string& last) {
    const Texts entries = LogEntries();
    const auto start = std::ranges::find(entries, first);
    const auto end = std::find(start, entries.end(), last);
    EXPECT_NE(end, entries.end()) << last;
    return start == entries.end() ? entries : Texts(start + 1, end);
  }
  /// What a control was given, in order.
  Texts Given(const std::string& control) {
    Texts values;
    for (const JournalEvent& event : machine.Journal.Events()) {
      if (event.Text("control") == control) values.push_back(event.Text("value"));
    }
    return values;
  }

  /// From now on the journal tells where pending events are let through.
  void NoteEvents() {
    windows.DuringEvents = [this] { machine.Journal.Add({"events", {}}); };
  }
  /// The journal, a line for each event: what a control was given, what an entry or a record says,
  /// of the rest all that was asked for. A carriage return alone is shown as "~", a NUL as "&". A
  /// failed request is marked. With `first` it begins behind the first line that begins so.
  Texts Story(const std::string& first = "") {
    Texts story;
    bool begun = first.empty();
    for (const JournalEvent& event : machine.Journal.Events()) {
      const std::string line = Told(event);
      if (begun) story.push_back(line);
      begun = begun || line.starts_with(first);
    }
    return story;
  }

  SimulatedMachine machine;
  SimulatedWindows& windows = machine.Windows;
  Wizard wizard{machine.Parts};
  std::string app = "C:\\Progs\\TA-LU\\App";

 private:
  static std::string Told(const JournalEvent& event) {
    std::string line = event.Kind;
    if (event.Kind == "set") {
      line = event.Text("control") + " " + event.Text("value");
    } else if (event.Kind == "print" && event.Text("path").ends_with("Ta-luErrLog.txt")) {
      line = "log " + event.Text("text").substr(4);
    } else if (event.Kind == "print" && event.Text("path").ends_with("Uninstall.dat")) {
      line = "record " + event.Text("text");
    } else {
      for (const auto& [name, value] : event.Fields)
        if (name != "ok") line += " " + event.Text(name);
    }
    line = Replace(Replace(line, "\r\n", "|"), "\r", "~");
    std::ranges::replace(line, '\0', '&');
    while (line.ends_with('|') || line.ends_with(' ')) line.pop_back();
    return line + (event.Error ? " FAILED" : "");
  }
  Texts Entries(const std::string& file, const std::string& head) {
    Texts entries;
    for (const JournalEvent& event : machine.Journal.Events()) {
      if (event.Kind != "print" || event.Error || !event.Text("path").ends_with(file)) continue;
      const std::string text = Replace(event.Text("text"), "\r\n", "|");
      EXPECT_TRUE(text.starts_with(head) && text.ends_with("||")) << text;
      entries.push_back(text.substr(head.size(), text.size() - head.size() - 2));
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
