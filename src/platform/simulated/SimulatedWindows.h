#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/WindowSystem.h"
#include "platform/simulated/Journal.h"
#include "platform/simulated/SimulatedDisk.h"

namespace talu {

/// Thrown by the simulated end of the process, through all code.
struct ProgramEnded {};

/// Windows without a screen, and their operator. Message boxes are answered at once.
class SimulatedWindows : public WindowSystem {
 public:
  SimulatedWindows(Journal& journal, SimulatedDisk& disk) : journal_(journal), disk_(disk) {}

  void ShowForm(FormWindow& form) override;
  void HideForm(FormWindow& form) override;
  void UpdateControl(FormWindow& form, std::size_t index, Property changed) override;
  void UpdateForm(FormWindow& form, Property changed) override;
  void MessageBox(const std::string& text, const std::string& title) override;
  std::optional<std::string> BrowseForFolder(FormWindow& owner, const std::string& title) override;
  std::shared_ptr<Picture> LoadPicture(const std::string& path) override;
  void DoEvents() override {
    journal_.Note("events");
    if (DuringEvents) DuringEvents();
  }
  [[noreturn]] void EndProgram() override;

  // The operator. What cannot be done (no such control, disabled, not visible) is refused: false.
  // Every action returns when all its consequences are done; `Ended` returns whether the program
  // has ended meanwhile.
  bool Click(const std::string& control);
  bool Type(const std::string& control, const std::string& text);
  bool Hover(const std::string& control);
  bool Focus(const std::string& control);
  void Close();
  /// Runs `work` as the start of the program, up to its end if it ends there.
  template <class Work>
  void Run(Work work) {
    try {
      work();
    } catch (const ProgramEnded&) {
      ended_ = true;
    }
  }

  /// The name of the visible page; empty when there is none.
  std::string VisibleForm() const;
  /// A control of the visible page, or a null pointer.
  const ControlView* Shown(const std::string& control) const;
  bool Ended() const { return ended_; }
  const std::vector<std::string>& Messages() const { return messages_; }

  /// The operator's answers to the next folder browsers; without one the operator cancels.
  std::deque<std::optional<std::string>> BrowseAnswers;
  /// What the operator does whenever the wizard handles pending window events.
  std::function<void()> DuringEvents;
  /// Raised by the next folder browser.
  std::optional<RuntimeError> BrowseError;

 private:
  template <class Act>
  bool Do(const std::string& control, Act act);

  Journal& journal_;
  SimulatedDisk& disk_;
  FormWindow* visible_ = nullptr;
  bool ended_ = false;
  std::vector<std::string> messages_;
};

}  // namespace talu
