#pragma once
// MCNavigationController: a stack of view controllers of which the top one shows. Pushes and pops
// swap the views and tell the controllers in a fixed order: the one leaving "will disappear",
// leaves, "did disappear"; the one coming "will appear", arrives, "did appear". Animated, both
// "will" calls come first, the views are swapped in an animation group, and both "did" calls come
// from its completion. Controllers popped from the middle of the stack are removed silently.

#include <vesperon/controls/MCViewController.h>

#include <cstdint>

class MCNavigationController : public MCViewController {
 public:
  MCNavigationController() = default;
  /// A stack holding `root`, pushed without animation.
  static std::shared_ptr<MCNavigationController> create(const MCViewControllerRef& root);

  void loadView() override;

  /// The controller on top of the stack; none when empty.
  MCViewControllerRef topViewController() const;
  /// The controller at the bottom of the stack; none when empty.
  MCViewControllerRef rootViewController() const;
  /// The one below the top; none with fewer than two.
  MCViewControllerRef backViewController() const;
  /// How many controllers the stack holds.
  std::size_t numberOfChildViewControllers() const { return childViewControllers().size(); }
  /// NSNotFound for a controller not in the stack.
  uint64_t indexOfChildViewController(const MCViewController* controller) const;
  /// Whether `controller` is in the stack.
  bool containsChildViewController(const MCViewController* controller) const;
  /// Whether `controller` is in the stack.
  bool isViewControllerInStack(const MCViewController* controller) const { return containsChildViewController(controller); }

  /// Pops to it when it is in the stack, pushes it otherwise.
  void showViewController(const MCViewControllerRef& controller, bool animated);
  /// Puts `controller` on top and shows its view.
  void pushViewController(const MCViewControllerRef& controller, bool animated);
  /// Takes the top controller off (never the root).
  void popViewControllerAnimated(bool animated);
  /// Takes off every controller above `index`.
  void popToViewControllerAtIndex(uint64_t index, bool animated);
  /// Takes off every controller above `controller`.
  void popToViewController(const MCViewController* controller, bool animated);
  /// Takes off every controller but the root.
  void popToRootViewControllerAnimated(bool animated);

 private:
  void prepareView(MCViewController& controller);
  void swap(const MCViewControllerRef& from, const MCViewControllerRef& to, bool animated);
};
