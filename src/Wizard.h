#pragma once

#include "pages/Pages.h"
#include "startup/InstallContext.h"

namespace talu {

/// One run of the wizard on a machine.
class Wizard : public InstallContext {
 public:
  explicit Wizard(const talu::Machine& machine) : InstallContext(machine), pages_(*this) {}

  /// The page of this type, made at first use.
  template <class PageType>
  PageType& Page() {
    return pages_.Page<PageType>();
  }

 private:
  Pages pages_;
};

}  // namespace talu
