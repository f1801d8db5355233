#include "CheckContent.h"

#include <map>

#include "runtime/TextFunctions.h"

namespace talu::packcheck {
namespace {

constexpr std::string_view kNotInNames = "\\/:*?\"<>|";
const std::string kApplication = "Application";

bool IsComponent(const std::string& upperName) {
  return Contains(upperName, ".OCX") || Contains(upperName, ".DLL");
}

/// The first component in or below a folder, as a path relative to it; empty when there is none.
std::string FirstComponent(const SimulatedDisk::Node& folder) {
  for (const auto& [upper, node] : folder.Children) {
    if (!node->IsFolder && IsComponent(upper)) return node->Name;
  }
  for (const auto& [upper, node] : folder.Children) {
    if (!node->IsFolder) continue;
    const std::string below = FirstComponent(*node);
    if (!below.empty()) return node->Name + "\\" + below;
  }
  return "";
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

void CheckApplication(CheckedPack& pack) {
  if (!pack.HasFolder(kApplication)) {
    pack.Findings.Add("APP-MISSING", {kApplication, 0, ""});
    return;
  }
  CheckFileNames(pack, *pack.Find(kApplication), kApplication);
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
  if (fields[2].find_first_of(kNotInNames) != std::string::npos) {
    findings.Add("LNK-NAME", line.Place(), {Shown(fields[2])});
  }
}

void CheckDataSource(CheckedPack& pack, const CfgLine& line) {
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
  } else if (!TrimView(fields[4]).empty()) {
    pack.Findings.Add("PW-CLEAR", line.Place(),
                      {"The password of the data source", "the pack, the log or Uninstall.dat"});
  }
}

void CheckRegistration(CheckedPack& pack, const Configuration& configuration) {
  Findings& findings = pack.Findings;
  const std::vector<CfgLine> lines = configuration.Values("RegnLocation");
  for (const CfgLine& line : lines) {
    const SimulatedDisk::Node* folder = pack.Find(kApplication + std::string(line.Text));
    if (!line.Text.starts_with('\\')) {
      findings.Add("REG-BACKSLASH", line.Place(), {Shown(line.Text)});
    } else if (folder == nullptr || !folder->IsFolder) {
      findings.Add("REG-FOLDER", line.Place(), {Shown(line.Text)});
    } else if (FirstComponent(*folder).empty()) {
      findings.Add("REG-NOTHING", line.Place(), {Shown(line.Text)});
    }
  }
  const SimulatedDisk::Node* application = pack.Find(kApplication);
  if (!lines.empty() || application == nullptr) return;
  const std::string component = FirstComponent(*application);
  if (component.empty()) return;
  findings.Add("REG-WHOLE", configuration.PlaceOf("RegnLocation"), {Shown(component)});
}

void CheckSpecialFile(CheckedPack& pack, const CfgLine& line) {
  const std::string name = Split(line.Text, ',').front();
  if (pack.HasFile("SpecialRegn\\" + name)) return;
  pack.Findings.Add("SPC-FILE", line.Place(), {Shown(name)});
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
      if (!folder.empty() && !ofDatabases && !pack.HasFolder(kApplication + folder)) {
        findings.Add("SET-FOLDER", line.Place(), {Shown(file)});
      }
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
  CheckApplication(pack);
  for (const CfgLine& line : configuration.Values("Shotcut")) CheckShortcut(pack, line);
  for (const CfgLine& line : configuration.Values("SystemDSN")) CheckDataSource(pack, line);
  CheckRegistration(pack, configuration);
  for (const CfgLine& line : configuration.Values("SpecialRegn")) CheckSpecialFile(pack, line);
  for (const CfgLine& line : configuration.Values("AddOns")) CheckAddOn(pack, line);
  CheckSettings(pack, configuration);
}

}  // namespace talu::packcheck
