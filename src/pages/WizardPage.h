#pragma once

#include <string>

#include "forms/Form.h"
#include "forms/PageLayout.h"
#include "startup/WorkView.h"

namespace talu {

class InstallContext;
class Pages;

/// The frame that every page shares: picture and title at the top, then the page's own controls,
/// then status line, progress bar, note and buttons. Each page declares those last because the
/// order of declaration is the tab order.
class WizardPage : public Form {
 public:
  WizardPage(Pages& pages, const std::string& name, const std::string& title);

  Image ImgBack;
  Label LblTitleMsg;

 protected:
  /// Sets caption and background picture, at load. Raises what loading the picture raises.
  void SetUpFrame();
  /// Closing any page ends the program at once.
  void Form_QueryUnload() override;

  Pages& pages_;
  InstallContext& install_;
};

inline constexpr const char* kNotResponding =
    "Note: During installation wizard may appear as not responding, Please wait ...";

}  // namespace talu
