#include "MCGtkAccessibleElements.h"

#include <vesperon/toolkit/MCWindow.h>

#include <gtk/gtk.h>

#include <cmath>
#include <cstring>

// A widget that only stands for an element: it draws nothing and is never the target of input.
struct VesperonAccessibleElement {
  GtkWidget parent;
};
struct VesperonAccessibleElementClass {
  GtkWidgetClass parentClass;
};
G_DEFINE_TYPE(VesperonAccessibleElement, vesperon_accessible_element, GTK_TYPE_WIDGET)

static void vesperon_accessible_element_class_init(VesperonAccessibleElementClass*) {}
static void vesperon_accessible_element_init(VesperonAccessibleElement* self) {
  GtkWidget* widget = GTK_WIDGET(self);
  gtk_widget_set_can_target(widget, FALSE);
  gtk_widget_set_can_focus(widget, FALSE);
  gtk_widget_set_focusable(widget, FALSE);
}

namespace {

GtkAccessibleRole gtkRole(MCAccessibilityRole role) {
  switch (role) {
    case MCAccessibilityRole::Button: return GTK_ACCESSIBLE_ROLE_BUTTON;
    case MCAccessibilityRole::CheckBox: return GTK_ACCESSIBLE_ROLE_CHECKBOX;
    case MCAccessibilityRole::RadioButton: return GTK_ACCESSIBLE_ROLE_RADIO;
    case MCAccessibilityRole::Slider: return GTK_ACCESSIBLE_ROLE_SLIDER;
    case MCAccessibilityRole::Link: return GTK_ACCESSIBLE_ROLE_LINK;
    case MCAccessibilityRole::StaticText: return GTK_ACCESSIBLE_ROLE_LABEL;
    case MCAccessibilityRole::Image: return GTK_ACCESSIBLE_ROLE_IMG;
    case MCAccessibilityRole::Group: return GTK_ACCESSIBLE_ROLE_GROUP;
    case MCAccessibilityRole::Cell: return GTK_ACCESSIBLE_ROLE_GRID_CELL;
  }
  return GTK_ACCESSIBLE_ROLE_GENERIC;
}

}  // namespace

MCGtkAccessibleElements::MCGtkAccessibleElements(GtkWidget* hostWidget, std::weak_ptr<MCWindow> window)
    : hostWidget_(hostWidget), window_(std::move(window)) {
  if (const char* a11y = g_getenv("GTK_A11Y"); a11y && std::strcmp(a11y, "none") == 0) return;
  cancellable_ = g_cancellable_new();
  g_dbus_proxy_new_for_bus(G_BUS_TYPE_SESSION, G_DBUS_PROXY_FLAGS_DO_NOT_AUTO_START, nullptr, "org.a11y.Bus",
                           "/org/a11y/bus", "org.a11y.Status", static_cast<GCancellable*>(cancellable_),
                           reinterpret_cast<GAsyncReadyCallback>(&MCGtkAccessibleElements::statusReady), this);
}

MCGtkAccessibleElements::~MCGtkAccessibleElements() {
  if (cancellable_) {
    g_cancellable_cancel(static_cast<GCancellable*>(cancellable_));
    g_object_unref(cancellable_);
  }
  if (status_) {
    g_signal_handlers_disconnect_by_data(status_, this);
    g_object_unref(status_);
  }
  if (idleSource_) g_source_remove(idleSource_);
  for (Proxy& proxy : proxies_) gtk_widget_unparent(proxy.widget);
}

void MCGtkAccessibleElements::statusReady(void*, void* result, void* data) {
  GError* error = nullptr;
  GDBusProxy* status = g_dbus_proxy_new_for_bus_finish(static_cast<GAsyncResult*>(result), &error);
  if (!status) {
    // Cancelled: `data` is gone. Any other error: no bus, so nobody listens.
    g_error_free(error);
    return;
  }
  auto* self = static_cast<MCGtkAccessibleElements*>(data);
  self->status_ = status;
  g_signal_connect(status, "g-properties-changed", G_CALLBACK(&MCGtkAccessibleElements::statusChanged), self);
  self->readStatus();
}

void MCGtkAccessibleElements::statusChanged(void*, void*, void*, void* data) {
  static_cast<MCGtkAccessibleElements*>(data)->readStatus();
}

void MCGtkAccessibleElements::readStatus() {
  GVariant* enabled = g_dbus_proxy_get_cached_property(static_cast<GDBusProxy*>(status_), "IsEnabled");
  GVariant* screenReader = g_dbus_proxy_get_cached_property(static_cast<GDBusProxy*>(status_), "ScreenReaderEnabled");
  const bool listened = (enabled && g_variant_get_boolean(enabled)) || (screenReader && g_variant_get_boolean(screenReader));
  if (enabled) g_variant_unref(enabled);
  if (screenReader) g_variant_unref(screenReader);
  if (listened == listenedTo_) return;
  listenedTo_ = listened;
  // Made as soon as someone listens; let go when nobody does.
  update();
}

void MCGtkAccessibleElements::setNeedsUpdate() {
  if (listenedTo_ && !idleSource_)
    idleSource_ = g_idle_add_full(G_PRIORITY_LOW, &MCGtkAccessibleElements::idleUpdate, this, nullptr);
}

int MCGtkAccessibleElements::idleUpdate(void* data) {
  auto* self = static_cast<MCGtkAccessibleElements*>(data);
  self->idleSource_ = 0;
  self->update();
  return G_SOURCE_REMOVE;
}

void MCGtkAccessibleElements::update() {
  std::vector<MCAccessibilityElement> elements;
  double height = 0;
  if (auto window = window_.lock(); window && listenedTo_) {
    elements = MCAccessibilityElement::elementsOfWindow(*window);
    height = window->contentSize().height;
  }
  bool moved = false;
  std::size_t i = 0;
  for (MCAccessibilityElement& element : elements) {
    // GTK's units have y growing down from the widget's top.
    element.frame.origin.y = height - element.frame.origin.y - element.frame.size.height;
    if (i < proxies_.size() && proxies_[i].element.role != element.role) {
      // A widget's role is fixed when it is made.
      gtk_widget_unparent(proxies_[i].widget);
      proxies_.erase(proxies_.begin() + std::ptrdiff_t(i));
    }
    if (i == proxies_.size() || proxies_[i].element.role != element.role) {
      Proxy proxy;
      proxy.widget = GTK_WIDGET(g_object_new(vesperon_accessible_element_get_type(), "accessible-role",
                                             gtkRole(element.role), nullptr));
      gtk_widget_set_parent(proxy.widget, hostWidget_);
      apply(proxy, element, true);
      proxies_.insert(proxies_.begin() + std::ptrdiff_t(i), proxy);
      moved = true;
    } else if (!(proxies_[i].element == element)) {
      moved = moved || !MCEqualRects(proxies_[i].element.frame, element.frame);
      apply(proxies_[i], element, false);
    }
    ++i;
  }
  while (proxies_.size() > elements.size()) {
    gtk_widget_unparent(proxies_.back().widget);
    proxies_.pop_back();
  }
  if (moved) gtk_widget_queue_allocate(hostWidget_);
}

void MCGtkAccessibleElements::apply(Proxy& proxy, const MCAccessibilityElement& element, bool fresh) {
  GtkAccessible* accessible = GTK_ACCESSIBLE(proxy.widget);
  const MCAccessibilityElement& was = proxy.element;
  if (fresh || was.label != element.label || was.value != element.value) {
    gtk_accessible_update_property(accessible, GTK_ACCESSIBLE_PROPERTY_LABEL, element.label.c_str(),
                                   GTK_ACCESSIBLE_PROPERTY_DESCRIPTION, element.value.c_str(), -1);
  }
  if (element.role == MCAccessibilityRole::Slider &&
      (fresh || was.minimum != element.minimum || was.maximum != element.maximum || was.current != element.current ||
       was.value != element.value)) {
    gtk_accessible_update_property(accessible, GTK_ACCESSIBLE_PROPERTY_VALUE_MIN, element.minimum,
                                   GTK_ACCESSIBLE_PROPERTY_VALUE_MAX, element.maximum, GTK_ACCESSIBLE_PROPERTY_VALUE_NOW,
                                   element.current, GTK_ACCESSIBLE_PROPERTY_VALUE_TEXT, element.value.c_str(), -1);
  }
  if (fresh || was.enabled != element.enabled)
    gtk_accessible_update_state(accessible, GTK_ACCESSIBLE_STATE_DISABLED, gboolean(!element.enabled), -1);
  if (element.role == MCAccessibilityRole::Cell) {
    if (fresh || was.checked != element.checked)
      gtk_accessible_update_state(accessible, GTK_ACCESSIBLE_STATE_SELECTED, gboolean(element.checked.value_or(false)),
                                  -1);
  } else if (fresh || was.checked != element.checked) {
    // A button is pressed, a check box or choice checked.
    const GtkAccessibleState state = element.role == MCAccessibilityRole::Button ? GTK_ACCESSIBLE_STATE_PRESSED
                                                                                   : GTK_ACCESSIBLE_STATE_CHECKED;
    if (element.checked)
      gtk_accessible_update_state(accessible, state,
                                  *element.checked ? GTK_ACCESSIBLE_TRISTATE_TRUE : GTK_ACCESSIBLE_TRISTATE_FALSE, -1);
    else
      gtk_accessible_reset_state(accessible, state);
  }
  proxy.element = element;
}

void MCGtkAccessibleElements::allocate() {
  for (const Proxy& proxy : proxies_) {
    int minimum = 0, natural = 0;
    gtk_widget_measure(proxy.widget, GTK_ORIENTATION_HORIZONTAL, -1, &minimum, &natural, nullptr, nullptr);
    gtk_widget_measure(proxy.widget, GTK_ORIENTATION_VERTICAL, -1, &minimum, &natural, nullptr, nullptr);
    const MCRect& f = proxy.element.frame;
    GtkAllocation allocation{int(std::lround(f.origin.x)), int(std::lround(f.origin.y)),
                             std::max(0, int(std::lround(f.size.width))), std::max(0, int(std::lround(f.size.height)))};
    gtk_widget_size_allocate(proxy.widget, &allocation, -1);
  }
}

std::vector<MCAccessibilityElement> MCGtkAccessibleElements::elements() const {
  std::vector<MCAccessibilityElement> elements;
  for (const Proxy& proxy : proxies_) elements.push_back(proxy.element);
  return elements;
}
