// A scanner of viruses, as Windows' programs see one: has each new file below a folder open for
// itself for 200 ms, as soon as it can. Prints "ready", then each file that it has held.
//
//   scanner FOLDER

#include <windows.h>

#include <cstdio>
#include <string>
#include <thread>

namespace {

void Hold(const std::wstring& path) {
  // Whoever made it may still be writing.
  for (int i = 0; i < 200; ++i) {
    const HANDLE file =
        CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file != INVALID_HANDLE_VALUE) {
      Sleep(200);
      CloseHandle(file);
      std::printf("%ls\n", path.c_str());
      std::fflush(stdout);
      return;
    }
    Sleep(2);
  }
}

}  // namespace

int wmain(int, wchar_t** arguments) {
  const std::wstring folder = arguments[1];
  const HANDLE watched = CreateFileW(folder.c_str(), FILE_LIST_DIRECTORY,
                                     FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                     nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  alignas(DWORD) char news[16384];
  std::puts("ready");
  std::fflush(stdout);
  DWORD size = 0;
  while (ReadDirectoryChangesW(watched, news, sizeof news, TRUE, FILE_NOTIFY_CHANGE_FILE_NAME,
                               &size, nullptr, nullptr)) {
    for (const char* at = news; size > 0;) {
      const auto* entry = reinterpret_cast<const FILE_NOTIFY_INFORMATION*>(at);
      if (entry->Action == FILE_ACTION_ADDED) {
        const std::wstring name(entry->FileName, entry->FileNameLength / sizeof(wchar_t));
        std::thread(Hold, folder + L"\\" + name).detach();
      }
      if (entry->NextEntryOffset == 0) break;
      at += entry->NextEntryOffset;
    }
  }
  return 1;
}
