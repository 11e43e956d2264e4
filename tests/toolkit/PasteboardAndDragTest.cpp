// The pasteboard, drag sessions and the preview panel's choice of controller.
#include <vesperon/toolkit/MCDraggingSession.h>
#include <vesperon/toolkit/MCOffscreenHost.h>
#include <vesperon/toolkit/MCPasteboard.h>
#include <vesperon/toolkit/MCPreviewPanel.h>
#include <vesperon/toolkit/MCView.h>
#include <vesperon/toolkit/MCWindow.h>

#include <gtest/gtest.h>

TEST(Pasteboard, ItemsTypesAndFileURLs) {
  auto pasteboard = MCPasteboard::pasteboardWithUniqueName();
  const long before = pasteboard->changeCount();
  pasteboard->clearContents();
  EXPECT_GT(pasteboard->changeCount(), before);
  EXPECT_FALSE(pasteboard->canReadItemWithDataConformingToTypes({MCPasteboardTypeString}));

  const std::filesystem::path odd = "/tmp/a b/%c#d/é.jpg";
  ASSERT_TRUE(pasteboard->writeFileURLs({odd, "/x/y.png"}));
  EXPECT_EQ(pasteboard->stringForType(MCPasteboardTypeFileURL), "file:///tmp/a%20b/%25c%23d/%C3%A9.jpg");
  EXPECT_EQ(pasteboard->readFileURLs(), (std::vector<std::filesystem::path>{odd, "/x/y.png"}));
  // A file URL is a URL; it is not text.
  EXPECT_TRUE(pasteboard->canReadItemWithDataConformingToTypes({MCPasteboardTypeURL}));
  EXPECT_FALSE(pasteboard->canReadItemWithDataConformingToTypes({MCPasteboardTypeString}));
  EXPECT_EQ(pasteboard->types(), std::vector<std::string>{MCPasteboardTypeFileURL});

  pasteboard->clearContents();
  EXPECT_TRUE(pasteboard->pasteboardItems().empty());
  pasteboard->setString("hello", MCPasteboardTypeString);
  EXPECT_EQ(pasteboard->stringForType(MCPasteboardTypeString), "hello");
  EXPECT_FALSE(pasteboard->stringForType(MCPasteboardTypeFileURL).has_value());

  // Malformed URLs give no file.
  EXPECT_FALSE(MCPathFromFileURLString("file:///a%2").has_value());
  EXPECT_FALSE(MCPathFromFileURLString("file:///a%zz").has_value());
  EXPECT_FALSE(MCPathFromFileURLString("http://x/y").has_value());
  EXPECT_EQ(MCPasteboard::generalPasteboard(), MCPasteboard::generalPasteboard());
}

TEST(Dragging, ASessionCarriesItemsFramesAndTheSourcesAnswers) {
  auto window = MCWindow::create({200, 200});
  MCOffscreenHost host(window);
  struct Source : MCDraggingSource {
    std::vector<std::string> log;
    uint64_t sourceOperationMaskForDraggingContext(MCDraggingSession&, MCDraggingContext context) override {
      return context == MCDraggingContext::OutsideApplication ? 33 : 1;
    }
    void willBeginAtPoint(MCDraggingSession&, MCPoint) override { log.push_back("began"); }
    void endedAtPoint(MCDraggingSession&, MCPoint, uint64_t operation) override {
      log.push_back("ended " + std::to_string(operation));
    }
  } source;
  class Flipped : public MCView {
   public:
    using MCView::MCView;
    bool isFlipped() const override { return true; }
  };
  auto view = std::make_shared<Flipped>(MCMakeRect(0, 0, 200, 200));
  window->setContentView(view);
  MCDraggingItem item(MCPasteboardItem::itemWithFileURL("/photos/one.jpg"));
  item.draggingFrame = MCMakeRect(10, 20, 30, 40);
  item.imageComponentsProvider = [] {
    return std::vector<MCDraggingImageComponent>{{MCDraggingImageComponentIconKey, MCMakeRect(0, 0, 30, 40), nullptr}};
  };
  auto session = view->beginDraggingSession({item}, MCEvent::mouseEvent(MCEventType::LeftMouseDragged, {15, 170}),
                                            &source);
  ASSERT_NE(session, nullptr);
  ASSERT_EQ(host.draggingSessions().size(), 1u);
  // The frame is carried in window coordinates: flipped y 20..60 is window y 140..180.
  EXPECT_EQ(session->draggingItems().front().draggingFrame, MCMakeRect(10, 140, 30, 40));
  EXPECT_EQ(session->draggingItems().front().imageComponents().size(), 1u);
  EXPECT_EQ(session->fileURLStrings(), std::vector<std::string>{"file:///photos/one.jpg"});
  EXPECT_EQ(session->sourceOperationMask(MCDraggingContext::OutsideApplication), 33u);
  host.endDraggingSession(MCDragOperationCopy);
  host.endDraggingSession(MCDragOperationDelete);  // only the first end counts
  EXPECT_EQ(source.log, (std::vector<std::string>{"began", "ended 1"}));

  // Without a host nothing can be dragged.
  auto lone = MCWindow::create({10, 10});
  EXPECT_EQ(lone->contentView()->beginDraggingSession({item}, MCEvent(), &source), nullptr);
}

TEST(PreviewPanel, ControlGoesToTheFirstResponderThatAcceptsIt) {
  auto window = MCWindow::create({100, 100});
  struct Controller : MCView, MCPreviewPanelDataSource {
    std::vector<std::string> log;
    bool acceptsFirstResponder() const override { return true; }
    bool acceptsPreviewPanelControl(MCPreviewPanel&) override { return true; }
    void beginPreviewPanelControl(MCPreviewPanel& panel) override {
      log.push_back("begin");
      panel.setDataSource(this);
    }
    void endPreviewPanelControl(MCPreviewPanel& panel) override {
      log.push_back("end");
      panel.setDataSource(nullptr);
    }
    long numberOfPreviewItemsInPreviewPanel(MCPreviewPanel&) override { return 3; }
    std::shared_ptr<MCPreviewItem> previewItemAtIndex(MCPreviewPanel&, long) override { return nullptr; }
  };
  auto controller = std::make_shared<Controller>();
  auto child = std::make_shared<MCView>();
  window->contentView()->addSubview(controller);
  controller->addSubview(child);
  window->makeFirstResponder(child.get());
  auto panel = MCPreviewPanel::sharedPreviewPanel();
  EXPECT_TRUE(MCPreviewPanel::sharedPreviewPanelExists());
  panel->makeKeyAndOrderFront(window.get());
  EXPECT_TRUE(panel->isVisible());
  EXPECT_EQ(panel->currentController(), controller.get());
  EXPECT_EQ(panel->numberOfPreviewItems(), 3);
  // Arrows step through the items and stop at the ends; space closes the panel.
  panel->handleEvent(MCEvent::keyEvent(MCEventType::KeyDown, {MCRightArrowFunctionKey}, {MCRightArrowFunctionKey}));
  panel->handleEvent(MCEvent::keyEvent(MCEventType::KeyDown, {MCRightArrowFunctionKey}, {MCRightArrowFunctionKey}));
  panel->handleEvent(MCEvent::keyEvent(MCEventType::KeyDown, {MCRightArrowFunctionKey}, {MCRightArrowFunctionKey}));
  EXPECT_EQ(panel->currentPreviewItemIndex(), 2);
  panel->handleEvent(MCEvent::keyEvent(MCEventType::KeyDown, {MCSpaceCharacter}, {MCSpaceCharacter}));
  EXPECT_FALSE(panel->isVisible());
  EXPECT_EQ(controller->log, (std::vector<std::string>{"begin", "end"}));
  EXPECT_EQ(panel->numberOfPreviewItems(), 0);
}
