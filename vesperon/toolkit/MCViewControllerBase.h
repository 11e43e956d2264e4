#pragma once
// MCViewControllerBase: the toolkit's view controller — it owns a view, made on first use by
// `loadView`, and a list of child controllers. Controllers with a lifecycle of their own (the
// view stack's MCViewController) build on it.

#include <vesperon/toolkit/MCResponder.h>
#include <vesperon/toolkit/MCView.h>

#include <memory>
#include <string>
#include <vector>

class MCViewControllerBase : public MCResponder {
 public:
  MCViewControllerBase() = default;
  ~MCViewControllerBase() override;

  /// The view, loaded on first use.
  const MCViewRef& view();
  /// Sets the view (none unloads it).
  void setView(MCViewRef view);
  /// Whether the controller has its view.
  bool isViewLoaded() const { return view_ != nullptr; }
  /// Makes the view; a plain view by default. Subclasses set it with setView.
  virtual void loadView();
  /// After the view was loaded.
  virtual void viewDidLoad();

  /// The controller's title.
  const std::string& title() const { return title_; }
  /// Sets the title.
  void setTitle(std::string title) { title_ = std::move(title); }

  // Children.
  /// The children, in order.
  const std::vector<std::shared_ptr<MCViewControllerBase>>& childViewControllers() const { return children_; }
  /// The parent; none at the top.
  MCViewControllerBase* parentViewController() const { return parent_; }
  /// Appends a child (it leaves its old parent first).
  void addChildViewController(const std::shared_ptr<MCViewControllerBase>& child);
  /// Inserts a child at `index`.
  void insertChildViewController(const std::shared_ptr<MCViewControllerBase>& child, std::size_t index);
  /// Removes the child at `index`.
  void removeChildViewControllerAtIndex(std::size_t index);
  /// Leaves the parent.
  void removeFromParentViewController();

  /// After the view is in a window's tree: the view's superview, so the controller sees what its
  /// view does not take.
  MCResponder* nextResponder() const override;

 private:
  MCViewRef view_;
  std::string title_;
  std::vector<std::shared_ptr<MCViewControllerBase>> children_;
  MCViewControllerBase* parent_ = nullptr;
};
