// What check-this-machine.cmd runs, by the script host of Windows 7 to 11.
var shell = new ActiveXObject("WScript.Shell");
var files = new ActiveXObject("Scripting.FileSystemObject");
var here = files.GetParentFolderName(WScript.ScriptFullName);
var top = files.GetParentFolderName(here);
var command = files.BuildPath(top, "check-this-machine.cmd");
var report = files.BuildPath(top, "check-this-machine.txt");
// All that is made lies below, but for what an installation puts elsewhere: see Paths and keys.
var root = "C:\\TaLuCheck";
var pack = root + "\\Pack";
var settings = root + "\\settings.reg";
var databases = ["SalesDesk_Sales", "SalesDesk_Stock"];
var login = "SalesDeskUser";
var asked = {};
var failed = 0;

function Environment(name) {
  return shell.Environment("Process").Item(name);
}

function Each(list, action) {
  for (var i = 0; i < list.length; ++i) action(list[i]);
}

function Write(path, text) {
  var file = files.CreateTextFile(path, true);
  file.Write(text);
  file.Close();
}

function Tell(line) {
  line = line.replace(/[^\x20-\x7e]/g, "?");
  WScript.Echo(line);
  var file = files.OpenTextFile(report, 8, true);
  file.WriteLine(line);
  file.Close();
}

function Check(what, good, why) {
  if (!good) ++failed;
  Tell((good ? "passed: " : "FAILED: ") + what + (good || !why ? "" : ": " + why));
}

// Runs a command without a window. Returns how it ended.
function Run(command) {
  return shell.Run('"' + Environment("ComSpec") + '" /d /c "' + command + '"', 0, true);
}

// The same as a check; what a command says that fails goes into the report as it is.
function CheckCommand(what, command) {
  var out = root + "\\out.txt";
  var code = Run(command + " > " + out + " 2>&1");
  Check(what, code == 0, "it ended with " + code);
  if (code != 0) Run("type " + out + ' >> "' + report + '"');
}

function Soon(condition) {
  // A second each time: the host of Wine cannot sleep.
  for (var i = 0; i < 30; ++i) {
    if (condition()) return true;
    Run("ping -n 2 127.0.0.1 > nul");
  }
  return false;
}

function IsKey(key) {
  return Run('reg query "' + key + '" > nul 2>&1') == 0;
}

// Those of the components that are not registered.
function Unregistered(components) {
  var found = [];
  Each(components, function (component) {
    if (!IsKey(keys[0] + "\\Components\\" + component)) found.push(component);
  });
  return found;
}

function Connect() {
  var connection = new ActiveXObject("ADODB.Connection");
  connection.Open("driver={SQL Server};server=" + asked.server + ";uid=" + asked.user +
    ";pwd=" + Environment("SQL_PASSWORD") + ";database=Master");
  return connection;
}

// What the server has against a statement; null when it carries it out.
function Refusal(statement) {
  var connection = Connect();
  try {
    var command = new ActiveXObject("ADODB.Command");
    command.ActiveConnection = connection;
    command.CommandTimeout = 300;
    command.CommandText = statement;
    command.Execute();
    return null;
  } catch (error) {
    return error;
  } finally {
    connection.Close();
  }
}

// Those of the databases, and the login, that are on the server. The answer to each question is a failure,
// which every provider passes on.
function OnServer() {
  var found = [];
  Each(asked.server ? databases.concat(login) : [], function (name) {
    var view = name == login ? "server_principals" : "databases";
    if (Refusal("IF EXISTS (SELECT * FROM sys." + view + " WHERE name = N'" + name + "') " +
      "SELECT * FROM TaLuCheck_Nothing")) found.push(name);
  });
  return found;
}

// The script host's folders in its order; those of all users come first.
function SpecialFolders() {
  var all = [];
  try {
    for (var each = new Enumerator(shell.SpecialFolders); !each.atEnd(); each.moveNext()) all.push(each.item());
  } catch (error) {
  }
  if (all.length == 0) {  // some hosts answer to names only, and not to every one
    var programs = shell.SpecialFolders.Item("AllUsersPrograms");
    all.push(shell.SpecialFolders.Item("AllUsersDesktop"), files.GetParentFolderName(programs), programs);
  }
  return all;
}

// The first of them that ends so.
function SpecialFolder(ending) {
  var found;
  Each(SpecialFolders().reverse(), function (path) {
    if (ending.test(path)) found = path;
  });
  return found;
}

// What an installation leaves outside of its folder; the first is the add-on's.
function Paths() {
  return [
    Environment("ProgramFiles") + "\\SalesDesk Tools",
    Environment("SystemRoot") + "\\system\\SalesLink.ocx",
    SpecialFolder(/\\Desktop$/i) + "\\SalesDesk.lnk",
    SpecialFolder(/\\Start Menu$/i) + "\\TALU\\SalesDesk",
    SpecialFolder(/\\Programs$/i) + "\\TALU\\SalesDesk"
  ];
}

var keys = [
  "HKLM\\Software\\SalesDesk",
  "HKLM\\Software\\ODBC\\ODBC.INI\\SalesDesk",
  "HKCR\\CLSID\\{5C0E7A10-91B4-4E0C-8F6B-3D2A64B1C701}",
  "HKCR\\CLSID\\{5C0E7A10-91B4-4E0C-8F6B-3D2A64B1C702}",
  "HKCR\\CLSID\\{5C0E7A10-91B4-4E0C-8F6B-3D2A64B1C703}"
];

// What of an installation is there.
function Traces() {
  var found = OnServer();
  Each(Paths(), function (path) {
    if (files.FileExists(path) || files.FolderExists(path)) found.push(path);
  });
  Each(keys, function (key) {
    if (IsKey(key)) found.push(key);
  });
  return found;
}

// The wizard notes the folder of its last installation: what another one noted comes back.
function RestoreSettings() {
  if (Run('reg query HKCU\\Software\\TA-LU\\Application /ve | find /i "' + root + '"') != 0) return;
  Run("reg delete HKCU\\Software\\TA-LU /f");
  if (files.FileExists(settings)) Run("reg import " + settings);
}

// Takes away what installations have left. Returns whether nothing is.
function Uninstalled() {
  Each(OnServer(), function (name) {
    if (name == login) return Refusal("DROP LOGIN " + name);
    Refusal("ALTER DATABASE " + name + " SET OFFLINE WITH ROLLBACK IMMEDIATE");
    Refusal("DROP DATABASE " + name);
  });
  if (files.FolderExists(Paths()[0])) Run("msiexec /x {6B1B7C2E-4D0B-4C58-9C35-0C2B8C9F5A11} /quiet /norestart");
  var steps = ['reg delete "HKLM\\Software\\ODBC\\ODBC.INI\\ODBC Data Sources" /v SalesDesk /f'];
  Each(Paths(), function (path) {
    steps.push((files.FolderExists(path) ? "rd /s" : "del") + ' /q "' + path + '"');
    // The folder of several products goes when it is empty.
    if (/\\TALU\\/.test(path)) steps.push('rd "' + files.GetParentFolderName(path) + '"');
  });
  Each(keys, function (key) {
    steps.push('reg delete "' + key + '" /f');
  });
  Run(steps.join(" & "));
  return Traces().length == 0;
}

// Takes away what the check has made, its folder last: as long as that is there, it is not done.
function RemoveAll() {
  var gone = Soon(function () {
    RestoreSettings();
    return Uninstalled();
  });
  gone = gone && Soon(function () {
    Run("rd /s /q " + root);
    return !files.FolderExists(root);
  });
  Check("everything is removed", gone, "there is " + Traces().concat(files.FolderExists(root) ? root : []) +
    "; end the wizard if it is open, and start again");
  return gone;
}

// The folder of the check: for administrators, and for the service, which puts databases there.
function MakeRoot() {
  files.CreateFolder(root);
  Run("icacls " + root + ' /inheritance:r /grant:r "*S-1-5-32-544:(OI)(CI)F" "*S-1-5-18:(OI)(CI)F"');
  Run("reg export HKCU\\Software\\TA-LU " + settings);
  if (asked.server) {
    files.CreateFolder(root + "\\Server");
    var instance = /\\(.+)$/.exec(asked.server);
    var service = "NT SERVICE\\" + (instance ? "MSSQL$" + instance[1] : "MSSQLSERVER");
    if (Run("icacls " + root + ' /grant "' + service + ':(OI)(CI)M"') != 0) {
      Tell("note: there is no " + service + " here, so the server may not be allowed to write to " + root);
    }
  }
  Run('xcopy /e /i /q "' + here + '\\Pack" ' + pack);
  files.CopyFile(top + "\\Pack\\Setup.exe", pack + "\\Setup.exe");
  var text = "";
  Each(SpecialFolders(), function (path) {
    if (/^[A-Z]:\\[\x20-\x7e]*$/i.test(path)) text += path + "\r\n";
  });
  Write(root + "\\special-folders.txt", text);
  // As the Windows folder is spelled, so the log has it.
  Run("md " + root + "\\Before\\" + files.GetFileName(Environment("SystemRoot")) + "\\system");
}

// The sample's configuration, changed by pairs of what is found and what takes its place.
function Configure(changes) {
  var text = files.OpenTextFile(here + "\\Pack\\AppCfg.txt").ReadAll();
  for (var i = 0; i < changes.length; i += 2) text = text.replace(changes[i], changes[i + 1]);
  Write(pack + "\\AppCfg.txt", text);
}

// When the safety copy was made, which its name tells; any time where there is none.
function BackupTime(backups) {
  var list = root + "\\backups.txt";
  Write(list, "AppFolderBkp_7_3_2012_9_5\r\n");
  Run('dir /b "' + backups + '" >> ' + list);
  var stamp = /.*AppFolderBkp_(\d+)_(\d+)_(\d+)_(\d+)_(\d+)/.exec(files.OpenTextFile(list).ReadAll().replace(/\s+/g, " "));
  return stamp[3] + "-" + stamp[2] + "-" + stamp[1] + " " + stamp[4] + ":" + stamp[5];
}

// Installs below root\FOLDER by the wizard's windows, and compares with what packcheck plans from `before`,
// which is C: at the start, with the options `more`. `fails`: the build does.
function Install(what, type, mode, folder, before, more, fails) {
  var target = root + "\\" + folder;
  var product = target + "\\TA-LU\\SalesDesk";
  var server = mode == "Server";
  if (!files.FolderExists(target)) files.CreateFolder(target);
  Write(root + "\\steps.txt", ["timeout 600", "wait FrmType", "click Opt" + type, "click CmdNext", "wait FrmMode",
    "click Opt" + mode, "click CmdNext"].concat(server ? ["wait FrmAuthentication", "type TxtUsrName ${USER}",
      "type TxtPsWord ${env:SQL_PASSWORD}", "type TxtServer ${SERVER}", "click CmdNext", "wait FrmLocation"] :
    ["wait FrmLocation", "type TxtServer ${SERVER}"], ["click CmdLocation", "browse " + target, "click CmdNext"],
  fails ? ["wait FrmSQLNonQuery", "message-begins [", "expect LblMsg text Database creation not finished...",
    "close FrmSQLNonQuery", "ended 0"] : ["wait FrmApplication", "expect CmdNext enabled true",
    "expect Lblmsg text Installation finished. Click Finish to Exit.", "finish"]).join("\r\n") + "\r\n");
  var name = asked.server || "none";
  CheckCommand(what + ": the wizard's pages", '"' + top + '\\drive.exe" ' + root + "\\steps.txt --start " + pack +
    '\\Setup.exe --set "SERVER=' + name + '" --set "USER=' + asked.user + '" --end-on-failure -v');
  CheckCommand(what + ": log, record, files and shortcuts as planned", '"' + top + '\\packcheck.exe" plan ' + pack +
    " --type " + type.toLowerCase() + " --mode " + mode.toLowerCase() + ' --server "' + name + '"' +
    (server ? ' --user "' + asked.user + '" --password-from SQL_PASSWORD' : "") + " --install-path " + target +
    " --code-page 0 --pack-path " + pack + ' --now "' + BackupTime(product + " BackUp") + '" --disk "' + before +
    '" --special-folders ' + root + "\\special-folders.txt --exit LabelPrinter.exe=7 --save \"" + root +
    "\\Plan " + what + '" --compare C:\\. ' + (more || ""));
  if (fails) return;
  // All are waited for at once.
  var unregistered = ["SALESGRID", "SalesPrint", "SalesLink"];
  Soon(function () {
    unregistered = Unregistered(unregistered);
    return unregistered.length == 0;
  });
  Check(what + ": the components are registered", unregistered.length == 0, "no key for " + unregistered);
  Each(server ? databases : [], function (database) {
    Check(what + ": the file of " + database, files.FileExists(product + "\\Data\\" + database + ".mdf"));
  });
  if (server) Check(what + ": databases and login", OnServer().length == 3, "there is " + OnServer());
}

function CheckAll() {
  var empty = root + "\\Before";
  // One of them leaves Windows something to do when it starts next.
  CheckCommand("the parts that touch Windows",
    '"' + here + '\\win32_tests.exe" --gtest_filter=-RemovalTest.RemovesTheProgramThatRuns');
  Configure([/SystemDSN\r\n\{[^}]*\}\r\n/, ""]);
  Install("fresh client", "Fresh", "Client", "Client", empty);
  if (!asked.server) return;

  Check("the client is removed", Soon(Uninstalled));
  // A second data source leaves an error in the log, in the words of this machine's language.
  var oneSource = [/SQL Server, SalesDeskStock.*\r\n/, ""];
  Configure(oneSource);
  Install("fresh server", "Fresh", "Server", "Server", empty);
  Install("upgrade server", "Upgrade", "Server", "Server", root + "\\Plan fresh server\\C",
    "--database " + databases.join(" --database ") + " --login " + login);
  Each(databases, function (name) {
    Check("upgrade server: backup of " + name,
      Run('dir "' + root + "\\Server\\TA-LU\\SalesDesk BackUp\\Talu_" + name + '_*.bkp"') == 0);
  });
  Check("upgrade server: the new column", !Refusal("SELECT Barcode FROM SalesDesk_Stock.dbo.Article"));

  Check("the server is removed", Soon(Uninstalled));
  Install("demo server", "Demo", "Server", "Demo", empty);

  Check("the demo is removed", Soon(Uninstalled));
  // The plan fails the statement in the words of this machine's driver.
  var failing = "SELECT * FROM TaLuCheck_Nothing";
  var error = Refusal(failing);
  Write(pack + "\\SQLScript\\Fresh\\Failing.sql", "--taluGO\r\n" + failing + "\r\nGO\r\n");
  Configure(oneSource.concat("BaseRows.sql\r\n", "BaseRows.sql\r\nFailing.sql\r\n"));
  Install("failing server", "Fresh", "Server", "Failing", empty,
    '--fail-sql "TaLuCheck_Nothing=' + error.number + ":" + error.description.replace(/"/g, '\\"') + '"', true);
  Check("failing server: the build is rolled back", OnServer().length == 0, "there is " + OnServer());
}

function TellMachine() {
  Tell("TA-LU Setup " + files.GetFileVersion(top + "\\Pack\\Setup.exe") + " on this machine:");
  Each(["ver", "reg query HKLM\\SYSTEM\\CurrentControlSet\\Control\\Nls\\CodePage /v ACP",
    'reg query "HKCU\\Control Panel\\Desktop\\WindowMetrics" /v AppliedDPI',
    'reg query "HKCU\\Control Panel\\Desktop" /v LogPixels'], function (command) {
    Run(command + ' >> "' + report + '" 2> nul');
  });
  if (!asked.server) return;
  var connection = Connect();
  var version = "not told";
  try {
    version = connection.Properties("DBMS Version").Value;
  } catch (error) {
  }
  connection.Close();
  Tell("SQL Server, version " + version);
}

function ReadArguments() {
  var given = WScript.Arguments;
  for (var i = 0; i < given.length; ++i) {
    var option = given.Item(i);
    if (/^--(client|elevate)$/.test(option)) {
      asked[option.substr(2)] = true;
    } else if (/^--(server|user)$/.test(option) && i + 1 < given.length) {
      asked[option.substr(2)] = given.Item(++i);
    } else {
      throw new Error("what is " + option + "? check-this-machine.cmd begins with what it can be asked");
    }
  }
  if (!asked.server != !asked.user) throw new Error("--server and --user go together");
  if (asked.server && !Environment("SQL_PASSWORD")) throw new Error("there is no password");
}

// Whether we may change the machine, by trying.
function IsAdministrator() {
  var key = " HKLM\\Software\\TaLuCheck /f";
  return Run("reg add" + key + " && reg delete" + key) == 0;
}

// Opens a window with an administrator's rights, in which the command goes on. It may not see what lies on a
// network drive.
function Elevate() {
  WScript.Echo("Windows asks whether this may change the machine; the check then goes on in another window.");
  var quoted = '"' + command + '"';
  new ActiveXObject("Shell.Application").ShellExecute(Environment("ComSpec"), '/d /s /c "set TALU_ELEVATED=1& if exist ' +
    quoted + " (" + quoted + ") else (echo Copy the folder to a disk of this machine, and start it there. & pause)\"",
  "", "runas", 1);
}

// Returns the code with which this is over before anything is checked; undefined otherwise.
function Begin() {
  ReadArguments();
  if (!IsAdministrator()) {
    if (!asked.elevate || Environment("TALU_ELEVATED")) throw new Error("start it as an administrator");
    Elevate();
    return 12;
  }
  if (asked.elevate) return 10;
  try {
    Write(report, "");
  } catch (error) {
    throw new Error(report + " cannot be written: copy the folder to a disk of this machine");
  }
}

// Returns whether what is there, or will be, is the check's own.
function IsOurs() {
  if (files.FolderExists(root + "\\Server") && !asked.server) {
    throw new Error("a check with a SQL Server was broken off: name it again, for what is left there");
  }
  if (files.FolderExists(root)) {
    Tell("A check was broken off: what it has left goes first.");
    return RemoveAll();
  }
  var found = Traces();
  Check("nothing of the sample is here before", found.length == 0, "there is " + found);
  return found.length == 0;
}

// An error among these is one failed check.
function Attempt(what, action) {
  try {
    action();
  } catch (error) {
    Check(what, false, error.description || "error " + error.number);
  }
}

function Main() {
  // Other folders may have programs with the names of those of Windows.
  shell.CurrentDirectory = Environment("SystemRoot");
  try {
    var over = Begin();
    if (over) return over;
  } catch (error) {
    WScript.Echo("Nothing was checked: " + error.description);
    return 11;
  }
  WScript.Echo("This takes some minutes. Windows open and close by themselves: leave mouse and keyboard alone.");
  var ours = false;
  Attempt("the check came to its end", function () {
    TellMachine();
    ours = IsOurs();
    if (!ours) return;
    MakeRoot();
    CheckAll();
  });
  if (ours) Attempt("everything is removed", RemoveAll);
  Tell(failed ? failed + " FAILED" : "all passed");
  WScript.Echo((failed ? "Please send the report, in which no password is: " : "The report: ") + report);
  return failed ? 11 : 10;
}

WScript.Quit(Main());
