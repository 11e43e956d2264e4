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
  void setView(MCViewRef view);
  bool isViewLoaded() const { return view_ != nullptr; }
  /// Makes the view; a plain view by default. Subclasses set it with setView.
  virtual void loadView();
  /// After the view was loaded.
  virtual void viewDidLoad();

  const std::string& title() const { return title_; }
  void setTitle(std::string title) { title_ = std::move(title); }

  // Children.
  const std::vector<std::shared_ptr<MCViewControllerBase>>& childViewControllers() const { return children_; }
  MCViewControllerBase* parentViewController() const { return parent_; }
  void addChildViewController(const std::shared_ptr<MCViewControllerBase>& child);
  void insertChildViewController(const std::shared_ptr<MCViewControllerBase>& child, std::size_t index);
  void removeChildViewControllerAtIndex(std::size_t index);
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
