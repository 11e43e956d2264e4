#include <vesperon/toolkit/MCAlert.h>

namespace {

MCAlert make(const std::string& messageText, const std::string& informativeText,
             std::initializer_list<const std::string*> buttons) {
  MCAlert alert;
  if (!messageText.empty()) alert.messageText = messageText;
  if (!informativeText.empty()) alert.informativeText = informativeText;
  for (const std::string* title : buttons) alert.addButtonWithTitle(*title);
  return alert;
}

}  // namespace

MCAlert MCAlert::alertWithMessageText(const std::string& messageText, const std::string& informativeText,
                                      const std::string& firstButton) {
  return make(messageText, informativeText, {&firstButton});
}

MCAlert MCAlert::alertWithMessageText(const std::string& messageText, const std::string& informativeText,
                                      const std::string& firstButton, const std::string& secondButton) {
  return make(messageText, informativeText, {&firstButton, &secondButton});
}

MCAlert MCAlert::alertWithMessageText(const std::string& messageText, const std::string& informativeText,
                                      const std::string& firstButton, const std::string& secondButton,
                                      const std::string& thirdButton) {
  return make(messageText, informativeText, {&firstButton, &secondButton, &thirdButton});
}

MCAlert MCAlert::alertWithMessageText(const std::string& messageText, const std::string& informativeText,
                                      const std::string& firstButton, const std::string& secondButton,
                                      const std::string& thirdButton, const std::string& fourthButton) {
  return make(messageText, informativeText, {&firstButton, &secondButton, &thirdButton, &fourthButton});
}
