#pragma once

#include <chrono>
#include <functional>
#include <string>

#include "Script.h"
#include "SetupProcess.h"

namespace talu::drive {

struct PlayOptions {
  /// The script's name in messages.
  std::string ScriptName;
  /// Where relative screenshots and those of failures go.
  std::string ShotFolder;
  /// How long a step may take; `timeout` changes it.
  std::chrono::seconds Timeout{60};
  /// Print one line per step.
  bool Verbose = false;
};

/// Plays a script against one Setup.
class Player {
 public:
  Player(SetupProcess& setup, PlayOptions options) : setup_(setup), options_(std::move(options)) {}

  /// Returns true when every step succeeded. The first failure is reported on the error stream,
  /// with a screenshot; the rest is not played.
  bool Play(const Script& script, const Variables& variables);

 private:
  void Do(const Step& step);
  /// Tries until `attempt` returns an empty text; what it returns otherwise tells what is there
  /// instead. Raises std::runtime_error with that when the time is over, when Setup has ended, when
  /// nothing can happen on its page any more, or when a dialog that the step does not deal with
  /// holds everything up. What other windows Setup has open is told with it.
  void Until(const std::function<std::string()>& attempt, bool browses = false);
  /// Whether there is a Setup to drive, found now or before.
  bool Attach();
  void Wait(const std::string& form);
  /// Called before every action of the operator: earlier showings no longer count, and on a page
  /// that was at its end the effect of the action is still to come.
  void BeginAct() {
    past_ = setup_.LastShowing();
    acted_ = setup_.StuckPage();
  }
  /// Waits for the control and returns it when an operator could use it.
  HWND Usable(const std::string& name);
  void ClickControl(const std::string& name);
  void Type(const Step& step);
  void Answer(const Step& step);
  void Browse(const Step& step);
  /// Clicks a dialog's button and waits until that has closed the dialog.
  void CloseDialog(HWND dialog, HWND button);
  void PressKeys(const Step& step);
  static void ExpectTree(const Step& step);
  void Shoot(const std::string& file);
  void WaitForEnd(const Step& step);
  void ShootFailure(int line) const;

  SetupProcess& setup_;
  PlayOptions options_;
  /// The last showing that no `wait` may find any more, once that page is left.
  int past_ = 0;
  /// The page that was at its end when the operator last did something, such as closing it; or
  /// none.
  HWND acted_ = nullptr;
};

}  // namespace talu::drive
