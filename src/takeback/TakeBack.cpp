#include "takeback/TakeBack.h"

#include <algorithm>
#include <set>

#include "runtime/RuntimeError.h"
#include "runtime/TextFunctions.h"
#include "takeback/Paths.h"
#include "takeback/StepList.h"
#include "takeback/Undoing.h"

namespace talu {
namespace {

using Fate = Verdict::Fate;

/// Tags of lines that say where the others belong.
bool IsContext(RecordTag tag) {
  return tag == RecordTag::AppFolder || tag == RecordTag::DBFolder || tag == RecordTag::Server ||
         tag == RecordTag::UsrName || tag == RecordTag::PsWord;
}

bool IsLeft(const Verdict& verdict) {
  return verdict.What == Fate::Left;
}

constexpr const char* kProgramStays = "It stays until nothing is left.";
constexpr const char* kFolderStays = "The folder stays: it is not empty.";
constexpr const char* kFolderAbove = "The folder stays: its record leads upwards, by \"..\".";

/// Why the application folder stays when all in it has gone or will have; empty when it goes too.
std::string WhyFolderStays(const Site& place, bool empty) {
  const std::string& recorded = place.Last().AppFolder;
  // Such a path may lead to a folder that was there before.
  if (InStr(Replace(recorded, "/", "\\") + "\\", "\\..\\") > 0) return kFolderAbove;
  return empty ? "" : kFolderStays;
}

}  // namespace

const char* KindName(Step::Kind kind) {
  switch (kind) {
    case Step::Kind::AddOn:
      return "add-on";
    case Step::Kind::Shortcut:
      return "shortcut";
    case Step::Kind::ShortcutFolder:
      return "shortcut folder";
    case Step::Kind::SystemComponent:
      return "system component";
    case Step::Kind::Component:
      return "component";
    case Step::Kind::Settings:
      return "settings file";
    case Step::Kind::File:
      return "file";
    case Step::Kind::DataSource:
      return "data source";
    case Step::Kind::Database:
      return "database";
    case Step::Kind::Login:
      return "login";
    case Step::Kind::Folder:
      return "folder";
    case Step::Kind::Added:
      return "added";
    case Step::Kind::Line:
      return "record";
    case Step::Kind::Backups:
      return "backups";
    case Step::Kind::Program:
      return "program";
  }
  return "";
}

/// What was read, and the steps.
class TakeBack::Work {
 public:
  Work(const Machine& machine, Removal& removal, const std::string& program,
       const std::string& packFolder)
      : Place(machine, removal, program, packFolder), Steps(ListSteps(Place)) {}

  /// The end of a run, in which `verdicts` were given: the record keeps what has not gone; when
  /// nothing is left, the log, the record, the program and the folders go. The record goes before
  /// the program, which can be run again when it does not go, and is put back when the program does
  /// not.
  Verdict Finish(const std::vector<Verdict>& verdicts) {
    try {
      const bool there = Place.Removal.Look(Place.RecordPath()).Kind == EntryKind::File;
      if (!there || ReadBytes(Place.Machine.Files, Place.RecordPath()) != Place.RecordBytes) {
        return {Fate::Left, "The record was changed while this was at work."};
      }
      if (std::ranges::any_of(verdicts, IsLeft)) {
        KeepOnly(verdicts);
        return {Fate::Left, kProgramStays};
      }
      return RemoveProgram();
    } catch (...) {
      return {Fate::Left, WhyLeft(CaughtError())};
    }
  }

  Site Place;
  const std::vector<Step> Steps;

 private:
  void RemoveIfThere(const std::string& path) {
    if (Place.Removal.Look(path).Kind == EntryKind::File) Place.Removal.RemoveFile(path);
  }

  Verdict RemoveProgram() {
    Removal& removal = Place.Removal;
    RemoveIfThere(Place.NewRecordPath());
    RemoveIfThere(Place.LogPath());
    RemoveIfThere(Place.RecordPath());
    try {
      RemoveIfThere(Place.Path(Place.Program));
    } catch (...) {
      const RuntimeError error = CaughtError();
      WriteRecord(Place.RecordBytes);
      throw RuntimeError(error);
    }
    const std::string stays = WhyFolderStays(Place, removal.List(Place.Folder).empty());
    if (!stays.empty()) return {Fate::Goes, stays};
    removal.RemoveFolder(Place.Folder);
    const std::string product(FolderOf(Place.Folder));
    const bool ours =
        SamePath(NameOf(product), "TA-LU") && removal.Look(product).Kind == EntryKind::Folder;
    if (ours && removal.List(product).empty()) removal.RemoveFolder(product);
    return {};
  }

  /// Writes the record anew, beside the old one and then in its place.
  void WriteRecord(const std::string& bytes) {
    const std::string path = Place.NewRecordPath();
    RemoveIfThere(path);
    if (Place.Removal.Look(path).Kind != EntryKind::Missing) {
      throw RuntimeError(error::kPathFileAccess);
    }
    Place.Machine.Files.OpenTextFile(path, OpenMode::Output)->Write(bytes);
    Place.Removal.Replace(path, Place.RecordPath());
  }

  /// Keeps the lines of what has not gone: what stayed by choice may go the next time.
  void KeepOnly(const std::vector<Verdict>& verdicts) {
    std::set<std::size_t> lines;
    std::set<std::size_t> installations = {Place.LastHere};
    for (std::size_t i = 0; i < verdicts.size(); ++i) {
      if (verdicts[i].What == Fate::Goes) continue;
      lines.insert(Steps[i].Lines.begin(), Steps[i].Lines.end());
      installations.insert(Steps[i].Installation);
    }
    const std::vector<RecordLine>& all = Place.Record.Lines;
    for (const std::size_t line : lines) installations.insert(all[line].Installation);
    std::string text;
    std::size_t kept = 0;
    for (std::size_t i = 0; i < all.size(); ++i) {
      const bool context = IsContext(all[i].Tag) && installations.contains(all[i].Installation);
      if (!context && !lines.contains(i)) continue;
      ++kept;
      text += all[i].Raw;
      if (!all[i].CutOff) text += "\r\n\r\n";
    }
    if (kept != all.size()) WriteRecord(text);
  }
};

TakeBack::TakeBack(const Machine& machine, Removal& removal, const std::string& program,
                   const std::string& packFolder)
    : work_(std::make_unique<Work>(machine, removal, program, packFolder)) {}

TakeBack::~TakeBack() = default;

const std::string& TakeBack::Server() const {
  return work_->Place.Last().Server;
}

const std::string& TakeBack::Login() const {
  return work_->Place.Last().User;
}

const std::string& TakeBack::PackFolder() const {
  return work_->Place.LoggedPack;
}

bool TakeBack::HasDatabases() const {
  return std::ranges::any_of(work_->Steps, [](const Step& step) {
    return step.What == Step::Kind::Database || step.What == Step::Kind::Login;
  });
}

const std::vector<Step>& TakeBack::Steps() const {
  return work_->Steps;
}

std::vector<Verdict> TakeBack::Plan(const TakeBackOptions& options,
                                    const std::function<void()>& before) {
  const Site& place = work_->Place;
  Undoing undoing(place, options);
  for (const std::string& own :
       {place.NewRecordPath(), place.LogPath(), place.RecordPath(), place.Path(place.Program)}) {
    undoing.Expect(own);
  }
  std::vector<Verdict> verdicts;
  for (const Step& step : work_->Steps) {
    before();
    verdicts.push_back(undoing.Judge(step));
    if (verdicts.back().What == Fate::Goes) undoing.Expect(step.Name);
  }
  Verdict& program = verdicts.back();
  try {
    if (std::any_of(verdicts.begin(), verdicts.end() - 1, IsLeft)) {
      program = {Fate::Left, kProgramStays};
    } else {
      program.Why = WhyFolderStays(place, undoing.WillBeEmpty(place.Folder));
    }
  } catch (...) {
    program = {Fate::Left, WhyLeft(CaughtError())};
  }
  return verdicts;
}

bool TakeBack::Run(const TakeBackOptions& options, TakeBackView& view) {
  Undoing undoing(work_->Place, options);
  const std::vector<Step>& steps = work_->Steps;
  std::vector<Verdict> verdicts;
  for (std::size_t i = 0; i < steps.size(); ++i) {
    view.Begin(steps[i], i, steps.size());
    if (steps[i].What == Step::Kind::Program) {
      verdicts.push_back(work_->Finish(verdicts));
    } else {
      Undoing::Judgement judged = undoing.Judge(steps[i]);
      verdicts.push_back(judged.Act ? undoing.CarryOut(steps[i]) : judged);
    }
    view.End(steps[i], verdicts.back());
  }
  return std::ranges::none_of(verdicts, IsLeft);
}

}  // namespace talu
