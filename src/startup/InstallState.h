#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace talu {

/// The shared state of one installation, filled in page order and accessed directly by every page
/// and module. Going back through the pages leaves every field unchanged.
struct InstallState {
  /// 0 server installation, 1 client installation.
  std::uint8_t Mode = 0;
  /// 0 fresh, 1 demo, 2 upgrade.
  std::uint8_t SetupType = 0;
  /// The box for the existing application folder is ticked.
  bool UseOldLocation = false;
  /// An earlier installation was detected. No page sets it.
  bool OldInstallationFound = false;
  /// Name of the per-user setting that records the application folder. No page assigns it.
  std::string RegistryValueName;

  std::string SqlUser;
  std::string SqlPassword;
  std::string ServerName;

  /// Installation root, ending in the product folder.
  std::string InstallPath;
  std::string OldInstallPath;
  std::string AppTitle;
  std::string AppFolderName;
  std::string DBFolderName;
  /// Contains the log and the uninstall record.
  std::string AppFolderPath;
  std::string DBFolderPath;
  std::string BackupFolderPath;

  /// "," and a name for every database that a build created, oldest first; never shortened.
  std::string CreatedDatabaseList;
  std::string CreatedLoginList;
  /// The lists split at ",", for the rollback; element 0 is empty.
  std::vector<std::string> CreatedDatabases;
  std::vector<std::string> CreatedLogins;

  /// Empty when pages show no picture.
  std::string BackgroundPicturePath;
  /// File numbers of the log and of the uninstall record; 0 until they are started.
  int LogFileNumber = 0;
  int UninstallFileNumber = 0;
};

}  // namespace talu
