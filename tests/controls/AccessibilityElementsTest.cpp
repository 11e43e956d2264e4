// What the toolkit's controls describe to assistive technologies, gathered over a window: roles,
// names, states, and frames in the window's base coordinates.
#include <vesperon/controls/MCColorLabelControl.h>
#include <vesperon/controls/MCHistogramView.h>
#include <vesperon/controls/MCToolbarItemControl.h>
#include <vesperon/toolkit/MCOffscreenHost.h>
#include <vesperon/toolkit/MCScrollView.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace {

class Flipped : public MCView {
 public:
  using MCView::MCView;
  bool isFlipped() const override { return true; }
};

// A view that describes one text at its top left, 10 by 10.
class Described : public MCView {
 public:
  Described(MCRect frame, std::string name) : MCView(frame), name_(std::move(name)) {}
  bool isFlipped() const override { return true; }
  std::vector<MCAccessibilityElement> accessibilityElements() const override {
    MCAccessibilityElement text;
    text.label = name_;
    text.frame = MCMakeRect(0, 0, 10, 10);
    return {text};
  }

 private:
  std::string name_;
};

const MCAccessibilityElement* named(const std::vector<MCAccessibilityElement>& elements, const std::string& label) {
  auto it = std::find_if(elements.begin(), elements.end(), [&](const auto& e) { return e.label == label; });
  return it == elements.end() ? nullptr : &*it;
}

}  // namespace

TEST(AccessibilityElements, ControlsNameThemselvesInWindowCoordinates) {
  auto window = MCWindow::create({300, 200});
  MCOffscreenHost host(window);
  // Inside a flipped view placed 20 up from the window's bottom: y is turned around twice.
  auto panel = std::make_shared<Flipped>(MCMakeRect(0, 20, 300, 180));
  window->contentView()->addSubview(panel);

  auto info = MCToolbarItemControl::create();
  info->setTitle(std::string("Info"));
  info->setToolTip("Shows the photo's information");
  info->setFrameOrigin({10, 30});  // 64 x 48
  panel->addSubview(info);
  auto rotate = MCToolbarItemControl::create();
  rotate->setToolTip("Rotate left");
  rotate->setFrameOrigin({80, 30});
  rotate->setEnabled(false);
  panel->addSubview(rotate);
  auto histogram = std::make_shared<MCHistogramView>(MCMakeRect(200, 100, 80, 50));
  panel->addSubview(histogram);

  auto elements = MCAccessibilityElement::elementsOfWindow(*window);
  ASSERT_EQ(elements.size(), 3u);
  // In the order the views are drawn.
  EXPECT_EQ(elements[0].label, "Info");
  EXPECT_EQ(elements[1].label, "Rotate left");
  EXPECT_EQ(elements[2].label, "Histogram");
  EXPECT_EQ(elements[0].role, MCAccessibilityRole::Button);
  EXPECT_EQ(elements[0].value, "Shows the photo's information");
  EXPECT_EQ(elements[1].value, "");  // the tool tip is its name already
  EXPECT_TRUE(elements[0].enabled);
  EXPECT_FALSE(elements[1].enabled);
  EXPECT_FALSE(elements[0].checked.has_value());
  EXPECT_EQ(elements[2].role, MCAccessibilityRole::Image);
  // The panel's flipped y of 30..78 is the window's 200 - 78 = 122 up to 170.
  EXPECT_EQ(elements[0].frame, MCMakeRect(10, 122, 64, 48));
  EXPECT_EQ(elements[2].frame, MCMakeRect(200, 50, 80, 50));

  // A selected toolbar button says it is pressed; a hidden one is not there.
  info->setIsSelected(true);
  rotate->setHidden(true);
  elements = MCAccessibilityElement::elementsOfWindow(*window);
  ASSERT_EQ(elements.size(), 2u);
  EXPECT_EQ(elements[0].checked, std::optional<bool>(true));
  EXPECT_EQ(elements[1].label, "Histogram");
  panel->setHidden(true);
  EXPECT_TRUE(MCAccessibilityElement::elementsOfWindow(*window).empty());
}

TEST(AccessibilityElements, ColourLabelsAreAGroupOfChoices) {
  auto window = MCWindow::create({400, 100});
  MCOffscreenHost host(window);
  auto labels = std::make_shared<MCColorLabelControl>();
  window->contentView()->addSubview(labels);
  labels->setUsedColorLabels({2});

  const auto elements = MCAccessibilityElement::elementsOfWindow(*window);
  // The group, a dot per label, and the clear item.
  ASSERT_EQ(elements.size(), 2 + MCColorLabelControl::colorLabelIds().size());
  EXPECT_EQ(elements[0].role, MCAccessibilityRole::Group);
  EXPECT_EQ(elements[0].label, "Color label");
  const MCAccessibilityElement* clear = named(elements, "Clear all color labels");
  ASSERT_NE(clear, nullptr);
  EXPECT_EQ(clear->role, MCAccessibilityRole::Button);
  // Each label is a check box named by its colour; only the used one is ticked.
  int ticked = 0;
  for (long id : MCColorLabelControl::colorLabelIds()) {
    const MCAccessibilityElement* item = named(elements, MCColorLabelControl::labelName(id));
    ASSERT_NE(item, nullptr) << id;
    EXPECT_EQ(item->role, MCAccessibilityRole::CheckBox);
    EXPECT_EQ(item->checked, std::optional<bool>(id == 2)) << id;
    ticked += *item->checked;
    // Each dot lies inside the group, at its own place.
    EXPECT_TRUE(MCContainsRect(elements[0].frame, item->frame)) << id;
  }
  EXPECT_EQ(ticked, 1);
}

TEST(AccessibilityElements, WhatIsScrolledAwayIsLeftOut) {
  auto window = MCWindow::create({200, 100});
  MCOffscreenHost host(window);
  auto scrollView = std::make_shared<MCScrollView>(MCMakeRect(0, 0, 200, 100));
  auto document = std::make_shared<Flipped>(MCMakeRect(0, 0, 200, 1000));
  scrollView->setDocumentView(document);
  window->contentView()->addSubview(scrollView);
  document->addSubview(std::make_shared<Described>(MCMakeRect(5, 5, 50, 20), "top"));
  document->addSubview(std::make_shared<Described>(MCMakeRect(5, 500, 50, 20), "middle"));

  auto elements = MCAccessibilityElement::elementsOfWindow(*window);
  ASSERT_EQ(elements.size(), 1u);
  EXPECT_EQ(elements[0].label, "top");
  EXPECT_EQ(elements[0].frame, MCMakeRect(5, 85, 10, 10));

  // Scrolled so that the middle one shows, 40 down from the top of the visible part.
  scrollView->contentView()->scrollToPoint({0, 460});
  elements = MCAccessibilityElement::elementsOfWindow(*window);
  ASSERT_EQ(elements.size(), 1u);
  EXPECT_EQ(elements[0].label, "middle");
  EXPECT_EQ(elements[0].frame, MCMakeRect(5, 100 - 40 - 10, 10, 10));
}
