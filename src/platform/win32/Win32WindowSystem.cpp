#include "platform/win32/Win32WindowSystem.h"

#include <algorithm>

#include "platform/win32/PictureFile.h"
#include "platform/win32/Text.h"
#include "runtime/RuntimeError.h"

namespace talu {
namespace {

constexpr const wchar_t* kDefaultTitle = L"TA-LU Setup";

/// Asking Windows for events costs far more than copying a small file, so it is done at most this
/// often, in microseconds.
constexpr std::int64_t kPumpInterval = 10000;
/// How often the pages are painted during work.
constexpr std::int64_t kPaintInterval = 50000;

std::int64_t Microseconds() {
  static const std::int64_t kFrequency = [] {
    LARGE_INTEGER value;
    QueryPerformanceFrequency(&value);
    return value.QuadPart;
  }();
  LARGE_INTEGER now;
  QueryPerformanceCounter(&now);
  return now.QuadPart / kFrequency * 1000000 + now.QuadPart % kFrequency * 1000000 / kFrequency;
}

}  // namespace

Win32WindowSystem::Win32WindowSystem(bool (*wantsHighContrast)()) : look_(wantsHighContrast) {}

Win32WindowSystem::~Win32WindowSystem() {
  for (const auto& frame : frames_) frame->LetGo();
}

FormFrame* Win32WindowSystem::Find(const FormWindow& form) const {
  for (const auto& frame : frames_) {
    if (&frame->Form() == &form) return frame.get();
  }
  return nullptr;
}

void Win32WindowSystem::ShowForm(FormWindow& form) {
  FormFrame* frame = Find(form);
  if (frame == nullptr) {
    frames_.push_back(std::make_unique<FormFrame>(form, look_, *this));
    frame = frames_.back().get();
  }
  if (hiding_ == frame) hiding_ = nullptr;
  shown_ = frame;
  frame->Show(place_ ? &*place_ : nullptr, ++showings_);
  FinishHiding();
  lastPaint_ = Microseconds();
}

void Win32WindowSystem::HideForm(FormWindow& form) {
  FormFrame* frame = Find(form);
  if (frame == nullptr || frame == hiding_ || !frame->IsShown()) return;
  FinishHiding();
  place_ = frame->Placement();
  hiding_ = frame;
  if (shown_ == frame) shown_ = nullptr;
}

void Win32WindowSystem::FinishHiding() {
  if (hiding_ == nullptr) return;
  hiding_->Hide();
  hiding_ = nullptr;
}

void Win32WindowSystem::UpdateControl(FormWindow& form, std::size_t index, Property changed) {
  if (FormFrame* frame = Find(form)) frame->Update(index, changed);
}

void Win32WindowSystem::UpdateForm(FormWindow& form, Property changed) {
  if (FormFrame* frame = Find(form)) frame->UpdateSelf(changed);
}

void Win32WindowSystem::MessageBox(const std::string& text, const std::string& title) {
  FinishHiding();
  BringUpToDate();
  MessageBoxW(shown_ != nullptr ? shown_->Window() : nullptr, Wide(text).c_str(),
              title.empty() ? kDefaultTitle : Wide(title).c_str(), MB_OK);
}

std::optional<std::string> Win32WindowSystem::BrowseForFolder(FormWindow& owner,
                                                              const std::string& title) {
  BringUpToDate();
  const FormFrame* frame = Find(owner);
  wchar_t name[MAX_PATH] = L"";
  const std::wstring wideTitle = Wide(title);
  BROWSEINFOW request = {};
  request.hwndOwner = frame != nullptr ? frame->Window() : nullptr;
  request.pszDisplayName = name;
  request.lpszTitle = wideTitle.c_str();
  request.ulFlags = BIF_RETURNONLYFSDIRS;
  const LPITEMIDLIST chosen = SHBrowseForFolderW(&request);
  if (chosen == nullptr) return std::nullopt;
  wchar_t path[MAX_PATH] = L"";
  const BOOL found = SHGetPathFromIDListW(chosen, path);
  CoTaskMemFree(chosen);
  if (!found) throw RuntimeError(E_FAIL, SystemMessage(E_FAIL), "Shell");
  return Narrow(path);
}

std::shared_ptr<Picture> Win32WindowSystem::LoadPicture(const std::string& path) {
  if (path.empty()) return nullptr;
  return std::make_shared<PictureFile>(path);
}

void Win32WindowSystem::BringUpToDate() {
  for (const auto& frame : frames_) frame->BringUpToDate();
}

void Win32WindowSystem::ShowProgress() {
  FinishHiding();
  if (shown_ == nullptr || !shown_->IsStale()) return;
  if (!shown_->HasStaleText() && Microseconds() - lastPaint_ < kPaintInterval) return;
  BringUpToDate();
  RedrawWindow(shown_->Window(), nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
  lastPaint_ = Microseconds();
}

void Win32WindowSystem::DoEvents() {
  const std::int64_t now = Microseconds();
  if (now - lastPump_ < kPumpInterval) return;
  FinishHiding();
  UINT kinds = PM_REMOVE | PM_QS_INPUT | PM_QS_POSTMESSAGE | PM_QS_SENDMESSAGE;
  if (now - lastPaint_ >= kPaintInterval) {
    lastPaint_ = now;
    BringUpToDate();
    kinds = PM_REMOVE;
  }
  MSG message;
  while (PeekMessageW(&message, nullptr, 0, 0, kinds)) Dispatch(message);
  lastPump_ = Microseconds();
}

void Win32WindowSystem::WaitFor(HANDLE event) {
  FinishHiding();
  BringUpToDate();
  waiting_ = true;
  while (MsgWaitForMultipleObjectsEx(1, &event, INFINITE, QS_ALLINPUT, MWMO_INPUTAVAILABLE) ==
         WAIT_OBJECT_0 + 1) {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) Dispatch(message);
    BringUpToDate();
  }
  waiting_ = false;
}

int Win32WindowSystem::Run() {
  Settle();
  MSG message;
  while (GetMessageW(&message, nullptr, 0, 0) > 0) Dispatch(message);
  return static_cast<int>(message.wParam);
}

void Win32WindowSystem::Dispatch(MSG& message) {
  const HWND root = message.hwnd != nullptr ? GetAncestor(message.hwnd, GA_ROOT) : nullptr;
  for (const auto& frame : frames_) {
    if (frame->Window() != root) continue;
    if (frame->HandleKey(message) || IsDialogMessageW(root, &message)) return;
  }
  TranslateMessage(&message);
  DispatchMessageW(&message);
}

void Win32WindowSystem::HandlerBegins() {
  if (handlers_++ == 0 && shown_ != nullptr) shown_->MarkBusy(true);
}

void Win32WindowSystem::HandlerEnds() {
  // Only the outermost handler returns to the message loop.
  if (--handlers_ == 0) Settle();
}

void Win32WindowSystem::Settle() {
  FinishHiding();
  BringUpToDate();
  if (shown_ == nullptr) return;
  shown_->RescueFocus();
  shown_->MarkBusy(false);
}

void Win32WindowSystem::EndProgram() {
  // A thread that is at work would be ended inside a library, whose own end might wait for it.
  if (waiting_) TerminateProcess(GetCurrentProcess(), exitCode_);
  ExitProcess(exitCode_);
}

}  // namespace talu
