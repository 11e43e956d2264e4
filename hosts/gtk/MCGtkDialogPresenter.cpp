#include "MCGtkDialogPresenter.h"

#include <vesperon/files/MCSandboxAccessoryView.h>

#include <gtk/gtk.h>

namespace {

// Runs the main context until `response` is set by the dialog's "response" signal.
struct Modal {
  int response = G_MAXINT;
  static void answered(GObject*, int response, gpointer data) { static_cast<Modal*>(data)->response = response; }
  void wait() {
    while (response == G_MAXINT) g_main_context_iteration(nullptr, TRUE);
  }
};

}  // namespace

long MCGtkDialogPresenter::runAlert(const MCAlert& alert, MCWindow*) {
  G_GNUC_BEGIN_IGNORE_DEPRECATIONS
  GtkWidget* dialog = gtk_message_dialog_new(
      parent_, GTK_DIALOG_MODAL,
      alert.alertStyle == MCAlert::Critical ? GTK_MESSAGE_ERROR
      : alert.alertStyle == MCAlert::Informational ? GTK_MESSAGE_INFO
                                                   : GTK_MESSAGE_WARNING,
      GTK_BUTTONS_NONE, "%s", alert.messageText.c_str());
  if (!alert.informativeText.empty())
    gtk_message_dialog_format_secondary_text(GTK_MESSAGE_DIALOG(dialog), "%s", alert.informativeText.c_str());
  for (std::size_t i = 0; i < alert.buttons.size(); ++i)
    gtk_dialog_add_button(GTK_DIALOG(dialog), alert.buttons[i].c_str(), static_cast<int>(i));
  if (!alert.buttons.empty()) gtk_dialog_set_default_response(GTK_DIALOG(dialog), 0);
  Modal modal;
  g_signal_connect(dialog, "response", G_CALLBACK(Modal::answered), &modal);
  gtk_window_present(GTK_WINDOW(dialog));
  modal.wait();
  gtk_window_destroy(GTK_WINDOW(dialog));
  G_GNUC_END_IGNORE_DEPRECATIONS
  // Closing the dialog some other way answers as the last button would, the usual "cancel".
  if (modal.response < 0) return MCAlert::FirstButtonReturn + std::max<long>(0, long(alert.buttons.size()) - 1);
  return MCAlert::FirstButtonReturn + modal.response;
}

long MCGtkDialogPresenter::runFilePanel(MCFilePanel& panel, MCWindow*) {
  GtkFileChooserAction action = GTK_FILE_CHOOSER_ACTION_OPEN;
  if (panel.kind == MCFilePanel::Save) action = GTK_FILE_CHOOSER_ACTION_SAVE;
  else if (panel.canChooseDirectories && !panel.canChooseFiles) action = GTK_FILE_CHOOSER_ACTION_SELECT_FOLDER;
  std::string title = panel.title;
  if (auto accessory = std::dynamic_pointer_cast<MCSandboxAccessoryView>(panel.accessoryView))
    title = accessory->titleLabel() + " — " + accessory->descriptionLabel();
  if (!panel.message.empty()) title += (title.empty() ? "" : " — ") + panel.message;
  GtkFileChooserNative* chooser = gtk_file_chooser_native_new(
      title.c_str(), parent_, action, panel.prompt.empty() ? nullptr : panel.prompt.c_str(), nullptr);
  gtk_native_dialog_set_modal(GTK_NATIVE_DIALOG(chooser), TRUE);
  GtkFileChooser* files = GTK_FILE_CHOOSER(chooser);
  gtk_file_chooser_set_select_multiple(files, panel.allowsMultipleSelection);
  if (!panel.directoryURL.empty()) {
    GFile* folder = g_file_new_for_path(panel.directoryURL.c_str());
    gtk_file_chooser_set_current_folder(files, folder, nullptr);
    g_object_unref(folder);
  }
  if (panel.kind == MCFilePanel::Save && !panel.nameFieldStringValue.empty())
    gtk_file_chooser_set_current_name(files, panel.nameFieldStringValue.c_str());
  Modal modal;
  g_signal_connect(chooser, "response", G_CALLBACK(Modal::answered), &modal);
  gtk_native_dialog_show(GTK_NATIVE_DIALOG(chooser));
  modal.wait();
  panel.URLs.clear();
  if (modal.response == GTK_RESPONSE_ACCEPT) {
    GListModel* chosen = gtk_file_chooser_get_files(files);
    for (guint i = 0; i < g_list_model_get_n_items(chosen); ++i) {
      GFile* file = G_FILE(g_list_model_get_item(chosen, i));
      if (char* path = g_file_get_path(file)) {
        panel.URLs.emplace_back(path);
        g_free(path);
      }
      g_object_unref(file);
    }
    g_object_unref(chosen);
  }
  g_object_unref(chooser);
  return panel.URLs.empty() ? MCFilePanel::CancelButton : MCFilePanel::OKButton;
}
