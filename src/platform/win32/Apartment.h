#pragma once

#include <exception>
#include <functional>

#include "platform/win32/Windows.h"

namespace talu {

/// A thread of its own for automation objects whose calls may take very long.
class Apartment {
 public:
  /// Handles this thread's window events until the event given is set.
  using Wait = std::function<void(HANDLE)>;

  explicit Apartment(Wait wait);
  ~Apartment();
  Apartment(const Apartment&) = delete;
  Apartment& operator=(const Apartment&) = delete;

  /// Does `work` in the thread and waits for its end: by `wait` when it may take long. Raises what
  /// it raises, and 7 when there is no thread.
  void Do(const std::function<void()>& work, bool takesLong);

 private:
  static DWORD WINAPI Live(void* apartment);
  void Work();

  Wait wait_;
  HANDLE begin_;
  HANDLE done_;
  HANDLE thread_;
  /// What is to be done; nullptr is the thread's end.
  const std::function<void()>* work_ = nullptr;
  std::exception_ptr failure_;
};

}  // namespace talu
