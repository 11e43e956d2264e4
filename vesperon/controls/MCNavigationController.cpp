#include <vesperon/controls/MCNavigationController.h>

#include <vesperon/core/MCTypes.h>
#include <vesperon/toolkit/MCAnimationContext.h>

std::shared_ptr<MCNavigationController> MCNavigationController::create(const MCViewControllerRef& root) {
  auto controller = std::make_shared<MCNavigationController>();
  controller->pushViewController(root, false);
  return controller;
}

void MCNavigationController::loadView() { setView(std::make_shared<MCView>(MCRect{})); }

namespace {
MCViewControllerRef asController(const std::shared_ptr<MCViewControllerBase>& base) {
  return std::dynamic_pointer_cast<MCViewController>(base);
}
}  // namespace

MCViewControllerRef MCNavigationController::topViewController() const {
  return childViewControllers().empty() ? nullptr : asController(childViewControllers().back());
}

MCViewControllerRef MCNavigationController::rootViewController() const {
  return childViewControllers().empty() ? nullptr : asController(childViewControllers().front());
}

MCViewControllerRef MCNavigationController::backViewController() const {
  const auto& children = childViewControllers();
  return children.size() < 2 ? nullptr : asController(children[children.size() - 2]);
}

uint64_t MCNavigationController::indexOfChildViewController(const MCViewController* controller) const {
  const auto& children = childViewControllers();
  for (std::size_t i = 0; i < children.size(); ++i)
    if (children[i].get() == controller) return i;
  return NSNotFound;
}

bool MCNavigationController::containsChildViewController(const MCViewController* controller) const {
  return indexOfChildViewController(controller) != NSNotFound;
}

void MCNavigationController::showViewController(const MCViewControllerRef& controller, bool animated) {
  if (!controller) return;
  if (containsChildViewController(controller.get())) popToViewController(controller.get(), animated);
  else pushViewController(controller, animated);
}

void MCNavigationController::prepareView(MCViewController& controller) {
  const MCViewRef& page = controller.view();
  page->setAutoresizingMask(MCViewWidthSizable | MCViewHeightSizable);
  page->setFrame(view()->bounds());
}

void MCNavigationController::pushViewController(const MCViewControllerRef& controller, bool animated) {
  if (!controller) return;
  const MCViewControllerRef old = topViewController();
  addChildViewController(controller);
  controller->setNavigationController(this);
  prepareView(*controller);
  swap(old, controller, animated);
}

void MCNavigationController::popViewControllerAnimated(bool animated) {
  const std::size_t count = numberOfChildViewControllers();
  if (count < 2) return;
  popToViewControllerAtIndex(count - 2, animated);
}

void MCNavigationController::popToViewControllerAtIndex(uint64_t index, bool animated) {
  const std::size_t count = numberOfChildViewControllers();
  if (index == NSNotFound || index + 1 >= count) return;
  const MCViewControllerRef old = topViewController();
  for (std::size_t i = count; i-- > index + 1;) {
    if (auto child = asController(childViewControllers()[i])) child->setNavigationController(nullptr);
    removeChildViewControllerAtIndex(i);
  }
  const MCViewControllerRef now = topViewController();
  prepareView(*now);
  swap(old, now, animated);
}

void MCNavigationController::popToViewController(const MCViewController* controller, bool animated) {
  const uint64_t index = indexOfChildViewController(controller);
  if (index == NSNotFound) return;
  popToViewControllerAtIndex(index, animated);
}

void MCNavigationController::popToRootViewControllerAnimated(bool animated) {
  if (numberOfChildViewControllers() < 2) return;
  popToViewControllerAtIndex(0, animated);
}

void MCNavigationController::swap(const MCViewControllerRef& from, const MCViewControllerRef& to, bool animated) {
  const MCViewRef& container = view();
  if (!animated) {
    if (from) {
      from->viewControllerWillDisappear(false);
      from->view()->removeFromSuperview();
      from->viewControllerDidDisappear(false);
    }
    to->viewControllerWillAppear(false);
    container->addSubview(to->view());
    to->viewControllerDidAppear(false);
    return;
  }
  if (from) from->viewControllerWillDisappear(true);
  to->viewControllerWillAppear(true);
  MCViewRef oldView = from ? from->view() : nullptr;
  MCViewRef newView = to->view();
  MCAnimationContext::runAnimationGroup(
      [container, oldView, newView](MCAnimationContext& context) {
        // The new page fades in over the old one, which leaves at the end.
        if (oldView && oldView->superview() == container.get()) container->replaceSubview(oldView.get(), newView);
        else container->addSubview(newView);
        newView->setAlphaValue(0);
        context.animateAlphaValue(newView, 1.0);
      },
      [from, to] {
        if (from) from->viewControllerDidDisappear(true);
        to->viewControllerDidAppear(true);
      });
}
