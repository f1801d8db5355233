#include <algorithm>
#include <thread>

#include "../unit/PathCases.h"
#include "Scratch.h"
#include "platform/win32/Win32FileSystem.h"
#include "platform/win32/Win32Settings.h"
#include "platform/win32/Win32ShellOperations.h"
#include "runtime/TextFunctions.h"

namespace talu {
namespace {

TEST(FileSystem, RaisesTheFileSystemObjectsOwnErrors) {
  const Scratch scratch;
  Win32FileSystem files;
  const std::string file = scratch.Write("file.txt", "x");
  const std::string locked = scratch.Write("locked.txt", "x");
  const std::string readOnly = scratch.Write("readonly.txt", "x");
  SetFileAttributesW(Wide(readOnly).c_str(), FILE_ATTRIBUTE_READONLY);
  const HANDLE lock =
      CreateFileW(Wide(locked).c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  const auto open = [&](const std::string& path, OpenMode mode) {
    return ErrorOf([&] { files.OpenTextFile(path, mode); });
  };
  const auto create = [&](const std::string& path) {
    return ErrorOf([&] { files.CreateFolder(path); });
  };

  EXPECT_EQ(create(scratch.Path()), 58);
  EXPECT_EQ(create(file), 58);
  EXPECT_EQ(create(scratch / "no\\deep"), 76);
  EXPECT_EQ(create(scratch / std::string(250, 'x')), 76) << "longer than Windows allows";
  EXPECT_EQ(create(scratch / "a?b"), 52);
  EXPECT_EQ(ErrorOf([&] { files.DeleteFile(scratch / "none", false); }), 53);
  EXPECT_EQ(ErrorOf([&] { files.DeleteFile(scratch.Path(), true); }), 53);
  EXPECT_EQ(ErrorOf([&] { files.DeleteFile(locked, true); }), 70);
  EXPECT_EQ(ErrorOf([&] { files.DeleteFile(readOnly, false); }), 70);
  EXPECT_EQ(ErrorOf([&] { files.GetFolder(scratch / "none"); }), 76);
  EXPECT_EQ(ErrorOf([&] { files.GetFolder(file); }), 76);
  EXPECT_EQ(ErrorOf([&] { files.GetFolder(""); }), 76);
  EXPECT_EQ(ErrorOf([&] { files.GetSpecialFolder(3); }), 5);
  EXPECT_EQ(open(scratch / "none", OpenMode::Input), 53);
  EXPECT_EQ(open(scratch / "no\\file", OpenMode::Input), 76);
  EXPECT_EQ(open(scratch / "no\\file", OpenMode::Append), 76);
  EXPECT_EQ(open(scratch / "a?b", OpenMode::Output), 52);
  EXPECT_EQ(open(locked, OpenMode::Input), 70);
  EXPECT_EQ(open(scratch.Path(), OpenMode::Output), 75);
  CloseHandle(lock);

  EXPECT_EQ(ErrorOf([&] { files.DeleteFile(readOnly, true); }), 0);
  EXPECT_FALSE(files.FileExists(readOnly));
}

TEST(FileSystem, ListsEveryFileAndFolderInTheFileSystemsOrder) {
  const Scratch scratch;
  Win32FileSystem files;
  for (const char* name : {"b.txt", "a.txt", "hidden.dll"}) scratch.Write(name, "");
  SetFileAttributesW(Wide(scratch / "hidden.dll").c_str(),
                     FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM);
  files.CreateFolder(scratch / "Sub \u8868");

  const auto folder = files.GetFolder(scratch.Path() + "\\");
  EXPECT_EQ(folder->Path(), scratch.Path());
  EXPECT_EQ(scratch.Path().substr(scratch.Path().rfind('\\') + 1), folder->Name());
  std::vector<std::string> expected;
  WIN32_FIND_DATAW found;
  const HANDLE search = FindFirstFileW(Wide(scratch / "*").c_str(), &found);
  do {
    if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
      expected.push_back(Narrow(found.cFileName));
    }
  } while (FindNextFileW(search, &found));
  FindClose(search);
  std::vector<std::string> names;
  for (const FolderItem& item : folder->Files()) names.push_back(item.Name);
  EXPECT_EQ(names, expected);
  EXPECT_EQ(names.size(), 3u);
  ASSERT_EQ(folder->SubFolders().size(), 1u);
  EXPECT_EQ(folder->SubFolders()[0].Path, scratch / "Sub \u8868");

  const auto gone = files.GetFolder(scratch / "Sub \u8868");
  EXPECT_TRUE(gone->Files().empty());
  std::filesystem::remove(Wide(scratch / "Sub \u8868"));
  EXPECT_EQ(ErrorOf([&] { gone->Files(); }), 76);
  EXPECT_TRUE(files.GetFolder("C:\\")->Path() == "C:\\" && files.GetFolder("C:\\")->Name().empty());
}

TEST(FileSystem, AppendsWhileOthersReadButNotWrite) {
  const Scratch scratch;
  Win32FileSystem files;
  const std::string path = scratch / "log.txt";
  auto log = files.OpenTextFile(path, OpenMode::Append);
  log->Write("first\r\n");
  const auto reader = files.OpenTextFile(path, OpenMode::Input);
  char buffer[16];
  EXPECT_EQ(std::string(buffer, reader->Read(buffer, sizeof buffer)), "first\r\n");
  EXPECT_EQ(reader->Size(), 7u);
  EXPECT_EQ(reader->Read(buffer, sizeof buffer), 0u);
  for (const char* entry : {"second\r\n", "third\r\n"}) {
    EXPECT_EQ(ErrorOf([&] { files.OpenTextFile(path, OpenMode::Append); }), 70);
    log->Write(entry);
    files.ReopenTextFile(path, log);
  }
  EXPECT_EQ(Scratch::Read(path), "first\r\nsecond\r\nthird\r\n");
}

/// Has a file or folder open, from now on and for a while.
class Holder {
 public:
  Holder(const std::string& path, DWORD milliseconds, DWORD shared = 0)
      : handle_(CreateFileW(Wide(path).c_str(), GENERIC_READ, shared, nullptr, OPEN_EXISTING,
                            FILE_FLAG_BACKUP_SEMANTICS, nullptr)),
        thread_([this, milliseconds] {
          Sleep(milliseconds);
          CloseHandle(handle_);
        }) {
    EXPECT_NE(handle_, INVALID_HANDLE_VALUE) << path;
  }
  ~Holder() { thread_.join(); }
  Holder(const Holder&) = delete;
  Holder& operator=(const Holder&) = delete;

 private:
  HANDLE handle_;
  std::thread thread_;
};

TEST(FileSystem, TriesAgainWhatIsLockedForAMoment) {
  const Scratch scratch;
  Win32FileSystem files;
  Win32ShellOperations shell;
  const std::string held = scratch.Write("held.txt", "old");
  const std::string other = scratch.Write("other.txt", "new");
  const auto copy = [&](const std::string& from, const std::string& to) {
    if (shell.FileOperation(FO_COPY, from, to, 6416 | FOF_NOERRORUI) != 0)
      throw RuntimeError(error::kDiskFull);
  };
  const std::pair<const char*, std::function<void()>> works[] = {
      {"read", [&] { files.OpenTextFile(held, OpenMode::Input); }},
      {"append", [&] { files.OpenTextFile(held, OpenMode::Append); }},
      {"write", [&] { files.OpenTextFile(held, OpenMode::Output); }},
      {"copy from", [&] { copy(held, scratch / "copy.txt"); }},
      {"copy over", [&] { copy(other, held); }},
      {"delete", [&] { files.DeleteFile(held, true); }},
  };
  files.OpenTextFile(other, OpenMode::Input);  // patient again after what failed before
  for (const auto& [what, work] : works) {
    const Holder holder(held, 200);
    EXPECT_EQ(ErrorOf(work), 0) << what;
  }
  EXPECT_FALSE(files.FileExists(held));

  // A name is taken until the last one has let go of what is deleted.
  scratch.Write("held.txt", "old");
  constexpr DWORD kAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  const Holder file(held, 200, kAll);
  DeleteFileW(Wide(held).c_str());
  EXPECT_EQ(ErrorOf([&] { files.OpenTextFile(held, OpenMode::Output); }), 0);
}

TEST(FileSystem, DoesNotWaitForeverNorAgainAndAgainForWhatIsLocked) {
  const Scratch scratch;
  Win32FileSystem files;
  const std::string path = scratch.Write("locked.txt", "x");
  const auto failing = [&](int times) {
    const ULONGLONG begin = GetTickCount64();
    for (int i = 0; i < times; ++i) {
      EXPECT_EQ(ErrorOf([&] { files.OpenTextFile(path, OpenMode::Append); }), 70);
    }
    return GetTickCount64() - begin;
  };
  const HANDLE lock =
      CreateFileW(Wide(path).c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  EXPECT_GE(failing(1), 450U);
  EXPECT_LT(failing(20), 1500U) << "it was no moment before";
  CloseHandle(lock);
  files.OpenTextFile(path, OpenMode::Append);
  const Holder holder(path, 200);
  EXPECT_EQ(ErrorOf([&] { files.OpenTextFile(path, OpenMode::Append); }), 0) << "patient again";
}

TEST(FileSystem, WorksUpToWindowsOwnLimitOfAPath) {
  const Scratch scratch;
  Win32FileSystem files;
  std::string folder = scratch.Path();
  while (Length(folder) < 200) {
    folder +=
        "\\" +
        std::string(static_cast<std::size_t>(std::min<Position>(40, 210 - Length(folder))), 'f');
    files.CreateFolder(folder);
  }
  const std::string path =
      folder + "\\" + std::string(static_cast<std::size_t>(255 - Length(folder)), 'n');
  files.OpenTextFile(path, OpenMode::Output)->Write("x");
  EXPECT_TRUE(files.FileExists(path));
  EXPECT_EQ(files.GetFolder(folder)->Files().at(0).Path, path);
  EXPECT_EQ(ErrorOf([&] { files.OpenTextFile(path + "longer", OpenMode::Output); }), 76);
}

// The simulated disk has the same cases.
TEST(FileSystem, TakesPathsAsTheSimulatedDiskSays) {
  for (const auto& [given, meant] : kPathCases) {
    wchar_t buffer[MAX_PATH];
    std::string full =
        Narrow({buffer, GetFullPathNameW(Wide(given).c_str(), MAX_PATH, buffer, nullptr)});
    if (full.ends_with('\\')) full.pop_back();
    EXPECT_EQ(full, meant) << given;
  }
  const Scratch scratch;
  Win32FileSystem files;
  const auto create = [&](const char* name) {
    return ErrorOf([&] { files.CreateFolder(scratch / name); });
  };
  EXPECT_EQ(create("Shop "), 0);
  EXPECT_EQ(create("Shop \\Data"), 76);
  EXPECT_EQ(create("Desk."), 0);
  EXPECT_EQ(create("Desk.\\Data"), 0);
  EXPECT_EQ(create("a\tb"), 52);
}

TEST(FileSystem, KnowsTheSpecialFolders) {
  Win32FileSystem files;
  EXPECT_EQ(files.GetSpecialFolder(1).find(files.GetSpecialFolder(0)), 0u);
  for (const int number : {0, 1, 2}) {
    EXPECT_TRUE(files.FolderExists(files.GetSpecialFolder(number)));
    EXPECT_NE(files.GetSpecialFolder(number).back(), '\\');
  }
}

TEST(Settings, KeepsTextsPerUserAndTheSectionsOwnUnderTheEmptyKey) {
  Win32Settings settings;
  settings.SaveSetting("TA-LU test", "Application", "", "C:\\Apps\\\u8868");
  settings.SaveSetting("TA-LU test", "Application", "Key", "value");
  const auto read = [](const wchar_t* key) {
    wchar_t text[MAX_PATH] = L"";
    DWORD size = sizeof text;
    RegGetValueW(HKEY_CURRENT_USER, L"Software\\TA-LU test\\Application", key, RRF_RT_REG_SZ,
                 nullptr, text, &size);
    return Narrow(text);
  };
  EXPECT_EQ(read(nullptr), "C:\\Apps\\\u8868");
  EXPECT_EQ(read(L"Key"), "value");
  EXPECT_EQ(ErrorOf([&] { settings.SaveSetting("a", std::string(300, 'x'), "", ""); }), 5);
  RegDeleteTreeA(HKEY_CURRENT_USER, "Software\\TA-LU test");
}

}  // namespace
}  // namespace talu
