#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace talu {

/// What the operator chooses.
struct TakeBackOptions {
  /// Databases and logins go too, each database after a backup of it.
  bool DropDatabases = false;
  /// In place of the recorded ones; empty: as recorded.
  std::string Server;
  std::string Login;
  /// Of `Login`; empty: the recorded one, where the login is the recorded one.
  std::string Password;
};

/// One thing that the installation left on the machine.
struct Step {
  enum class Kind {
    AddOn,
    Shortcut,
    ShortcutFolder,
    SystemComponent,  ///< copied to the Windows folder's "system", and registered there
    Component,        ///< registered in the application folder
    Settings,
    File,
    DataSource,
    Database,
    Login,
    Folder,
    Added,    ///< in the application folder, and no part of the installation
    Line,     ///< of the record, and nothing that can be carried out
    Backups,  ///< the wizard's folder of them
    Program   ///< the log, the record, this program, the application folder and the one around it
  };

  Kind What = Kind::Added;
  /// For people: a path, a name, or the line. Never a password.
  std::string Name;
  /// The record's lines (indices) that are done with this step.
  std::vector<std::size_t> Lines;
  /// A file's source, a settings file's bytes, a system component's name, the line of a data
  /// source, why a line cannot be carried out, a name is none or a folder could not be read.
  std::string Detail;
  std::size_t Installation = 0;
};

/// A kind as it stands in texts and JSON: "shortcut", "data source", ...
const char* KindName(Step::Kind kind);

/// What becomes of a step.
struct Verdict {
  enum class Fate {
    Goes,   ///< it goes; after the run: it is gone
    Stays,  ///< it stays, by rule or by choice: nothing is to be done any more
    Left    ///< it cannot go now; it stays recorded, and the next run tries again
  };
  Fate What = Fate::Goes;
  /// Why it stays or is left; where it goes, a remark or nothing.
  std::string Why;
};

/// Shows the work.
class TakeBackView {
 public:
  virtual ~TakeBackView() = default;
  /// Before a step: `index` from 0, of `count`. Window events may be handled here.
  virtual void Begin(const Step& step, std::size_t index, std::size_t count) = 0;
  /// After it.
  virtual void End(const Step& step, const Verdict& verdict) = 0;
};

}  // namespace talu
