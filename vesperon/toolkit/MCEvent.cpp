#include <vesperon/toolkit/MCEvent.h>

MCEvent MCEvent::mouseEvent(MCEventType type, MCPoint locationInWindow, uint64_t modifierFlags, int clickCount,
                            double timestamp) {
  MCEvent event;
  event.type_ = type;
  event.location_ = locationInWindow;
  event.modifierFlags_ = modifierFlags;
  event.clickCount_ = clickCount;
  event.timestamp_ = timestamp;
  return event;
}

MCEvent MCEvent::keyEvent(MCEventType type, std::u32string characters, std::u32string charactersIgnoringModifiers,
                          uint64_t modifierFlags, uint16_t keyCode, bool isARepeat, double timestamp) {
  MCEvent event;
  event.type_ = type;
  event.characters_ = std::move(characters);
  event.charactersIgnoringModifiers_ = std::move(charactersIgnoringModifiers);
  event.modifierFlags_ = modifierFlags;
  event.keyCode_ = keyCode;
  event.isARepeat_ = isARepeat;
  event.timestamp_ = timestamp;
  return event;
}

MCEvent MCEvent::scrollWheelEvent(MCPoint locationInWindow, double deltaX, double deltaY, bool precise,
                                  uint64_t modifierFlags, double timestamp) {
  MCEvent event;
  event.type_ = MCEventType::ScrollWheel;
  event.location_ = locationInWindow;
  event.scrollingDeltaX_ = deltaX;
  event.scrollingDeltaY_ = deltaY;
  event.preciseScrolling_ = precise;
  event.modifierFlags_ = modifierFlags;
  event.timestamp_ = timestamp;
  return event;
}

MCEvent MCEvent::magnifyEvent(MCPoint locationInWindow, double magnification, double timestamp) {
  MCEvent event;
  event.type_ = MCEventType::Magnify;
  event.location_ = locationInWindow;
  event.magnification_ = magnification;
  event.timestamp_ = timestamp;
  return event;
}

MCEvent MCEvent::periodicEvent(double timestamp) {
  MCEvent event;
  event.type_ = MCEventType::Periodic;
  event.timestamp_ = timestamp;
  return event;
}

bool MCEvent::isMouseEvent() const {
  switch (type_) {
    case MCEventType::LeftMouseDown:
    case MCEventType::LeftMouseUp:
    case MCEventType::RightMouseDown:
    case MCEventType::RightMouseUp:
    case MCEventType::MouseMoved:
    case MCEventType::LeftMouseDragged:
    case MCEventType::RightMouseDragged:
    case MCEventType::OtherMouseDown:
    case MCEventType::OtherMouseUp:
    case MCEventType::OtherMouseDragged:
      return true;
    default:
      return false;
  }
}
