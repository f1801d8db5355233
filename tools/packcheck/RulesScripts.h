#pragma once

#include "Rule.h"

namespace talu::packcheck {

/// What can be wrong with the SQL scripts.
inline constexpr Rule kScriptRules[] = {
    {"SQL-NOT-THERE", Severity::Error,
     "The script {0} is not in the pack, so the build fails and takes back what it created.",
     "Put the file there or delete the line.",
     "A script that cannot be opened is an error like any other: the other scripts run, then "
     "everything that was created is dropped again."},
    {"SQL-NOT-LISTED", Severity::Warning, "Nothing runs this script, as {0} does not list it.",
     "List it in {0}, or take it out of the pack.",
     "Only listed scripts run, in the order of the list."},
    {"SQL-UTF16", Severity::Error,
     "The file is in UTF-16, so no line is taken for a directive and the build stops with \"Script "
     "format is not correct....\".",
     "Save the file as plain 8-bit text in the Windows code page (\"ANSI\"); what else is found in "
     "it is left then.",
     "Scripts are read byte by byte. Some tools save scripts in UTF-16 unless told otherwise."},
    {"SQL-UTF8", Severity::Warning,
     "The file is in UTF-8, so each letter outside ASCII reaches the server as two or more wrong "
     "ones.",
     "Save the file in the Windows code page (\"ANSI\"); what else is found in it is left then.",
     "The bytes of a script go to the server as text in the Windows code page."},
    {"SQL-LETTERS", Severity::Warning,
     "The code page of the machine has no {0}, so saved in it the script would lose them.",
     "Put such a letter into a text by its number, for instance N'...' + NCHAR({1}) + N'...', or "
     "tell check by --code-page which machines the pack is for.",
     "A script is 8-bit text and can hold the letters of one code page; the server knows them "
     "all."},
    {"SQL-LINE-ENDS", Severity::Error,
     "Only a line feed stands behind the line, so it and what follows, up to the next carriage "
     "return, are read as one line.",
     "Save the file with Windows line ends (CR LF); what else is found in it is left then.",
     "A line ends at a carriage return. A script that has none is one line; as it holds the "
     "directive, it is taken for that and nothing is run."},
    {"SQL-NO-DIRECTIVE", Severity::Error,
     "No directive says how to read the script, so the build stops with \"Script format is not "
     "correct....\" and takes back what it created.",
     "Begin the file with a line --taluGO (batches that end with GO) or --taluLineByLine (each "
     "line "
     "a statement); what else is found in it, as if it had --taluGO, is left then.",
     "A line that is not empty is an error as long as neither directive was read."},
    {"SQL-LATE-DIRECTIVE", Severity::Error,
     "The directive stands only in line {0}, so this line before it stops the build with \"Script "
     "format is not correct....\".",
     "Move the directive to the top of the file; what else is found in it is left then.",
     "Nothing but empty lines may stand before the directive, no comment either."},
    {"SQL-LINE-LEAK", Severity::Warning,
     "No directive says how to read this line, so it is run as a statement of its own, because {0} "
     "before it was read line by line.",
     "Begin the file with a directive of its own.",
     "--taluLineByLine stays on for all scripts that follow, --taluGO only for its own. A script "
     "without a directive then works by accident, and fails when the order changes."},
    {"SQL-DIRECTIVE-INSIDE", Severity::Warning,
     "The line contains {0}, so it is taken for the directive and what else is on it never reaches "
     "the server.",
     "Write the directive on a line of its own, at the top, and nowhere else.",
     "A directive is found anywhere in a line, in comments and texts too, and the whole line is "
     "used up. In a script that is read line by line, --taluGO also switches to batches."},
    {"SQL-LINE-IN-BATCH", Severity::Warning,
     "Behind --taluGO this line is only a comment, so the lines that follow are still gathered "
     "into "
     "batches.",
     "Put the statements that go line by line into a script of their own.",
     "--taluGO holds to the end of the file; --taluLineByLine behind it is text of the batch."},
    {"SQL-LAST-GO", Severity::Error, "No GO follows the batch that begins here, so it is {0}.",
     "End the file with a line GO.",
     "A batch is sent when its GO is read. What is left at the end of the file is kept and put in "
     "front of the next script's first batch; a script that is read line by line discards it, and "
     "behind the last script it is forgotten."},
    {"SQL-GO-COMMENT", Severity::Error,
     "The GO inside the comment that begins in line {0} ends the batch, so the server gets a "
     "comment without its end.",
     "Write the line differently, for instance -- GO.",
     "A line GO ends a batch wherever it stands; comments are not looked at."},
    {"SQL-GO-TEXT", Severity::Error,
     "The GO inside the text or name that begins in line {0} ends the batch, so the server gets a "
     "text without its end.",
     "Build the text without a line that is only GO, or close what was left open in line {0}.",
     "A line GO ends a batch wherever it stands; quotes are not looked at."},
    {"SQL-GO-TAIL", Severity::Error,
     "The line {0} does not end the batch and is sent to the server with it.",
     "Write GO alone on its line; blanks around it are allowed, tabs and anything else are not.",
     "Only GO itself ends a batch: no number of repetitions, no semicolon, no comment behind it."},
    {"SQL-GO-BEFORE", Severity::Error,
     "This statement about a {0} has to be the first of its batch and is not, so the server "
     "refuses "
     "the whole batch and the build fails.",
     "Put a line GO before it.",
     "CREATE or ALTER PROCEDURE, FUNCTION, TRIGGER and VIEW, and CREATE SCHEMA, begin a batch; the "
     "first four also take all that follows up to GO for their own text."},
    {"SQL-USE-SAME", Severity::Error,
     "USE {0} stands in the batch that creates the database, so the server does not find it yet, "
     "refuses the batch and the build fails.",
     "Put a line GO before USE, and one behind it.",
     "Before a batch runs, the server looks for the databases that its USE statements name."},
    {"SQL-ROWS", Severity::Warning,
     "The statement returns rows before its batch ends, so an error from line {0} on is not seen, "
     "and what stands there may be cancelled.",
     "Put a line GO behind the statement, or leave it out if nothing needs its rows.",
     "A batch is followed up to the first rows that it returns. What comes after them is not "
     "waited "
     "for."},
    {"SQL-NO-USE", Severity::Warning,
     "No USE of the product's database comes before it, so the {0} is created in master.",
     "Put a batch USE with the name of the database before it.",
     "A build begins in the server's database master, and USE master leads back there. It is told "
     "once for each installation type."},
    {"SQL-VARIABLE", Severity::Error, "{0} is sent to the server as it stands.",
     "Write what it stands for in its place.",
     "Names such as $(DatabaseName) are replaced by the command-line tool that a script was "
     "written "
     "for, with or without a :setvar line; nothing here replaces them."},
    {"SQL-TEXT-LINES", Severity::Note,
     "The text that begins here goes over several lines and reaches the server without the blanks "
     "at "
     "their ends.",
     "Nothing, if blanks do not matter there; else put the text together from one-line texts.",
     "Every line of a batch is sent without the blanks at its beginning and end, and empty lines "
     "are left out, in the middle of a text too."},
    {"SQL-SQLCMD", Severity::Error, "The line {0} is sent to the server as if it were SQL.",
     "Take the command out; nothing here runs commands of the command-line tools.",
     "Lines such as :setvar or :r are commands of the tool that a script was written for, not of "
     "the server."},
    {"SQL-LINE-GO", Severity::Error,
     "The script is read line by line, so the line {0} is sent to the server as a statement.",
     "Delete the line, or begin the file with --taluGO.",
     "GO is not SQL. It ends batches, and line by line there are none."},
    {"SQL-LINE-SPLIT", Severity::Error,
     "The script is read line by line, so this part of a statement is sent by itself.",
     "Write the statement on one line, or begin the file with --taluGO.",
     "Behind --taluLineByLine every line that is not empty is a whole statement."},
    {"SQL-CREATE-CASE", Severity::Error,
     "{0} is not spelled \"CREATE {1}\", so the {2} is not recorded and stays when the build "
     "fails.",
     "Write CREATE {1} in capitals, on one line, with one blank.",
     "What the build creates is found by searching the batch for CREATE DATABASE and CREATE LOGIN, "
     "letter by letter. What is not found is not moved into the database folder, not dropped after "
     "a failure and not written to Uninstall.dat."},
    {"SQL-CREATE-IF", Severity::Warning,
     "The {0} {1} is recorded as created although {2}, so when anything fails later, the {0} {1} "
     "that was there before is dropped.",
     "Create it without a condition, in scripts for servers that do not have it; EXEC ('CREATE' + "
     "' "
     "LOGIN ...') makes a login that is not recorded.",
     "The name is recorded before the batch is sent, whatever the batch then does. The rollback "
     "drops what is recorded."},
    {"SQL-CREATE-UNSEEN", Severity::Warning,
     "The {0} {1} is not recorded, and {2}: when the build fails, what was there before stays, but "
     "so does what this makes.",
     "Nothing, if that may stay; else create it without a condition, in scripts for servers that "
     "do not have it. In capitals, a database with FILENAME, it would be recorded, and what was "
     "there before would be dropped.",
     "What the build creates is found letter by letter: CREATE LOGIN, and CREATE DATABASE with "
     "FILENAME. packcheck fix leaves creations under a condition as they are."},
    {"SQL-CREATE-PROC", Severity::Warning,
     "{0} makes a {1} that is not recorded, so it stays when the build fails and Uninstall.dat "
     "lacks it.",
     "Write CREATE {2} as a statement of its own instead.",
     "Only statements CREATE DATABASE and CREATE LOGIN are looked for; a text that EXEC runs is "
     "none."},
    {"SQL-CREATE-LINE", Severity::Warning,
     "The script is read line by line, so the {0} is not recorded and stays when the build fails.",
     "Create databases and logins in a script that begins with --taluGO.",
     "Only batches are searched for what they create."},
    {"SQL-CREATE-TWO", Severity::Warning,
     "The batch creates a second {0}, which is not recorded and stays when the build fails.",
     "Put a GO between the two.", "Of each batch the first database and the first login count."},
    {"SQL-CREATE-NAME", Severity::Warning,
     "{0} is recorded as the name of the {1} {2}, so it is not dropped after a failure and "
     "Uninstall.dat has it wrong.",
     "Write the name without blanks, commas or line ends behind it, and one blank after it; "
     "mention "
     "CREATE in no comment before it.",
     "The name is cut from the first blank behind the keyword to the next blank. A line end, a "
     "bracket or a semicolon is no blank."},
    {"SQL-CREATE-LAST", Severity::Error,
     "No blank follows the name of the {0}, so cutting it out raises an error and the build fails.",
     "Write a blank behind the name, and an option behind that (ON PRIMARY, WITH PASSWORD = ...).",
     "The name is cut from the first blank behind the keyword to the next blank. Without a second "
     "blank in the batch there is nothing to cut."},
    {"SQL-REFUSED", Severity::Warning,
     "On {0} this is refused: {1} Then the build fails and takes back what it created.",
     "Name what an earlier batch makes, spelled alike, and make each name once{2}; leave out what "
     "only your own server has; or ask first whether it is there.",
     "The server has its own databases, and what the scripts make of them, batch by batch; a "
     "database that they make has the users, roles and tables that they put into it. Where the "
     "customer's "
     "server has more, the finding may be accepted."},
    {"SQL-RECORD-GONE", Severity::Warning,
     "The {0} {1} is recorded here, but the scripts drop it again: what uninstalls looks for it in "
     "vain, and the rollback of a failed build stops at it.",
     "Take the {0} away in a later installation, or do not make it.",
     "The build records a name when it reads the words that make it; nothing takes it back."},
    {"SQL-CREATE-MENTION", Severity::Warning,
     "The batch creates no {2} itself but has the words {0}, so {1} is recorded as created: "
     "Uninstall.dat has it, and a failed build tries to drop it.",
     "Word a comment or a message differently; what a text creates that is run by EXEC should be "
     "created by a statement of its own.",
     "Batches are searched as they stand, comments and texts included. What EXEC makes out of "
     "pieces has no name that could be cut out of the batch."},
    {"SQL-CREATE-FAILS", Severity::Error,
     "The batch has the words {0} in a comment or a text and {1}, so cutting them out raises an "
     "error and the build fails, whatever the batch does.",
     "Word it differently, for instance 'CREATE ' + 'DATABASE' in a text and \"create database\" "
     "in "
     "a comment.",
     "Batches are searched as they stand, comments and texts included. An error on the way is one "
     "of the build, which then drops everything that it created."},
    {"SQL-DB-FILENAME", Severity::Warning,
     "The batch has no FILENAME in capitals, so the database is not recorded and its files go "
     "where "
     "the server puts them.",
     "Give the database its files, each with FILENAME = 'C:\\folder\\name.mdf'.",
     "Only a CREATE DATABASE with FILENAME is moved into the database folder and recorded."},
    {"SQL-DB-DRIVE", Severity::Error,
     "No path in the batch has a drive letter, so looking for it raises an error and the build "
     "fails.",
     "Write the files with full paths, such as C:\\folder\\name.mdf.",
     "The old folder is cut out from the first \":\\\" of the batch on, one character before it."},
    {"SQL-DB-MDF", Severity::Error,
     "No \".mdf\" in small letters follows the first drive letter, so looking for it raises an "
     "error and the build fails.",
     "Let the first file end in .mdf.",
     "The old folder ends at the last backslash before the first \".mdf\"."},
    {"SQL-DB-FOLDERS", Severity::Warning,
     "The file {0} does not lie in {1}, the folder that is replaced, and stays where the script "
     "says.",
     "Put all files of the database into one folder.",
     "One folder is taken from the batch, that of the first path, and replaced by the database "
     "folder wherever it occurs, case included. Files elsewhere are not moved."},
    {"SQL-DB-SUBFOLDER", Severity::Error,
     "The file {0} is moved to {1} under the database folder, which nobody creates.",
     "Put all files of the database into one folder.",
     "What stands behind the replaced folder stays. The database folder has no folders inside."},
    {"SQL-DB-SAME-FILE", Severity::Error,
     "The file {0} is moved to the same place as {1} ({2}), so its database cannot be created and "
     "the build fails.",
     "Give every database file a name of its own.",
     "Of each path only what stands behind its folder is kept, so two files of one name in two "
     "folders are one file in the database folder."},
    {"SQL-CREATE-AGAIN", Severity::Error,
     "The {0} {1} is created already ({2}), so this fails and the build takes back what it "
     "created.",
     "Delete one of the two.", "A failed statement fails the build."},
    {"SQL-BACKUP-NAME", Severity::Warning,
     "The backup takes {0} for the name of a database and sends a BACKUP DATABASE for it, which "
     "does "
     "nothing or fails, as only the log tells.",
     "Write USE, DROP DATABASE and the like in a batch of their own, without a semicolon, and "
     "CREATE "
     "or ALTER DATABASE with a blank behind the name; keep these words in capitals out of "
     "comments.",
     "Before the build, the databases that the scripts name are backed up. Behind USE and DROP "
     "DATABASE the whole rest of the batch is the name; behind CREATE and ALTER DATABASE it is "
     "what "
     "stands up to the next blank. The letters USE count inside other words as well."},
    {"SQL-BACKUP-CUT", Severity::Warning,
     "The backup finds no end of the name behind {0}, logs an error and does not look at the rest "
     "of "
     "the batch.",
     "Write a blank behind the name, and something behind that.",
     "The name is cut from the first blank behind the keyword to the next blank."},
    {"SQL-BACKUP-LONG", Severity::Warning,
     "The backup comes upon {0} past character 32767 of the batch, logs an overflow and does not "
     "look at the rest.",
     "Put the statement into a short batch of its own.",
     "Positions in a batch are 16-bit numbers in the backup. The build has no such limit."},
    {"SQL-BACKUP-BRACKETS", Severity::Warning,
     "The backup sends BACKUP DATABASE {0} without the brackets that the name needs, which the "
     "server refuses, so the installation goes on without a backup, as only the log tells.",
     "Give the database a name of letters, digits and _ that begins with a letter and is no "
     "keyword "
     "of SQL, or have it backed up by hand before.",
     "Brackets are taken off the names before the backup, and none are put on."},
    {"SQL-BACKUP-SYSTEM", Severity::Note,
     "Every installation {0} a full backup of {1}, the server's own database, as the scripts name "
     "it.",
     "Write it in small letters (use master), which the backup does not look for, or leave it out: "
     "a build begins in master.",
     "Whatever databases the scripts name in capitals are backed up before the build, those of the "
     "server too; tempdb cannot be."},
    {"SQL-BACKUP-MERGED", Severity::Warning,
     "The database {0} is not backed up, as its name is part of {1}, which is listed already.",
     "Name {0} in the scripts before {1}.",
     "A name that occurs anywhere in the list of names so far counts as listed."},
    {"SQL-BACKUP-MISSED", Severity::Warning,
     "{0} installation changes the database {1} without a backup of it, since the backup looks for "
     "names in {2}.",
     "Name the database there in a batch that is nothing but the comment -- USE {1}; a statement "
     "would fail where that database is not on the server.",
     "The backup before a demo installation reads the upgrade scripts, and the one before an "
     "upgrade reads the demo scripts. A database that is used before it is created should be named "
     "in those."},
};

}  // namespace talu::packcheck
