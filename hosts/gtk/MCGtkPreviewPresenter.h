#pragma once
// MCGtkPreviewPresenter: the preview panel on screen — a GTK window that shows the panel's current
// item large (its file, through GTK's own image loading), titled with the item's name. Keys in
// that window go to the panel (MCPreviewPanel::handleEvent): the browser's arrows move its
// selection and the preview follows; space and Escape close it.

#include <vesperon/toolkit/MCPreviewPanel.h>

#include <memory>

typedef struct _GtkWidget GtkWidget;

class MCGtkPreviewPresenter : public MCPreviewPanelPresenter {
 public:
  MCGtkPreviewPresenter() = default;
  ~MCGtkPreviewPresenter() override;

  void show(MCPreviewPanel& panel, bool fullScreen) override;
  void hide(MCPreviewPanel& panel) override;
  void reload(MCPreviewPanel& panel) override;

  /// The preview window; none until it first shows.
  GtkWidget* window() const { return window_; }

 private:
  void build(MCPreviewPanel& panel);
  GtkWidget* window_ = nullptr;
  GtkWidget* picture_ = nullptr;
  MCPreviewPanel* panel_ = nullptr;
};
