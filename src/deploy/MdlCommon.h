#pragma once

#include <string>

namespace talu {

class InstallContext;
struct WorkView;

/// Copies the tree under `source` into `target`, which must exist: otherwise nothing is copied. An
/// error while listing or creating a folder ends the copy of that folder's subtree, silently.
void CopyFolderTree(InstallContext& install, const WorkView& view, const std::string& source,
                    const std::string& target);

/// Copies the files of one folder, but for database files, and shows each. A file
/// that cannot be copied is logged; the rest goes on. Raises 91 when `source` cannot be listed.
void CopyFolderFiles(InstallContext& install, const WorkView& view, const std::string& source,
                     const std::string& target);

/// Makes a shortcut in the first special folder whose last path component, without blanks, is
/// `selector` in any case. The start menu and its programs folder get the product's sub-folder. The
/// outcome stands in the log and the uninstall record only.
void MakeShortcut(InstallContext& install, const std::string& target, const std::string& selector,
                  const std::string& name, const std::string& workingDir);

}  // namespace talu
