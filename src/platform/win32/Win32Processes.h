#pragma once

#include <functional>

#include "platform/Processes.h"

namespace talu {

/// Other programs, over `CreateProcessA`.
class Win32Processes : public Processes {
 public:
  /// `beforeWaiting` is called before this thread is blocked.
  explicit Win32Processes(std::function<void()> beforeWaiting);

  std::int32_t RunAndWait(const std::string& commandLine) override;
  void Start(const std::string& commandLine, int windowStyle) override;

 private:
  std::function<void()> beforeWaiting_;
};

}  // namespace talu
