#pragma once
// MCAlert: a message with up to four buttons, as a model; an MCDialogPresenter shows it (the GTK
// host as a real dialog) and answers which button was pressed: 1000 for the first, 1001 for the
// second, and so on.

#include <string>
#include <vector>

class MCAlert {
 public:
  enum Style : unsigned long { Warning = 0, Informational = 1, Critical = 2 };
  static constexpr long FirstButtonReturn = 1000;

  std::string messageText;
  std::string informativeText;
  Style alertStyle = Warning;
  std::vector<std::string> buttons;

  void addButtonWithTitle(std::string title) { buttons.push_back(std::move(title)); }

  /// An alert with the texts (each set only when not empty) and the buttons in order.
  static MCAlert alertWithMessageText(const std::string& messageText, const std::string& informativeText,
                                      const std::string& firstButton);
  static MCAlert alertWithMessageText(const std::string& messageText, const std::string& informativeText,
                                      const std::string& firstButton, const std::string& secondButton);
  static MCAlert alertWithMessageText(const std::string& messageText, const std::string& informativeText,
                                      const std::string& firstButton, const std::string& secondButton,
                                      const std::string& thirdButton);
  static MCAlert alertWithMessageText(const std::string& messageText, const std::string& informativeText,
                                      const std::string& firstButton, const std::string& secondButton,
                                      const std::string& thirdButton, const std::string& fourthButton);
};
