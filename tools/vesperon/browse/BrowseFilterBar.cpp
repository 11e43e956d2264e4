#include "BrowseFilterBar.h"

#include <cmath>

BrowseFilterBar::BrowseFilterBar(BrowseFilter& filter, std::function<void()> changed, GtkWidget* content,
                                 std::function<void(const std::string&)> report)
    : filter_(filter), changed_(std::move(changed)) {
  std::vector<MCPredicateEditorRowTemplateRef> rows;
  std::vector<bool> enabled;
  for (const BrowseFilter::Row& row : filter_.rows()) {
    rows.push_back(row.row);
    enabled.push_back(row.enabled);
  }
  // The editor shows the filter's own templates; which rows are on is copied back at each change.
  editor_ = MCGtkPredicateEditor::create(filter_.compoundRow(), rows, enabled, [this](const MCPredicateRef&) {
    for (std::size_t i = 0; i < filter_.rows().size(); ++i) filter_.rows()[i].enabled = editor_->isRowEnabled(i);
    if (changed_) changed_();
  });
  bar_ = MCGtkSlidingBar::create(editor_->widget(), 10, 6);
  bar_->setFocusAfterHiding(content);
  if (report) {
    bar_->setShownHandler([this, report = std::move(report)] {
      double x = 0;
      double y = 0;
      if (MCGtkPredicateEditorRow::centreInSurface(editor_->compoundRow()->widgetOfView(0), x, y))
        report("filter-bar compound " + std::to_string(std::lround(x)) + " " + std::to_string(std::lround(y)));
    });
  }
}

BrowseFilterBar::~BrowseFilterBar() = default;

bool BrowseFilterBar::isShown() const { return bar_->isShown(); }

void BrowseFilterBar::toggle() {
  const bool show = !isShown();
  bar_->setShown(show);
  if (show) editor_->grabFocus();
}

void BrowseFilterBar::clearRows() {
  // As unticking each row's check button would, with one call of `changed` for them all.
  for (std::size_t i = 0; i < filter_.rows().size(); ++i) {
    editor_->setRowEnabled(i, false);
    filter_.rows()[i].enabled = false;
  }
  if (changed_) changed_();
}
