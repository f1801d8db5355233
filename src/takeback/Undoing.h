#pragma once

#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "runtime/RuntimeError.h"
#include "runtime/TextFunctions.h"
#include "takeback/DatabaseRemoval.h"
#include "takeback/Site.h"
#include "takeback/TakeBackPlan.h"

namespace talu {

/// What people are told of a step that an error leaves.
std::string WhyLeft(const RuntimeError& error);

/// Judges steps and carries them out, but for the last one, `Program`.
class Undoing {
 public:
  Undoing(const Site& site, const TakeBackOptions& options);

  /// What becomes of the step as things are now. `Act` is false where nothing is left to do.
  struct Judgement : Verdict {
    bool Act = false;
  };
  /// Raises nothing: an error is a reason to leave the step.
  Judgement Judge(const Step& step);
  /// Carries out a step that goes and asks for it. Raises nothing: an error leaves the step.
  Verdict CarryOut(const Step& step);

  /// For a plan: a path that will be gone.
  void Expect(const std::string& path);
  /// Whether the folder has nothing but what will be gone. Raises what listing it raises.
  bool WillBeEmpty(const std::string& folder) const;
  /// Notes that the step is left: so are the folders that it stands in.
  void NoteLeft(const Step& step);

 private:
  Judgement Judged(const Step& step);
  /// What becomes of a folder that is there.
  Judgement JudgeEmpty(const std::string& folder, const char* whyStays);
  Judgement JudgeAddOn(const Step& step);
  Judgement JudgeShortcut(const Step& step);
  Judgement JudgeShortcutFolder(const Step& step);
  Judgement JudgeSystemComponent(const Step& step);
  Judgement JudgeFile(const Step& step);
  Judgement JudgeSettings(const Step& step);
  Judgement JudgeDataSource(const Step& step);
  Judgement JudgeFolder(const Step& step);
  Judgement JudgeAdded(const Step& step);

  Verdict Done(const Step& step);
  Verdict RemoveShortcutFolder(const Step& step);
  /// Empty, or what there is to say of it. Raises 5 when the tool cannot be started.
  std::string Unregister(const std::string& path);

  /// What stands at a path of the installation, when no folder above it is a link; else a link.
  EntryKind KindAt(const std::string& path);
  /// The same, for a path below a special folder.
  EntryKind ShortcutKindAt(const std::string& special, const std::string& below);
  /// The special folder that the path is below, and the part below it; nothing when it is no place
  /// where the wizard makes a shortcut (`folder`: a folder for one).
  std::optional<std::pair<std::string, std::string>> PlaceOf(const std::string& path, bool folder);
  const std::vector<std::string>& SpecialFolders();
  std::string PackageOf(const Step& step) const;
  const Site& site_;
  const TakeBackOptions& options_;
  Removal& removal_;
  DatabaseRemoval databases_;
  std::set<std::string> going_;  // upper-cased
  std::set<std::string> left_;
  std::optional<std::vector<std::string>> specialFolders_;
  std::string clearFolder_;   // the last folder that no link stands above
  std::string sourceFolder_;  // the last folder of the pack that was looked for
  bool sourceFolderThere_ = false;
  bool databaseLeft_ = false;
};

}  // namespace talu
