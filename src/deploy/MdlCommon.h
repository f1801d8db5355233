#pragma once

#include <string>

namespace talu {

class InstallContext;
struct WorkView;

/// Copies the tree under `source` into `target`, which must exist: otherwise nothing is copied. An
/// error in listing or creating a folder silently ends the copy of that subtree.
void CopyFolderTree(InstallContext& install, const WorkView& view, const std::string& source,
                    const std::string& target);

/// Copies the files of one folder except database files, and shows each name. A file that cannot be
/// copied is logged and skipped. Raises 91 when `source` cannot be listed.
void CopyFolderFiles(InstallContext& install, const WorkView& view, const std::string& source,
                     const std::string& target);

/// Makes a shortcut in the first special folder whose last path component, without blanks, equals
/// `selector` in any case. In the start menu and its programs folder it goes into the product's
/// sub-folder. Only the log and the uninstall record report the outcome.
void MakeShortcut(InstallContext& install, const std::string& target, const std::string& selector,
                  const std::string& name, const std::string& workingDir);

}  // namespace talu
