#include "pages/WizardPage.h"

#include "pages/Pages.h"
#include "startup/InstallContext.h"

namespace talu {

WizardPage::WizardPage(Pages& pages, const std::string& name, const std::string& title)
    : Form(pages.Install.Machine.Windows, name, layout::kPageWidth, layout::kPageHeight),
      ImgBack(*this, "ImgBack", {0, 0, layout::kPageWidth, layout::kPageHeight}),
      LblTitleMsg(*this, "LblTitleMsg", title, TextStyle::Title, layout::kTitle),
      pages_(pages),
      install_(pages.Install) {}

void WizardPage::SetUpFrame() {
  Caption(install_.State.AppTitle);
  ImgBack.Picture = windows_.LoadPicture(install_.State.BackgroundPicturePath);
}

void WizardPage::Form_QueryUnload() {
  windows_.EndProgram();
}

}  // namespace talu
