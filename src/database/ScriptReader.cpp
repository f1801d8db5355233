#include "database/ScriptReader.h"

#include "runtime/ErrorTrap.h"
#include "runtime/TextFiles.h"

namespace talu {

bool MoreToRead(const ErrorTrap& step, TextFiles& files, int number) {
  bool more = false;
  if (files.IsOpen(number)) step.Assign(more, [&] { return !files.EndOfFile(number); });
  return more;
}

void OpenForReading(const ErrorTrap& step, TextFiles& files, const std::string& path, int& number) {
  number = 0;
  step.Assign(number, [&] {
    const int free = files.FreeFile();
    files.Open(path, OpenMode::Input, free);
    return free;
  });
}

}  // namespace talu
