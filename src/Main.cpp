#include "Main.h"

#include "Wizard.h"
#include "forms/Form.h"
#include "pages/FrmType.h"

namespace talu {

void Main(Wizard& wizard) {
  RunToTheEnd(wizard.Machine.Windows, [&wizard] {
    const std::string picture = wizard.Machine.AppPath + "\\Skin\\WindowBack.jpg";
    wizard.State.BackgroundPicturePath = wizard.Machine.Files.FileExists(picture) ? picture : "";
    wizard.State.AppTitle = wizard.GetCfgValue("AppTitle", 1);
    wizard.Page<FrmType>().Show();
  });
}

}  // namespace talu
