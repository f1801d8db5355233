#pragma once

#include "platform/OdbcInstaller.h"

namespace talu {

/// odbccp32.dll, loaded from the system folder at the first use.
class Win32OdbcInstaller : public OdbcInstaller {
 public:
  bool SQLConfigDataSource(int request, const std::string& driver,
                           const std::string& attributes) override;
};

}  // namespace talu
