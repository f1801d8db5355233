#pragma once

#include "Rule.h"

namespace talu::packcheck {

/// What can be wrong with AppCfg.txt.
inline constexpr Rule kConfigurationRules[] = {
    {"CFG-MISSING", Severity::Error, "Setup.exe ends at once with \"Run-time error '53'\".",
     "Put AppCfg.txt into the pack folder, beside Setup.exe.",
     "Every page and every step asks AppCfg.txt. Without it there is nothing to install."},
    {"CFG-ENCODING", Severity::Error, "The file begins with {0}, so {1}.",
     "Save the file as plain 8-bit text in the Windows code page (\"ANSI\").",
     "The file is read byte by byte. A byte-order mark belongs to the first line, which then is no "
     "key any more; in UTF-16 no line is what it looks like."},
    {"CFG-UTF8", Severity::Warning, "The file is in UTF-8, so the line is read as {0}.",
     "Save the file in the Windows code page (\"ANSI\").",
     "The file is read in the Windows code page, in which a letter outside ASCII is one byte. An "
     "editor may save UTF-8 without a byte-order mark unless told otherwise."},
    {"CFG-LINE-ENDS", Severity::Error,
     "Only a line feed stands behind the line, so it and what follows, up to the next carriage "
     "return, are read as one line.",
     "Save the file with Windows line ends (CR LF).",
     "A line ends at a carriage return. A file from a system that ends lines with a line feed "
     "alone "
     "is a single line, in which no key is found."},
    {"CFG-BLANK-LINE", Severity::Error,
     "The empty line stands for every key, so the block of {0} is read for all the other keys too, "
     "and its lines are run as scripts.",
     "Delete the empty line.",
     "A line stands for a key when the key begins with it, and every key begins with an empty "
     "line. "
     "The next block then counts for whichever key is looked for. Where that key's own block "
     "stands "
     "further down, the wrong block's values come first."},
    {"CFG-EMPTY-VALUE", Severity::Error,
     "The empty line is value number {1} of {0} but is not counted, so the last value is not read "
     "{2}.",
     "Delete the empty line.",
     "Values are counted first and then read by number. Counting passes over empty lines, reading "
     "does not: each one takes the place of a value at the end."},
    {"CFG-BLANKS-VALUE", Severity::Error, "The line of blanks is value number {1} of {0} and {2}.",
     "Delete the line.",
     "A line of blanks is a value like any other when values are read, but it is left out when "
     "they "
     "are counted. The build does not count: it takes the line for the name of a script."},
    {"CFG-KEY-BLANKS", Severity::Error,
     "The line is not the key {0}, as it has blanks or tabs around it, so the block counts as "
     "absent.",
     "Write {0} and nothing else on the line.",
     "A key line is compared as it stands, with every blank in it."},
    {"CFG-KEY-CASE", Severity::Error,
     "The line is not the key {0}, as upper and lower case differ, so the block counts as absent.",
     "Write {0}.", "Keys are compared letter by letter, case included."},
    {"CFG-KEY-LINE", Severity::Error,
     "More than the key {0} stands on the line, so it is no key and the block counts as absent.",
     "Put {0}, \"{\", each value and \"}\" on a line of its own.",
     "A key line is compared as it stands. Outside of blocks, any other line is passed over."},
    {"CFG-KEY-BEGINNING", Severity::Error,
     "The line stands for {0}, so the next block is read as theirs.",
     "Write the key out or delete the line.",
     "A line stands for a key when the key begins with it. Half a key is enough, and stands for "
     "every key that begins so, wherever outside a block it is."},
    {"CFG-KEY-UNKNOWN", Severity::Warning, "Nothing reads the block of {0}.", "{1}",
     "The keys are fixed, their spelling included. A block under any other name is passed over "
     "without a message."},
    {"CFG-KEY-TWICE", Severity::Warning,
     "The values of both blocks of {0} are read as one list, those of line {1} first; where one "
     "value is wanted, it is the first.",
     "Put all values into one block.",
     "A reader goes on to the end of the file. A second block of the same key continues the "
     "numbering of the first."},
    {"CFG-NOT-OPENED", Severity::Error, "No line \"{\" follows {0}, so {1}.",
     "Put a line \"{\" behind the key line and a line \"}\" behind the last value.",
     "From its key line on a reader waits for the next \"{\", whosever it is."},
    {"CFG-NOT-CLOSED", Severity::Error,
     "No line \"}\" ends the block of {0} before this line, so every line down to the next \"}\" "
     "counts as a value of {0}.",
     "Put a line \"}\" behind the last value of {0}.",
     "A block goes on until a line \"}\", and all lines on the way are its values, key lines and "
     "braces too."},
    {"CFG-LAST-OPEN", Severity::Warning, "The block of {0} goes on to the end of the file.",
     "End the file with a line \"}\".",
     "The last block is read without its \"}\" as well, until somebody adds a block behind it."},
    {"CFG-BRACE", Severity::Error, "The line is not the brace it looks like, so it {0}.",
     "Write {1} and nothing else on the line.",
     "A brace counts only when it stands alone on its line, without blanks."},
    {"CFG-VALUE-BRACE", Severity::Warning, "The \"{\" inside the block of {0} is read as a value.",
     "Delete the line, or end the block before it.",
     "Blocks have no blocks inside. Between \"{\" and \"}\" every line is a value."},
    {"CFG-VALUE-OPENS", Severity::Error,
     "Behind {0} in this block, the \"{\" opens a block for {1}: the values from here on are read "
     "as theirs too.",
     "Delete the \"{\".",
     "A value that is the beginning of a key (or empty) makes the readers of that key wait for a "
     "\"{\", inside another key's block too."},
    {"CFG-VALUE-KEY", Severity::Note,
     "The value is the beginning of {0}, which does no harm as long as no line \"{\" follows it in "
     "this block.",
     "Nothing, or choose another value.",
     "A value that is the beginning of a key makes the readers of that key wait for a \"{\". The "
     "\"}\" of the block ends that."},
    {"CFG-TOO-MANY", Severity::Error, "Reading {0} raises run-time error 6 (Overflow), and {1}.",
     "Keep the blocks of a key to 32767 lines.",
     "Lines are counted in 16 bits. The blocks of a key may have 32767 lines together."},
    {"CFG-NO-TITLE", Severity::Warning, "The pages have no title.",
     "Add a block AppTitle with the product's name.", "AppTitle is the caption of every page."},
    {"CFG-NO-APPFOLDER", Severity::Error,
     "No application folder is created, and as the log belongs into it, the installation stops.",
     "Add a block AppFolder with the name of the application's folder.",
     "The application folder lies under the folder that the operator chooses; everything else lies "
     "in it."},
    {"CFG-NO-DBFOLDER", Severity::Error, "A server installation stops at the database page.",
     "Add a block DBFolder with the name of the folder for database files.",
     "The build refuses to start without a folder for the database files."},
    {"CFG-NO-SCRIPTS", Severity::Note,
     "Fresh, demo and upgrade are all disabled; Next goes on, and a server installation runs no "
     "script.",
     "Nothing, if the product has no database; else list the scripts under FreshDBSript, "
     "DemoDBSript or UpgradeDBSript.",
     "A type of installation is offered when its list of scripts has a line."},
    {"CFG-FOLDER-NAME", Severity::Error,
     "A folder named {0} cannot be created{1}, so the installation stops at the location page.",
     "Use a plain folder name: one level, without \\ / : * ? \" < > | and tabs, and none of CON, "
     "PRN, AUX, NUL, COM1 to COM9 and LPT1 to LPT9.",
     "AppFolder and DBFolder are names of one folder each, created one level at a time. Before "
     "Windows 11 the names of devices mean these in every folder, whatever their ending."},
    {"CFG-FOLDER-END", Severity::Error,
     "Windows makes the folder {0} without the blanks and dots at its end, so {1}.",
     "Take the blanks and dots at the end away.",
     "At the end of a path Windows drops blanks and dots, in the middle of one it keeps them, but "
     "for a single dot. So such a folder is made under one name and looked for under another."},
    {"CFG-FOLDER-TALU", Severity::Warning,
     "The installation folder contains \"\\{0}\" before the application folder is added, so it is "
     "not added: the files go into the TA-LU folder itself, and the shortcuts lead nowhere.",
     "Choose a name that \"TA-LU\" does not begin with.",
     "The application folder is appended only where its name does not occur in the path yet, and "
     "the path always has \\TA-LU in it."},
    {"CFG-SCRIPT-TWICE", Severity::Warning,
     "The script is listed in line {0} already, so it runs twice, and where it creates something, "
     "the build fails.",
     "Delete one of the lines.",
     "Scripts run in the order of the list, as often as they are listed."},
    {"CFG-DBSRIPT-FEW", Severity::Warning,
     "DBSript has {0} value(s) and {1} has {2}, so the backup before the build reads only the "
     "first "
     "scripts of the list.",
     "Give DBSript as many lines as the longest list of scripts has.",
     "How many scripts the backup searches for databases is the number of lines of DBSript. What "
     "the lines say does not matter; the names of the databases are customary."},
    {"CFG-DBSRIPT-MANY", Severity::Note,
     "DBSript has {0} values, more than any list of scripts ({1} at most); the rest does nothing.",
     "Nothing, or delete the surplus lines.",
     "The backup looks for as many scripts as DBSript has lines and passes over those that are not "
     "there."},
};

}  // namespace talu::packcheck
