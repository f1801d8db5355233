#include <functional>

#include "Scratch.h"
#include "platform/win32/OwnProgram.h"
#include "platform/win32/ShellShortcut.h"
#include "platform/win32/Win32FileSystem.h"
#include "platform/win32/Win32OdbcInstaller.h"
#include "platform/win32/Win32Removal.h"

namespace talu {
namespace {

class RemovalTest : public testing::Test {
 protected:
  static void Wait(HANDLE handle) { WaitForSingleObject(handle, INFINITE); }

  static bool IsThere(const std::string& path) {
    return GetFileAttributesW(Wide(path).c_str()) != INVALID_FILE_ATTRIBUTES;
  }

  using UnixName = char*(CDECL*)(const wchar_t*);
  /// Wine's function for the name of a file on the machine below it; null on Windows.
  static UnixName OfWine() {
    return reinterpret_cast<UnixName>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "wine_get_unix_file_name")));
  }

  /// Has a program of the machine below Wine work on these paths, until `link` is there or not.
  static void Below(const std::wstring& program, const std::vector<std::string>& paths,
                    const std::string& link, bool there) {
    const UnixName unixName = OfWine();
    ASSERT_NE(unixName, nullptr) << "symbolic links need an administrator";
    std::wstring command = L"Z:\\bin\\" + program;
    for (const std::string& path : paths)
      command += L" \"" + Wide(unixName(Wide(path).c_str())) + L"\"";
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process = {};
    CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                   &process);
    // Wine says nothing of the end of a program that is not its own.
    for (int i = 0; i < 1000 && IsThere(link) != there; ++i) Sleep(20);
    ASSERT_EQ(IsThere(link), there) << link;
  }

  /// A link to a folder.
  static void MakeLink(const std::string& link, const std::string& target) {
    CreateSymbolicLinkW(Wide(link).c_str(), Wide(target).c_str(), SYMBOLIC_LINK_FLAG_DIRECTORY);
    if (!IsThere(link)) Below(L"ln -s", {target, link}, link, true);
  }
  static void RemoveLink(const std::string& link) {
    // Wine would remove what an empty folder's link leads to.
    if (OfWine() != nullptr) return Below(L"rm", {link}, link, false);
    EXPECT_TRUE(RemoveDirectoryW(Wide(link).c_str()));
  }

  const Scratch scratch_;
  CodePage codePage_{0};
  Win32OdbcInstaller odbc_{codePage_};
  Win32Removal removal_{Wait, odbc_, scratch_ / "app"};
  Win32FileSystem files_;
};

TEST_F(RemovalTest, RemovesFilesAndEmptyFoldersAndSaysWhyNot) {
  const std::string plain = scratch_.Write("plain.txt", "x");
  const std::string readOnly = scratch_.Write("readonly.txt", "x");
  SetFileAttributesW(Wide(readOnly).c_str(), FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN);
  const std::string locked = scratch_.Write("locked.txt", "x");
  for (const char* name : {"empty", "full"}) files_.CreateFolder(scratch_ / name);
  scratch_.Write("full\\inside.txt", "x");
  const HANDLE lock = CreateFileW(Wide(locked).c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                  OPEN_EXISTING, 0, nullptr);
  const auto removeFile = [&](const std::string& path) { removal_.RemoveFile(path); };
  const auto removeFolder = [&](const std::string& path) { removal_.RemoveFolder(path); };
  const struct {
    std::function<void(const std::string&)> Remove;
    std::string Path;
    std::int32_t Raised;
    bool Stays;
  } kCases[] = {
      {removeFile, plain, 0, false},
      {removeFile, plain, 53, false},
      {removeFile, readOnly, 0, false},
      {removeFile, locked, 70, true},
      {removeFile, scratch_ / "empty", 75, true},
      {removeFile, scratch_ / "no\\such.txt", 53, false},
      {removeFile, scratch_ / "full\\inside.txt:stream", 53, false},
      {removeFile, scratch_ / "full\\*", 53, false},
      {removeFile, scratch_ / ("full\\inside.txt" + std::string(1, '\0') + "x"), 53, true},
      {removeFolder, scratch_ / "full", 75, true},
      {removeFolder, scratch_ / "full\\inside.txt", 75, true},
      {removeFolder, scratch_ / "none", 76, false},
      {removeFolder, scratch_ / "empty\\", 0, false},
  };
  for (const auto& [remove, path, raised, stays] : kCases) {
    EXPECT_EQ(ErrorOf([&] { remove(path); }), raised) << path;
    EXPECT_EQ(IsThere(path), stays) << path;
  }
  CloseHandle(lock);
  EXPECT_TRUE(files_.FileExists(scratch_ / "full\\inside.txt"));
}

// Wherever between the application folder and the thing the link stands, and whatever is behind it;
// the application folder itself may be reached by one.
TEST_F(RemovalTest, DoesNotFollowLinks) {
  for (const char* name : {"elsewhere", "elsewhere\\deep", "app"})
    files_.CreateFolder(scratch_ / name);
  scratch_.Write("elsewhere\\deep\\theirs.txt", "x");
  MakeLink(scratch_ / "app\\link", scratch_ / "elsewhere");
  const std::string behind = scratch_ / "app\\link\\deep";

  EXPECT_EQ(removal_.Look(scratch_ / "app").Kind, EntryKind::Folder);
  EXPECT_EQ(removal_.Look(scratch_ / "app\\link").Kind, EntryKind::Link);
  EXPECT_EQ(removal_.List(scratch_ / "app").at(0).Kind, EntryKind::Link);
  EXPECT_EQ(ErrorOf([&] { removal_.RemoveFile(behind + "\\theirs.txt"); }), 75);
  std::filesystem::remove(Wide(scratch_ / "elsewhere\\deep\\theirs.txt"));
  for (const std::string& path : {behind, scratch_ / "app\\link"})
    EXPECT_EQ(ErrorOf([&] { removal_.RemoveFolder(path); }), 75) << path;
  EXPECT_TRUE(files_.FolderExists(scratch_ / "elsewhere\\deep"));
  RemoveLink(scratch_ / "app\\link");

  MakeLink(scratch_ / "moved", scratch_ / "elsewhere");
  Win32Removal behindLink(Wait, odbc_, scratch_ / "moved");
  scratch_.Write("elsewhere\\ours.txt", "x");
  EXPECT_EQ(ErrorOf([&] { behindLink.RemoveFile(scratch_ / "moved\\ours.txt"); }), 0);
  EXPECT_EQ(ErrorOf([&] { behindLink.RemoveFolder(scratch_ / "moved\\deep"); }), 0);
  EXPECT_EQ(files_.GetFolder(scratch_ / "elsewhere")->SubFolders().size(), 0U);
  RemoveLink(scratch_ / "moved");
}

TEST_F(RemovalTest, TellsWhatStandsThere) {
  const std::string file = scratch_.Write("file \u8868.txt", "x");
  SetFileAttributesW(Wide(file).c_str(), FILE_ATTRIBUTE_HIDDEN);
  files_.CreateFolder(scratch_ / "folder");
  EXPECT_EQ(removal_.Look(scratch_ / "none").Kind, EntryKind::Missing);
  EXPECT_EQ(removal_.Look(scratch_ / "no\\deep").Kind, EntryKind::Missing);
  // A drive that is not at hand.
  char letter = 'Z';
  while ((GetLogicalDrives() >> (letter - 'A') & 1U) != 0) --letter;
  EXPECT_EQ(ErrorOf([&] { removal_.Look(letter + std::string(":\\no\\deep.lnk")); }), 70);
  EXPECT_EQ(removal_.Look(scratch_ / "folder").Kind, EntryKind::Folder);
  const DiskEntry entry = removal_.Look(file);
  EXPECT_EQ(entry.Kind, EntryKind::File);
  EXPECT_EQ(entry.Name, "file \u8868.txt");

  CopyFileW(Wide(file).c_str(), Wide(scratch_ / "folder\\twin.txt").c_str(), TRUE);
  const std::vector<DiskEntry> entries = removal_.List(scratch_.Path());
  ASSERT_EQ(entries.size(), 2U);
  for (const DiskEntry& found : entries) {
    EXPECT_EQ(found.Kind, removal_.Look(scratch_ / found.Name).Kind);
    EXPECT_EQ(found.Written, removal_.Look(scratch_ / found.Name).Written);
  }
  EXPECT_EQ(removal_.Look(scratch_ / "folder\\twin.txt").Written, entry.Written);
  EXPECT_EQ(ErrorOf([&] { removal_.List(scratch_ / "none"); }), 76);
  EXPECT_FALSE(removal_.List("C:\\").empty());
  EXPECT_EQ(removal_.Look("C:\\").Kind, EntryKind::Folder);
}

TEST_F(RemovalTest, TakesShortNames) {
  const std::string folder = scratch_ / "app\\a folder with a long name";
  for (const std::string& path : {scratch_ / "app", folder}) files_.CreateFolder(path);
  const std::string file = scratch_.Write("app\\a folder with a long name\\a file.text", "x");
  wchar_t text[MAX_PATH] = L"";
  ASSERT_NE(GetShortPathNameW(Wide(folder).c_str(), text, MAX_PATH), 0U);
  const std::string shortPath = Narrow(text);
  const std::string name = shortPath.substr(shortPath.rfind('\\'));
  EXPECT_EQ(ErrorOf([&] { removal_.RemoveFile(scratch_ / "app" + name + "\\a file.text"); }), 0)
      << name;
  EXPECT_FALSE(files_.FileExists(file));
}

TEST_F(RemovalTest, LeavesTheFolderThatItRemoves) {
  files_.CreateFolder(scratch_ / "here");
  wchar_t before[MAX_PATH] = L"";
  GetCurrentDirectoryW(MAX_PATH, before);
  SetCurrentDirectoryW(Wide(scratch_ / "here").c_str());
  EXPECT_EQ(ErrorOf([&] { removal_.RemoveFolder(scratch_ / "here"); }), 0);
  SetCurrentDirectoryW(before);
}

// Run by the next test, as a program of its own in a folder that it was started in.
TEST_F(RemovalTest, DISABLED_OfItself) {
  const std::string program = OwnProgramPath();
  EXPECT_EQ(ErrorOf([&] { removal_.RemoveFile(program); }), 0);
  EXPECT_EQ(removal_.Look(program).Kind, EntryKind::Missing);
  EXPECT_EQ(ErrorOf([&] { removal_.RemoveFile(program); }), 53);
  EXPECT_EQ(ErrorOf([&] { removal_.RemoveFolder(program.substr(0, program.rfind('\\'))); }), 0);
}

TEST_F(RemovalTest, RemovesTheProgramThatRuns) {
  files_.CreateFolder(scratch_ / "program");
  const std::string copy = scratch_ / "program\\Own \u8868.exe";
  ASSERT_TRUE(CopyFileW(Wide(OwnProgramPath()).c_str(), Wide(copy).c_str(), TRUE));
  SetFileAttributesW(Wide(copy).c_str(), FILE_ATTRIBUTE_READONLY);
  std::wstring command =
      L"x --gtest_also_run_disabled_tests --gtest_brief=1 --gtest_filter=*DISABLED_OfItself";
  STARTUPINFOW startup = {};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process = {};
  ASSERT_TRUE(CreateProcessW(Wide(copy).c_str(), command.data(), nullptr, nullptr, FALSE, 0,
                             nullptr, Wide(scratch_ / "program").c_str(), &startup, &process));
  WaitForSingleObject(process.hProcess, INFINITE);
  DWORD code = 1;
  GetExitCodeProcess(process.hProcess, &code);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  EXPECT_EQ(code, 0U);
  EXPECT_FALSE(files_.FolderExists(scratch_ / "program"));

  // What is left of it is in the list of what Windows removes when it starts.
  const std::string temp = files_.GetSpecialFolder(0) + "\\Temp";
  std::vector<std::string> left;
  for (const DiskEntry& entry : removal_.List(temp)) {
    if (entry.Name.starts_with("TALU-{")) left.push_back(temp + "\\" + entry.Name);
  }
  ASSERT_EQ(left.size(), 1U);
  std::vector<wchar_t> pending(1U << 16);
  auto size = static_cast<DWORD>(pending.size() * sizeof(wchar_t));
  EXPECT_EQ(RegGetValueW(HKEY_LOCAL_MACHINE, L"SYSTEM\\CurrentControlSet\\Control\\Session Manager",
                         L"PendingFileRenameOperations", RRF_RT_REG_MULTI_SZ, nullptr,
                         pending.data(), &size),
            ERROR_SUCCESS);
  const std::string list = Narrow({pending.data(), size / sizeof(wchar_t)});
  EXPECT_NE(list.find("\\??\\" + left[0] + std::string(2, '\0')), std::string::npos);
  EXPECT_EQ(ErrorOf([&] { removal_.RemoveFile(left[0]); }), 0);
}

TEST_F(RemovalTest, ComparesAndReplacesFiles) {
  const std::string large(200000, 'x');
  const std::string one = scratch_.Write("one", large);
  const std::string same = scratch_.Write("same", large);
  const std::string other = scratch_.Write("other", large.substr(1) + "y");
  const std::string shorter = scratch_.Write("shorter", large.substr(1));
  EXPECT_TRUE(removal_.SameBytes(one, same));
  EXPECT_FALSE(removal_.SameBytes(one, other));
  EXPECT_FALSE(removal_.SameBytes(one, shorter));
  EXPECT_EQ(ErrorOf([&] { removal_.SameBytes(one, scratch_ / "none"); }), 53);
  EXPECT_EQ(ErrorOf([&] { removal_.SameBytes(scratch_.Path(), one); }), 70);

  removal_.Replace(other, same);
  EXPECT_FALSE(files_.FileExists(other));
  EXPECT_FALSE(removal_.SameBytes(one, same));
  EXPECT_EQ(ErrorOf([&] { removal_.Replace(other, same); }), 53);
  const HANDLE lock =
      CreateFileW(Wide(same).c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  EXPECT_EQ(ErrorOf([&] { removal_.Replace(one, same); }), 70);
  CloseHandle(lock);
  EXPECT_TRUE(files_.FileExists(one));
}

TEST_F(RemovalTest, ReadsWhereShortcutsLead) {
  const std::string target = "C:\\No such folder\\Product \u00fc.exe";
  ShellShortcut link(scratch_ / "link.lnk");
  link.TargetPath(target);
  link.Save();
  EXPECT_EQ(removal_.ShortcutTarget(scratch_ / "link.lnk"), target);
  EXPECT_EQ(ErrorOf([&] { removal_.ShortcutTarget(scratch_ / "none.lnk"); }), 53);
  EXPECT_EQ(ErrorOf([&] { removal_.ShortcutTarget(scratch_.Write("no.lnk", "no link")); }), 5);
}

TEST_F(RemovalTest, ReadsAndRemovesDataSources) {
  const std::string name = "TaLuRemovalTest";
  const std::string nul(1, '\0');
  ASSERT_TRUE(odbc_.SQLConfigDataSource(
      4, "SQL Server", "DSN=" + name + nul + "SERVER=SRV1" + nul + "DATABASE=BooksDB"));
  const auto source = removal_.SystemDataSource(name);
  ASSERT_TRUE(source.has_value());
  EXPECT_EQ(source->Driver, "SQL Server");
  EXPECT_EQ(source->Server, "SRV1");
  EXPECT_EQ(source->Database, "BooksDB");
  EXPECT_EQ(source->File, "");
  EXPECT_TRUE(removal_.RemoveSystemDataSource("SQL Server", name));
  EXPECT_FALSE(removal_.SystemDataSource(name).has_value());
}

TEST_F(RemovalTest, WaitsForProgramsOfTheSystem) {
  EXPECT_EQ(removal_.RunSystemProgram("cmd", "/c exit 1641"), 1641);
  EXPECT_EQ(removal_.RunSystemProgram("no such program", ""), -1);
  EXPECT_EQ(removal_.RunSystemProgram("..\\system32\\cmd", "/c exit 3"), -1);
  EXPECT_NE(removal_.RunSystemProgram("regsvr32", "/s /u \"" + (scratch_ / "none.dll") + "\""), 0);
}

}  // namespace
}  // namespace talu
