#include "startup/BackupFolder.h"

#include "runtime/TextFunctions.h"

namespace talu {

std::string BackupFolderFor(const std::string& appFolderPath, const std::string& appFolderName) {
  return ParentPath(appFolderPath) + "\\" + appFolderName + " BackUp";
}

std::string DateStamp(const DateTime& time) {
  std::string stamp = std::to_string(time.Day);
  for (const int part : {time.Month, time.Year, time.Hour, time.Minute}) {
    stamp += "_" + std::to_string(part);
  }
  return stamp;
}

}  // namespace talu
