// Event dispatch, the responder chain, key bindings and nested event loops, driven by scripts.
#include <vesperon/toolkit/MCKeyBindings.h>
#include <vesperon/toolkit/MCMenu.h>
#include <vesperon/toolkit/MCOffscreenHost.h>
#include <vesperon/toolkit/MCTimer.h>
#include <vesperon/toolkit/MCView.h>
#include <vesperon/toolkit/MCWindow.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

class FlippedView : public MCView {
 public:
  using MCView::MCView;
  bool isFlipped() const override { return true; }
};

/// A view that becomes first responder and writes down what reaches it.
class RecordingView : public FlippedView {
 public:
  using FlippedView::FlippedView;
  std::vector<std::string>* log = nullptr;
  std::string name;
  bool interpretsKeys = false;
  bool acceptsFirstResponder() const override { return true; }
  void keyDown(const MCEvent& event) override {
    log->push_back(name + " keyDown");
    if (interpretsKeys) interpretKeyEvents({event});
    else MCView::keyDown(event);
  }
  void insertText(const std::u32string& text) override {
    log->push_back(name + " insertText " + std::string(text.begin(), text.end()));
  }
  void mouseUp(const MCEvent&) override { log->push_back(name + " mouseUp"); }
  void mouseDragged(const MCEvent&) override { log->push_back(name + " mouseDragged"); }
};

std::string typeName(MCEventType type) {
  switch (type) {
    case MCEventType::LeftMouseDragged: return "dragged";
    case MCEventType::LeftMouseUp: return "up";
    case MCEventType::Periodic: return "periodic";
    case MCEventType::KeyDown: return "keyDown";
    case MCEventType::ScrollWheel: return "wheel";
    default: return "other";
  }
}

/// A view whose press runs a tracking loop, as the browser's and the controls' do.
class TrackingView : public FlippedView {
 public:
  using FlippedView::FlippedView;
  MCEventMask mask = MCEventMaskFromType(MCEventType::LeftMouseUp) | MCEventMaskFromType(MCEventType::LeftMouseDragged);
  bool periodic = false;
  std::vector<std::string> seen;
  std::vector<MCPoint> locations;
  bool loopEnded = false;
  std::vector<std::string> keysAfter;
  bool acceptsFirstResponder() const override { return true; }
  void mouseDown(const MCEvent&) override {
    if (periodic) window()->startPeriodicEventsAfterDelay(0.02, 0.02);
    while (auto event = window()->nextEventMatchingMask(mask)) {
      seen.push_back(typeName(event->type()));
      locations.push_back(convertPoint(window()->mouseLocationOutsideOfEventStream(), nullptr));
      if (event->type() == MCEventType::LeftMouseUp) break;
    }
    if (periodic && window()) window()->stopPeriodicEvents();
    loopEnded = true;
  }
  void keyDown(const MCEvent& event) override {
    keysAfter.push_back(std::string(1, char(event.characters().front())));
  }
};

}  // namespace

TEST(Events, KeysBecomeCommandsAlongTheResponderChain) {
  auto window = MCWindow::create({200, 200});
  MCOffscreenHost host(window);
  std::vector<std::string> log;
  auto container = std::make_shared<FlippedView>(MCMakeRect(0, 0, 200, 200));
  auto leaf = std::make_shared<RecordingView>(MCMakeRect(10, 10, 50, 50));
  leaf->log = &log;
  leaf->name = "leaf";
  window->contentView()->addSubview(container);
  container->addSubview(leaf);
  container->registerCommand("moveLeft:", [&] { log.push_back("container moveLeft:"); });
  container->registerCommand("moveRightAndModifySelection:", [&] { log.push_back("container extendRight"); });
  window->contentView()->registerCommand("copy:", [&] { log.push_back("content copy:"); });
  ASSERT_TRUE(window->makeFirstResponder(leaf.get()));

  // The leaf does not take keys: they reach the window, which acts only on key equivalents, with
  // commands sent down the chain from the leaf.
  host.keyPress(MCLeftArrowFunctionKey);
  host.keyPress(MCRightArrowFunctionKey, MCEventModifierFlagShift);
  host.keyPress(U'c', MCEventModifierFlagCommand);
  host.keyPress(U'q', MCEventModifierFlagCommand);  // no binding: nothing happens
  host.run();
  EXPECT_EQ(log, (std::vector<std::string>{"leaf keyDown", "leaf keyDown", "leaf keyDown", "content copy:",
                                           "leaf keyDown"}));

  // A view that interprets keys itself gets the commands and the typed text.
  log.clear();
  leaf->interpretsKeys = true;
  host.keyPress(MCLeftArrowFunctionKey);
  host.keyPress(U'a');
  host.keyPress(U'a', MCEventModifierFlagShift);
  host.run();
  EXPECT_EQ(log, (std::vector<std::string>{"leaf keyDown", "container moveLeft:", "leaf keyDown",
                                           "leaf insertText a", "leaf keyDown", "leaf insertText A"}));

  // Menu validation goes by the same names.
  EXPECT_TRUE(window->validateMenuItem({"Copy", "copy:", 0, true}));
  EXPECT_FALSE(window->validateMenuItem({"Paste", "paste:", 0, true}));
  EXPECT_TRUE(window->sendAction("moveLeft:"));
  EXPECT_FALSE(window->sendAction("paste:"));
}

TEST(Events, KeyBindingTableHasTheNavigationCommands) {
  const MCKeyBindings& table = MCKeyBindings::standardBindings();
  auto first = [&](char32_t key, uint64_t flags) {
    const auto& commands = table.commandsForKey(key, flags);
    return commands.empty() ? std::string() : commands.front();
  };
  EXPECT_EQ(first(MCUpArrowFunctionKey, 0), "moveUp:");
  EXPECT_EQ(first(MCDownArrowFunctionKey, MCEventModifierFlagShift), "moveDownAndModifySelection:");
  EXPECT_EQ(first(MCLeftArrowFunctionKey, MCEventModifierFlagOption), "moveWordLeft:");
  EXPECT_EQ(first(MCRightArrowFunctionKey, MCEventModifierFlagCommand | MCEventModifierFlagShift),
            "moveWordRightAndModifySelection:");
  EXPECT_EQ(first(MCUpArrowFunctionKey, MCEventModifierFlagCommand), "moveToBeginningOfDocument:");
  EXPECT_EQ(first(MCDownArrowFunctionKey, MCEventModifierFlagCommand | MCEventModifierFlagShift),
            "moveToEndOfDocumentAndModifySelection:");
  EXPECT_EQ(first(MCPageDownFunctionKey, 0), "scrollPageDown:");
  EXPECT_EQ(first(MCHomeFunctionKey, 0), "scrollToBeginningOfDocument:");
  EXPECT_EQ(first(MCUpArrowFunctionKey, MCEventModifierFlagOption), "scrollLineUp:");
  EXPECT_EQ(first(U'A', MCEventModifierFlagCommand), "selectAll:");
  EXPECT_EQ(first(MCEscapeCharacter, 0), "cancelOperation:");
  // Caps lock and the numeric-pad flag do not change what a key means.
  EXPECT_EQ(first(MCLeftArrowFunctionKey, MCEventModifierFlagNumericPad | MCEventModifierFlagCapsLock), "moveLeft:");
  EXPECT_EQ(first(U'c', 0), "");
  EXPECT_EQ(table.keyForCommand("paste:"), (std::pair<char32_t, uint64_t>(U'v', MCEventModifierFlagCommand)));
}

TEST(Events, NestedLoopTakesTheDragAndLeavesOtherEventsQueuedInOrder) {
  auto window = MCWindow::create({200, 200});
  MCOffscreenHost host(window);
  auto view = std::make_shared<TrackingView>(MCMakeRect(0, 0, 200, 200));
  window->setContentView(view);
  host.mouseDown({10, 190});
  host.keyPress(U'x');  // not in the loop's mask: waits until the loop ends
  host.mouseDragged({20, 180});
  host.keyPress(U'y');
  host.mouseDragged({30, 170});
  host.mouseUp({40, 160});
  host.keyPress(U'z');
  host.run();
  EXPECT_TRUE(view->loopEnded);
  EXPECT_EQ(view->seen, (std::vector<std::string>{"dragged", "dragged", "up"}));
  ASSERT_EQ(view->locations.size(), 3u);
  EXPECT_EQ(view->locations[2], MCMakePoint(40, 40));  // flipped: window y 160 is view y 40
  EXPECT_EQ(view->keysAfter, (std::vector<std::string>{"x", "y", "z"}));
  EXPECT_EQ(window->numberOfQueuedEvents(), 0u);
}

TEST(Events, PeriodicEventsArriveWhileTheLoopWaits) {
  auto window = MCWindow::create({200, 200});
  MCOffscreenHost host(window);
  auto view = std::make_shared<TrackingView>(MCMakeRect(0, 0, 200, 200));
  view->periodic = true;
  view->mask |= MCEventMaskFromType(MCEventType::Periodic);
  window->setContentView(view);
  host.mouseDown({10, 10});
  host.addWait(0.2);
  host.mouseUp({10, 10});
  host.run();
  ASSERT_TRUE(view->loopEnded);
  ASSERT_GE(view->seen.size(), 3u);
  EXPECT_EQ(view->seen.back(), "up");
  for (std::size_t i = 0; i + 1 < view->seen.size(); ++i) EXPECT_EQ(view->seen[i], "periodic") << i;
  // Stopped with the loop: no periodic event is left behind.
  host.addWait(0.08);
  host.run();
  EXPECT_EQ(window->numberOfQueuedEvents(), 0u);
}

TEST(Events, NestedLoopsEndWithoutARelease) {
  // The script ends inside the loop.
  auto window = MCWindow::create({100, 100});
  auto host = std::make_unique<MCOffscreenHost>(window);
  auto view = std::make_shared<TrackingView>(MCMakeRect(0, 0, 100, 100));
  window->setContentView(view);
  host->mouseDown({5, 5});
  host->mouseDragged({6, 6});
  host->run();
  EXPECT_TRUE(view->loopEnded);
  EXPECT_EQ(view->seen, std::vector<std::string>{"dragged"});

  // The window closes while the loop waits.
  view->loopEnded = false;
  view->seen.clear();
  host->mouseDown({5, 5});
  host->addWait(5.0);
  host->mouseUp({5, 5});
  auto closer = MCTimer::scheduledTimer(0.03, false, [&](MCTimer&) { window->close(); });
  const auto start = std::chrono::steady_clock::now();
  host->run();
  EXPECT_TRUE(view->loopEnded);
  EXPECT_TRUE(view->seen.empty());
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(4));

  // A time limit with the event left in the queue: the wait that a press-and-hold test needs.
  auto window2 = MCWindow::create({100, 100});
  MCOffscreenHost host2(window2);
  std::optional<MCEvent> found;
  window2->postEvent(MCEvent::mouseEvent(MCEventType::LeftMouseDragged, {1, 1}));
  found = window2->nextEventMatchingMask(MCEventMaskFromType(MCEventType::LeftMouseUp), 0.02, false);
  EXPECT_FALSE(found.has_value());
  found = window2->nextEventMatchingMask(MCEventMaskFromType(MCEventType::LeftMouseDragged), 0.02, false);
  ASSERT_TRUE(found.has_value());
  EXPECT_EQ(window2->numberOfQueuedEvents(), 1u);
}

TEST(Events, OutOfOrderEventsAndViewsThatLeaveDuringTheirOwnEvent) {
  auto window = MCWindow::create({200, 200});
  MCOffscreenHost host(window);
  std::vector<std::string> log;
  auto view = std::make_shared<RecordingView>(MCMakeRect(0, 0, 100, 100));
  view->log = &log;
  view->name = "view";
  window->contentView()->addSubview(view);

  // Releases and drags without a press go nowhere.
  host.mouseUp({50, 150});
  host.mouseDragged({60, 150});
  host.run();
  EXPECT_TRUE(log.empty());

  // A view that removes itself when pressed hears nothing more of that press.
  class Leaving : public FlippedView {
   public:
    using FlippedView::FlippedView;
    int ups = 0;
    void mouseDown(const MCEvent&) override { removeFromSuperview(); }
    void mouseUp(const MCEvent&) override { ++ups; }
  };
  std::weak_ptr<Leaving> weak;
  {
    auto leaving = std::make_shared<Leaving>(MCMakeRect(100, 0, 100, 100));
    weak = leaving;
    window->contentView()->addSubview(leaving);
  }
  window->makeFirstResponder(weak.lock().get());
  host.mouseDown({150, 50});
  host.mouseDragged({151, 50});
  host.mouseUp({152, 50});
  host.keyPress(MCLeftArrowFunctionKey);
  host.run();
  EXPECT_TRUE(weak.expired());  // gone, and nothing kept it or reached it afterwards
  EXPECT_EQ(window->firstResponder(), window.get());

  // After close, events are dropped.
  window->close();
  host.click({50, 150});
  host.run();
  EXPECT_TRUE(log.empty());
}

TEST(Events, TrackingAreasReportEnteringAndLeavingInOrder) {
  auto window = MCWindow::create({200, 200});
  MCOffscreenHost host(window);
  class Hover : public FlippedView {
   public:
    using FlippedView::FlippedView;
    std::vector<std::string> log;
    void updateTrackingAreas() override {
      for (auto area : std::vector<MCTrackingAreaRef>(trackingAreas())) removeTrackingArea(area);
      addTrackingArea(std::make_shared<MCTrackingArea>(MCRect{}, 547, this));
    }
    void mouseEntered(const MCEvent&) override { log.push_back("entered"); }
    void mouseExited(const MCEvent&) override { log.push_back("exited"); }
    void mouseMoved(const MCEvent&) override { log.push_back("moved"); }
  };
  auto hover = std::make_shared<Hover>(MCMakeRect(50, 50, 50, 50));
  window->contentView()->addSubview(hover);
  ASSERT_EQ(hover->trackingAreas().size(), 1u);
  host.mouseMoved({10, 10});
  host.mouseMoved({60, 60});
  host.mouseMoved({70, 70});
  host.mouseMoved({150, 150});
  host.run();
  EXPECT_EQ(hover->log, (std::vector<std::string>{"entered", "moved", "moved", "exited"}));
  // Hidden views are never inside.
  hover->log.clear();
  hover->setHidden(true);
  host.mouseMoved({60, 60});
  host.run();
  EXPECT_TRUE(hover->log.empty());
}

TEST(ContextMenus, ChosenItemsGoToTheCallbackTheTargetOrTheChain) {
  auto window = MCWindow::create({200, 100});
  MCOffscreenHost host(window);
  class Answering : public MCView {
   public:
    explicit Answering(std::vector<std::string>& log) : MCView(MCMakeRect(0, 0, 200, 100)), log_(log) {
      registerCommand("rename:", [this] { log_.push_back("chain rename:"); });
    }
    bool acceptsFirstResponder() const override { return true; }
   private:
    std::vector<std::string>& log_;
  };
  std::vector<std::string> log;
  auto view = std::make_shared<Answering>(log);
  window->contentView()->addSubview(view);
  window->makeFirstResponder(view.get());
  auto target = std::make_shared<MCResponder>();
  target->registerCommand("share:", [&] { log.push_back("target share:"); });

  MCMenu menu;
  MCMenuItem share("Share", "share:");
  share.target = target;
  menu.addItem(share);
  menu.addSeparator();
  MCMenuItem more("More");
  more.submenu = std::make_shared<MCMenu>();
  more.submenu->addItem(MCMenuItem("Rename", "rename:"));
  more.submenu->addItem(MCMenuItem("Disabled", "rename:", 0, false));
  menu.addItem(more);

  ASSERT_TRUE(window->popUpContextMenu(menu, {20, 30}, view.get()));
  EXPECT_EQ(host.contextMenuLocation(), MCPoint({20, 30}));
  EXPECT_FALSE(host.chooseContextMenuItem("Disabled"));
  EXPECT_FALSE(host.chooseContextMenuItem("More"));  // a submenu's own row is no choice
  EXPECT_TRUE(host.chooseContextMenuItem("Rename"));
  EXPECT_EQ(host.contextMenu(), nullptr) << "the menu closes once an item is chosen";
  EXPECT_FALSE(host.chooseContextMenuItem("Share"));

  window->popUpContextMenu(menu, {0, 0}, nullptr);
  EXPECT_TRUE(host.chooseContextMenuItem("Share"));
  std::string picked;
  window->popUpContextMenu(menu, {0, 0}, nullptr, [&](const MCMenuItem& item) { picked = item.title; });
  EXPECT_TRUE(host.chooseContextMenuItem("Rename"));
  EXPECT_EQ(picked, "Rename");
  EXPECT_EQ(log, (std::vector<std::string>{"chain rename:", "target share:"}));
}
