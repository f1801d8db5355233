#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "platform/WindowSystem.h"

namespace talu {

class Form;

/// Place and size on a form, in twips.
struct Place {
  int Left = 0;
  int Top = 0;
  int Width = 0;
  int Height = 0;
};

/// The base of every control: a view that the window system shows, and the form it belongs to. A
/// control knows nothing of windows; it notifies its form when a property changes.
class Control {
 public:
  using Handler = std::function<void()>;

  Control(const Control&) = delete;
  Control& operator=(const Control&) = delete;
  virtual ~Control() = default;

  const ControlView& View() const { return view_; }
  /// Window events, passed on by the form.
  virtual void OperatorClicked() {}
  virtual void OperatorTyped(const std::string&) {}
  virtual void OperatorFocused() {}
  virtual void OperatorHovered() {}

 protected:
  Control(Form& form, ControlKind kind, const std::string& name, Place place);

  void Run(const Handler& handler);
  /// Called after a property has changed and the form has been notified.
  virtual void Changed(Property) {}

  ControlView view_;
  Form& form_;

 private:
  template <class T>
  friend class ControlProperty;
  friend class Form;

  void Notify(Property property);

  std::size_t index_;
};

/// One property of a control: reads like a value; assigning another value notifies the form.
template <class T>
class ControlProperty {
 public:
  using Field = T ControlView::*;

  ControlProperty(Control& owner, Field field, Property property)
      : owner_(owner), field_(field), property_(property) {}
  ControlProperty(const ControlProperty&) = delete;

  const T& Get() const { return owner_.view_.*field_; }
  operator const T&() const { return Get(); }  // NOLINT(google-explicit-constructor)

  ControlProperty& operator=(T value) {
    // The window does not report its own selection, so the same one may have to be set again.
    if (Get() == value && property_ != Property::Selection) return *this;
    owner_.view_.*field_ = std::move(value);
    owner_.Notify(property_);
    return *this;
  }
  ControlProperty& operator=(const ControlProperty& other) { return *this = other.Get(); }

 private:
  Control& owner_;
  Field field_;
  Property property_;
};

class VisibleControl : public Control {
 public:
  ControlProperty<bool> Enabled{*this, &ControlView::Enabled, Property::Enabled};
  ControlProperty<bool> Visible{*this, &ControlView::Visible, Property::Visible};
  ControlProperty<int> Width{*this, &ControlView::Width, Property::Width};

 protected:
  using Control::Control;
};

class Label : public VisibleControl {
 public:
  Label(Form& form, const std::string& name, const std::string& caption, TextStyle style,
        Place place);

  ControlProperty<std::string> Caption{*this, &ControlView::Text, Property::Caption};

  /// "&" marks a mnemonic, which moves to the next control in tab order.
  Label& WithMnemonic();
  /// Scrolls when its text does not fit.
  Label& Scrolling();
};

class TextBox : public VisibleControl {
 public:
  TextBox(Form& form, const std::string& name, const std::string& labelledBy, Place place);

  /// Another value runs `Change`, whoever sets it.
  ControlProperty<std::string> Text{*this, &ControlView::Text, Property::Text};
  ControlProperty<std::string> ToolTipText{*this, &ControlView::ToolTipText, Property::ToolTipText};
  ControlProperty<int> SelStart{*this, &ControlView::SelStart, Property::Selection};
  ControlProperty<int> SelLength{*this, &ControlView::SelLength, Property::Selection};

  Handler Change;
  Handler MouseMove;
  Handler GotFocus;

  TextBox& HidingText();

  void OperatorTyped(const std::string& text) override;
  void OperatorFocused() override { Run(GotFocus); }
  void OperatorHovered() override { Run(MouseMove); }

 protected:
  void Changed(Property property) override;
};

class CommandButton : public VisibleControl {
 public:
  CommandButton(Form& form, const std::string& name, const std::string& caption, Place place);

  ControlProperty<std::string> Caption{*this, &ControlView::Text, Property::Caption};
  Handler Click;

  /// Enter clicks it wherever the focus is.
  CommandButton& AsDefault();
  /// The caption alone does not say what it is for: assistive software reads this label with it.
  CommandButton& LabelledBy(const std::string& label);

  void OperatorClicked() override { Run(Click); }
};

/// One choice of several: selecting it clears the form's other option buttons. Another value runs
/// `Click`, whoever sets it; being cleared by another button's selection does not.
class OptionButton : public VisibleControl {
 public:
  OptionButton(Form& form, const std::string& name, const std::string& labelledBy, Place place);

  ControlProperty<bool> Value{*this, &ControlView::Value, Property::Value};
  Handler Click;

  void OperatorClicked() override { Value = true; }

 protected:
  void Changed(Property property) override;
};

/// Another value runs `Click`, whoever sets it.
class CheckBox : public VisibleControl {
 public:
  CheckBox(Form& form, const std::string& name, const std::string& caption,
           const std::string& labelledBy, Place place);

  ControlProperty<std::string> Caption{*this, &ControlView::Text, Property::Caption};
  ControlProperty<bool> Value{*this, &ControlView::Value, Property::Value};
  Handler Click;

  void OperatorClicked() override { Value = !Value; }

 protected:
  void Changed(Property property) override;
};

class Image : public Control {
 public:
  Image(Form& form, const std::string& name, Place place);

  ControlProperty<std::shared_ptr<talu::Picture>> Picture{*this, &ControlView::Picture,
                                                          Property::Picture};
};

/// A rectangle: the progress track, or the filled part of it.
class Shape : public VisibleControl {
 public:
  enum Role { Track, Bar };
  Shape(Form& form, const std::string& name, Role role, Place place);
};

}  // namespace talu
