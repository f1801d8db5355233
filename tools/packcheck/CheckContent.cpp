#include "CheckContent.h"

#include <algorithm>
#include <map>

#include "Exports.h"
#include "ScriptTexts.h"
#include "runtime/NamesOnWindows.h"
#include "runtime/TextFunctions.h"

namespace talu::packcheck {
namespace {

const std::string kApplication = "Application";
constexpr std::string_view kEveryServersDatabases = ",MASTER,MODEL,MSDB,TEMPDB,";

bool IsComponent(const std::string& upperName) {
  return Contains(upperName, ".OCX") || Contains(upperName, ".DLL");
}

/// The components in and below a folder, each as a path relative to it, by it.
void FindComponents(const SimulatedDisk::Node& folder, const std::string& path,
                    std::map<std::string, const SimulatedDisk::Node*>& found) {
  for (const auto& [upper, node] : folder.Children) {
    if (node->IsFolder) {
      FindComponents(*node, path + node->Name + "\\", found);
    } else if (IsComponent(upper)) {
      found.emplace(path + node->Name, node.get());
    }
  }
}

bool CanBeRegistered(const SimulatedDisk::Node& file) {
  return Exports(*file.Content, "DllRegisterServer");
}

void CheckFileNames(CheckedPack& pack, const SimulatedDisk::Node& folder, const std::string& path) {
  for (const auto& [upper, node] : folder.Children) {
    const std::string below = path + "\\" + node->Name;
    if (node->IsFolder) {
      CheckFileNames(pack, *node, below);
    } else if (Length(node->Name) < 4) {
      pack.Findings.Add("APP-SHORT-NAME", {below, 0, node->Name}, {Shown(node->Name)});
    } else if (upper.ends_with(".MDF") || upper.ends_with(".LDF")) {
      const bool stays = node->Name.ends_with(".mdf") || node->Name.ends_with(".ldf");
      pack.Findings.Add("APP-DATABASE", {below, 0, node->Name},
                        {Shown(node->Name), stays ? "is not copied to the machine"
                                                  : "is copied to every machine, as its ending is "
                                                    "not in small letters"});
    }
  }
}

/// Reports what Windows cannot copy, where the operator chooses the usual folder.
void CheckLengths(CheckedPack& pack, const SimulatedDisk::Node& folder, const std::string& path,
                  const std::string& installed) {
  for (const auto& [upper, node] : folder.Children) {
    const std::string below = path + "\\" + node->Name;
    const std::string target = installed + "\\" + node->Name;
    if (Length(target) >= (node->IsFolder ? kMaxFolderPath : kMaxPath)) {
      pack.Findings.Add("APP-LONG-PATH", {below, 0, node->Name},
                        {std::to_string(Length(target)),
                         node->IsFolder ? "it is not made, and what it holds" : "it"});
    } else if (node->IsFolder) {
      CheckLengths(pack, *node, below, target);
    }
  }
}

void CheckApplication(CheckedPack& pack, const Configuration& configuration) {
  if (!pack.HasFolder(kApplication)) {
    pack.Findings.Add("APP-MISSING", {kApplication, 0, ""});
    return;
  }
  const SimulatedDisk::Node& application = *pack.Find(kApplication);
  CheckFileNames(pack, application, kApplication);
  const std::vector<CfgLine> name = configuration.Values("AppFolder");
  const std::string installed =
      "C:\\Program Files\\TA-LU\\" + (name.empty() ? "" : std::string(name.front().Text));
  CheckLengths(pack, application, kApplication, installed);
}

/// Whether a special folder's path ends with the word that a shortcut names.
bool IsSpecialFolder(const std::vector<std::string>& folders, std::string_view word) {
  for (const std::string& folder : folders) {
    const std::string last = Replace(Mid(folder, InStrRev(folder, "\\") + 1), " ", "");
    if (UCase(TrimView(word)) == UCase(last)) return true;
  }
  return false;
}

void CheckShortcut(CheckedPack& pack, const CfgLine& line) {
  Findings& findings = pack.Findings;
  const std::vector<std::string> fields = Split(line.Text, ',');
  if (fields.size() < 3) {
    findings.Add("LNK-FIELDS", line.Place(), {std::to_string(fields.size())});
    return;
  }
  if (!fields[0].starts_with('\\')) {
    findings.Add("LNK-BACKSLASH", line.Place(), {Shown(fields[0])});
  } else if (pack.HasFolder(kApplication) && !pack.HasFile(kApplication + fields[0])) {
    findings.Add("LNK-TARGET", line.Place(), {Shown(fields[0])});
  }
  if (!IsSpecialFolder(pack.Machine.Scripting.SpecialFolders, fields[1])) {
    findings.Add("LNK-FOLDER", line.Place(), {Shown(fields[1])});
  }
  const std::string& name = fields[2];
  if (Contains(name, "\\") || Contains(name, "/") || HasForbiddenCharacter(name) ||
      IsDeviceName(name)) {
    findings.Add("LNK-NAME", line.Place(), {Shown(name)});
  }
  if (fields.size() > 3) findings.Add("LNK-COMMA", line.Place(), {Shown(name)});
}

/// Reports the database and the login of a data source that no script has.
void CheckNamed(CheckedPack& pack, const CfgLine& line, const std::vector<std::string>& fields,
                const ScriptTexts& scripts) {
  const std::string database = Trim(fields[2]);
  if (!Contains(kEveryServersDatabases, "," + UCase(database) + ",") && scripts.Lack(database)) {
    pack.Findings.Add("DSN-DATABASE", line.Place(), {Shown(database)});
  }
  const std::string login = Trim(fields[3]);
  if (UCase(login) != "SA" && scripts.Lack(login)) {
    pack.Findings.Add("DSN-LOGIN", line.Place(), {Shown(login)});
  }
}

void CheckDataSource(CheckedPack& pack, const CfgLine& line, const ScriptTexts& scripts) {
  const std::vector<std::string> fields = Split(line.Text, ',');
  const std::string driver = fields.empty() ? "" : Trim(fields[0]);
  const bool access = driver == "Microsoft Access Driver (*.mdb)";
  if (!access && driver != "SQL Server") {
    pack.Findings.Add("DSN-DRIVER", line.Place(), {Shown(driver)});
  }
  if (fields.size() < 5) {
    const bool described = !access && fields.size() >= 3;
    pack.Findings.Add("DSN-FIELDS", line.Place(),
                      {std::to_string(fields.size()), described ? "" : ", nor is it described"});
    return;
  }
  if (!TrimView(fields[4]).empty()) {
    pack.Findings.Add("PW-CLEAR", line.Place(),
                      {"The password of the data source", "the pack, the log or Uninstall.dat"});
  }
  if (fields.size() > 5) pack.Findings.Add("DSN-COMMA", line.Place());
  if (driver == "SQL Server") CheckNamed(pack, line, fields, scripts);
}

void CheckRegistration(CheckedPack& pack, const Configuration& configuration) {
  Findings& findings = pack.Findings;
  const std::vector<CfgLine> lines = configuration.Values("RegnLocation");
  for (const CfgLine& line : lines) {
    const std::string path = kApplication + std::string(line.Text);
    const SimulatedDisk::Node* folder = pack.Find(path);
    std::map<std::string, const SimulatedDisk::Node*> components;
    if (!line.Text.starts_with('\\')) {
      findings.Add("REG-BACKSLASH", line.Place(), {Shown(line.Text)});
    } else if (folder == nullptr || !folder->IsFolder) {
      findings.Add("REG-FOLDER", line.Place(), {Shown(line.Text)});
    } else if (FindComponents(*folder, "", components); components.empty()) {
      findings.Add("REG-NOTHING", line.Place(), {Shown(line.Text)});
    }
    for (const auto& [name, file] : components) {
      if (CanBeRegistered(*file)) continue;
      std::string place = path;
      if (!place.ends_with('\\')) place += '\\';
      place += name;
      findings.Add("REG-EXPORT", {place, 0, name}, {Shown(name)});
    }
  }
  const SimulatedDisk::Node* application = pack.Find(kApplication);
  if (!lines.empty() || application == nullptr) return;
  std::map<std::string, const SimulatedDisk::Node*> components;
  FindComponents(*application, "", components);
  if (components.empty()) return;
  auto shown = std::ranges::find_if(
      components, [](const auto& component) { return !CanBeRegistered(*component.second); });
  const bool isOne = shown == components.end();
  if (isOne) shown = components.begin();
  findings.Add("REG-WHOLE", configuration.PlaceOf("RegnLocation"),
               {Shown(shown->first) + (isOne ? "" : ", which exports no DllRegisterServer")});
}

void CheckSpecialFile(CheckedPack& pack, const CfgLine& line) {
  const std::string name = Split(line.Text, ',').front();
  const SimulatedDisk::Node* file = pack.Find("SpecialRegn\\" + name);
  if (file == nullptr || file->IsFolder) {
    pack.Findings.Add("SPC-FILE", line.Place(), {Shown(name)});
  } else if (!CanBeRegistered(*file)) {
    pack.Findings.Add("REG-EXPORT", line.Place(), {Shown(name)});
  }
}

/// Whether Windows finds a program for a command line without quotes: a path may end at each blank.
bool HasProgram(CheckedPack& pack, const std::string& line) {
  for (std::size_t blank = line.find(' ');; blank = line.find(' ', blank + 1)) {
    const std::string path = "AddOns\\" + line.substr(0, blank);
    if (pack.HasFile(path) || pack.HasFile(path + ".exe")) return true;
    if (blank == std::string::npos) return false;
  }
}

void CheckAddOn(CheckedPack& pack, const CfgLine& value) {
  Findings& findings = pack.Findings;
  const std::string line(value.Text);
  const bool program = Contains(line, ".exe");
  const bool package = Contains(line, ".msi");
  if (!program && !package) {
    const std::string upper = UCase(line);
    const bool meant = Contains(upper, ".EXE") || Contains(upper, ".MSI");
    findings.Add(meant ? KnownRule("ADD-CASE") : KnownRule("ADD-KIND"), value.Place(),
                 {Shown(line)});
    return;
  }
  if (package) findings.Add("ADD-RESTART", value.Place(), {Shown(line)});
  if (program ? !HasProgram(pack, line) : !pack.HasFile("AddOns\\" + line)) {
    findings.Add("ADD-FILE", value.Place(), {Shown(line)});
  }
  if (const std::size_t blank = line.find(' '); program && blank < line.find(".exe")) {
    findings.Add("ADD-BLANKS", value.Place(), {Shown(line), Shown(line.substr(0, blank) + ".exe")});
  }
}

void CheckSettings(CheckedPack& pack, const Configuration& configuration) {
  Findings& findings = pack.Findings;
  const std::vector<CfgLine> databaseFolder = configuration.Values("DBFolder");
  std::map<std::string, int> written;
  for (const CfgLine& line : configuration.Values("WriteSettings")) {
    const std::vector<std::string> fields = Split(line.Text, ',');
    const std::string file = fields.empty() ? "" : fields[0];
    if (!Contains(file, ".txt")) {
      findings.Add("SET-TXT", line.Place(), {Shown(file)});
      continue;
    }
    if (!file.starts_with('\\')) {
      findings.Add("SET-BACKSLASH", line.Place(), {Shown(file)});
    } else {
      const std::string folder = ParentPath(file);
      const bool ofDatabases =
          !databaseFolder.empty() && UCase(folder) == "\\" + UCase(databaseFolder.front().Text);
      // The folder is in the middle of a path, where a blank at its end counts.
      if (!folder.empty() && !ofDatabases && !pack.HasFolder(kApplication + folder + "\\")) {
        findings.Add("SET-FOLDER", line.Place(), {Shown(file)});
      }
    }
    const std::string name = file.substr(file.find_last_of("\\/") + 1);
    if (HasForbiddenCharacter(name) || IsDeviceName(name)) {
      findings.Add("SET-NAME", line.Place(), {Shown(file)});
    }
    if (const auto [earlier, isNew] = written.emplace(UCase(file), line.Number); !isNew) {
      findings.Add("SET-TWICE", line.Place(), {Shown(file), std::to_string(earlier->second)});
    }
    if (fields.size() < 3) {
      findings.Add("SET-FIELDS", line.Place(), {std::to_string(fields.size())});
      continue;
    }
    const std::string value = UCase(TrimView(fields[2]));
    if (value == "PASSWORD") {
      findings.Add("PW-CLEAR", line.Place(),
                   {"The operator's password", "the application folder, where it is written to"});
    } else if (value != "SERVER" && value != "USERNAME") {
      findings.Add("SET-VALUE", line.Place(), {Shown(fields[2])});
    }
  }
}

}  // namespace

void CheckContent(CheckedPack& pack, const Configuration& configuration) {
  if (!pack.HasFile("Setup.exe")) pack.Findings.Add("SETUP-MISSING", {"Setup.exe", 0, ""});
  CheckApplication(pack, configuration);
  for (const CfgLine& line : configuration.Values("Shotcut")) CheckShortcut(pack, line);
  const ScriptTexts scripts(pack, configuration);
  for (const CfgLine& line : configuration.Values("SystemDSN")) {
    CheckDataSource(pack, line, scripts);
  }
  CheckRegistration(pack, configuration);
  for (const CfgLine& line : configuration.Values("SpecialRegn")) CheckSpecialFile(pack, line);
  for (const CfgLine& line : configuration.Values("AddOns")) CheckAddOn(pack, line);
  CheckSettings(pack, configuration);
}

}  // namespace talu::packcheck
