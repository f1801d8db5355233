#include "Consequences.h"

#include <algorithm>
#include <map>
#include <sstream>
#include <tuple>

#include "runtime/RuntimeError.h"
#include "runtime/TextFunctions.h"

namespace talu {
namespace {

constexpr const char* kTable = R"(
(backups)
  means sql USE Master$; sql IF  EXISTS
(failed build)
  means FrmSQLNonQuery ShpProgBar; FrmSQLNonQuery LblMsg; log Database creation not finished; msgbox
(rollback)
  means sql USE Master 300; sql ALTER; sql DROP; log //~[Microsoft]
(next again)
  means FrmLocation; FrmApplication; msgbox; config; browse; delete; mkdir; folder; files; copy; log; record;
    open APP\Ta; close APP\Ta; open APP\Un; close APP\Un; events

# The pages.
Nobody catches an error of the first page: the program ends with the error box;
  within .. hide FrmType | told error box | skips .. | instead msgbox Run-time error; end
nor of a page that loads or is shown, nor of the last entry.
  fails picture; show; log Installation finished. | within hide FrmType .. | told error box | skips .. | instead
    msgbox Run-time error; end
A connection test that fails leaves the page, which says so; the next try tests again.
  within show FrmAuthentication .. hide FrmAuthentication | told status line | perhaps FrmAuthentication; create
    connection; connect; disconnect
An error of the dated copy's tree leaves its level, silently: the top one,
  fails folder DATED$; folder,files,folders C:\Progs\TA-LU\App$; mkdir DATED\DB$; mkdir DATED\Parts$; mkdir
    DATED\Zones$; log //~Creating New Folder - DATED\DB$; log //~Creating New Folder - DATED\Parts$; log
    //~Creating New Folder - DATED\Zones$; folder DATED\Zones; folder,files,folders APP\Zones | within folder
    DATED$ .. FrmLocation MousePointer 0 | told nowhere | skips .. FrmLocation MousePointer 0
a folder's,
  fails folder DATED\DB; folder,files,folders APP\DB | within folder DATED$ .. FrmLocation MousePointer 0 | told
    nowhere | skips .. mkdir DATED\Parts$
or that of a folder in it.
  fails folder DATED\Parts; folder,files,folders APP\Parts; mkdir DATED\Parts\Deep; log //~Creating New Folder -
    DATED\Parts\Deep | within folder DATED$ .. FrmLocation MousePointer 0 | told nowhere | skips .. mkdir
    DATED\Zones$
FrmLocation shows a box; the operator chooses the folder again, and Next works again over what is there.
  within show FrmLocation .. folder DATED$ | ahead-of hide FrmLocation | told box | perhaps (next again)
(behind the dated copy)
  within FrmLocation MousePointer 0 .. hide FrmLocation | told box | perhaps (next again)
The backup folder is there when the application folder was.
  within mkdir C:\Progs\TA-LU\App$ .. hide FrmLocation | loses mkdir C:\Progs\TA-LU\App BackUp

# The backup of the databases.
The scripts to scan are not counted: none is, and no database is backed up.
  fails config | after create connection | skips .. close PACK\SQLScript\*b.sql+ | loses (backups)
A script whose name is not read is not scanned,
  fails config | before open PACK\SQLScript | skips .. close PACK\SQLScript+
nor one that cannot be opened,
  fails open PACK\SQLScript | within log Building .. connect | skips .. close PACK\SQLScript+
nor one from where it cannot be read on:
  fails read PACK\SQLScript | within log Building .. connect | skips .. close PACK\SQLScript
its databases are not backed up.
  fails config | before open PACK\SQLScript\*a.sql | loses (backups)
(all are in the first script)
  fails open PACK\SQLScript\*a.sql | within log Building .. connect | loses (backups)
(all are read at once)
  fails read PACK\SQLScript\*a.sql | before FrmSQLNonQuery ShpProgBar | within log Building .. connect | loses
    (backups)
Without a connection each statement of the backup fails:
  fails connect | within log Building .. create command | loses (backups) | instead 7 x log //~The connection
    cannot be used to perform this operation.
a connection that could not be made is made again, without its text,
  fails create connection | before connect driver | within log Building .. create command | skips .. create
    command | loses (backups) | instead create connection; connect  failed:; log //~[Microsoft]; 7 x log //~The
    connection cannot be used to perform this operation.
and a command without its connection.
  fails create command | before sql USE Master$ | loses (backups) | instead create command; 6 x log //~The
    connection cannot be used to perform this operation.

# The build.
An error of the build fails it: it is rolled back, told, and the page stays;
  fails log Building Database Started | ahead-of FrmSQLNonQuery LblMsg Database creation completed | skips
    FrmSQLNonQuery LblMsg Database creation completed+ .. | instead (failed build) | perhaps (rollback)
so does one from the first reading of the configuration to the last;
  within read PACK\AppCfg.txt .. disconnect | ahead-of FrmSQLNonQuery LblMsg Database creation completed | skips
    FrmSQLNonQuery LblMsg Database creation completed+ .. | instead (failed build) | perhaps (rollback)
where it would have failed anyway, the box shows the last error.
  fails log Building Database Started | ahead-of sql DROP LOGIN | loses msgbox | instead msgbox
(so does one of the build)
  within read PACK\AppCfg.txt .. sql USE Master 300 | ahead-of sql DROP LOGIN | loses msgbox | instead msgbox |
    perhaps (rollback)
(and one of its ending)
  fails sql USE Master 300; sql ALTER; sql DROP; disconnect; log Database creation not finished; log Script
    format | within sql USE Master 300 .. | loses msgbox | instead msgbox
Without its connection the build ends at once, and has nothing to roll back:
  fails create connection | after log Building | skips open PACK\AppCfg.txt .. | instead create connection;
    connect  failed:; log //~[Microsoft]; FrmSQLNonQuery LblMsg; log Database authentication failed
made again without its text, or not opened.
  fails connect | after open PACK\AppCfg.txt | skips .. | instead FrmSQLNonQuery LblMsg; log Database
    authentication failed
A configuration that cannot be opened names no scripts,
  fails open PACK\AppCfg.txt | before connect | skips connect .. | instead (failed build); disconnect
nor does one that cannot be read on.
  fails read PACK\AppCfg.txt | skips .. close PACK\AppCfg.txt
A command that could not be made is made again: the first script has no connection.
  fails create command | within read PACK\AppCfg.txt .. | loses sql ~ | instead create command; 4 x log //~The
    connection cannot be used to perform this operation.
A script that cannot be opened is not run,
  fails open PACK\SQLScript | within read PACK\AppCfg.txt .. | skips .. close PACK\SQLScript+
nor is one from where it cannot be read on.
  fails read PACK\SQLScript | within read PACK\AppCfg.txt .. | skips .. close PACK\SQLScript
What was not recorded is not dropped, and what was not created fails its list.
  fails read PACK\AppCfg.txt; create command; open PACK\SQLScript; read PACK\SQLScript; sql ~IF NOT EXISTS |
    within read PACK\AppCfg.txt .. | loses sql USE Master 300; sql ALTER; sql DROP
A batch that is refused anyway has one error.
  fails sql INSERT 2 300 failed | loses log //~[Microsoft]
Where the malformed line is not read, the build ends as any that failed.
  fails read PACK\AppCfg.txt; open PACK\SQLScript\*b.sql; read PACK\SQLScript\*b.sql | within read
    PACK\AppCfg.txt .. | ahead-of log Script format | skips .. | instead close PACK\AppCfg.txt; disconnect;
    FrmSQLNonQuery ShpProgBar; FrmSQLNonQuery LblMsg; log Database creation not finished | perhaps close
    PACK\SQLScript; read PACK\AppCfg.txt
An error entry that fails has nobody above it: the program ends, and nothing is rolled back.
  fails log //~[Microsoft] | told error box | skips .. | instead end
The first statement of the rollback that fails ends its list:
  fails sql ALTER; sql DROP DATABASE | skips .. sql DROP LOGIN | instead sql USE Master 300
that of the databases,
  fails sql USE Master 300 | before sql ALTER | skips .. sql DROP LOGIN | instead sql USE Master 300
or that of the logins.
  fails sql USE Master 300 | before sql DROP LOGIN | skips .. sql DROP LOGIN+

# The data sources.
Data sources that are not counted are not made.
  fails config | after log DSN creation started | skips .. log DSN(s) created
Where the first line is not read there is none: nothing is registered, and the next one's connection is first.
  fails config | before log creating - SQL Server,Stock | skips .. create connection | loses connect DSN=Stock;
    record SystemDSN:SQL Server,Stock; log //~Operation is not allowed | instead log creating - $; 4 x log
    //~Subscript out of range; record SystemDSN:$; connect DSN=Sales
Where a later one is not read the one before stands for it.
  fails config | before log creating - SQL Server,Sales | loses log creating - SQL Server,Sales; dsn SQL Server
    DSN=Sales; record SystemDSN:SQL Server,Sales | instead log creating - SQL Server,Stock; dsn SQL Server
    DSN=Stock; record SystemDSN:SQL Server,Stock
A source that is not made fails its test, which ends the program,
  fails dsn SQL Server DSN=Stock | within mkdir C:\Progs\TA-LU\App$ .. | told nowhere | skips create connection
    .. | instead connect DSN=Stock; log //~[Microsoft][ODBC Driver Manager] Data source name not found; msgbox
    Connection to Server failed; log Connection to Server failed; FrmApplication Lblmsg Connection to Server
    failed; end
unless an earlier installation made it;
  fails dsn SQL Server DSN=Stock | told nowhere
only the last one's outcome is shown.
  fails dsn SQL Server DSN=Sales | told nowhere | loses FrmApplication Lblmsg DSN(s) created
A server that cannot be reached ends the program.
  fails connect DSN= | only unspecified | skips .. | instead msgbox Connection to Server failed; log Connection
    to Server failed; FrmApplication Lblmsg Connection to Server failed; end
After any other failure the next source opens the connection,
  fails connect DSN= | not unspecified | loses log //~Operation is not allowed | instead connect DSN=Sales
made again where it could not be made.
  fails create connection | within log DSN creation started .. | loses connect DSN=Stock; log //~Operation is
    not allowed | instead create connection; connect DSN=Sales
An error entry that fails ends the step.
  fails log //~Operation is not allowed | skips .. FrmApplication Lblmsg Started Copying

# The copy.
A file that is not copied is told nowhere,
  fails copy | not out of memory | told nowhere
An error of the tree leaves its level, silently: the top one,
  fails folder C:\Progs\TA-LU\App$; folder,files,folders PACK\Application$; mkdir APP\Parts$; log //~Creating
    New Folder - APP\Parts$; log //~Folder Already exists - APP\Parts$; mkdir APP\Zones; log //~Creating New
    Folder - APP\Zones; log //~Folder Already exists - APP\Zones; folder APP\Zones; folder,files,folders
    PACK\Application\Zones | within log Started Copying .. log File copying finished | told nowhere | skips ..
    FrmApplication Lblmsg File copying finished | instead FrmApplication ShpProgBar Width
or one in it.
  fails folder APP\Parts; folder,files,folders PACK\Application\Parts; mkdir APP\Parts\Deep$; log //~Creating
    New Folder - APP\Parts\Deep; log //~Folder Already exists - APP\Parts\Deep | within log Started Copying ..
    log File copying finished | told nowhere | skips .. mkdir APP\Zones | skips .. log //~Folder Already exists
    - APP\Zones
Where there was no folder before, there is none to register,
  fails folder C:\Progs\TA-LU\App$; folder,files,folders PACK\Application$; mkdir APP\Parts$ | within mkdir
    C:\Progs\TA-LU\App$ .. | skips files APP\Parts$+ .. FrmApplication Lblmsg All Files registered | instead log
    //~Path not found
or nothing in it,
  fails log //~Creating New Folder - APP\Parts$; folder APP\Parts$; folder,files PACK\Application\Parts$ |
    within mkdir C:\Progs\TA-LU\App$ .. log File copying finished | skips files APP\Parts$ .. folders APP\Parts$
    | skips folders APP\Parts$ .. FrmApplication Lblmsg All Files registered
or no folder in it,
  fails folders PACK\Application\Parts$; mkdir APP\Parts\Deep$ | within mkdir C:\Progs\TA-LU\App$ .. | skips
    folders APP\Parts$ .. FrmApplication Lblmsg All Files registered
or nothing in that,
  fails log //~Creating New Folder - APP\Parts\Deep; folder APP\Parts\Deep; folder,files
    PACK\Application\Parts\Deep; copy PACK\Application\Parts\Deep | within mkdir C:\Progs\TA-LU\App$ .. log File
    copying finished | skips files APP\Parts\Deep$ .. folders APP\Parts\Deep$
or no component.
  fails copy PACK\Application\Parts\grid.ocx | within mkdir C:\Progs\TA-LU\App$ .. | skips files APP\Parts$ ..
    folders APP\Parts$

# The registration.
Folders to register that are not counted are none: all are registered.
  fails config | after log File Registration started | skips .. FrmApplication Lblmsg All Files registered |
    perhaps folder,files,folders C:\Progs\TA-LU\App; folder,files,folders APP\; events; start regsvr32; log
    regsvr32; FrmApplication ShpProgBar Width; FrmApplication Lblmsg Registering
One whose name is not read is passed over,
  fails config | before folder APP\Parts$ | skips .. FrmApplication Lblmsg All Files registered
and one that cannot be opened, with all in it;
  fails folder APP\Parts; folders APP\Parts$ | within log File Registration started .. | skips .. FrmApplication
    Lblmsg All Files registered
where its files cannot be listed, its folders still are.
  fails files APP\Parts$ | within log File Registration started .. | skips .. folders APP\Parts$
(the folder in it)
  fails files APP\Parts\Deep$ | within log File Registration started .. | skips .. folders APP\Parts\Deep$
Special components that are not counted are none.
  fails config | after log Special Registration started | skips .. FrmApplication Lblmsg Special Registration
    finished
One whose name is not read has none,
  fails config | before special folder | loses copy PACK\SpecialRegn; start regsvr32 /s "C:\Windows; log
    regsvr32 /s "C:\Windows | instead copy PACK\SpecialRegn\ C:\Windows\system 6416; 2 x start regsvr32 /s
    "C:\Windows\system\"; 2 x log regsvr32 /s "C:\Windows\system\"
and without the system's folder it is looked for at the root.
  fails special folder 0 | loses copy PACK\SpecialRegn; start regsvr32 /s "C:\Windows; log regsvr32 /s
    "C:\Windows | instead copy PACK\SpecialRegn\link.ocx  6416; 2 x start regsvr32 /s "\link.ocx"; 2 x log
    regsvr32 /s "\link.ocx"

# The shortcuts.
Shortcuts that are not counted are none, and nothing is said of them.
  fails config | after log Special Registration finished | skips .. log Shotcut:C:\ProgramData+
One whose line is not read is passed over,
  fails config | after log Creating Shotcuts | skips .. log Shotcut:+ | instead log //~Subscript out of range
or is the one before.
  fails config | after log Shotcut: | before create shell | skips .. log Shotcut:+ | instead create shell;
    special folders; create shortcut C:\Users\Public\Desktop; shortcut C:\Users\Public\Desktop; record
    Shotcut:C:\Users\Public\Desktop; log Shotcut:C:\Users\Public\Desktop
Without the special folders there is none,
  fails special folders | skips .. log Shotcut:+
nor without the shell, of which they are asked all the same.
  fails create shell | skips .. log Shotcut:+ | instead log //~Object variable not set
One that fails anywhere is tried in the next special folder of that name.
  fails create shortcut; shortcut; mkdir C:\ProgramData | skips .. log Shotcut:+ | instead log Shotcut:*can't
    created; log Shotcut:* created; record Shotcut:; create shortcut C:\Users\Operator; shortcut
    C:\Users\Operator | perhaps mkdir C:\; create shortcut; shortcut; record ShotcutFolder:; log //~Object
    variable not set; log //~Path not found

# The rest.
An error ends the settings files;
  fails config | before FrmApplication Lblmsg Writing Settings started | skips .. log Writing Settings not
    Finished+
(from their first entry on)
  within FrmApplication Lblmsg Writing Settings started .. FrmApplication Lblmsg Writing Settings not | skips ..
    log Writing Settings not Finished+
and one the add-ons,
  fails config | before FrmApplication Lblmsg Execution of AddOn packs | skips .. log Final Message started
but for one that cannot be started, which has an exit code for that.
  fails run | told nowhere | skips .. record AddOns: | instead run; log Process Finished, Exit Code -1
(from their first entry on)
  fails config; log; record | within FrmApplication Lblmsg Execution of AddOn packs .. log Final Message started
    | skips .. log Final Message started
Closing lines that are not counted are none,
  fails config | after log Final Message started | skips .. log Final Message write
and the first, not read, is not shown.
  fails config | before FrmApplication LblFinalMsg | skips .. log Final Message write
)";

using Names = std::map<std::string, std::vector<std::string>>;

/// "a; 2 x b; c,d e; (name)": the lines a, b, b, c e, d e, and those of the name.
std::vector<std::string> ListOf(const std::string& text, const Names& names) {
  std::vector<std::string> list;
  for (const std::string& piece : Split(text, ';')) {
    const std::string item = Trim(piece);
    const std::string first = item.substr(0, item.find(' '));
    const std::string rest = item.substr(first.size());
    if (const auto named = names.find(item); named != names.end()) {
      list.insert(list.end(), named->second.begin(), named->second.end());
    } else if (rest.starts_with(" x ")) {
      list.insert(list.end(), std::stoul(first), rest.substr(3));
    } else {
      for (const std::string& kind : Split(first, ',')) list.push_back(kind + rest);
    }
  }
  return list;
}

/// The two sides of "..".
std::pair<std::string, std::string> EndsOf(const std::string& text) {
  const std::size_t dots = text.find("..");
  return {Trim(text.substr(0, dots)), Trim(text.substr(dots + 2))};
}

// The clauses, by what they hold.
const std::map<std::string, std::string Consequence::*> kLines = {
    {"after", &Consequence::Prev},
    {"before", &Consequence::Next},
    {"ahead-of", &Consequence::Behind}};
const std::map<std::string, std::vector<std::string> Consequence::*> kLists = {
    {"fails", &Consequence::Fault},
    {"loses", &Consequence::Lost},
    {"instead", &Consequence::Instead},
    {"perhaps", &Consequence::Maybe}};
const std::map<std::string, std::int32_t Consequence::*> kNumbers = {{"only", &Consequence::Number},
                                                                     {"not", &Consequence::But}};
const std::map<std::string, std::int32_t> kErrorNumbers = {{"unspecified", error::kUnspecified},
                                                           {"out of memory", error::kOutOfMemory}};
const std::map<std::string, Told> kPlaces = {{"box", Told::Box},
                                             {"error box", Told::ErrorBox},
                                             {"status line", Told::StatusLine},
                                             {"nowhere", Told::Nowhere}};

/// Raises when there is no such clause, or not with these words.
void AddClause(Consequence& one, const std::string& verb, const std::string& rest, Names& names) {
  if (verb == "means") {
    names[one.Words] = ListOf(rest, names);
  } else if (verb == "within") {
    std::tie(one.From, one.To) = EndsOf(rest);
  } else if (verb == "skips") {
    one.Between.push_back(EndsOf(rest));
  } else if (verb == "told") {
    one.Told = kPlaces.at(rest);
  } else if (kLines.contains(verb)) {
    one.*kLines.at(verb) = rest;
  } else if (kNumbers.contains(verb)) {
    one.*kNumbers.at(verb) = kErrorNumbers.at(rest);
  } else {
    one.*kLists.at(verb) = ListOf(rest, names);
  }
}

std::vector<Consequence> ReadTable() {
  // Of each consequence its words and its clauses, which are indented.
  std::vector<std::pair<std::string, std::string>> read;
  std::istringstream table(kTable);
  for (std::string line; std::getline(table, line);) {
    if (line.empty() || line.starts_with('#')) continue;
    if (line.starts_with(' ')) {
      read.back().second += Trim(line) + " ";
    } else {
      read.emplace_back(line, "");
    }
  }
  Names names;
  std::vector<Consequence> consequences;
  for (const auto& [words, clauses] : read) {
    Consequence one;
    one.Words = words;
    for (const std::string& clause : Split(clauses, '|')) {
      std::istringstream parts(clause);
      std::string verb;
      std::string rest;
      parts >> verb;
      std::getline(parts, rest);
      AddClause(one, verb, Trim(rest), names);
    }
    if (!names.contains(words)) consequences.push_back(one);
  }
  return consequences;
}

}  // namespace

const std::vector<Consequence>& Consequences() {
  static const std::vector<Consequence> all = ReadTable();
  return all;
}

}  // namespace talu
