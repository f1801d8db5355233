#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/WindowSystem.h"
#include "platform/win32/Appearance.h"
#include "platform/win32/FormFrame.h"

namespace talu {

/// Forms as windows of user32.
///
/// Long work reports a changed text or bar thousands of times a second. That is only noted, and
/// painted about thirty times a second in `DoEvents`; after a handler everything is shown.
class Win32WindowSystem : public WindowSystem, public HandlerWatch {
 public:
  explicit Win32WindowSystem(bool (*wantsHighContrast)() = &WantsHighContrast);
  ~Win32WindowSystem() override;

  void ShowForm(FormWindow& form) override;
  void HideForm(FormWindow& form) override;
  void UpdateControl(FormWindow& form, std::size_t index, Property changed) override;
  void UpdateForm(FormWindow& form, Property changed) override;
  void MessageBox(const std::string& text, const std::string& title) override;
  std::optional<std::string> BrowseForFolder(FormWindow& owner, const std::string& title) override;
  std::shared_ptr<Picture> LoadPicture(const std::string& path) override;
  void DoEvents() override;
  [[noreturn]] void EndProgram() override;

  /// The message loop; returns the program's exit code when it receives the quit message.
  int Run();
  void HandlerBegins() override;
  void HandlerEnds() override;

  /// Paints what has changed, for use before this thread blocks. A bar alone is painted no more
  /// often than in `DoEvents`.
  void ShowProgress();
  /// What `EndProgram` ends the process with, 0 unless told.
  void ExitCode(int code) { exitCode_ = static_cast<UINT>(code); }
  /// Handles what comes in until `event` is set.
  void WaitFor(HANDLE event);

 private:
  FormFrame* Find(const FormWindow& form) const;
  void Dispatch(MSG& message);
  /// A hidden page stays on the screen until the next one covers it, or until somebody looks.
  void FinishHiding();
  void BringUpToDate();
  /// Back in the message loop: shows everything and gives the keyboard focus to a control.
  void Settle();

  Appearance look_;
  std::vector<std::unique_ptr<FormFrame>> frames_;
  FormFrame* shown_ = nullptr;
  FormFrame* hiding_ = nullptr;
  /// Whether `WaitFor` is at work.
  bool waiting_ = false;
  UINT exitCode_ = 0;
  std::optional<WINDOWPLACEMENT> place_;
  int handlers_ = 0;
  int showings_ = 0;
  std::int64_t lastPump_ = 0;
  std::int64_t lastPaint_ = 0;
};

}  // namespace talu
