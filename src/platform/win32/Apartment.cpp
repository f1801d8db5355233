#include "platform/win32/Apartment.h"

#include <utility>

#include "runtime/RuntimeError.h"

namespace talu {

Apartment::Apartment(Wait wait)
    : wait_(std::move(wait)),
      begin_(CreateEventA(nullptr, FALSE, FALSE, nullptr)),
      done_(CreateEventA(nullptr, FALSE, FALSE, nullptr)),
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
  if (thread_ == nullptr) throw RuntimeError(error::OutOfMemory);
  work_ = &work;
  SetEvent(begin_);
  if (takesLong) {
    wait_(done_);
  } else {
    WaitForSingleObject(done_, INFINITE);
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
      while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageA(&message);
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
