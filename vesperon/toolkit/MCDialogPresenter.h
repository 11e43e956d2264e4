#pragma once
// MCDialogPresenter: what shows alerts and file panels to the user and waits for the answer. The
// GTK host gives one with real dialogs (MCGtkDialogPresenter); a program without a screen, or a
// test, gives its own. Called on the main thread; each call returns when the user has answered.

#include <vesperon/toolkit/MCAlert.h>
#include <vesperon/toolkit/MCFilePanel.h>

class MCWindow;

class MCDialogPresenter {
 public:
  virtual ~MCDialogPresenter() = default;
  /// The button pressed: MCAlert::FirstButtonReturn + its index.
  virtual long runAlert(const MCAlert& alert, MCWindow* window) = 0;
  /// MCFilePanel::OKButton with `panel.URLs` filled in, or MCFilePanel::CancelButton.
  virtual long runFilePanel(MCFilePanel& panel, MCWindow* window) = 0;
};
