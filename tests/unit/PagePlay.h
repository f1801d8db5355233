#pragma once

#include <sstream>

#include "Pack.h"

namespace talu {

/// A machine with a small pack, whose pages are played.
class PagePlay : public PackTest {
 public:
  /// Plays steps that ";" divides, as docs/drive.md has them:
  ///
  ///   click|hover CONTROL, type CONTROL TEXT
  ///   browse PATH                    what the next folder browser will answer
  ///   wait FORM                      the page that is shown; empty when none is
  ///   message TEXT                   the last message box, empty when there was none
  ///   expect CONTROL text|tip TEXT, expect CONTROL enabled|visible|value true|false
  void Play(const std::string& steps) {
    for (const std::string& step : Split(steps, ';')) {
      std::istringstream words(step);
      std::string verb;
      std::string name;
      std::string rest;
      words >> verb >> name;
      std::getline(words, rest);
      if (!rest.empty()) rest.erase(0, 1);
      if (verb == "click") {
        EXPECT_TRUE(windows.Click(name)) << step;
      }
      if (verb == "hover") {
        EXPECT_TRUE(windows.Hover(name)) << step;
      }
      if (verb == "type") {
        EXPECT_TRUE(windows.Type(name, rest)) << step;
      }
      if (verb == "browse") windows.BrowseAnswers = {name};
      if (verb == "wait") {
        EXPECT_EQ(windows.VisibleForm(), name) << step;
      }
      if (verb == "message") {
        const std::string text = name + (rest.empty() ? "" : " " + rest);
        EXPECT_EQ(windows.Messages().empty() ? "" : windows.Messages().back(), text);
      }
      if (verb == "expect") Expect(step, name, rest);
      const std::string verbs = " click hover type browse wait message expect ";
      EXPECT_TRUE(Contains(verbs, " " + verb + " ")) << step;
    }
  }

 private:
  void Expect(const std::string& step, const std::string& control, const std::string& what) {
    const ControlView* view = windows.Shown(control);
    ASSERT_NE(view, nullptr) << step;
    const auto word = [](bool value) { return std::string(value ? "true" : "false"); };
    const std::pair<std::string, std::string> properties[] = {{"text ", view->Text},
                                                              {"tip ", view->ToolTipText},
                                                              {"enabled ", word(view->Enabled)},
                                                              {"visible ", word(view->Visible)},
                                                              {"value ", word(view->Value)}};
    for (const auto& [property, value] : properties) {
      if (!what.starts_with(property)) continue;
      EXPECT_EQ(property + value, what) << step;
      return;
    }
    ADD_FAILURE() << step;
  }
};

}  // namespace talu
