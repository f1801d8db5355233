#include "forms/Controls.h"

#include "forms/Form.h"

namespace talu {

Control::Control(Form& form, ControlKind kind, const std::string& name, Place place)
    : form_(form), index_(form.Add(*this)) {
  view_.Kind = kind;
  view_.Name = name;
  view_.Left = place.Left;
  view_.Top = place.Top;
  view_.Width = place.Width;
  view_.Height = place.Height;
}

void Control::Run(const Handler& handler) {
  if (handler) form_.RunProcedure(handler);
}

void Control::Notify(Property property) {
  form_.ControlChanged(index_, property);
  Changed(property);
}

Label::Label(Form& form, const std::string& name, const std::string& caption, TextStyle style,
             Place place)
    : VisibleControl(form, ControlKind::Label, name, place) {
  view_.Text = caption;
  view_.Style = style;
}

Label& Label::WithMnemonic() {
  view_.Mnemonic = true;
  return *this;
}

Label& Label::Scrolling() {
  view_.Scrolls = true;
  return *this;
}

TextBox::TextBox(Form& form, const std::string& name, const std::string& labelledBy, Place place)
    : VisibleControl(form, ControlKind::TextBox, name, place) {
  view_.LabelledBy = labelledBy;
}

TextBox& TextBox::HidingText() {
  view_.Password = true;
  return *this;
}

void TextBox::OperatorTyped(const std::string& text) {
  if (view_.Text == text) return;
  view_.Text = text;  // the window already shows it
  Run(Change);
}

void TextBox::Changed(Property property) {
  if (property == Property::Text) Run(Change);
}

CommandButton::CommandButton(Form& form, const std::string& name, const std::string& caption,
                             Place place)
    : VisibleControl(form, ControlKind::CommandButton, name, place) {
  view_.Text = caption;
}

CommandButton& CommandButton::AsDefault() {
  view_.Default = true;
  return *this;
}

CommandButton& CommandButton::LabelledBy(const std::string& label) {
  view_.LabelledBy = label;
  view_.Style = TextStyle::Label;  // a short caption such as three dots is faint in a lighter style
  return *this;
}

OptionButton::OptionButton(Form& form, const std::string& name, const std::string& labelledBy,
                           Place place)
    : VisibleControl(form, ControlKind::OptionButton, name, place) {
  view_.LabelledBy = labelledBy;
}

void OptionButton::Changed(Property property) {
  if (property != Property::Value) return;
  if (Value) form_.ClearOtherOptions(*this);
  Run(Click);
}

CheckBox::CheckBox(Form& form, const std::string& name, const std::string& caption,
                   const std::string& labelledBy, Place place)
    : VisibleControl(form, ControlKind::CheckBox, name, place) {
  view_.Text = caption;
  view_.LabelledBy = labelledBy;
}

void CheckBox::Changed(Property property) {
  if (property == Property::Value) Run(Click);
}

Image::Image(Form& form, const std::string& name, Place place)
    : Control(form, ControlKind::Image, name, place) {}

Shape::Shape(Form& form, const std::string& name, Role role, Place place)
    : VisibleControl(form, ControlKind::Shape, name, place) {
  view_.Bar = role == Bar;
}

}  // namespace talu
