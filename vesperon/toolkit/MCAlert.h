#pragma once
// MCAlert: a message with up to four buttons, as a model; an MCDialogPresenter shows it (the GTK
// host as a real dialog) and answers which button was pressed: 1000 for the first, 1001 for the
// second, and so on.

#include <string>
#include <vector>

class MCAlert {
 public:
  /// How grave the alert is.
  enum Style : unsigned long { Warning = 0, Informational = 1, Critical = 2 };
  /// The result of the first button; the next ones count up.
  static constexpr long FirstButtonReturn = 1000;

  /// The headline.
  std::string messageText;
  /// The text under it.
  std::string informativeText;
  /// How grave the alert is.
  Style alertStyle = Warning;
  /// The buttons' titles, the default first.
  std::vector<std::string> buttons;

  /// Adds a button.
  void addButtonWithTitle(std::string title) { buttons.push_back(std::move(title)); }

  /// An alert with the texts (each set only when not empty) and the buttons in order.
  static MCAlert alertWithMessageText(const std::string& messageText, const std::string& informativeText,
                                      const std::string& firstButton);
  /// The same with more buttons.
  static MCAlert alertWithMessageText(const std::string& messageText, const std::string& informativeText,
                                      const std::string& firstButton, const std::string& secondButton);
  /// The same with more buttons.
  static MCAlert alertWithMessageText(const std::string& messageText, const std::string& informativeText,
                                      const std::string& firstButton, const std::string& secondButton,
                                      const std::string& thirdButton);
  /// The same with more buttons.
  static MCAlert alertWithMessageText(const std::string& messageText, const std::string& informativeText,
                                      const std::string& firstButton, const std::string& secondButton,
                                      const std::string& thirdButton, const std::string& fourthButton);
};
