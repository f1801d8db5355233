#include <memory>
#include <string>
#include <vector>

#include "forms/Form.h"
#include "platform/win32/CommandLine.h"
#include "platform/win32/OwnProgram.h"
#include "platform/win32/SystemLibrary.h"
#include "platform/win32/Win32Machine.h"
#include "platform/win32/Win32Removal.h"
#include "takeback/Commands.h"
#include "uninstall/FrmTakeBack.h"

namespace {

/// The whole of a command, without a window.
int RunCommand(const std::vector<std::string>& arguments, const talu::Machine& machine,
               talu::Removal& removal, const std::string& program) {
  talu::CommandOutput out(STD_OUTPUT_HANDLE);
  talu::CommandOutput errors(STD_ERROR_HANDLE);
  const talu::CommandLineHost host = {
      .Out = [&out](std::string_view line) { out.WriteLine(line); },
      .Error = [&errors](std::string_view line) { errors.WriteLine(line); },
      .Environment = talu::EnvironmentVariable};
  return talu::TakeBackCommand(arguments, machine, removal, program, host);
}

}  // namespace

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
#ifdef _MSC_VER
  talu::TrustSystemFolderOnly();
#endif
  talu::Win32Machine real;
  talu::Machine machine = real.Parts();
  const std::string path = talu::OwnProgramPath();
  const std::size_t name = path.find_last_of('\\') + 1;
  const std::string program = path.substr(name);
  machine.AppPath = path.substr(0, name - 1);
  talu::Win32Removal removal([&real](HANDLE handle) { real.Windows().WaitFor(handle); },
                             machine.Odbc, machine.AppPath);
  talu::LoadWhatIsAskedForLater();

  const std::vector<std::string> arguments = talu::ProgramArguments();
  if (!arguments.empty()) return RunCommand(arguments, machine, removal, program);

  std::unique_ptr<talu::FrmTakeBack> page;
  try {
    page = std::make_unique<talu::FrmTakeBack>(
        machine, removal, program, [&real](int code) { real.Windows().ExitCode(code); });
  } catch (...) {
    const talu::RuntimeError error = talu::CaughtError();
    machine.Windows.MessageBox(error.Number == talu::error::kFileNotFound
                                   ? "There is no record of an installation in " + machine.AppPath
                                   : error.Description,
                               program);
    return talu::kCannotBegin;
  }
  // As long as it looks it is at work, whatever is clicked meanwhile.
  real.Windows().HandlerBegins();
  page->Show();
  real.Windows().HandlerEnds();
  return real.Run();
}
