#pragma once
// MCDatePickerModel: a date picker's date, as seconds since 1970 (UTC), showing year, month and
// day.

#include <vesperon/controls/MCControlModel.h>

#include <ctime>

class MCDatePickerModel : public MCControlModel {
 public:
  MCDatePickerModel() : dateValue(double(std::time(nullptr))) {}

  /// The date, in seconds since 1970.
  double dateValue;
  /// What a user's choice does: stores the date and sends the action.
  void chooseDate(double date) {
    dateValue = date;
    sendAction();
  }
};
