#include "Expectation.h"

#include "Text.h"

namespace talu::drive {

namespace {

std::string Is(bool value, const char* yes, const char* no) {
  return std::string("it is ") + (value ? yes : no);
}

}  // namespace

std::string Unmet(const SetupProcess& setup, const Step& step) {
  const HWND control = setup.Control(step.Name);
  if (control == nullptr) return "there is no such control, " + setup.PagesShown();
  const std::string& property = step.Property;
  if (property == "text" || property == "begins") {
    const auto text = TextOf(control);
    if (!text) return kNoAnswer;
    const std::string there = PlainLineEnds(*text);
    const std::string wanted = PlainLineEnds(step.Value);
    const bool met = property == "text" ? there == wanted : there.starts_with(wanted);
    return met ? "" : "it reads " + Quoted(there);
  }
  if (property == "width") {
    const int width = WidthOf(control);
    return width == step.Number ? "" : "it is " + std::to_string(width);
  }
  const bool wanted = step.Value == "true";
  if (property == "value") {
    const auto value = ValueOf(control);
    if (!value) return kNoAnswer;
    return *value == wanted ? "" : Is(*value, "on", "off");
  }
  if (property == "focus")
    return HasFocus(control) == wanted ? "" : Is(!wanted, "there", "elsewhere");
  const bool state = property == "enabled" ? IsWindowEnabled(control) : IsWindowVisible(control);
  if (state == wanted) return "";
  return property == "enabled" ? Is(state, "enabled", "disabled") : Is(state, "visible", "hidden");
}

}  // namespace talu::drive
