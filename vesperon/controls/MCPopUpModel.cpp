#include <vesperon/controls/MCPopUpModel.h>

void MCPopUpModel::addItem(MCPopUpItem item) { insertItem(std::move(item), items_.size()); }

void MCPopUpModel::insertItem(MCPopUpItem item, std::size_t index) {
  if (index > items_.size()) index = items_.size();
  const bool selectable = !item.separator;
  items_.insert(items_.begin() + std::ptrdiff_t(index), std::move(item));
  if (selected_ && *selected_ >= index) ++*selected_;
  if (!selected_ && selectable) selected_ = index;
}

void MCPopUpModel::removeAllItems() {
  items_.clear();
  selected_.reset();
}

bool MCPopUpModel::selectItemAtIndex(std::size_t index) {
  if (index >= items_.size() || items_[index].separator) return false;
  selected_ = index;
  return true;
}

bool MCPopUpModel::selectItemWithTag(long tag) {
  for (std::size_t i = 0; i < items_.size(); ++i)
    if (!items_[i].separator && items_[i].tag == tag) return selectItemAtIndex(i);
  return false;
}

void MCPopUpModel::chooseItemAtIndex(std::size_t index) {
  const auto before = selected_;
  if (selectItemAtIndex(index) && before != selected_) sendAction();
}
