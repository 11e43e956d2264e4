#pragma once
// MCDateRangeControl: the right side of a date row in the predicate editor — a date picker, or a
// number with a unit ("3 weeks"), or nothing, by the row's operator. The three parts are made on
// first use and shown by `controlType`, in the order picker, number, unit; a host lays out the
// ones that are not hidden.
//
// A change in any part sends the control's own action, with the control.

#include <vesperon/controls/MCControlModel.h>
#include <vesperon/controls/MCDatePickerModel.h>
#include <vesperon/controls/MCPopUpModel.h>
#include <vesperon/controls/MCTextFieldModel.h>

#include <memory>
#include <vector>

class MCDateRangeControl : public MCControlModel {
 public:
  /// Which parts show: none, one date, or a number and a unit.
  enum class ControlType { empty = 0, datePicker = 1, dateRange = 2 };

  /// Units of the number, by tag.
  enum TimeIntervalUnit : long { days = 0, weeks = 1, months = 2, years = 3 };

  MCDateRangeControl() { arrange(); }
  // The parts send their changes to this control, so it stays where it was made.
  MCDateRangeControl(const MCDateRangeControl&) = delete;
  MCDateRangeControl& operator=(const MCDateRangeControl&) = delete;

  /// Which parts show.
  ControlType controlType() const { return controlType_; }
  /// Shows the parts of the type and hides the others.
  void setControlType(ControlType type) {
    controlType_ = type;
    arrange();
  }

  /// The date, now at first; shows year, month and day.
  const std::shared_ptr<MCDatePickerModel>& datePicker();
  /// Whole numbers from 0 to 10000.
  const std::shared_ptr<MCTextFieldModel>& timeIntervalTextField();
  /// Days, weeks, months, years, with the tags of TimeIntervalUnit.
  const std::shared_ptr<MCPopUpModel>& timeIntervalPopUp();
  /// The three parts in their order, hidden ones included.
  std::vector<std::shared_ptr<MCControlModel>> arrangedViews();

 private:
  void arrange();

  ControlType controlType_ = ControlType::empty;
  std::shared_ptr<MCDatePickerModel> datePicker_;
  std::shared_ptr<MCTextFieldModel> textField_;
  std::shared_ptr<MCPopUpModel> popUp_;
};
