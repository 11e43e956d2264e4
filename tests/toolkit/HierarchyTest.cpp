// The view tree, first responders, tool tips, view controllers and attributed text runs.
#include <vesperon/toolkit/MCAttributedString.h>
#include <vesperon/toolkit/MCOffscreenHost.h>
#include <vesperon/toolkit/MCViewControllerBase.h>
#include <vesperon/toolkit/MCWindow.h>

#include <gtest/gtest.h>

namespace {

class Named : public MCView {
 public:
  Named(std::string name, std::vector<std::string>* log, MCRect frame = {}) : MCView(frame), name_(std::move(name)), log_(log) {}
  void viewWillMoveToWindow(MCWindow* window) override { log_->push_back(name_ + (window ? " will join" : " will leave")); }
  void viewDidMoveToWindow() override {
    log_->push_back(name_ + (window() ? " joined" : " left"));
    MCView::viewDidMoveToWindow();
  }
  void viewDidMoveToSuperview() override { log_->push_back(name_ + (superview() ? " has superview" : " alone")); }
  bool acceptsFirstResponder() const override { return true; }
  bool resignFirstResponder() override { return !holdsOn; }
  bool holdsOn = false;

 private:
  std::string name_;
  std::vector<std::string>* log_;
};

std::vector<const MCView*> order(const MCView& view) {
  std::vector<const MCView*> result;
  for (const auto& subview : view.subviews()) result.push_back(subview.get());
  return result;
}

}  // namespace

TEST(Hierarchy, SubviewsJoinAndLeaveWindowsInOrder) {
  std::vector<std::string> log;
  auto window = MCWindow::create({100, 100});
  auto parent = std::make_shared<Named>("parent", &log);
  auto child = std::make_shared<Named>("child", &log);
  parent->addSubview(child);
  EXPECT_EQ(log, (std::vector<std::string>{"child has superview"}));
  log.clear();
  window->contentView()->addSubview(parent);
  // The parent hears first; the child hears it joined through its parent.
  EXPECT_EQ(log, (std::vector<std::string>{"parent will join", "parent has superview", "parent joined", "child joined"}));
  EXPECT_EQ(child->window(), window.get());
  log.clear();
  parent->removeFromSuperview();
  EXPECT_EQ(log, (std::vector<std::string>{"parent will leave", "parent alone", "parent left", "child left"}));
  EXPECT_EQ(child->window(), nullptr);

  // Positions: above and below a sibling, replacing one in place, and no cycles.
  auto a = std::make_shared<MCView>(), b = std::make_shared<MCView>(), c = std::make_shared<MCView>();
  auto d = std::make_shared<MCView>();
  parent->addSubview(a);
  parent->addSubview(b, false, a.get());
  parent->addSubview(c, true, b.get());
  EXPECT_EQ(order(*parent), (std::vector<const MCView*>{child.get(), b.get(), c.get(), a.get()}));
  parent->replaceSubview(c.get(), d);
  EXPECT_EQ(order(*parent), (std::vector<const MCView*>{child.get(), b.get(), d.get(), a.get()}));
  EXPECT_EQ(c->superview(), nullptr);
  // Adding a view that is already elsewhere moves it.
  b->addSubview(a);
  EXPECT_EQ(order(*parent), (std::vector<const MCView*>{child.get(), b.get(), d.get()}));
  a->addSubview(parent);  // parent is an ancestor of a: refused
  EXPECT_EQ(parent->superview(), nullptr);
  EXPECT_TRUE(a->isDescendantOf(parent.get()));
  EXPECT_FALSE(parent->isDescendantOf(a.get()));
}

TEST(Hierarchy, FirstResponderMayRefuseToResign) {
  std::vector<std::string> log;
  auto window = MCWindow::create({100, 100});
  auto one = std::make_shared<Named>("one", &log, MCMakeRect(0, 0, 50, 50));
  auto two = std::make_shared<Named>("two", &log, MCMakeRect(50, 0, 50, 50));
  window->contentView()->addSubview(one);
  window->contentView()->addSubview(two);
  MCOffscreenHost host(window);
  host.click({10, 10});
  host.run();
  EXPECT_EQ(window->firstResponder(), one.get());
  one->holdsOn = true;
  host.click({60, 10});
  host.run();
  EXPECT_EQ(window->firstResponder(), one.get());
  one->holdsOn = false;
  EXPECT_TRUE(window->makeFirstResponder(two.get()));
  EXPECT_TRUE(window->makeFirstResponder(nullptr));
  EXPECT_EQ(window->firstResponder(), window.get());
}

TEST(Hierarchy, ToolTipsComeFromTheDeepestViewThatHasOne) {
  auto window = MCWindow::create({100, 100});
  auto outer = std::make_shared<MCView>(MCMakeRect(0, 0, 100, 100));
  auto inner = std::make_shared<MCView>(MCMakeRect(10, 10, 20, 20));
  window->setContentView(outer);
  outer->addSubview(inner);
  const int outerTag = outer->addToolTipRect(outer->bounds(), [](MCPoint) { return std::string("outer"); });
  inner->addToolTipRect(MCMakeRect(0, 0, 10, 20), [](MCPoint p) { return "inner " + std::to_string(int(p.x)); });
  EXPECT_EQ(window->toolTipAtPoint({15, 15}), "inner 5");
  EXPECT_EQ(window->toolTipAtPoint({25, 15}), "outer");  // inside inner, outside its tip
  outer->removeToolTip(outerTag);
  EXPECT_FALSE(window->toolTipAtPoint({25, 15}).has_value());
  EXPECT_EQ(outer->numberOfToolTips(), 0u);
}

TEST(Hierarchy, ViewControllersKeepTheirChildrenAndLoadTheirViewOnce) {
  struct Controller : MCViewControllerBase {
    int loads = 0;
    void loadView() override {
      ++loads;
      setView(std::make_shared<MCView>(MCMakeRect(0, 0, 10, 10)));
    }
  };
  auto parent = std::make_shared<Controller>();
  auto first = std::make_shared<Controller>(), second = std::make_shared<Controller>();
  EXPECT_FALSE(parent->isViewLoaded());
  const MCViewRef view = parent->view();
  EXPECT_EQ(parent->view(), view);
  EXPECT_EQ(parent->loads, 1);
  parent->addChildViewController(first);
  parent->insertChildViewController(second, 0);
  ASSERT_EQ(parent->childViewControllers().size(), 2u);
  EXPECT_EQ(parent->childViewControllers()[0], second);
  EXPECT_EQ(first->parentViewController(), parent.get());
  // Moving a child to another parent takes it out of the first.
  auto other = std::make_shared<Controller>();
  other->addChildViewController(first);
  EXPECT_EQ(parent->childViewControllers().size(), 1u);
  EXPECT_EQ(first->parentViewController(), other.get());
  second->removeFromParentViewController();
  EXPECT_TRUE(parent->childViewControllers().empty());
  EXPECT_EQ(second->parentViewController(), nullptr);
}

TEST(Hierarchy, AttributeRunsSplitAndMergeByByteRange) {
  MCAttributedString text("abcdef", {MCFont::systemFontOfSize(10), MCColor::blackColor(), {}, {}, {}});
  text.addAttributes({{}, MCColor::redColor(), 2.0, {}, {}}, 2, 2);
  text.appendString("gh", {MCFont::boldSystemFontOfSize(12), {}, {}, true, {}});
  EXPECT_EQ(text.string(), "abcdefgh");
  EXPECT_EQ(text.attributesAtIndex(1).foregroundColor, MCColor::blackColor());
  EXPECT_EQ(text.attributesAtIndex(2).foregroundColor, MCColor::redColor());
  EXPECT_EQ(text.attributesAtIndex(3).baselineOffset, 2.0);
  EXPECT_EQ(text.attributesAtIndex(3).font, MCFont::systemFontOfSize(10));  // kept where not given
  EXPECT_EQ(text.attributesAtIndex(4).foregroundColor, MCColor::blackColor());
  EXPECT_FALSE(text.attributesAtIndex(4).baselineOffset.has_value());
  EXPECT_EQ(text.attributesAtIndex(6).font, MCFont::boldSystemFontOfSize(12));
  EXPECT_TRUE(*text.attributesAtIndex(7).underline);
  // Ranges beyond the end are cut; an empty range changes nothing.
  text.addAttributes({{}, MCColor::blueColor(), {}, {}, {}}, 7, 100);
  text.addAttributes({{}, MCColor::greenColor(), {}, {}, {}}, 100, 1);
  EXPECT_EQ(text.attributesAtIndex(7).foregroundColor, MCColor::blueColor());
  EXPECT_EQ(text.attributesAtIndex(6).foregroundColor, std::nullopt);
  EXPECT_EQ(text.attributesAtIndex(99).font, std::nullopt);
  // Truncation keeps a long line to its box.
  MCAttributedString line(std::string(200, 'x'), {MCFont::systemFontOfSize(12), {}, {}, {}, {}});
  line.setLineBreakMode(MCLineBreakMode::TruncatingTail);
  const MCRect box = line.boundingRectWithSize({100, 0});
  EXPECT_LE(box.size.width, 100);
  EXPECT_LT(box.size.height, 2 * line.size().height);
}
