#pragma once

#include "platform/SettingsStore.h"

namespace talu {

/// Texts under HKEY_CURRENT_USER\Software\<application>\<section>.
class Win32Settings : public SettingsStore {
 public:
  void SaveSetting(const std::string& application, const std::string& section,
                   const std::string& key, const std::string& value) override;
};

}  // namespace talu
