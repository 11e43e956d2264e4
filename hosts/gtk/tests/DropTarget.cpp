// drop-target-for-tests: a plain GTK 4 window that takes file drops and prints the URI of each
// file it receives, one line each ("dropped URI"), for the on-screen drag test.
#include <gtk/gtk.h>

#include <cstdio>

int main(int argc, char** argv) {
  GtkApplication* application = gtk_application_new("org.vesperon.DropTarget", G_APPLICATION_NON_UNIQUE);
  g_signal_connect(application, "activate", G_CALLBACK(+[](GtkApplication* app, gpointer) {
                     GtkWidget* window = gtk_application_window_new(app);
                     gtk_window_set_title(GTK_WINDOW(window), "drop target");
                     gtk_window_set_decorated(GTK_WINDOW(window), FALSE);
                     gtk_window_set_default_size(GTK_WINDOW(window), 300, 300);
                     GtkWidget* label = gtk_label_new("drop files here");
                     gtk_window_set_child(GTK_WINDOW(window), label);
                     GtkDropTarget* target = gtk_drop_target_new(GDK_TYPE_FILE_LIST, GDK_ACTION_COPY);
                     g_signal_connect(target, "drop", G_CALLBACK(+[](GtkDropTarget*, const GValue* value, double, double,
                                                                    gpointer) -> gboolean {
                                        auto* files = static_cast<GdkFileList*>(g_value_get_boxed(value));
                                        GSList* list = gdk_file_list_get_files(files);
                                        for (GSList* l = list; l; l = l->next) {
                                          char* uri = g_file_get_uri(G_FILE(l->data));
                                          std::printf("dropped %s\n", uri);
                                          g_free(uri);
                                        }
                                        g_slist_free(list);
                                        std::fflush(stdout);
                                        return TRUE;
                                      }), nullptr);
                     gtk_widget_add_controller(label, GTK_EVENT_CONTROLLER(target));
                     gtk_window_present(GTK_WINDOW(window));
                     std::printf("ready\n");
                     std::fflush(stdout);
                   }), nullptr);
  char* arguments[] = {argv[0], nullptr};
  (void)argc;
  const int status = g_application_run(G_APPLICATION(application), 1, arguments);
  g_object_unref(application);
  return status;
}
