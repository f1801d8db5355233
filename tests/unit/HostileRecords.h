#pragma once

#include <array>

namespace talu {

/// What somebody or something may have done to the record or the log of an installation. In the
/// texts "|" is a line end, $A the application folder and $S the start menu.
struct HostileRecord {
  enum class Where { Record, Log };

  const char* Name;
  Where In;
  /// Stands behind what the wizard wrote, or, with a "=" in front, in its place.
  const char* Text;
  /// What the take-back says of it; empty: nothing.
  const char* Told;
};

inline constexpr auto kRecord = HostileRecord::Where::Record;
inline constexpr auto kLog = HostileRecord::Where::Log;

inline constexpr auto kHostileRecords = std::to_array<HostileRecord>({
    // Shortcuts that the wizard does not make.
    {"another program's shortcut", kRecord, "Shotcut:C:\\Users\\Public\\Desktop\\Other.lnk|",
     "It leads to C:\\Other\\other.exe."},
    {"a shortcut to the folder beside", kRecord, "Shotcut:C:\\Users\\Public\\Desktop\\Near.lnk|",
     "It leads to"},
    {"a file that is no shortcut", kRecord, "Shotcut:C:\\Users\\Public\\Desktop\\Plain.lnk|",
     "It is no shortcut."},
    {"a shortcut's place, a file", kRecord, "Shotcut:C:\\Users\\Public\\Desktop\\notes.txt|",
     "no place of a shortcut"},
    {"a shortcut anywhere", kRecord, "Shotcut:C:\\Data\\Desk.lnk|", "no place of a shortcut"},
    {"a shortcut out of its folder", kRecord,
     "Shotcut:C:\\Users\\Public\\Desktop\\..\\..\\..\\Data\\Desk.lnk|", "no place of a shortcut"},
    {"a shortcut below", kRecord, "Shotcut:$S\\Programs\\Sub\\Desk.lnk|", "no place of a shortcut"},
    {"a shortcut by a forward slash", kRecord, "Shotcut:C:/Data/Desk.lnk|",
     "no place of a shortcut"},
    {"a shortcut on the network", kRecord, "Shotcut:\\\\srv\\c$\\Desk.lnk|",
     "no place of a shortcut"},
    {"a shortcut that is a device", kRecord, "Shotcut:\\\\.\\C:\\Data\\Desk.lnk|",
     "no place of a shortcut"},
    {"a shortcut's stream", kRecord, "Shotcut:C:\\Users\\Public\\Desktop\\Desk.lnk:x.lnk|",
     "no place of a shortcut"},
    {"a shortcut through a link", kRecord, "Shotcut:$S\\TALU\\Linked\\far.lnk|", "It is a link"},
    {"shortcuts of all", kRecord, "Shotcut:C:\\Users\\Public\\Desktop\\*.lnk|",
     "no place of a shortcut"},
    {"no shortcut", kRecord, "Shotcut:|", "no place of a shortcut"},
    // Folders.
    {"a special folder itself", kRecord, "ShotcutFolder:$S|", "no folder that the wizard makes"},
    {"the products' folder", kRecord, "ShotcutFolder:$S\\TALU|", "no folder that the wizard makes"},
    {"another product's folder", kRecord, "ShotcutFolder:$S\\TALU\\Other|", "It is not empty."},
    {"a folder anywhere", kRecord, "ShotcutFolder:C:\\Empty|", "no folder that the wizard makes"},
    {"a linked folder", kRecord, "ShotcutFolder:$S\\TALU\\Linked|", "It is a link"},
    {"a databases' folder elsewhere", kRecord, "AppFolder:$A|DBFolder:C:\\Empty|", ""},
    {"a databases' folder above", kRecord, "AppFolder:$A|DBFolder:$A\\..\\Empty|", ""},
    {"a databases' folder that is the folder", kRecord, "AppFolder:$A|DBFolder:$A|", ""},
    {"another application folder", kRecord, "AppFolder:C:\\Data|DBFolder:C:\\Data\\Empty|",
     "It is about the folder C:\\Data."},
    {"only another application folder", kRecord, "=AppFolder:C:\\Data|", "about another folder"},
    {"a drive", kRecord, "=AppFolder:C:\\|", "about another folder"},
    {"a folder reached upwards", kRecord, "=AppFolder:$A\\x\\..|", "leads upwards"},
    {"no application folder", kRecord, "=Shotcut:C:\\Users\\Public\\Desktop\\Desk.lnk|",
     "does not say which folder"},
    {"lines before the folder", kRecord, "=SystemDSN:SQL Server,Sales,Sales|AppFolder:$A|",
     "No \"AppFolder:\" stands before it."},
    // Data sources.
    {"another data source", kRecord, "SystemDSN:SQL Server,Other,OtherDB,sa,x|",
     "not as the wizard made it"},
    {"a data source of another driver", kRecord, "SystemDSN:Other Driver,Other,OtherDB|",
     "not as the wizard made it"},
    {"a data source that has gone", kRecord, "SystemDSN:SQL Server,Nowhere,X|", "gone already"},
    {"a data source without a name", kRecord, "SystemDSN:SQL Server|", "No data source has"},
    {"a data source of control characters", kRecord,
     "SystemDSN:SQL Server,Other\x01SERVER=SRV1,OtherDB|", "No data source has"},
    // Names for the server.
    {"another's database", kRecord, "DBNames:1, [Pay]; DROP DATABASE Payroll|", "no name that can"},
    {"a database cut at its blank", kRecord, "DBNames:1, [Pay roll|", "no name that can"},
    {"a database with a quote", kRecord, "DBNames:1, Pay'roll|", "no name that can"},
    {"the server's own", kRecord, "DBNames:1, master|", "one of the server's own"},
    {"the server's own in brackets", kRecord, "DBNames:1, [MSDB]|", "one of the server's own"},
    {"fewer names than counted", kRecord, "DBNames:2, Pay|", "no name that can"},
    {"no count", kRecord, "DBNames:Payroll|", "no name that can"},
    {"a count past all bounds", kRecord, "DBNames:99999999999999999999, Payroll|",
     "no name that can"},
    {"the name of two lines", kRecord, "DBNames:1, Pay|ON PRIMARY|", "no name that can"},
    {"the administrator", kRecord, "DBLogins:1, sa|", "one of the server's own"},
    {"a login with its password", kRecord, "DBLogins:1, Guest\tWITH\tPASSWORD='secret',|",
     "no name that can"},
    {"a login with a statement", kRecord, "DBLogins:1, x] DROP LOGIN [Boss|", "no name that can"},
    // Add-ons.
    {"a package outside", kRecord, "AddOns:..\\..\\Data\\evil.msi|", "no file of a pack"},
    {"a package above, by names of dots", kRecord, "AddOns:...\\...\\Data\\evil.msi|",
     "no file of a pack"},
    {"a package with arguments", kRecord, "AddOns:b.msi\" /quiet|", "no file of a pack"},
    {"a package that is missing", kRecord, "AddOns:other.msi|", "other.msi is missing."},
    // The file as a whole.
    {"unknown tags", kRecord, "Service:Spooler|Delete:C:\\Data|", "does not begin as a line"},
    {"a tag with a blank", kRecord, " Shotcut:C:\\Data\\Desk.lnk|", "does not begin as a line"},
    {"cut off", kRecord, "Shotcut:C:\\Users\\Public\\Desktop\\Other.ln", "The record ends inside"},
    {"nothing", kRecord, "=", "does not say which folder"},
    // The log.
    {"a file elsewhere", kLog, "//|Copying file - C:\\Data\\D:\\Pack\\Application\\keep.txt||", ""},
    {"a file above", kLog, "//|Copying file - $A\\..\\App2\\D:\\Pack\\Application\\keep.txt||", ""},
    {"a file behind a link", kLog, "//|Copying file - $A\\Link\\D:\\Pack\\Application\\far.txt||",
     "It is a link"},
    {"a file that was written to", kLog, "//|Copying file - $A\\E:\\Gone\\own.txt||",
     "written to after"},
    {"a file copied onto itself", kLog, "//|Copying file - $A\\$A\\own.txt||",
     "own.txt - The last installation did not put it there."},
    {"a component of others in the folder", kLog, "//|regsvr32 /s \"$A\\own.txt\"||",
     "own.txt - The last installation did not put it there."},
    {"a component elsewhere", kLog, "//|regsvr32 /s \"C:\\Data\\evil.dll\"||", ""},
    {"a system component of others", kLog, "//|regsvr32 /s \"C:\\Windows\\system\\shell.dll\"||",
     "not the pack's file"},
});

}  // namespace talu
