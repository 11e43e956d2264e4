#include "MCGtkWindowHost.h"

#include "MCGtkAccessibleElements.h"
#include "MCGtkClipboard.h"
#include "MCGtkSnapshotSink.h"
#include "MCGtkTextureCache.h"

#include <vesperon/platform/MCGraphicsContext.h>
#include <vesperon/toolkit/MCDraggingSession.h>
#include <vesperon/toolkit/MCPasteboard.h>
#include <vesperon/toolkit/MCScrollView.h>

#include <gtk/gtk.h>

#include <cmath>

// MARK: The widget

G_DECLARE_FINAL_TYPE(VesperonHostWidget, vesperon_host_widget, VESPERON, HOST_WIDGET, GtkWidget)

struct _VesperonHostWidget {
  GtkWidget parent;
  std::shared_ptr<MCGtkWindowHost>* host;
};

G_DEFINE_TYPE(VesperonHostWidget, vesperon_host_widget, GTK_TYPE_WIDGET)

namespace {

MCGtkWindowHost* hostOf(GtkWidget* widget) {
  auto* self = VESPERON_HOST_WIDGET(widget);
  return self->host ? self->host->get() : nullptr;
}

void widgetSnapshot(GtkWidget* widget, GtkSnapshot* snapshot) {
  if (auto* host = hostOf(widget)) host->snapshot(snapshot);
}

void widgetSizeAllocate(GtkWidget* widget, int width, int height, int) {
  if (auto* host = hostOf(widget)) host->allocated(width, height);
  // A popover among the children (the context menu) is sized and placed only when its parent
  // presents it here; unpresented it keeps its first guess, a menu cut to a sliver.
  for (GtkWidget* child = gtk_widget_get_first_child(widget); child; child = gtk_widget_get_next_sibling(child))
    if (GTK_IS_POPOVER(child)) gtk_popover_present(GTK_POPOVER(child));
}

void widgetMeasure(GtkWidget* widget, GtkOrientation orientation, int, int* minimum, int* natural, int* minimumBaseline,
                   int* naturalBaseline) {
  *minimum = 1;
  *natural = 1;
  if (auto* host = hostOf(widget)) {
    const MCSize size = host->window()->contentSize();
    *natural = std::max(1, int(std::lround(orientation == GTK_ORIENTATION_HORIZONTAL ? size.width : size.height)));
  }
  *minimumBaseline = *naturalBaseline = -1;
}

void widgetDispose(GObject* object) {
  auto* self = VESPERON_HOST_WIDGET(object);
  if (self->host) {
    // Keep the host alive while it lets go of the window, then drop the widget's share.
    std::shared_ptr<MCGtkWindowHost> host = *self->host;
    delete self->host;
    self->host = nullptr;
    host->widgetDestroyed();
  }
  G_OBJECT_CLASS(vesperon_host_widget_parent_class)->dispose(object);
}

}  // namespace

static void vesperon_host_widget_class_init(VesperonHostWidgetClass* klass) {
  GtkWidgetClass* widgetClass = GTK_WIDGET_CLASS(klass);
  widgetClass->snapshot = widgetSnapshot;
  widgetClass->size_allocate = widgetSizeAllocate;
  widgetClass->measure = widgetMeasure;
  G_OBJECT_CLASS(klass)->dispose = widgetDispose;
  // The views a window hosts are items in rows and columns (the browser) far more than anything else.
  gtk_widget_class_set_accessible_role(widgetClass, GTK_ACCESSIBLE_ROLE_GRID);
}

static void vesperon_host_widget_init(VesperonHostWidget* self) {
  self->host = nullptr;
  gtk_widget_set_focusable(GTK_WIDGET(self), TRUE);
  gtk_widget_set_can_focus(GTK_WIDGET(self), TRUE);
  gtk_widget_set_hexpand(GTK_WIDGET(self), TRUE);
  gtk_widget_set_vexpand(GTK_WIDGET(self), TRUE);
}

// MARK: The mapping of GTK's input

namespace {

uint64_t modifierFlags(GdkModifierType state) {
  uint64_t flags = 0;
  if (state & GDK_SHIFT_MASK) flags |= MCEventModifierFlagShift;
  if (state & GDK_CONTROL_MASK) flags |= MCEventModifierFlagCommand;
  if (state & GDK_ALT_MASK) flags |= MCEventModifierFlagOption;
  if (state & GDK_SUPER_MASK) flags |= MCEventModifierFlagControl;
  if (state & GDK_LOCK_MASK) flags |= MCEventModifierFlagCapsLock;
  return flags;
}

/// The character a key gives, in the platform's numbering; 0 for a key that gives none.
char32_t characterForKeyval(unsigned keyval) {
  switch (keyval) {
    case GDK_KEY_Up: case GDK_KEY_KP_Up: return MCUpArrowFunctionKey;
    case GDK_KEY_Down: case GDK_KEY_KP_Down: return MCDownArrowFunctionKey;
    case GDK_KEY_Left: case GDK_KEY_KP_Left: return MCLeftArrowFunctionKey;
    case GDK_KEY_Right: case GDK_KEY_KP_Right: return MCRightArrowFunctionKey;
    case GDK_KEY_Home: case GDK_KEY_KP_Home: return MCHomeFunctionKey;
    case GDK_KEY_Begin: case GDK_KEY_KP_Begin: return MCBeginFunctionKey;
    case GDK_KEY_End: case GDK_KEY_KP_End: return MCEndFunctionKey;
    case GDK_KEY_Page_Up: case GDK_KEY_KP_Page_Up: return MCPageUpFunctionKey;
    case GDK_KEY_Page_Down: case GDK_KEY_KP_Page_Down: return MCPageDownFunctionKey;
    case GDK_KEY_Delete: case GDK_KEY_KP_Delete: return MCDeleteFunctionKey;
    case GDK_KEY_BackSpace: return MCDeleteCharacter;
    case GDK_KEY_Return: case GDK_KEY_KP_Enter: return MCCarriageReturnCharacter;
    case GDK_KEY_Tab: case GDK_KEY_KP_Tab: return MCTabCharacter;
    case GDK_KEY_ISO_Left_Tab: return MCBackTabCharacter;
    case GDK_KEY_Escape: return MCEscapeCharacter;
    default: break;
  }
  if (keyval >= GDK_KEY_F1 && keyval <= GDK_KEY_F35) return MCF1FunctionKey + (keyval - GDK_KEY_F1);
  return gdk_keyval_to_unicode(keyval);
}

const char* cursorName(MCCursor cursor) {
  switch (cursor) {
    case MCCursor::Arrow: return "default";
    case MCCursor::PointingHand: return "pointer";
    case MCCursor::OpenHand: return "grab";
    case MCCursor::ClosedHand: return "grabbing";
    case MCCursor::Crosshair: return "crosshair";
    case MCCursor::IBeam: return "text";
    case MCCursor::ResizeLeftRight: return "ew-resize";
    case MCCursor::ResizeUpDown: return "ns-resize";
    case MCCursor::NotAllowed: return "not-allowed";
  }
  return "default";
}

}  // namespace

// MARK: The host

MCGtkWindowHost::MCGtkWindowHost(std::shared_ptr<MCWindow> window)
    : window_(std::move(window)), textures_(std::make_unique<MCGtkTextureCache>()) {}

std::size_t MCGtkWindowHost::numberOfCachedTextures() const { return textures_->size(); }

std::shared_ptr<MCGtkWindowHost> MCGtkWindowHost::create(std::shared_ptr<MCWindow> window) {
  if (!window) return nullptr;
  auto host = std::shared_ptr<MCGtkWindowHost>(new MCGtkWindowHost(window));
  auto* widget = VESPERON_HOST_WIDGET(g_object_new(vesperon_host_widget_get_type(), nullptr));
  widget->host = new std::shared_ptr<MCGtkWindowHost>(host);
  host->widget_ = GTK_WIDGET(widget);
  g_object_ref_sink(widget);
  host->accessibleElements_ = std::make_unique<MCGtkAccessibleElements>(host->widget_, window);

  GtkEventController* legacy = gtk_event_controller_legacy_new();
  g_signal_connect(legacy, "event", G_CALLBACK(+[](GtkEventControllerLegacy*, GdkEvent* event, gpointer data) -> gboolean {
                     return static_cast<MCGtkWindowHost*>(data)->legacyEvent(event);
                   }), host.get());
  gtk_widget_add_controller(host->widget_, legacy);

  // Kinetic: after a flick on a touchpad GTK tells the velocity, and the content glides on.
  GtkEventController* scroll = gtk_event_controller_scroll_new(
      GtkEventControllerScrollFlags(GTK_EVENT_CONTROLLER_SCROLL_BOTH_AXES | GTK_EVENT_CONTROLLER_SCROLL_KINETIC));
  g_signal_connect(scroll, "scroll-begin", G_CALLBACK(+[](GtkEventControllerScroll*, gpointer data) {
                     static_cast<MCGtkWindowHost*>(data)->stopGliding();
                   }), host.get());
  g_signal_connect(scroll, "decelerate", G_CALLBACK(+[](GtkEventControllerScroll*, double vx, double vy, gpointer data) {
                     static_cast<MCGtkWindowHost*>(data)->decelerate(vx, vy);
                   }), host.get());
  g_signal_connect(scroll, "scroll", G_CALLBACK(+[](GtkEventControllerScroll* controller, double dx, double dy,
                                                    gpointer data) -> gboolean {
                     const bool precise = gtk_event_controller_scroll_get_unit(controller) == GDK_SCROLL_UNIT_SURFACE;
                     // Ctrl with the wheel zooms in the views that say so: the modifiers go along.
                     const auto state = gtk_event_controller_get_current_event_state(GTK_EVENT_CONTROLLER(controller));
                     static_cast<MCGtkWindowHost*>(data)->scrolled(dx, dy, precise, unsigned(state));
                     return TRUE;
                   }), host.get());
  gtk_widget_add_controller(host->widget_, scroll);

  GtkGesture* zoom = gtk_gesture_zoom_new();
  g_signal_connect(zoom, "begin", G_CALLBACK(+[](GtkGesture*, GdkEventSequence*, gpointer data) {
                     static_cast<MCGtkWindowHost*>(data)->zoomBegan();
                   }), host.get());
  g_signal_connect(zoom, "scale-changed", G_CALLBACK(+[](GtkGestureZoom*, double scale, gpointer data) {
                     static_cast<MCGtkWindowHost*>(data)->zoomChanged(scale);
                   }), host.get());
  gtk_widget_add_controller(host->widget_, GTK_EVENT_CONTROLLER(zoom));

  GtkEventController* keys = gtk_event_controller_key_new();
  g_signal_connect(keys, "key-pressed", G_CALLBACK(+[](GtkEventControllerKey*, guint keyval, guint, GdkModifierType state,
                                                      gpointer data) -> gboolean {
                     return static_cast<MCGtkWindowHost*>(data)->keyPressed(keyval, state, true);
                   }), host.get());
  g_signal_connect(keys, "key-released", G_CALLBACK(+[](GtkEventControllerKey*, guint keyval, guint,
                                                       GdkModifierType state, gpointer data) {
                     static_cast<MCGtkWindowHost*>(data)->keyPressed(keyval, state, false);
                   }), host.get());
  gtk_widget_add_controller(host->widget_, keys);

  gtk_widget_set_has_tooltip(host->widget_, TRUE);
  g_signal_connect(host->widget_, "query-tooltip",
                   G_CALLBACK(+[](GtkWidget*, int x, int y, gboolean, GtkTooltip* tooltip, gpointer data) -> gboolean {
                     return static_cast<MCGtkWindowHost*>(data)->queryToolTip(x, y, tooltip);
                   }), host.get());

  window->setHost(host.get());
  host->clipboard_ = std::make_shared<MCGtkClipboard>(gtk_widget_get_clipboard(host->widget_));
  MCPasteboard::generalPasteboard()->setBackend(host->clipboard_);
  // Assistive technologies hear from the first view (depth first) that names itself.
  std::function<MCView*(MCView*)> named = [&](MCView* view) -> MCView* {
    if (!view) return nullptr;
    if (!view->accessibilityLabel().empty()) return view;
    for (const auto& subview : view->subviews())
      if (MCView* found = named(subview.get())) return found;
    return nullptr;
  };
  if (MCView* view = named(window->contentView().get())) host->accessibilityDidChange(*view);
  return host;
}

std::shared_ptr<MCGtkWindowHost> MCGtkWindowHost::createForView(std::shared_ptr<MCView> view, bool scrolls) {
  if (!view) return nullptr;
  // The view's own frame is the natural size the widget asks its container for.
  MCSize size = view->frame().size;
  if (size.width < 1 || size.height < 1) size = {640, 480};
  auto window = MCWindow::create(size);
  if (scrolls) {
    auto scrollView = std::make_shared<MCScrollView>(MCMakeRect(0, 0, size.width, size.height));
    scrollView->setDocumentView(view);
    window->setContentView(scrollView);
  } else {
    window->setContentView(view);
  }
  window->makeFirstResponder(view.get());
  return create(window);
}

MCGtkWindowHost::~MCGtkWindowHost() {
  endDragInFlight();
  stopGliding();
  removeContextMenu();
  if (window_->host() == this) window_->setHost(nullptr);
  if (widget_) g_object_unref(widget_);
}

void MCGtkWindowHost::widgetDestroyed() {
  if (MCPasteboard::generalPasteboard()->backend() == clipboard_) MCPasteboard::generalPasteboard()->setBackend(nullptr);
  closing_ = true;
  endDragInFlight();
  accessibleElements_.reset();
  window_->close();
  if (window_->host() == this) window_->setHost(nullptr);
}

GtkWindow* MCGtkWindowHost::presentInNewWindow(GtkApplication* application, bool decorated) {
  GtkWidget* toplevel = application ? gtk_application_window_new(application) : gtk_window_new();
  toplevel_ = GTK_WINDOW(toplevel);
  gtk_window_set_title(toplevel_, window_->title().c_str());
  gtk_window_set_decorated(toplevel_, decorated);
  const MCSize size = window_->contentSize();
  gtk_window_set_default_size(toplevel_, int(std::lround(size.width)), int(std::lround(size.height)));
  if (topAccessory_) {
    GtkWidget* column = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    gtk_box_append(GTK_BOX(column), topAccessory_);
    gtk_widget_set_vexpand(widget_, TRUE);
    gtk_box_append(GTK_BOX(column), widget_);
    gtk_window_set_child(toplevel_, column);
  } else {
    gtk_window_set_child(toplevel_, widget_);
  }
  if (!titleBarButtons_.empty()) {
    GtkWidget* bar = gtk_header_bar_new();
    for (TitleBarButton& button : titleBarButtons_) {
      GtkWidget* widget = gtk_button_new_from_icon_name(button.iconName.c_str());
      gtk_widget_set_tooltip_text(widget, button.toolTip.c_str());
      gtk_widget_set_focusable(widget, FALSE);  // the keys stay with the window's views
      button.widget = widget;
      if (button.marked) gtk_widget_add_css_class(widget, "suggested-action");
      g_signal_connect(widget, "clicked", G_CALLBACK(+[](GtkButton*, gpointer data) {
                         auto* entry = static_cast<TitleBarButton*>(data);
                         if (entry->action) entry->action();
                       }), &button);
      gtk_header_bar_pack_start(GTK_HEADER_BAR(bar), widget);
    }
    gtk_window_set_titlebar(toplevel_, bar);
  }
  g_signal_connect(toplevel, "close-request", G_CALLBACK(+[](GtkWindow*, gpointer data) -> gboolean {
                     auto* host = static_cast<MCGtkWindowHost*>(data);
                     host->closing_ = true;
                     host->endDragInFlight();
                     host->window_->close();
                     return FALSE;
                   }), this);
  updateToplevelBackground();
  gtk_window_present(toplevel_);
  gtk_widget_grab_focus(widget_);
  return toplevel_;
}

namespace {
constexpr const char* kCoveredWindowClass = "vesperon-covered";
}

void MCGtkWindowHost::updateToplevelBackground() {
  if (!toplevel_) return;
  // Where the window's own opaque background covers the whole toplevel, GTK's background under
  // it would be painted for nothing, a full-window fill every frame.
  const bool covered = !topAccessory_ && window_->backgroundColor().alphaComponent() >= 1;
  if (covered == bool(gtk_widget_has_css_class(GTK_WIDGET(toplevel_), kCoveredWindowClass))) return;
  static GtkCssProvider* provider = [] {
    GtkCssProvider* css = gtk_css_provider_new();
    gtk_css_provider_load_from_data(css, "window.vesperon-covered { background: none; }", -1);
    gtk_style_context_add_provider_for_display(gdk_display_get_default(), GTK_STYLE_PROVIDER(css),
                                               GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
    return css;
  }();
  (void)provider;
  if (covered) gtk_widget_add_css_class(GTK_WIDGET(toplevel_), kCoveredWindowClass);
  else gtk_widget_remove_css_class(GTK_WIDGET(toplevel_), kCoveredWindowClass);
}

void MCGtkWindowHost::addTitleBarButton(const std::string& iconName, const std::string& toolTip,
                                        std::function<void()> action) {
  if (toplevel_) return;  // the header bar is made once, when the window is presented
  titleBarButtons_.push_back({iconName, toolTip, std::move(action)});
}

bool MCGtkPrefersDarkTheme() {
  GtkSettings* settings = gtk_settings_get_default();
  gboolean dark = FALSE;
  if (settings) g_object_get(settings, "gtk-application-prefer-dark-theme", &dark, nullptr);
  return dark;
}

void MCGtkSetPrefersDarkTheme(bool dark) {
  if (GtkSettings* settings = gtk_settings_get_default())
    g_object_set(settings, "gtk-application-prefer-dark-theme", gboolean(dark), nullptr);
}

void MCGtkWindowHost::setTitleBarButtonMarked(const std::string& iconName, bool marked) {
  for (TitleBarButton& button : titleBarButtons_) {
    if (button.iconName != iconName) continue;
    button.marked = marked;
    if (!button.widget) continue;
    if (marked) gtk_widget_add_css_class(button.widget, "suggested-action");
    else gtk_widget_remove_css_class(button.widget, "suggested-action");
  }
}

void MCGtkWindowHost::closeWindow() {
  if (closing_) return;
  closing_ = true;
  endDragInFlight();
  if (toplevel_) gtk_window_destroy(toplevel_);
}

bool MCGtkWindowHost::setFullScreen(bool fullScreen) {
  if (!toplevel_ || closing_) return false;
  // The window manager answers later; the request is what the views go by.
  if (fullScreen) gtk_window_fullscreen(toplevel_);
  else gtk_window_unfullscreen(toplevel_);
  fullScreen_ = fullScreen;
  return true;
}

void MCGtkWindowHost::windowTitleDidChange() {
  if (toplevel_ && !closing_) gtk_window_set_title(toplevel_, window_->title().c_str());
}

void MCGtkWindowHost::widgetOriginInSurface(double& x, double& y) const {
  x = y = 0;
  GtkNative* native = gtk_widget_get_native(widget_);
  if (!native) return;
  double nx = 0, ny = 0;
  gtk_native_get_surface_transform(native, &nx, &ny);
  graphene_point_t origin = GRAPHENE_POINT_INIT(0, 0), out;
  if (gtk_widget_compute_point(widget_, GTK_WIDGET(native), &origin, &out)) {
    x = out.x + nx;
    y = out.y + ny;
  }
}

bool MCGtkWindowHost::isShown() const {
  return widget_ && gtk_widget_get_mapped(widget_) && gtk_widget_get_width(widget_) > 1;
}

int MCGtkRunApplication(const std::string& applicationID, const char* programName,
                        std::function<void(GtkApplication* application)> activate) {
  GtkApplication* application = gtk_application_new(applicationID.c_str(), G_APPLICATION_NON_UNIQUE);
  g_signal_connect(application, "activate", G_CALLBACK(+[](GtkApplication* app, gpointer data) {
                     (*static_cast<std::function<void(GtkApplication*)>*>(data))(app);
                   }), &activate);
  char* arguments[] = {const_cast<char*>(programName), nullptr};
  const int status = g_application_run(G_APPLICATION(application), 1, arguments);
  g_object_unref(application);
  return status;
}

// MARK: Display

void MCGtkWindowHost::invalidateRect(const MCRect&) {
  if (widget_) gtk_widget_queue_draw(widget_);
  // What is redrawn may have changed what the views describe to assistive technologies.
  if (accessibleElements_) accessibleElements_->setNeedsUpdate();
}

double MCGtkWindowHost::backingScaleFactor() const { return widget_ ? gtk_widget_get_scale_factor(widget_) : 1.0; }

void MCGtkWindowHost::allocated(int width, int height) {
  window_->setContentSize(MCMakeSize(width, height));
  if (accessibleElements_) accessibleElements_->allocate();
}

void MCGtkWindowHost::snapshot(GdkSnapshot* snapshot) {
  updateToplevelBackground();
  const MCSize size = window_->contentSize();
  const double scale = backingScaleFactor();
  const std::size_t width = std::size_t(std::ceil(size.width * scale)), height = std::size_t(std::ceil(size.height * scale));
  GtkNative* native = gtk_widget_get_native(widget_);
  GskRenderer* renderer = native ? gtk_native_get_renderer(native) : nullptr;
  MCGtkSnapshotSink sink(snapshot, *textures_, renderer && GSK_IS_CAIRO_RENDERER(renderer));
  auto context = MCGraphicsContext::createRecording(width, height, &sink);
  if (!context) return;
  gtk_snapshot_save(snapshot);
  if (scale != 1) gtk_snapshot_scale(snapshot, float(1 / scale), float(1 / scale));
  window_->displayInContext(*context, scale);
  context->finishRecording();
  sink.flushPendingFill();
  gtk_snapshot_restore(snapshot);
  const auto& counts = sink.counts();
  lastFrameCounts_ = {counts.cairo, counts.color, counts.texture, counts.text};
  // Images the frame no longer drew may be gone from every cache: their textures go with them.
  textures_->prune();
}

void MCGtkWindowHost::setCursor(MCCursor cursor) {
  if (widget_) gtk_widget_set_cursor_from_name(widget_, cursorName(cursor));
}

bool MCGtkWindowHost::queryToolTip(int x, int y, void* tooltip) {
  auto text = window_->toolTipAtPoint(toWindow(x, y));
  if (!text || text->empty()) return false;
  gtk_tooltip_set_text(static_cast<GtkTooltip*>(tooltip), text->c_str());
  return true;
}

// MARK: Events

MCPoint MCGtkWindowHost::toWindow(double widgetX, double widgetY) const {
  return {widgetX, window_->contentSize().height - widgetY};
}

void MCGtkWindowHost::deliver(const MCEvent& event) {
  std::shared_ptr<MCGtkWindowHost> keep = shared_from_this();
  window_->postEvent(event);
  window_->processQueuedEvents();
}

bool MCGtkWindowHost::legacyEvent(GdkEvent* event) {
  const GdkEventType type = gdk_event_get_event_type(event);
  if (type != GDK_BUTTON_PRESS && type != GDK_BUTTON_RELEASE && type != GDK_MOTION_NOTIFY) return false;
  double sx = 0, sy = 0;
  if (!gdk_event_get_position(event, &sx, &sy)) return false;
  // Event positions are the surface's; the widget may sit anywhere in it.
  double ox = 0, oy = 0;
  widgetOriginInSurface(ox, oy);
  const double x = sx - ox, y = sy - oy;
  const GdkModifierType state = gdk_event_get_modifier_state(event);
  const uint64_t flags = modifierFlags(state);
  const double timestamp = gdk_event_get_time(event) / 1000.0;
  pointer_ = toWindow(x, y);
  if (GdkDevice* device = gdk_event_get_device(event)) pointerDevice_ = device;

  if (type == GDK_MOTION_NOTIFY) {
    MCEventType kind = MCEventType::MouseMoved;
    if (state & GDK_BUTTON1_MASK) kind = MCEventType::LeftMouseDragged;
    else if (state & GDK_BUTTON3_MASK) kind = MCEventType::RightMouseDragged;
    else if (state & (GDK_BUTTON2_MASK | GDK_BUTTON4_MASK | GDK_BUTTON5_MASK)) kind = MCEventType::OtherMouseDragged;
    MCEvent moved = MCEvent::mouseEvent(kind, pointer_, flags, kind == MCEventType::MouseMoved ? 0 : clickCount_, timestamp);
    moved.setDelta(x - lastWidgetX_, y - lastWidgetY_);
    lastWidgetX_ = x;
    lastWidgetY_ = y;
    deliver(moved);
    return true;
  }

  const unsigned button = gdk_button_event_get_button(event);
  if (type == GDK_BUTTON_PRESS) {
    gtk_widget_grab_focus(widget_);
    GtkSettings* settings = gtk_widget_get_settings(widget_);
    int doubleClickTime = 400, doubleClickDistance = 5;
    g_object_get(settings, "gtk-double-click-time", &doubleClickTime, "gtk-double-click-distance",
                 &doubleClickDistance, nullptr);
    const uint32_t time = gdk_event_get_time(event);
    const bool again = button == lastButton_ && time - lastPressTime_ <= uint32_t(doubleClickTime) &&
                       std::fabs(x - lastPressX_) <= doubleClickDistance &&
                       std::fabs(y - lastPressY_) <= doubleClickDistance;
    clickCount_ = again ? clickCount_ + 1 : 1;
    lastButton_ = button;
    lastPressTime_ = time;
    lastPressX_ = x;
    lastPressY_ = y;
  }
  lastWidgetX_ = x;
  lastWidgetY_ = y;
  MCEventType kind;
  const bool press = type == GDK_BUTTON_PRESS;
  if (press) stopGliding();  // a click holds a gliding page where it is
  if (button == GDK_BUTTON_PRIMARY) kind = press ? MCEventType::LeftMouseDown : MCEventType::LeftMouseUp;
  else if (button == GDK_BUTTON_SECONDARY) kind = press ? MCEventType::RightMouseDown : MCEventType::RightMouseUp;
  else kind = press ? MCEventType::OtherMouseDown : MCEventType::OtherMouseUp;
  deliver(MCEvent::mouseEvent(kind, pointer_, flags, clickCount_, timestamp));
  return true;
}

void MCGtkWindowHost::scrolled(double dx, double dy, bool precise, unsigned state) {
  // GTK's deltas grow as the content should move up; the platform's grow as it moves down.
  deliver(MCEvent::scrollWheelEvent(pointer_, -dx, -dy, precise, modifierFlags(GdkModifierType(state))));
}

void MCGtkWindowHost::decelerate(double velocityX, double velocityY) {
  stopGliding();
  glide_ = MCKineticScroll({velocityX * 1000, velocityY * 1000});
  if (!glide_.isActive() || !widget_) return;
  glideFrameTime_ = 0;
  glideTick_ = gtk_widget_add_tick_callback(
      widget_,
      +[](GtkWidget*, GdkFrameClock* clock, gpointer data) -> gboolean {
        auto* host = static_cast<MCGtkWindowHost*>(data);
        const gint64 now = gdk_frame_clock_get_frame_time(clock);
        const double seconds = host->glideFrameTime_ ? double(now - host->glideFrameTime_) / 1e6 : 1.0 / 60;
        host->glideFrameTime_ = now;
        const MCPoint moved = host->glide_.step(seconds);
        // As precise scrolling, without modifiers: a glide never zooms.
        if (moved.x != 0 || moved.y != 0) host->scrolled(moved.x, moved.y, true, 0);
        if (host->glide_.isActive()) return G_SOURCE_CONTINUE;
        host->glideTick_ = 0;
        return G_SOURCE_REMOVE;
      },
      this, nullptr);
}

void MCGtkWindowHost::stopGliding() {
  glide_.stop();
  if (glideTick_ && widget_) gtk_widget_remove_tick_callback(widget_, glideTick_);
  glideTick_ = 0;
}

void MCGtkWindowHost::zoomBegan() { lastZoomScale_ = 1; }

void MCGtkWindowHost::zoomChanged(double scale) {
  const double change = scale - lastZoomScale_;
  lastZoomScale_ = scale;
  if (change != 0) deliver(MCEvent::magnifyEvent(pointer_, change));
}

bool MCGtkWindowHost::keyPressed(unsigned keyval, unsigned state, bool pressed) {
  const char32_t character = characterForKeyval(keyval);
  // Modifier keys alone type nothing and bind nothing.
  if (character == 0) return false;
  const std::u32string characters(1, character);
  deliver(MCEvent::keyEvent(pressed ? MCEventType::KeyDown : MCEventType::KeyUp, characters, characters,
                            modifierFlags(GdkModifierType(state))));
  return true;
}

bool MCGtkWindowHost::waitForEvents(Deadline deadline) {
  if (window_->isClosed() || !widget_) return false;
  unsigned source = 0;
  bool woke = false;
  if (deadline) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(*deadline - std::chrono::steady_clock::now());
    if (left.count() <= 0) return true;
    source = g_timeout_add(unsigned(left.count()), +[](gpointer flag) -> gboolean {
      *static_cast<bool*>(flag) = true;
      return G_SOURCE_REMOVE;
    }, &woke);
  }
  g_main_context_iteration(nullptr, TRUE);
  if (source && !woke) g_source_remove(source);
  return !window_->isClosed();
}

// MARK: Drags and the clipboard

std::shared_ptr<MCPasteboardBackend> MCGtkWindowHost::pasteboardBackend() { return clipboard_; }

bool MCGtkWindowHost::beginDraggingSession(const std::shared_ptr<MCDraggingSession>& session) {
  GtkNative* native = widget_ ? gtk_widget_get_native(widget_) : nullptr;
  GdkSurface* surface = native ? gtk_native_get_surface(native) : nullptr;
  if (!surface || !pointerDevice_) return false;
  auto* content = static_cast<GdkContentProvider*>(
      MCGtkClipboard::createContentProvider(session->draggingPasteboard()->pasteboardItems()));
  GdkDragAction actions = GDK_ACTION_COPY;
  const uint64_t mask = session->sourceOperationMask(MCDraggingContext::OutsideApplication);
  if (mask & MCDragOperationMove) actions = GdkDragAction(actions | GDK_ACTION_MOVE);
  if (mask & MCDragOperationLink) actions = GdkDragAction(actions | GDK_ACTION_LINK);
  double ox = 0, oy = 0;
  widgetOriginInSurface(ox, oy);
  const double x = pointer_.x + ox, y = window_->contentSize().height - pointer_.y + oy;
  GdkDrag* drag = gdk_drag_begin(surface, pointerDevice_, content, actions, x, y);
  g_object_unref(content);
  if (!drag) return false;

  // The drag icon: the first item's image, if it has one.
  if (!session->draggingItems().empty()) {
    for (const MCDraggingImageComponent& component : session->draggingItems().front().imageComponents()) {
      if (!component.contents) continue;
      cairo_surface_t* image = MCGraphicsContext::createSurfaceForImage(*component.contents);
      if (!image) break;
      const int w = cairo_image_surface_get_width(image), h = cairo_image_surface_get_height(image);
      GBytes* bytes = g_bytes_new(cairo_image_surface_get_data(image),
                                  gsize(cairo_image_surface_get_stride(image)) * gsize(h));
      GdkTexture* texture = gdk_memory_texture_new(w, h, GDK_MEMORY_DEFAULT, bytes,
                                                   gsize(cairo_image_surface_get_stride(image)));
      gtk_drag_icon_set_from_paintable(drag, GDK_PAINTABLE(texture), w / 2, h / 2);
      g_object_unref(texture);
      g_bytes_unref(bytes);
      cairo_surface_destroy(image);
      break;
    }
  }

  // The session lives until GDK says how the drag ended.
  auto* held = new std::shared_ptr<MCDraggingSession>(session);
  g_object_set_data_full(G_OBJECT(drag), "vesperon-session", held, +[](gpointer data) {
    delete static_cast<std::shared_ptr<MCDraggingSession>*>(data);
  });
  g_signal_connect(drag, "dnd-finished", G_CALLBACK(+[](GdkDrag* d, gpointer) {
                     auto* s = g_object_get_data(G_OBJECT(d), "vesperon-session");
                     auto* session = static_cast<std::shared_ptr<MCDraggingSession>*>(s);
                     const GdkDragAction action = gdk_drag_get_selected_action(d);
                     (*session)->endAtPoint((*session)->draggingLocation(),
                                            (action & GDK_ACTION_MOVE) ? MCDragOperationMove : MCDragOperationCopy);
                   }), nullptr);
  g_signal_connect(drag, "cancel", G_CALLBACK(+[](GdkDrag* d, GdkDragCancelReason, gpointer) {
                     auto* s = g_object_get_data(G_OBJECT(d), "vesperon-session");
                     auto* session = static_cast<std::shared_ptr<MCDraggingSession>*>(s);
                     (*session)->endAtPoint((*session)->draggingLocation(), MCDragOperationNone);
                   }), nullptr);
  session->beginAtPoint(window_->convertPointToScreen(pointer_));
  endDragInFlight();
  dragSession_ = session;
  dragInFlight_ = drag;
  g_object_add_weak_pointer(G_OBJECT(drag), reinterpret_cast<gpointer*>(&dragInFlight_));
  g_object_unref(drag);
  return true;
}

void MCGtkWindowHost::endDragInFlight() {
  // Ended here, cancelled: GDK may tell how it ended only after the view that began it is gone.
  auto session = dragSession_.lock();
  const bool inTheAir = session && !session->hasEnded();
  if (inTheAir) session->endAtPoint(session->draggingLocation(), MCDragOperationNone);
  dragSession_.reset();
  if (dragInFlight_) {
    g_object_remove_weak_pointer(G_OBJECT(dragInFlight_), reinterpret_cast<gpointer*>(&dragInFlight_));
    if (inTheAir) gdk_drag_drop_done(dragInFlight_, FALSE);
    dragInFlight_ = nullptr;
  }
}

// MARK: Context menus

namespace {

// Appends the items to `menu`, a section per run between separators; each item is the action
// "context.item<index into items>".
/// Item views by the id of their place in the popover.
using MenuViews = std::vector<std::pair<std::string, std::shared_ptr<MCView>>>;

void appendMenuItems(GMenu* menu, const MCMenu& source, std::vector<MCMenuItem>& items, MenuViews& views,
                     GSimpleActionGroup* actions) {
  GMenu* section = g_menu_new();
  auto flush = [&] {
    if (g_menu_model_get_n_items(G_MENU_MODEL(section)) > 0) g_menu_append_section(menu, nullptr, G_MENU_MODEL(section));
    g_object_unref(section);
    section = g_menu_new();
  };
  for (const MCMenuItem& item : source.items()) {
    if (item.separator) {
      flush();
      continue;
    }
    if (item.submenu) {
      GMenu* inner = g_menu_new();
      appendMenuItems(inner, *item.submenu, items, views, actions);
      g_menu_append_submenu(section, item.title.c_str(), G_MENU_MODEL(inner));
      g_object_unref(inner);
      continue;
    }
    if (item.view) {
      // A place the popover fills with the view's widget (gtk_popover_menu_add_child).
      const std::string id = "view" + std::to_string(views.size());
      views.emplace_back(id, item.view);
      GMenuItem* entry = g_menu_item_new(nullptr, nullptr);
      g_menu_item_set_attribute(entry, "custom", "s", id.c_str());
      g_menu_append_item(section, entry);
      g_object_unref(entry);
      continue;
    }
    const std::string name = "item" + std::to_string(items.size());
    items.push_back(item);
    GSimpleAction* action = g_simple_action_new(name.c_str(), nullptr);
    g_simple_action_set_enabled(action, item.enabled);
    g_action_map_add_action(G_ACTION_MAP(actions), G_ACTION(action));
    g_object_unref(action);
    GMenuItem* entry = g_menu_item_new(item.title.c_str(), ("context." + name).c_str());
    if (!item.iconName.empty()) {
      GIcon* icon = nullptr;
      if (item.iconName.front() == '/') {
        GFile* file = g_file_new_for_path(item.iconName.c_str());
        icon = g_file_icon_new(file);
        g_object_unref(file);
      } else {
        icon = g_themed_icon_new(item.iconName.c_str());
      }
      g_menu_item_set_icon(entry, icon);
      g_object_unref(icon);
    }
    g_menu_append_item(section, entry);
    g_object_unref(entry);
  }
  flush();
  g_object_unref(section);
}

}  // namespace

bool MCGtkWindowHost::popUpContextMenu(const MCMenu& menu, MCPoint location,
                                       std::function<void(const MCMenuItem&)> chosen) {
  if (!widget_) return false;
  removeContextMenu();
  contextItems_.clear();
  contextChosen_ = std::move(chosen);
  GSimpleActionGroup* actions = g_simple_action_group_new();
  GMenu* model = g_menu_new();
  MenuViews views;
  appendMenuItems(model, menu, contextItems_, views, actions);
  for (std::size_t i = 0; i < contextItems_.size(); ++i) {
    GAction* action = g_action_map_lookup_action(G_ACTION_MAP(actions), ("item" + std::to_string(i)).c_str());
    g_signal_connect(action, "activate", G_CALLBACK(+[](GSimpleAction* action, GVariant*, gpointer data) {
                       auto* self = static_cast<MCGtkWindowHost*>(data);
                       const std::string name = g_action_get_name(G_ACTION(action));
                       const std::size_t index = std::stoul(name.substr(4));
                       if (index >= self->contextItems_.size() || !self->contextChosen_) return;
                       std::shared_ptr<MCGtkWindowHost> keep = self->shared_from_this();
                       const MCMenuItem item = self->contextItems_[index];
                       auto chosen = self->contextChosen_;
                       chosen(item);
                     }),
                     this);
  }
  gtk_widget_insert_action_group(widget_, "context", G_ACTION_GROUP(actions));
  g_object_unref(actions);
  contextMenu_ = gtk_popover_menu_new_from_model(G_MENU_MODEL(model));
  g_object_unref(model);
  gtk_widget_set_parent(contextMenu_, widget_);
  gtk_popover_set_has_arrow(GTK_POPOVER(contextMenu_), FALSE);
  for (const auto& [id, view] : views) {
    auto itemWindow = MCWindow::create(view->frame().size);
    view->setFrameOrigin({0, 0});
    itemWindow->contentView()->addSubview(view);
    // A host takes the desktop clipboard for the general pasteboard; this one is part of the
    // window's menu, whose host keeps it.
    auto general = MCPasteboard::generalPasteboard();
    const std::shared_ptr<MCPasteboardBackend> backend = general->backend();
    auto host = MCGtkWindowHost::create(itemWindow);
    general->setBackend(backend);
    GtkWidget* child = host->widget();
    gtk_widget_set_hexpand(child, FALSE);
    gtk_widget_set_vexpand(child, FALSE);
    gtk_widget_set_size_request(child, int(std::lround(view->frame().size.width)),
                                int(std::lround(view->frame().size.height)));
    gtk_popover_menu_add_child(GTK_POPOVER_MENU(contextMenu_), child, id.c_str());
    contextViews_.push_back(view);
    contextViewHosts_.push_back(std::move(host));
  }
  contextMenuModel_ = menu;
  contextMenuModel_.setTrackingCanceller([this] {
    if (contextMenu_) gtk_popover_popdown(GTK_POPOVER(contextMenu_));
  });
  contextMenuModel_.setEnclosingMenuOfItemViews(&contextMenuModel_);
  g_signal_connect(contextMenu_, "closed", G_CALLBACK(+[](GtkPopover*, gpointer data) {
                     static_cast<MCGtkWindowHost*>(data)->contextMenuClosed();
                   }),
                   this);
  const GdkRectangle at{static_cast<int>(location.x), static_cast<int>(window_->contentSize().height - location.y), 1, 1};
  gtk_popover_set_pointing_to(GTK_POPOVER(contextMenu_), &at);
  gtk_popover_popup(GTK_POPOVER(contextMenu_));
  return true;
}

void MCGtkWindowHost::contextMenuClosed() {
  contextMenuModel_.setTrackingCanceller(nullptr);
  contextMenuModel_.setEnclosingMenuOfItemViews(nullptr);
}

void MCGtkWindowHost::removeContextMenu() {
  contextMenuClosed();
  for (const auto& view : contextViews_)
    if (view->window() && view->superview() == view->window()->contentView().get()) view->removeFromSuperview();
  contextViews_.clear();
  if (contextMenu_) {
    gtk_widget_unparent(contextMenu_);
    contextMenu_ = nullptr;
  }
  // A view's widget and its host hold each other until the widget is disposed, which leaving the
  // popover does not do.
  for (const auto& host : contextViewHosts_)
    if (GtkWidget* child = host->widget()) g_object_run_dispose(G_OBJECT(child));
  contextViewHosts_.clear();
}

void MCGtkWindowHost::accessibilityDidChange(MCView& view) {
  if (!widget_) return;
  const std::string label = view.accessibilityLabel();
  const std::string value = view.accessibilityValue();
  gtk_accessible_update_property(GTK_ACCESSIBLE(widget_), GTK_ACCESSIBLE_PROPERTY_LABEL, label.c_str(),
                                 GTK_ACCESSIBLE_PROPERTY_DESCRIPTION, value.c_str(), -1);
}
