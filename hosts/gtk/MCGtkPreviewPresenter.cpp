#include "MCGtkPreviewPresenter.h"

#include <vesperon/toolkit/MCEvent.h>

#include <gtk/gtk.h>

MCGtkPreviewPresenter::~MCGtkPreviewPresenter() {
  if (window_) gtk_window_destroy(GTK_WINDOW(window_));
}

void MCGtkPreviewPresenter::build(MCPreviewPanel& panel) {
  panel_ = &panel;
  if (window_) return;
  window_ = gtk_window_new();
  gtk_window_set_default_size(GTK_WINDOW(window_), 900, 700);
  picture_ = gtk_picture_new();
  gtk_picture_set_can_shrink(GTK_PICTURE(picture_), TRUE);
  gtk_window_set_child(GTK_WINDOW(window_), picture_);
  g_signal_connect(window_, "close-request", G_CALLBACK(+[](GtkWindow*, gpointer data) -> gboolean {
                     auto* self = static_cast<MCGtkPreviewPresenter*>(data);
                     if (self->panel_) self->panel_->orderOut();
                     return TRUE;  // hidden, not destroyed: the panel shows it again
                   }), this);
  GtkEventController* keys = gtk_event_controller_key_new();
  g_signal_connect(keys, "key-pressed", G_CALLBACK(+[](GtkEventControllerKey*, guint keyval, guint, GdkModifierType,
                                                      gpointer data) -> gboolean {
                     auto* self = static_cast<MCGtkPreviewPresenter*>(data);
                     char32_t key = 0;
                     switch (keyval) {
                       case GDK_KEY_Left: key = MCLeftArrowFunctionKey; break;
                       case GDK_KEY_Right: key = MCRightArrowFunctionKey; break;
                       case GDK_KEY_Up: key = MCUpArrowFunctionKey; break;
                       case GDK_KEY_Down: key = MCDownArrowFunctionKey; break;
                       case GDK_KEY_space: key = MCSpaceCharacter; break;
                       case GDK_KEY_Escape: key = MCEscapeCharacter; break;
                       default: return FALSE;
                     }
                     if (!self->panel_) return FALSE;
                     const std::u32string characters(1, key);
                     if (key == MCEscapeCharacter) {
                       self->panel_->orderOut();
                       return TRUE;
                     }
                     return self->panel_->handleEvent(MCEvent::keyEvent(MCEventType::KeyDown, characters, characters));
                   }), this);
  gtk_widget_add_controller(window_, keys);
}

void MCGtkPreviewPresenter::show(MCPreviewPanel& panel, bool fullScreen) {
  build(panel);
  reload(panel);
  if (fullScreen) gtk_window_fullscreen(GTK_WINDOW(window_));
  else gtk_window_unfullscreen(GTK_WINDOW(window_));
  gtk_window_present(GTK_WINDOW(window_));
}

void MCGtkPreviewPresenter::hide(MCPreviewPanel&) {
  if (window_) gtk_widget_set_visible(window_, FALSE);
}

void MCGtkPreviewPresenter::reload(MCPreviewPanel& panel) {
  if (!window_ || !panel.isVisible()) return;
  auto item = panel.currentPreviewItem();
  if (!item) {
    gtk_picture_set_paintable(GTK_PICTURE(picture_), nullptr);
    gtk_window_set_title(GTK_WINDOW(window_), "Preview");
    return;
  }
  gtk_picture_set_filename(GTK_PICTURE(picture_), item->previewItemURL().c_str());
  gtk_window_set_title(GTK_WINDOW(window_), item->previewItemTitle().c_str());
}
