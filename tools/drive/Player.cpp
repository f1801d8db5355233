#include "Player.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <stdexcept>

#include "Expectation.h"
#include "FolderBrowser.h"
#include "Operator.h"
#include "Screenshot.h"
#include "Text.h"
#include "Tree.h"

namespace talu::drive {

namespace {

using Time = std::chrono::steady_clock;

constexpr DWORD kLookInterval = 50;  // milliseconds
/// A dialog open for this long without a step that answers it will stay open for ever.
constexpr std::chrono::seconds kPatience{3};

/// What blocks a step that does not handle dialogs, or only the folder browser.
std::string OpenDialogs(const SetupProcess& setup, bool browses) {
  std::string texts;
  for (const MessageWindow& message : setup.MessageWindows()) {
    texts += (texts.empty() ? "a message box is open: " : ", ") + Quoted(message.Text);
  }
  if (!browses && setup.FolderBrowser() != nullptr) {
    texts += (texts.empty() ? "" : ", ") + std::string("the folder browser is open");
  }
  return texts;
}

std::string InTheWay(const std::vector<OtherWindow>& windows) {
  std::string texts;
  for (const OtherWindow& window : windows) {
    texts += "; a window is in the way: " + Quoted(window.Title) + " (" + window.Class +
             "): " + Quoted(window.Text);
  }
  return texts;
}

bool Matches(const MessageWindow& message, const Step& step) {
  const std::string wanted = PlainLineEnds(step.Value);
  const std::string text = PlainLineEnds(message.Text);
  switch (step.What) {
    case Command::MessageTitle:
      return message.Title == wanted;
    case Command::MessageBegins:
      return text.starts_with(wanted);
    default:
      return text == wanted;
  }
}

std::string Seconds(Time::duration time) {
  char text[32];
  std::snprintf(text, sizeof text, "%.1f s", std::chrono::duration<double>(time).count());
  return text;
}

}  // namespace

bool Player::Play(const Script& script, const Variables& variables) {
  BeginAct();
  for (const Step& step : script.Steps) {
    const auto start = Time::now();
    try {
      Do(step);
    } catch (const std::runtime_error& error) {
      PrintError(variables.Mask(options_.ScriptName + ":" + std::to_string(step.Line) + ": " +
                                step.Source + ": " + error.what()));
      ShootFailure(step.Line);
      return false;
    }
    if (options_.Verbose) {
      PrintLine(std::to_string(step.Line) + ": " + step.Source + " ok (" +
                Seconds(Time::now() - start) + ")");
    }
  }
  return true;
}

void Player::Do(const Step& step) {
  switch (step.What) {
    case Command::Wait:
      return Wait(step.Name);
    case Command::Click:
      return ClickControl(step.Name);
    case Command::Type:
      return Type(step);
    case Command::Expect:
      return Until([&] { return Unmet(setup_, step); });
    case Command::ExpectTree:
      return ExpectTree(step);
    case Command::Message:
    case Command::MessageBegins:
    case Command::MessageTitle:
      return Answer(step);
    case Command::Browse:
      return Browse(step);
    case Command::Key:
      return PressKeys(step);
    case Command::Close:
      Until([&] { return setup_.Page(step.Name) != nullptr ? "" : setup_.PagesShown(); });
      BeginAct();
      return CloseByFrame(setup_.Page(step.Name));
    case Command::Shot:
      return Shoot(step.Value);
    case Command::Timeout:
      options_.Timeout = std::chrono::seconds(step.Number);
      return;
    case Command::Pause:
      return Sleep(static_cast<DWORD>(step.Number));
    case Command::Finish:
      Until([&] { return setup_.Page("FrmApplication") != nullptr ? "" : setup_.PagesShown(); });
      ClickControl("CmdNext");
      return WaitForEnd(step);
    case Command::Ended:
      return WaitForEnd(step);
  }
}

void Player::Until(const std::function<std::string()>& attempt, bool browses) {
  const auto start = Time::now();
  auto quiet = start;  // the last time without a dialog in the way
  for (;;) {
    const bool attached = Attach();
    // Checked first, so that the attempt sees everything before it.
    const bool ended = setup_.Ended();
    const HWND stuck = attached ? setup_.StuckPage() : nullptr;
    std::string there = attached ? attempt() : "no page of the wizard is open";
    if (there.empty()) return;
    if (ended) {
      throw std::runtime_error("Setup has ended, exit code " + std::to_string(setup_.ExitCode()));
    }
    if (stuck != nullptr && stuck != acted_) {
      const auto line = TextOf(SetupProcess::ControlOn(stuck, "LblMsg"));
      throw std::runtime_error(there + "; nothing more can come, the page says " +
                               Quoted(line.value_or("")));
    }
    const std::string dialogs = OpenDialogs(setup_, browses);
    const std::vector<OtherWindow> others = setup_.OtherWindows();
    if (!dialogs.empty()) there += "; " + dialogs;
    there += InTheWay(others);
    const bool asked = std::ranges::any_of(others, &OtherWindow::Asks);
    const auto now = Time::now();
    if (dialogs.empty() && !asked) quiet = now;
    if (now - quiet >= kPatience) throw std::runtime_error(there);
    if (now - start >= options_.Timeout) {
      throw std::runtime_error(there + " after " + std::to_string(options_.Timeout.count()) + " s");
    }
    Sleep(kLookInterval);
  }
}

bool Player::Attach() {
  if (setup_.Attached()) return true;
  if (!setup_.Find()) return false;
  BeginAct();
  return true;
}

void Player::Wait(const std::string& form) {
  Until([&]() -> std::string {
    // A page has its number before it is visible: once it is seen, the number is known.
    const bool shown = setup_.Page(form) != nullptr;
    const int showing = setup_.Showing(form);
    const bool left = showing > past_ && showing < setup_.LastShowing();
    if (!shown && !left) return setup_.PagesShown();
    past_ = std::max(past_, showing);
    return "";
  });
}

HWND Player::Usable(const std::string& name) {
  HWND control = nullptr;
  Until([&]() -> std::string {
    control = setup_.Control(name);
    if (control == nullptr) return "there is no such control, " + setup_.PagesShown();
    if (!IsWindowVisible(control)) return "it is hidden";
    if (!IsWindowEnabled(control)) return "it is disabled";
    // A page is disabled as soon as a dialog of its own is made, before it is shown.
    if (setup_.Dialog() != nullptr || !IsWindowEnabled(GetAncestor(control, GA_ROOT))) {
      return "a dialog stands before the page";
    }
    return "";
  });
  return control;
}

void Player::ClickControl(const std::string& name) {
  const HWND control = Usable(name);
  BeginAct();
  Click(control);
  Settle(control);
}

void Player::Type(const Step& step) {
  const HWND box = Usable(step.Name);
  BeginAct();
  TypeText(box, step.Value);
  Settle(box);
  const std::size_t length = Wide(step.Value).size();
  Until([&]() -> std::string {
    const auto text = TextOf(box);
    if (!text) return kNoAnswer;
    const bool masked = *text == std::string(length, '*') || HidesLength(box);
    return *text == step.Value || masked ? "" : "it reads " + Quoted(*text);
  });
}

void Player::Answer(const Step& step) {
  MessageWindow answered;
  Until([&]() -> std::string {
    for (const MessageWindow& message : setup_.MessageWindows()) {
      if (!Matches(message, step)) continue;
      answered = message;
      return "";
    }
    return "there is no such message box, " + setup_.PagesShown();
  });
  CloseDialog(answered.Window, answered.Button);
}

void Player::Browse(const Step& step) {
  HWND browser = nullptr;
  Until(
      [&]() -> std::string {
        browser = setup_.FolderBrowser();
        if (browser == nullptr) return "the folder browser is not open, " + setup_.PagesShown();
        if (step.Value.empty()) return "";
        return SelectFolder(browser, step.Value).value_or(kNoAnswer);
      },
      true);
  CloseDialog(browser, GetDlgItem(browser, step.Value.empty() ? IDCANCEL : IDOK));
}

void Player::CloseDialog(HWND dialog, HWND button) {
  BeginAct();
  Click(button);
  const auto start = Time::now();
  while (IsWindowVisible(dialog)) {
    if (Time::now() - start > options_.Timeout) {
      throw std::runtime_error("the click does not close it");
    }
    Sleep(kLookInterval);
  }
  if (const HWND page = setup_.Page()) Settle(page);
}

void Player::PressKeys(const Step& step) {
  for (const Chord& chord : step.Keys) {
    HWND front = nullptr;
    Until([&]() -> std::string {
      front = setup_.Front();
      if (front == nullptr) return setup_.PagesShown();
      if (!BringToFront(front)) return "another program keeps the keyboard";
      return HasFocusWithin(front) ? "" : "nothing in its window takes keys";
    });
    if (&chord == &step.Keys.front()) BeginAct();
    Press(chord);
    Settle(front);
  }
}

void Player::ExpectTree(const Step& step) {
  const std::string difference = TreeDifference(step.Name, step.Value);
  if (!difference.empty()) throw std::runtime_error(difference);
}

void Player::Shoot(const std::string& file) {
  HWND page = nullptr;
  Until([&] {
    page = setup_.Page();
    return page != nullptr ? "" : setup_.PagesShown();
  });
  RECT area = {};
  GetWindowRect(page, &area);
  const std::filesystem::path path = std::filesystem::path(Wide(options_.ShotFolder)) / Wide(file);
  SaveScreenshot(area, Utf8(path.native()));
}

void Player::WaitForEnd(const Step& step) {
  Until([&] { return setup_.Ended() ? "" : "Setup is still running, " + setup_.PagesShown(); });
  const auto code = static_cast<int>(setup_.ExitCode());
  if (!step.Value.empty() && code != step.Number) {
    throw std::runtime_error("its exit code is " + std::to_string(code));
  }
}

void Player::ShootFailure(int line) const {
  const std::filesystem::path script(Wide(options_.ScriptName));
  const std::filesystem::path file =
      std::filesystem::path(Wide(options_.ShotFolder)) /
      (script.stem().native() + L"-line" + std::to_wstring(line) + L".png");
  try {
    SaveScreenshot(ScreenArea(), Utf8(file.native()));
    PrintError("screenshot: " + Utf8(file.native()));
  } catch (const std::runtime_error& error) {
    PrintError(std::string("no screenshot: ") + error.what());
  }
}

}  // namespace talu::drive
