#pragma once
// MCViewController: a view controller with a lifecycle richer than the toolkit's — loaded once,
// told before and after it appears and disappears — for the pages of an MCNavigationController.

#include <vesperon/core/MCValue.h>
#include <vesperon/toolkit/MCViewControllerBase.h>

#include <memory>
#include <string>

class MCNavigationController;

class MCViewController : public MCViewControllerBase {
 public:
  MCViewController() = default;

  /// The class's resource name: the subclass's name unless it says otherwise.
  virtual std::string nibName() const;
  /// The base's, then viewControllerDidLoad once in the object's life.
  void viewDidLoad() override;
  /// @name Life and state
  //@{
  /// What subclasses override: the name shown (in a back button), the steps of loading, appearing
  /// and disappearing (nothing by default), and the state saved and restored as a dictionary.
  virtual std::string displayName() const { return ""; }
  virtual void viewControllerDidLoad() {}
  virtual void viewControllerWillAppear(bool) {}
  virtual void viewControllerDidAppear(bool) {}
  virtual void viewControllerWillDisappear(bool) {}
  virtual void viewControllerDidDisappear(bool) {}
  virtual MCDictionary stateRepresentation() const { return {}; }
  virtual void restoreStateFromRepresentation(const MCDictionary&) {}
  //@}

  /// The navigation controller whose stack holds this one; none otherwise.
  MCNavigationController* navigationController() const { return navigationController_; }
  /// Set by the navigation controller.
  void setNavigationController(MCNavigationController* controller) { navigationController_ = controller; }
  /// Whether viewControllerDidLoad ran.
  bool isLoaded() const { return loaded_; }

 private:
  bool loaded_ = false;
  MCNavigationController* navigationController_ = nullptr;
};

using MCViewControllerRef = std::shared_ptr<MCViewController>;
