#include <vesperon/controls/MCDateRangeControl.h>

#include <vesperon/core/MCLocalizedString.h>

namespace {

// Each part's change is the control's change.
std::function<void(MCControlModel&)> forwardTo(MCDateRangeControl* control) {
  return [control](MCControlModel&) { control->sendAction(); };
}

}  // namespace

const std::shared_ptr<MCDatePickerModel>& MCDateRangeControl::datePicker() {
  if (!datePicker_) {
    datePicker_ = std::make_shared<MCDatePickerModel>();
    datePicker_->action = forwardTo(this);
    datePicker_->setHidden(controlType_ != ControlType::datePicker);
  }
  return datePicker_;
}

const std::shared_ptr<MCTextFieldModel>& MCDateRangeControl::timeIntervalTextField() {
  if (!textField_) {
    textField_ = std::make_shared<MCTextFieldModel>();
    textField_->numberFormat = MCTextFieldModel::NumberFormat{0, 10000, false};
    textField_->action = forwardTo(this);
    textField_->setHidden(controlType_ != ControlType::dateRange);
  }
  return textField_;
}

const std::shared_ptr<MCPopUpModel>& MCDateRangeControl::timeIntervalPopUp() {
  if (!popUp_) {
    popUp_ = std::make_shared<MCPopUpModel>();
    const MCLocalizableKey units[] = {
        MCLocalizableKey{"predicate_unit_time_days", "days"}, MCLocalizableKey{"predicate_unit_time_weeks", "weeks"},
        MCLocalizableKey{"predicate_unit_time_months", "months"}, MCLocalizableKey{"predicate_unit_time_years", "years"}};
    long tag = 0;
    for (const auto& unit : units) popUp_->addItem(MCPopUpItem{MCLocalizedString(unit), tag++, {}, false});
    popUp_->action = forwardTo(this);
    popUp_->setHidden(controlType_ != ControlType::dateRange);
  }
  return popUp_;
}

std::vector<std::shared_ptr<MCControlModel>> MCDateRangeControl::arrangedViews() {
  return {datePicker(), timeIntervalTextField(), timeIntervalPopUp()};
}

void MCDateRangeControl::arrange() {
  datePicker()->setHidden(controlType_ != ControlType::datePicker);
  timeIntervalTextField()->setHidden(controlType_ != ControlType::dateRange);
  timeIntervalPopUp()->setHidden(controlType_ != ControlType::dateRange);
}
