#include "Scratch.h"
#include "platform/win32/Win32FileSystem.h"
#include "platform/win32/Win32ShellOperations.h"

namespace talu {
namespace {

constexpr int kCopy = 2;
/// The wizard's own flags, and no boxes for errors: on Windows they wait for somebody.
constexpr int kNoQuestions = 6416 | FOF_NOERRORUI;

/// One copy, done in a folder of its own; `Prepare` makes the folder's contents.
struct Case {
  const char* Name;
  const char* From;
  const char* To;
};

class CopyTest : public testing::TestWithParam<Case> {
 protected:
  void Prepare(const Scratch& scratch) {
    scratch.Write("a.txt", "new");
    scratch.Write("b.txt", "other");
    scratch.Write("old.txt", "old");
    scratch.Write("readonly.txt", "old");
    SetFileAttributesW(Wide(scratch / "readonly.txt").c_str(), FILE_ATTRIBUTE_READONLY);
    for (const char* name : {"folder", "into"}) {
      std::filesystem::create_directory(Wide(scratch / name));
    }
    scratch.Write("folder\\deep.txt", "deep");
  }

  /// Names, attributes that matter and contents of everything below a folder.
  std::string Tree(const std::string& folder) {
    std::string tree;
    WIN32_FIND_DATAW found;
    const HANDLE search = FindFirstFileW(Wide(folder + "\\*").c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) return tree;
    do {
      const std::string name = Narrow(found.cFileName);
      if (name == "." || name == "..") continue;
      const bool isFolder = (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
      const bool readOnly = (found.dwFileAttributes & FILE_ATTRIBUTE_READONLY) != 0;
      tree += name + (readOnly ? "!" : "") + "=";
      tree += isFolder ? "{" + Tree(folder + "\\" + name) + "}"
                       : Scratch::Read(folder + "\\" + name) + ";";
    } while (FindNextFileW(search, &found));
    FindClose(search);
    return tree;
  }
};

TEST_P(CopyTest, EndsAsTheShellsOwnCopyDoes) {
  int expectedCode = -1;
  std::string expectedTree;
  {
    const Scratch scratch;
    Prepare(scratch);
    const std::wstring from = Wide(scratch / GetParam().From + '\0');
    const std::wstring to = Wide(scratch / GetParam().To + '\0');
    SHFILEOPSTRUCTW request = {};
    request.wFunc = FO_COPY;
    request.pFrom = from.c_str();
    request.pTo = to.c_str();
    request.fFlags = kNoQuestions;
    expectedCode = SHFileOperationW(&request);
    expectedTree = Tree(scratch.Path());
  }
  const Scratch scratch;
  Prepare(scratch);
  Win32ShellOperations shell;
  const int code =
      shell.FileOperation(kCopy, scratch / GetParam().From, scratch / GetParam().To, kNoQuestions);
  EXPECT_EQ(code, expectedCode);
  EXPECT_EQ(Tree(scratch.Path()), expectedTree);
}

INSTANTIATE_TEST_SUITE_P(Copies, CopyTest,
                         testing::Values(Case{"NewFile", "a.txt", "new.txt"},
                                         Case{"OverAFile", "a.txt", "old.txt"},
                                         Case{"OverAReadOnlyFile", "a.txt", "readonly.txt"},
                                         Case{"OfAReadOnlyFile", "readonly.txt", "new.txt"},
                                         Case{"IntoAFolder", "a.txt", "into"},
                                         Case{"IntoAFolderSlash", "a.txt", "into\\"},
                                         Case{"IntoAMissingFolder", "a.txt", "missing\\new.txt"},
                                         Case{"OntoItself", "a.txt", "a.txt"},
                                         Case{"MissingFile", "none.txt", "new.txt"},
                                         Case{"Wildcard", "*.txt", "into"},
                                         Case{"WholeFolder", "folder", "into"}),
                         [](const auto& info) { return std::string(info.param.Name); });

TEST(ShellOperations, CopiesUnderEveryName) {
  for (const char* name : {"Gr\u00fc\u00dfe.txt", "\u8868.txt", "\U0001F600"}) {
    SCOPED_TRACE(name);
    const Scratch scratch;
    scratch.Write(name, "x");
    Win32ShellOperations shell;
    const auto folder = Win32FileSystem().GetFolder(scratch.Path());
    const std::string from = folder->Files().at(0).Path;
    EXPECT_EQ(from, scratch / name);
    const std::string to = scratch / "to " + name;
    EXPECT_EQ(shell.FileOperation(kCopy, from, to, kNoQuestions), 0);
    EXPECT_EQ(Scratch::Read(to), "x");
  }
}

}  // namespace
}  // namespace talu
