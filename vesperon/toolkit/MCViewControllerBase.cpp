#include <vesperon/toolkit/MCViewControllerBase.h>

#include <algorithm>

MCViewControllerBase::~MCViewControllerBase() {
  for (auto& child : children_) child->parent_ = nullptr;
}

const MCViewRef& MCViewControllerBase::view() {
  if (!view_) {
    loadView();
    if (!view_) view_ = std::make_shared<MCView>();
    viewDidLoad();
  }
  return view_;
}

void MCViewControllerBase::setView(MCViewRef view) { view_ = std::move(view); }

void MCViewControllerBase::loadView() { view_ = std::make_shared<MCView>(); }

void MCViewControllerBase::viewDidLoad() {}

void MCViewControllerBase::addChildViewController(const std::shared_ptr<MCViewControllerBase>& child) {
  insertChildViewController(child, children_.size());
}

void MCViewControllerBase::insertChildViewController(const std::shared_ptr<MCViewControllerBase>& child,
                                                     std::size_t index) {
  if (!child || child.get() == this) return;
  child->removeFromParentViewController();
  children_.insert(children_.begin() + std::ptrdiff_t(std::min(index, children_.size())), child);
  child->parent_ = this;
}

void MCViewControllerBase::removeChildViewControllerAtIndex(std::size_t index) {
  if (index >= children_.size()) return;
  children_[index]->parent_ = nullptr;
  children_.erase(children_.begin() + std::ptrdiff_t(index));
}

void MCViewControllerBase::removeFromParentViewController() {
  if (!parent_) return;
  auto& siblings = parent_->children_;
  auto it = std::find_if(siblings.begin(), siblings.end(), [&](const auto& c) { return c.get() == this; });
  parent_ = nullptr;
  if (it != siblings.end()) siblings.erase(it);
}

MCResponder* MCViewControllerBase::nextResponder() const { return view_ ? view_->superview() : nullptr; }
