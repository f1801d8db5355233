#include "PlanOperator.h"

#include <array>

#include "database/TypeScripts.h"

namespace talu::packcheck {
namespace {

constexpr std::array kTypeOptions = {"OptFresh", "OptDemo", "OptUpgrade"};
constexpr const char* kUsualRoot = "C:\\Program Files";

}  // namespace

std::string PlanOperator::Play() {
  while (!windows_.Ended()) {
    const std::string page = windows_.VisibleForm();
    if (std::string hindrance = FillIn(page); !hindrance.empty()) return hindrance;
    if (options_.Twice) {
      if (std::string stop = GoBackAndComeAgain(page); !stop.empty()) return stop;
    }
    const bool clicked = windows_.Click("CmdNext");
    if (windows_.Ended()) {
      const bool finish = page == "FrmApplication" && clicked;
      return finish ? "" : "the program ended by itself";
    }
    if (windows_.VisibleForm() == page) return WhyStopped(page);
  }
  return "the program ended by itself";
}

std::string PlanOperator::FillIn(const std::string& page) {
  if (page == "FrmType") return ChooseType();
  if (page == "FrmMode") {
    windows_.Click(options_.Mode == InstallMode::Server ? "OptServer" : "OptClient");
  } else if (page == "FrmAuthentication") {
    FillInAuthentication();
  } else if (page == "FrmLocation") {
    FillInLocation();
  }
  return "";
}

std::string PlanOperator::ChooseType() {
  const auto type = static_cast<std::size_t>(options_.Type);
  if (!windows_.Click(kTypeOptions.at(type))) {
    // When there is nothing to choose, Next works as it is.
    for (const char* option : kTypeOptions) {
      if (windows_.Shown(option)->Enabled) {
        return std::string("the ").append(kTypeScripts.at(type).Type) +
               " installation cannot be chosen: its option is disabled";
      }
    }
  }
  if (!options_.OldPath.empty() && windows_.Click("ChkOldLocation")) {
    windows_.BrowseAnswers = {options_.OldPath};
    windows_.Click("CmdLocation");
  }
  return "";
}

void PlanOperator::FillInAuthentication() {
  windows_.Type("TxtUsrName", options_.User);
  windows_.Type("TxtPsWord", options_.Password);
  windows_.Type("TxtServer", options_.Server);
}

void PlanOperator::FillInLocation() {
  if (options_.Mode == InstallMode::Client) windows_.Type("TxtServer", options_.Server);
  if (options_.InstallPath.empty() && !Shown("TxtInstaPath").empty()) return;
  windows_.BrowseAnswers = {options_.InstallPath.empty() ? kUsualRoot : options_.InstallPath};
  windows_.Click("CmdLocation");
}

std::string PlanOperator::GoBackAndComeAgain(const std::string& page) {
  if (!wentBackFrom_.insert(page).second || !windows_.Click("CmdPrev")) return "";
  windows_.Click("CmdNext");
  return windows_.VisibleForm() == page ? "" : WhyStopped(windows_.VisibleForm());
}

std::string PlanOperator::WhyStopped(const std::string& page) const {
  if (windows_.Ended()) return "the program ended by itself";
  std::string why = page + " stays";
  const ControlView* next = windows_.Shown("CmdNext");
  if (next != nullptr && !next->Enabled) why += ", its Next disabled";
  const std::string status = Shown("LblMsg");
  return status.empty() ? why : why + ": " + status;
}

std::string PlanOperator::Shown(const char* control) const {
  const ControlView* view = windows_.Shown(control);
  return view != nullptr ? view->Text : "";
}

}  // namespace talu::packcheck
