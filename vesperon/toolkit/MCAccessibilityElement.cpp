#include <vesperon/toolkit/MCAccessibilityElement.h>

#include <vesperon/toolkit/MCView.h>
#include <vesperon/toolkit/MCWindow.h>

namespace {

void collect(const MCView& view, std::vector<MCAccessibilityElement>& into) {
  if (view.isHidden()) return;
  const MCRect shown = view.visibleRect();
  if (shown.size.width <= 0 || shown.size.height <= 0) return;
  for (MCAccessibilityElement element : view.accessibilityElements()) {
    if (!MCIntersectsRect(element.frame, shown)) continue;
    element.frame = view.convertRectToView(element.frame, nullptr);
    into.push_back(std::move(element));
  }
  for (const auto& subview : view.subviews())
    if (subview) collect(*subview, into);
}

}  // namespace

std::vector<MCAccessibilityElement> MCAccessibilityElement::elementsOfWindow(const MCWindow& window) {
  std::vector<MCAccessibilityElement> elements;
  if (window.contentView()) collect(*window.contentView(), elements);
  return elements;
}
