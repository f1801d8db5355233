#include "platform/win32/Apartment.h"

#include <utility>

#include "runtime/RuntimeError.h"

namespace talu {

Apartment::Apartment(Wait wait)
    : wait_(std::move(wait)),
      begin_(CreateEventW(nullptr, FALSE, FALSE, nullptr)),
      done_(CreateEventW(nullptr, TRUE, FALSE, nullptr)),
      thread_(CreateThread(nullptr, 0, Live, this, 0, nullptr)) {}

Apartment::~Apartment() {
  work_ = nullptr;
  SetEvent(begin_);
  if (thread_ != nullptr) {
    WaitForSingleObject(thread_, INFINITE);
    CloseHandle(thread_);
  }
  CloseHandle(done_);
  CloseHandle(begin_);
}

void Apartment::Do(const std::function<void()>& work, bool takesLong) {
  if (thread_ == nullptr || begin_ == nullptr || done_ == nullptr)
    throw RuntimeError(error::kOutOfMemory);
  work_ = &work;
  ResetEvent(done_);
  SetEvent(begin_);
  std::exception_ptr interrupted;
  try {
    if (takesLong) wait_(done_);
  } catch (...) {
    interrupted = std::current_exception();
  }
  // The thread works with what is the caller's, so nothing may end this wait.
  WaitForSingleObject(done_, INFINITE);
  if (interrupted) {
    failure_ = nullptr;
    std::rethrow_exception(interrupted);
  }
  if (failure_) std::rethrow_exception(std::exchange(failure_, nullptr));
}

DWORD WINAPI Apartment::Live(void* apartment) {
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  static_cast<Apartment*>(apartment)->Work();
  CoUninitialize();
  return 0;
}

void Apartment::Work() {
  for (;;) {
    // Objects of an apartment get their messages while nothing is asked of them.
    while (MsgWaitForMultipleObjectsEx(1, &begin_, INFINITE, QS_ALLINPUT, MWMO_INPUTAVAILABLE) ==
           WAIT_OBJECT_0 + 1) {
      MSG message;
      while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
    }
    if (work_ == nullptr) return;
    try {
      (*work_)();
    } catch (...) {
      failure_ = std::current_exception();
    }
    SetEvent(done_);
  }
}

}  // namespace talu
