#pragma once
// MCGtkDialogPresenter: alerts and file panels as real GTK 4 dialogs — a GtkMessageDialog with the
// alert's buttons, and a GtkFileChooserNative (the desktop's own file chooser through the portal
// where there is one, GTK's dialog otherwise). Each runs modally: the call iterates the main
// context until the user answers. A panel's accessory view is shown by its texts in the title,
// since a native chooser takes no widgets of ours.

#include <vesperon/toolkit/MCDialogPresenter.h>

typedef struct _GtkWindow GtkWindow;

class MCGtkDialogPresenter : public MCDialogPresenter {
 public:
  /// Dialogs stay on top of `parent` when one is given.
  explicit MCGtkDialogPresenter(GtkWindow* parent = nullptr) : parent_(parent) {}
  /// The window dialogs stay on top of from now on.
  void setParent(GtkWindow* parent) { parent_ = parent; }

  long runAlert(const MCAlert& alert, MCWindow* window) override;
  long runFilePanel(MCFilePanel& panel, MCWindow* window) override;

 private:
  GtkWindow* parent_;
};
