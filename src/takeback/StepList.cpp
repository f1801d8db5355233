#include "takeback/StepList.h"

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <map>
#include <set>
#include <utility>

#include "runtime/RuntimeError.h"
#include "runtime/TextFunctions.h"
#include "startup/InstallContext.h"
#include "takeback/Paths.h"

namespace talu {
namespace {

using Kind = Step::Kind;

bool IsOneOf(std::int32_t number, std::initializer_list<std::int32_t> numbers) {
  return std::ranges::find(numbers, number) != numbers.end();
}

class Lister {
 public:
  explicit Lister(const Site& site) : site_(site) {}

  std::vector<Step> List() {
    ListLines(RecordTag::AddOns, Kind::AddOn);
    ListLines(RecordTag::Shotcut, Kind::Shortcut);
    ListShortcutFolders();
    ListComponents();
    ListSettings();
    ListFiles();
    ListLines(RecordTag::SystemDSN, Kind::DataSource);
    ListNames(RecordTag::DBNames, Kind::Database);
    ListNames(RecordTag::DBLogins, Kind::Login);
    ListFolders();
    ListAdded();
    ListOtherLines();
    ListRest();
    return std::move(steps_);
  }

 private:
  void Add(Kind kind, std::string name, std::string detail = "") {
    steps_.push_back({kind, std::move(name), {}, std::move(detail), site_.LastHere});
  }
  /// Whether the line's tag has steps of its own, which can be carried out.
  bool Counts(const RecordLine& line) const {
    return !line.CutOff && site_.IsHere(line.Installation);
  }

  /// The step of this kind for a name that was not yet seen, or the one that has it already.
  Step& StepFor(Kind kind, const RecordLine& line, const std::string& key, std::string name) {
    const auto [known, isNew] = known_.try_emplace({kind, UCase(key)}, steps_.size());
    if (isNew) steps_.push_back({kind, std::move(name), {}, "", line.Installation});
    return steps_[known->second];
  }

  /// A step for each line of a tag, the last one first; of several for the same thing the last.
  void ListLines(RecordTag tag, Kind kind) {
    const auto& lines = site_.Record.Lines;
    for (std::size_t i = lines.size(); i-- > 0;) {
      if (lines[i].Tag != tag || !Counts(lines[i])) continue;
      std::string name = lines[i].Value;
      if (kind == Kind::DataSource) {
        // The line has a password.
        const std::vector<std::string> fields = Split(name, ',');
        name = fields.size() > 1 ? Trim(fields[1]) : Trim(fields.empty() ? "" : fields[0]);
      }
      Step& step = StepFor(kind, lines[i], name, name);
      if (kind == Kind::DataSource && step.Lines.empty()) step.Detail = lines[i].Value;
      step.Lines.push_back(i);
    }
  }

  /// Several shortcuts have the same folder: it goes where it was made, after all of them.
  void ListShortcutFolders() {
    const auto& lines = site_.Record.Lines;
    std::vector<Step> folders;
    std::map<std::string, std::size_t> known;
    for (std::size_t i = 0; i < lines.size(); ++i) {
      if (lines[i].Tag != RecordTag::ShotcutFolder || !Counts(lines[i])) continue;
      const auto [at, isNew] = known.try_emplace(UCase(lines[i].Value), folders.size());
      if (isNew) {
        folders.push_back({Kind::ShortcutFolder, lines[i].Value, {}, "", lines[i].Installation});
      }
      folders[at->second].Lines.push_back(i);
    }
    std::move(folders.rbegin(), folders.rend(), std::back_inserter(steps_));
  }

  /// What was copied below the application folder, or directly into the Windows folder's "system".
  /// Without a list of folders the wizard registers all that is in the application folder, others'
  /// components too.
  void ListComponents() {
    if (site_.Log.Registered.empty()) return;
    std::set<std::string> copied;
    for (const InstallationLog::Copy& copy : site_.Log.Copies) copied.insert(UCase(TargetOf(copy)));
    const std::string system = CleanPath(site_.Machine.Files.GetSpecialFolder(0) + "\\system");
    std::vector<Step> components;
    std::set<std::string> seen;
    for (auto at = site_.Log.Registered.rbegin(); at != site_.Log.Registered.rend(); ++at) {
      const std::string path = CleanPath(*at);
      if (path.empty() || !seen.insert(UCase(path)).second) continue;
      if (Below(site_.Folder, path)) {
        if (site_.Found(path) == EntryKind::File && copied.contains(UCase(path))) {
          components.push_back({Kind::Component, path, {}, "", site_.LastHere});
        }
      } else if (SamePath(FolderOf(path), system)) {
        Add(Kind::SystemComponent, path, std::string(NameOf(path)));
      }
    }
    std::ranges::move(components, std::back_inserter(steps_));
  }

  /// Neither the record nor the log tells them: the pack does, where it is at hand.
  void ListSettings() {
    const std::string& folder = site_.GivenPack.empty() ? site_.LoggedPack : site_.GivenPack;
    if (folder.empty() || (site_.GivenPack.empty() && !IsOnDrive(folder))) return;
    std::map<std::string, std::string> bytes;
    try {
      talu::Machine machine = site_.Machine;
      machine.AppPath = folder;
      InstallContext pack(machine);
      const Int16 n = pack.GetCfgCount("WriteSettings");
      for (Int16 i = 1; i <= n; ++i) {
        const std::vector<std::string> fields = Split(pack.GetCfgValue("WriteSettings", i), ',');
        if (fields.size() < 3 || !Contains(fields[0], ".txt")) continue;
        const std::string path = CleanPath(site_.Folder + fields[0]);
        if (!Below(site_.Folder, path) || site_.Found(path) != EntryKind::File) continue;
        bytes[path] = site_.Machine.CodePage.FromText(fields[1] + Value(fields[2]) + "\r\n");
      }
    } catch (...) {
      // The pack is not at hand, or it is another one.
      const RuntimeError error = CaughtError();
      if (!IsOneOf(error.Number, {error::kFileNotFound, error::kPathNotFound,
                                  error::kPathFileAccess, error::kOverflow})) {
        throw RuntimeError(error);
      }
    }
    for (auto& [path, content] : bytes) {
      if (Cover(path)) Add(Kind::Settings, path, content);
    }
  }

  std::string Value(const std::string& field) const {
    const RecordedInstallation& last = site_.Last();
    const std::string key = UCase(TrimView(field));
    if (key == "SERVER") return last.Server;
    if (key == "USERNAME") return last.User;
    if (key == "PASSWORD") return last.Password;
    return "";
  }

  static std::string TargetOf(const InstallationLog::Copy& copy) {
    return CleanPath(copy.Target + "\\" + std::string(NameOf(copy.Source)));
  }

  void ListFiles() {
    const auto& copies = site_.Log.Copies;
    for (auto copy = copies.rbegin(); copy != copies.rend(); ++copy) {
      const std::string source = CleanPath(copy->Source);
      const std::string path = TargetOf(*copy);
      // A pack whose "Application" is the application folder was there before.
      if (!Below(site_.Folder, path) || site_.IsOwn(path) || SamePath(path, source)) continue;
      NoteFolders(std::string(FolderOf(path)));
      if (site_.Found(path) == EntryKind::File && Cover(path)) Add(Kind::File, path, source);
    }
  }

  /// Notes the folder and those above it as the installation's, up to the application folder.
  void NoteFolders(std::string path) {
    while (Below(site_.Folder, path) && site_.Found(path) == EntryKind::Folder &&
           folders_.insert(UCase(path)).second) {
      path = FolderOf(path);
    }
  }

  void ListFolders() {
    for (const std::string& folder : site_.Log.Folders) NoteFolders(CleanPath(folder));
    for (std::size_t i = 0; i < site_.Record.Installations.size(); ++i) {
      if (site_.IsHere(i)) NoteFolders(CleanPath(site_.Record.Installations[i].DBFolder));
    }
    // A folder stands before what is in it.
    for (auto entry = site_.Entries.rbegin(); entry != site_.Entries.rend(); ++entry) {
      if (!folders_.contains(UCase(entry->Path))) continue;
      Add(Kind::Folder, entry->Path, entry->Unread);
    }
  }

  void ListNames(RecordTag tag, Kind kind) {
    const auto& lines = site_.Record.Lines;
    for (std::size_t i = lines.size(); i-- > 0;) {
      if (lines[i].Tag != tag || !Counts(lines[i])) continue;
      const RecordedNames names = ReadNames(lines[i]);
      // Another server's is another one.
      const std::string& server = site_.Record.Installations[lines[i].Installation].Server;
      for (auto name = names.Names.rbegin(); name != names.Names.rend(); ++name) {
        StepFor(kind, lines[i], *name + "\n" + server, *name).Lines.push_back(i);
      }
      for (const std::string& piece : names.Unreadable) {
        // What was cut out of the creation of a login may have its password.
        const bool shown = kind != Kind::Login;
        Add(kind, shown ? piece : "line " + std::to_string(lines[i].Number),
            "This is no name that can be sent to a server.");
        steps_.back().Lines = {i};
        steps_.back().Installation = lines[i].Installation;
        if (!shown) break;
      }
    }
  }

  /// The uppermost entries that nothing above covers; what is in them is not listed.
  void ListAdded() {
    for (const Site::Entry& entry : site_.Entries) {
      const std::string above = UCase(FolderOf(entry.Path));
      const bool inOurs = above == UCase(site_.Folder) || folders_.contains(above);
      const std::string upper = UCase(entry.Path);
      if (!inOurs || site_.IsOwn(entry.Path)) continue;
      if (!covered_.contains(upper) && !folders_.contains(upper)) {
        Add(Kind::Added, entry.Path,
            entry.Kind == EntryKind::Link ? "It is a link, which is not followed." : "");
      }
    }
  }

  /// Lines that cannot be carried out, those that follow one another together. Their text is not
  /// shown: it may be a password.
  void ListOtherLines() {
    const auto& lines = site_.Record.Lines;
    for (std::size_t i = 0; i < lines.size(); ++i) {
      const std::string why = WhyNot(lines[i]);
      if (why.empty()) continue;
      const bool joins = !steps_.empty() && steps_.back().What == Kind::Line &&
                         steps_.back().Lines.back() + 1 == i && steps_.back().Detail == why &&
                         steps_.back().Installation == lines[i].Installation;
      if (!joins) {
        Add(Kind::Line, "line " + std::to_string(lines[i].Number), why);
        steps_.back().Installation = lines[i].Installation;
      } else {
        const std::string first = std::to_string(lines[steps_.back().Lines.front()].Number);
        steps_.back().Name = "lines " + first + " to " + std::to_string(lines[i].Number);
      }
      steps_.back().Lines.push_back(i);
    }
  }

  std::string WhyNot(const RecordLine& line) const {
    if (line.CutOff) return "The record ends inside this line.";
    if (!site_.IsHere(line.Installation)) {
      const std::string& folder = site_.Record.Installations[line.Installation].AppFolder;
      return folder.empty() ? "No \"AppFolder:\" stands before it."
                            : "It is about the folder " + folder + ".";
    }
    return line.Tag == RecordTag::Unknown ? "It does not begin as a line of the record does." : "";
  }

  void ListRest() {
    const std::string backups = site_.Folder + " BackUp";
    const bool willBe =
        std::ranges::any_of(steps_, [](const Step& step) { return step.What == Kind::Database; });
    if (willBe || site_.Removal.Look(backups).Kind != EntryKind::Missing) {
      Add(Kind::Backups, backups);
    }
    Add(Kind::Program, site_.Folder);
  }

  /// Whether no step has the file yet.
  bool Cover(const std::string& path) { return covered_.insert(UCase(path)).second; }

  const Site& site_;
  std::vector<Step> steps_;
  std::map<std::pair<Kind, std::string>, std::size_t> known_;
  std::set<std::string> covered_;  // files, upper-cased
  std::set<std::string> folders_;  // the installation's own, upper-cased
};

}  // namespace

std::vector<Step> ListSteps(const Site& site) {
  return Lister(site).List();
}

}  // namespace talu
