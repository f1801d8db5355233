#pragma once

#include <string>

namespace talu {

/// The per-user settings store.
class SettingsStore {
 public:
  virtual ~SettingsStore() = default;
  /// Stores `value` under application, section and key; an empty key is the section's unnamed
  /// value. Raises 5 when it cannot be written.
  virtual void SaveSetting(const std::string& application, const std::string& section,
                           const std::string& key, const std::string& value) = 0;
};

}  // namespace talu
