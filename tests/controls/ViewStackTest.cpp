// The navigation controller's order of lifecycle calls on push, pop and replace.
#include <vesperon/controls/MCNavigationController.h>
#include <vesperon/core/MCTypes.h>
#include <vesperon/platform/MCMainQueue.h>

#include <gtest/gtest.h>

namespace {

class Page : public MCViewController {
 public:
  Page(std::string name, std::vector<std::string>* log) : name_(std::move(name)), log_(log) {}
  void viewControllerDidLoad() override { log_->push_back(name_ + " loaded"); }
  void viewControllerWillAppear(bool a) override { log_->push_back(name_ + " will appear" + (a ? " (animated)" : "")); }
  void viewControllerDidAppear(bool a) override { log_->push_back(name_ + " did appear" + (a ? " (animated)" : "")); }
  void viewControllerWillDisappear(bool a) override { log_->push_back(name_ + " will disappear" + (a ? " (animated)" : "")); }
  void viewControllerDidDisappear(bool a) override { log_->push_back(name_ + " did disappear" + (a ? " (animated)" : "")); }

 private:
  std::string name_;
  std::vector<std::string>* log_;
};

using Log = std::vector<std::string>;

}  // namespace

TEST(ViewStack, PushAndPopCallInOrder) {
  Log log;
  auto root = std::make_shared<Page>("root", &log);
  auto nav = MCNavigationController::create(root);
  EXPECT_EQ(log, (Log{"root loaded", "root will appear", "root did appear"}));
  EXPECT_EQ(nav->rootViewController(), root);
  EXPECT_EQ(root->navigationController(), nav.get());
  EXPECT_EQ(nav->view()->subviews().size(), 1u);

  log.clear();
  auto second = std::make_shared<Page>("second", &log);
  nav->pushViewController(second, false);
  EXPECT_EQ(log, (Log{"second loaded", "root will disappear", "root did disappear", "second will appear",
                      "second did appear"}));
  EXPECT_EQ(nav->view()->subviews().front(), second->view());

  // Animated: both "will" calls, then both "did" calls from the animation's end.
  log.clear();
  auto third = std::make_shared<Page>("third", &log);
  nav->pushViewController(third, true);
  EXPECT_EQ(log, (Log{"third loaded", "second will disappear (animated)", "third will appear (animated)"}));
  ASSERT_TRUE(MCMainQueue::runUntil([&] { return log.size() == 5; }, std::chrono::seconds(2)));
  EXPECT_EQ(log[3], "second did disappear (animated)");
  EXPECT_EQ(log[4], "third did appear (animated)");
  EXPECT_EQ(nav->view()->subviews().size(), 1u);
  EXPECT_EQ(nav->backViewController(), second);

  // Popping to the root from four: only the former top hears it; the others leave silently.
  auto fourth = std::make_shared<Page>("fourth", &log);
  nav->pushViewController(fourth, false);
  log.clear();
  nav->popToRootViewControllerAnimated(false);
  EXPECT_EQ(log, (Log{"fourth will disappear", "fourth did disappear", "root will appear", "root did appear"}));
  EXPECT_EQ(nav->numberOfChildViewControllers(), 1u);
  EXPECT_EQ(second->navigationController(), nullptr);
  EXPECT_EQ(third->navigationController(), nullptr);

  // Nothing to pop; a stranger is not popped to; the top shown again does nothing.
  log.clear();
  nav->popViewControllerAnimated(false);
  nav->popToViewController(fourth.get(), false);
  nav->popToViewControllerAtIndex(0, false);
  nav->showViewController(root, false);
  nav->pushViewController(nullptr, false);
  EXPECT_TRUE(log.empty());

  // show: a stranger is pushed, a lower one is popped to. A page pushed again is not loaded again.
  nav->showViewController(second, false);
  EXPECT_EQ(nav->topViewController(), second);
  nav->showViewController(root, false);
  EXPECT_EQ(nav->topViewController(), root);
  EXPECT_EQ(std::count(log.begin(), log.end(), "second loaded"), 0);
  EXPECT_EQ(nav->indexOfChildViewController(second.get()), NSNotFound);
}
