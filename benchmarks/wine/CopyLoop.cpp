// Copies the files of a tree with CopyFileA and nothing else: what any installer pays at the least.
//
//   copyloop FROM TO        both are folders; TO is made, its parent must be there

#include <windows.h>

#include <cstdio>
#include <string>

namespace {

bool CopyTree(const std::string& from, const std::string& to) {
  if (!CreateDirectoryA(to.c_str(), nullptr)) return false;
  WIN32_FIND_DATAA found;
  const HANDLE search = FindFirstFileA((from + "\\*").c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) return false;
  bool whole = true;
  do {
    const std::string name = found.cFileName;
    if (name == "." || name == "..") continue;
    const std::string source = from + "\\" + name;
    const std::string target = to + "\\" + name;
    const bool folder = (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    if (!(folder ? CopyTree(source, target) : CopyFileA(source.c_str(), target.c_str(), FALSE))) {
      whole = false;
    }
  } while (FindNextFileA(search, &found));
  FindClose(search);
  return whole;
}

}  // namespace

int main(int count, char** arguments) {
  if (count == 3 && CopyTree(arguments[1], arguments[2])) return 0;
  std::fprintf(stderr, "copyloop: FROM TO: the tree could not be copied whole\n");
  return 1;
}
