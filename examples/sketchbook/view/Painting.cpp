#include "examples/sketchbook/view/Painting.h"

#include "examples/sketchbook/model/Shapes.h"
#include "examples/sketchbook/view/Bridge.h"

#include <QPainterPath>

namespace sketchbook {

namespace {

void paintPath(QPainter& painter, const Path& path) {
  const auto points = path.points();
  QPainterPath curve(toQt(points[0]));
  for (std::size_t k = 0; k + 3 < points.size(); k += 3) {
    curve.cubicTo(toQt(points[k + 1]), toQt(points[k + 2]), toQt(points[k + 3]));
  }
  painter.drawPath(curve);
}

void paintLabel(QPainter& painter, const Label& label) {
  // As the SVG picture has it.
  const double size = label.lineHeight() * 0.75;
  QFont font(QStringLiteral("sans-serif"));
  font.setPixelSize(std::max(1, static_cast<int>(size)));
  painter.setFont(font);
  QPointF baseline = toQt(label.frame.origin + NSPoint(0, size));
  for (const auto& line : label.lines()->each<NSString>()) {
    painter.drawText(baseline, toQt(line));
    baseline.ry() += label.lineHeight();
  }
}

}  // namespace

void paintShape(QPainter& painter, const Shape& shape) {
  const QColor colour = colourOf(shape.colour);
  painter.setPen(QPen(colour, Shape::lineWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.setBrush(Qt::NoBrush);
  if (const auto* path = dynamic_cast<const Path*>(&shape)) return paintPath(painter, *path);
  if (const auto* label = dynamic_cast<const Label*>(&shape)) return paintLabel(painter, *label);
  QColor inside = colour;
  inside.setAlphaF(0.25F);
  painter.setBrush(inside);
  painter.drawRect(toQt(shape.frame));
}

QImage pictureOfShapes(const NSRef<NSArray>& shapes, const Progress& progress) {
  const QRectF area = toQt(pictureArea(shapes));
  constexpr double largest = 8192;
  const double scale = std::min(2.0, largest / std::max(area.width(), area.height()));
  QImage image((area.size() * scale).toSize(), QImage::Format_RGB32);
  image.fill(Qt::white);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.scale(scale, scale);
  painter.translate(-area.topLeft());
  const bool isComplete =
      forEachShape(shapes, progress, [&](const Shape& shape) { paintShape(painter, shape); });
  return isComplete ? image : QImage();
}

}  // namespace sketchbook
