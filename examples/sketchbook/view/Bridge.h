#pragma once

#include "examples/sketchbook/model/Texts.h"

#include <QtWidgets>

#include <ZKFoundation/ZKFoundation.h>

// Qt's values for the library's and back, and what all widgets need of it.

namespace sketchbook {

inline QString toQt(const NSRef<NSString>& text) {
  const auto units = NSViewOf(text);
  return QString::fromUtf16(units.data(), static_cast<qsizetype>(units.size()));
}
inline NSRef<NSString> fromQt(const QString& text) {
  return NSMake<NSString>(text.toStdU16String());
}

inline QPointF toQt(NSPoint point) { return {point.x, point.y}; }
inline QRectF toQt(NSRect rect) {
  return {rect.origin.x, rect.origin.y, rect.size.width, rect.size.height};
}
inline NSPoint fromQt(QPointF point) { return {point.x(), point.y()}; }

inline QColor colourOf(NSInteger colour) { return QColor::fromRgb(static_cast<QRgb>(colour)); }

/// Gives a text of the program in the user's language.
inline QString inLanguage(const NSRef<NSString>& text) { return toQt(localized(text)); }

/// Dies with the widget that holds it. As a weak target it lets delayed blocks have the widget's
/// `this`.
struct WidgetLife : NSObject {};

}  // namespace sketchbook
