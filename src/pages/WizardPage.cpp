#include "pages/WizardPage.h"

#include "startup/Wizard.h"

namespace talu {

WizardPage::WizardPage(Wizard& wizard, const std::string& name, const std::string& title)
    : Form(wizard.Machine.Windows, name, layout::kPageWidth, layout::kPageHeight),
      ImgBack(*this, "ImgBack", {0, 0, layout::kPageWidth, layout::kPageHeight}),
      LblTitleMsg(*this, "LblTitleMsg", title, TextStyle::Title, layout::kTitle),
      wizard_(wizard) {}

void WizardPage::SetUpFrame() {
  Caption(wizard_.State.AppTitle);
  ImgBack.Picture = windows_.LoadPicture(wizard_.State.BackgroundPicturePath);
}

void WizardPage::Form_QueryUnload() {
  windows_.EndProgram();
}

Int16 ProgressShare(double percent) {
  return RoundToInt16(kProgressWidth / 100.0 * percent);
}

}  // namespace talu
