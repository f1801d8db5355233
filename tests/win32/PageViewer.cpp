// Shows the sample page, to be looked at: page_viewer [PICTURE]. Closing it ends the program.

#include "SamplePage.h"
#include "platform/win32/Win32Machine.h"
#include "platform/win32/Windows.h"

namespace {

class ViewedPage : public talu::SamplePage {
 public:
  explicit ViewedPage(talu::WindowSystem& windows) : SamplePage(windows), windows_(windows) {}
  void OperatorClosed() override { windows_.EndProgram(); }

 private:
  talu::WindowSystem& windows_;
};

}  // namespace

int main(int count, char** arguments) {
  talu::Win32Machine machine;
  ViewedPage page(machine.Parts().Windows);
  if (count > 1) page["ImgBack"].Picture = machine.Parts().Windows.LoadPicture(arguments[1]);
  page["OptFresh"].Value = true;
  page["ChkOldLocation"].Value = true;
  machine.Parts().Windows.ShowForm(page);
  return machine.Run();
}
