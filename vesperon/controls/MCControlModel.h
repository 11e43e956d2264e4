#pragma once
// MCControlModel: the state of a small control without its drawing — what a row of the predicate
// editor is made of, and what a host renders with its own widgets (the GTK host with GtkDropDown,
// GtkEntry and GtkCalendar). A host shows the model, writes the user's change into it and calls
// `sendAction`; the owner of the model reads it back.

#include <functional>
#include <memory>

class MCControlModel {
 public:
  virtual ~MCControlModel() = default;

  /// Whether the control is hidden.
  bool isHidden() const { return hidden_; }
  /// Hides or shows the control.
  void setHidden(bool hidden) { hidden_ = hidden; }
  /// A number for the program's own use.
  long tag() const { return tag_; }
  /// Sets the tag.
  void setTag(long tag) { tag_ = tag; }

  /// Called with the control by `sendAction`; none by default.
  std::function<void(MCControlModel&)> action;
  /// Sends the action, when there is one.
  void sendAction() {
    if (action) action(*this);
  }

 private:
  bool hidden_ = false;
  long tag_ = 0;
};
