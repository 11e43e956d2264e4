#include <vesperon/files/MCSandboxAccessoryView.h>

#include <vesperon/core/MCLocalizedString.h>
#include <vesperon/platform/MCGraphicsContext.h>
#include <vesperon/toolkit/MCAttributedString.h>

std::shared_ptr<MCSandboxAccessoryView> MCSandboxAccessoryView::accessoryViewWithTitle(const std::string& title) {
  std::shared_ptr<MCSandboxAccessoryView> view(new MCSandboxAccessoryView(MCRect{0, 0, 480, 64}));
  view->title_ = title;
  view->description_ = MCLocalizedString("open_panel_description_access_needed", "To read the photos in this folder, this application needs your permission. Choose the folder and click Allow.");
  return view;
}

void MCSandboxAccessoryView::drawRect(const MCRect&) {
  MCGraphicsContext* context = MCGraphicsContext::currentContext();
  if (!context) return;
  const MCRect box = bounds();
  constexpr double kIcon = 32, kMargin = 16;
  MCTextAttributes titleAttributes;
  titleAttributes.font = MCFont::boldSystemFontOfSize(13);
  titleAttributes.foregroundColor = MCColor::labelColor();
  MCTextAttributes descriptionAttributes;
  descriptionAttributes.font = MCFont::systemFontOfSize(11);
  descriptionAttributes.foregroundColor = MCColor::secondaryLabelColor();
  const double textX = box.origin.x + kMargin * 2 + kIcon;
  MCAttributedString(title_, titleAttributes).drawAtPoint({textX, box.origin.y + 12}, *context);
  MCAttributedString(description_, descriptionAttributes).drawAtPoint({textX, box.origin.y + 32}, *context);
}
