#pragma once

#include "Rule.h"

namespace talu::packcheck {

/// What can be wrong with the deployment's part of AppCfg.txt and with the files of the pack.
inline constexpr Rule kContentRules[] = {
    {"APP-MISSING", Severity::Error,
     "The pack has no folder Application, so no file is copied or registered and no shortcut is "
     "made.",
     "Put the product's files into a folder Application beside Setup.exe.",
     "Copying, both registrations and the shortcuts are skipped together with a message when the "
     "folder is missing; settings files and add-ons follow all the same."},
    {"SETUP-MISSING", Severity::Warning,
     "The pack folder has no Setup.exe, so there is nothing to start.",
     "Copy Setup.exe into the pack folder.",
     "Setup.exe takes the folder in which it lies for the pack."},
    {"APP-LONG-PATH", Severity::Error,
     "Below C:\\Program Files its path has {0} characters, so {1} is missing after the "
     "installation, without a message.",
     "Shorten the names of the file or of the folders above it.",
     "Windows takes paths of at most 259 characters, and of 247 for a folder that is to be made. "
     "What cannot be copied is passed over, of a folder with all that is in it. Where the operator "
     "chooses a longer path than C:\\Program Files, shorter ones are lost as well."},
    {"APP-SHORT-NAME", Severity::Warning,
     "The log reports \"Can't copy\" for {0}, although it is copied.",
     "Give the file a name of at least four characters, its ending included.",
     "The last four characters of each name are compared with .mdf and .ldf, which raises an error "
     "for a shorter name."},
    {"APP-DATABASE", Severity::Warning, "The database file {0} {1}.",
     "Take it out of Application; databases are made by the scripts.",
     "Files that end in .mdf or .ldf, in small letters, stay behind, so that a developer's own "
     "database is not shipped by mistake."},
    {"LNK-FIELDS", Severity::Error,
     "The line has {0} field(s) instead of three, so no shortcut is made.",
     "Write target, folder and name, separated by commas.",
     "A missing field is an error that is logged; the next line follows."},
    {"LNK-BACKSLASH", Severity::Error,
     "The shortcut's target {0} is glued to the application folder's name and leads nowhere.",
     "Begin the line with a backslash.",
     "The target is appended to the application folder as it stands."},
    {"LNK-TARGET", Severity::Error,
     "The shortcut leads to {0}, which the installation does not bring along.",
     "Put the file under Application, or correct the path.",
     "The target is a path below the application folder, into which the pack's Application folder "
     "is "
     "copied. Nothing checks on the machine that it is there."},
    {"LNK-FOLDER", Severity::Error,
     "No special folder is called {0}, so no shortcut is made and nothing is "
     "logged.",
     "Use the last part of a special folder's path without blanks: Desktop, StartMenu, Programs, "
     "Startup, SendTo, Favorites, Documents and the like.",
     "The word is compared with the last part of each special folder's path, from which the blanks "
     "are taken out; in the word itself they stay. Case does not matter."},
    {"LNK-NAME", Severity::Error, "A shortcut named {0} cannot be saved.",
     "Use a plain file name, without \\ / : * ? \" < > | and tabs, and not that of a device (CON, "
     "NUL, COM1 and the like).",
     "The name becomes the name of a .lnk file."},
    {"LNK-COMMA", Severity::Warning, "The name ends at its comma, so the shortcut is called {0}.",
     "Choose a name without a comma.",
     "The line is divided at every comma; what stands behind the third field is not read."},
    {"DSN-FIELDS", Severity::Error,
     "The line has {0} field(s) instead of five, so an error is logged and the data source is not "
     "tested{1}.",
     "Write driver, name, database, user and password, separated by commas.",
     "Each data source is tested by opening it with its user and password. Without its name or its "
     "database it is not described either."},
    {"DSN-DRIVER", Severity::Error,
     "The driver {0} is not known, so the data source is not described: it is registered with the "
     "text of the line read before it, or with none.",
     "Write exactly SQL Server or Microsoft Access Driver (*.mdb).",
     "Only for these two drivers, case included, is a description built. The lines are read from "
     "the last to the first."},
    {"DSN-COMMA", Severity::Warning,
     "What stands behind the fifth field is not read, so a password with a comma in it is cut off "
     "there and its login refused.",
     "Choose a password without a comma, or delete what is behind it.",
     "The line is divided at every comma, and there is no way to write one in a field."},
    {"DSN-DATABASE", Severity::Warning,
     "No script mentions the database {0}, so the test of the data source fails, and so does the "
     "product, unless the server has that database already.",
     "Correct the name, or let a script make the database.",
     "The name of the database stands in the data source as it stands in the line. The data source "
     "is tested by opening it."},
    {"DSN-LOGIN", Severity::Warning,
     "No script mentions the login {0}, so the test of the data source fails, and so does the "
     "product, unless the server has that login already.",
     "Correct the name, or let a script make the login and its user.",
     "Each data source is tested by opening it with its user and password."},
    {"REG-BACKSLASH", Severity::Error,
     "The folder {0} is glued to the application folder's name, so no component in it is "
     "registered.",
     "Begin the line with a backslash.",
     "The line is appended to the application folder as it stands."},
    {"REG-FOLDER", Severity::Error,
     "The folder {0} is not there, so an error is logged and nothing is "
     "registered.",
     "Put the folder under Application, or correct the path.",
     "The folders are those of the installed application, into which the pack's Application folder "
     "is copied."},
    {"REG-NOTHING", Severity::Warning,
     "No .ocx or .dll lies in the folder {0}, so nothing is registered.",
     "Delete the line, or put the components there.",
     "Files with .ocx or .dll in their names are registered, in any case and in folders below "
     "too."},
    {"REG-EXPORT", Severity::Warning,
     "{0} exports no DllRegisterServer, so regsvr32 registers nothing, without a message.",
     "Bring a component, or keep the file out of SpecialRegn and out of the folders of "
     "RegnLocation.",
     "regsvr32 calls that function of a library. One without it, a .NET library for instance, has "
     "nothing to register; nor has a file that only has .dll or .ocx in its name."},
    {"REG-WHOLE", Severity::Note,
     "RegnLocation names no folder, so every .ocx and .dll of the application is registered, for "
     "instance {0}.",
     "Nothing, if all of them are components; else name the folders that hold those.",
     "Without a RegnLocation the whole application folder is walked. regsvr32 does nothing useful "
     "with a library that is no component."},
    {"SPC-FILE", Severity::Error,
     "The component {0} is not in SpecialRegn, so nothing is copied and its registration fails "
     "without a message.",
     "Put the file into the pack's SpecialRegn folder or delete the line.",
     "The file is copied into the system folder of Windows and registered there. Neither result is "
     "looked at."},
    {"ADD-FILE", Severity::Error,
     "The add-on {0} is not in AddOns, so it cannot be run; the log has its exit code and "
     "Uninstall.dat its name all the same.",
     "Put the file into the pack's AddOns folder or delete the line.",
     "An add-on that cannot be started ends with -1, a missing package with the installer's own "
     "error code. Neither stops the installation."},
    {"ADD-CASE", Severity::Error,
     "The ending of {0} is not in small letters, so the add-on is not run.",
     "Rename the file: .exe or .msi in small letters, in the line too.",
     "The kind of an add-on is told by .exe or .msi in its name, case included. Any other line is "
     "only recorded."},
    {"ADD-KIND", Severity::Warning, "{0} contains neither .exe nor .msi, so nothing is run.",
     "Name a program or a package of the Windows Installer.",
     "The kind of an add-on is told by .exe or .msi in its name. Any other line is only recorded."},
    {"ADD-BLANKS", Severity::Warning,
     "The path of {0} has blanks and no quotes around it, so Windows first tries to run {1}.",
     "Give the file a name without blanks.",
     "Programs are started by their path without quotes. Windows tries each part up to a blank as "
     "the program. The same holds for the folders above the pack, which the author does not know."},
    {"ADD-RESTART", Severity::Note,
     "If {0} asks for a restart, Windows restarts without a question and the installation ends "
     "there.",
     "Nothing, if the package never asks for one; else set its property REBOOT to ReallySuppress.",
     "Packages are installed with /quiet. Without windows to ask in, the Windows Installer "
     "restarts "
     "the machine by itself, also where a file that it replaces is in use."},
    {"SET-FIELDS", Severity::Error,
     "The line has {0} field(s) instead of three, so the step ends with an error and the lines "
     "from "
     "here on are not written.",
     "Write file, text and SERVER, USERNAME or PASSWORD, separated by commas.",
     "The step has no way to go on after an error."},
    {"SET-TXT", Severity::Warning, "{0} does not contain \".txt\", so the line is passed over.",
     "Let the file's name end in .txt, in small letters.",
     "Settings files are text files; a line without .txt in its first field does nothing."},
    {"SET-BACKSLASH", Severity::Error,
     "The path {0} is glued to the application folder's name, so the file lies outside of it.",
     "Begin the line with a backslash.",
     "The path is appended to the application folder as it stands."},
    {"SET-FOLDER", Severity::Error,
     "The folder of {0} does not exist, so the step ends with an error and the lines from here on "
     "are not written.",
     "Put a folder of that name under Application, or write the file somewhere else.",
     "The step creates files, not folders. The application's folders are there by then, and the "
     "database folder."},
    {"SET-NAME", Severity::Error,
     "No file named {0} can be made, so the step ends with an error and the lines from here on are "
     "not written.",
     "Use a plain file name, without : * ? \" < > | and tabs, and not that of a device (CON.txt, "
     "NUL.txt and the like).",
     "The step has no way to go on after an error."},
    {"SET-TWICE", Severity::Warning,
     "The file {0} is written anew, so what line {1} wrote is lost.", "Use a file for each value.",
     "Each line deletes its file and writes one line into a new one."},
    {"SET-VALUE", Severity::Warning,
     "{0} is not SERVER, USERNAME or PASSWORD, so only the text before it is written.",
     "Write one of the three; case does not matter.",
     "The third field says which value follows the text."},
    {"PW-CLEAR", Severity::Note, "{0} can be read by everyone who has {1}.",
     "Nothing, if that is acceptable; else give the product a login with few rights and change its "
     "password after the installation.",
     "AppCfg.txt, scripts and settings files are plain text. Data source lines also go into the "
     "log "
     "and into Uninstall.dat, the operator's own password into Uninstall.dat."},
    {"ACC-LINE", Severity::Warning, "The line accepts nothing: {0}.",
     "Write CODE | FILE | TEXT | REASON, as the finding and its line have them, or delete the "
     "line.",
     "packcheck.ignore lists findings that the author has looked at and wants to keep. What no "
     "longer applies should go."},
};

}  // namespace talu::packcheck
