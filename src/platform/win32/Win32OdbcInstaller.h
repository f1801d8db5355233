#pragma once

#include "platform/CodePage.h"
#include "platform/OdbcInstaller.h"

namespace talu {

/// odbccp32.dll, loaded from the system folder at the first use. It is given texts in the code
/// page.
class Win32OdbcInstaller : public OdbcInstaller {
 public:
  explicit Win32OdbcInstaller(const CodePage& codePage) : codePage_(codePage) {}

  bool SQLConfigDataSource(int request, const std::string& driver,
                           const std::string& attributes) override;

 private:
  const CodePage& codePage_;
};

}  // namespace talu
