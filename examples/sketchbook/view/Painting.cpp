#include "examples/sketchbook/view/Painting.h"

#include "examples/sketchbook/model/Shapes.h"

namespace sketchbook {

namespace {

constexpr int measuredSize = 100;

void paintPath(QPainter& painter, const Path& path) {
  const auto points = path.points();
  QPainterPath curve(toQt(points[0]));
  for (std::size_t k = 0; k + 3 < points.size(); k += 3) {
    curve.cubicTo(toQt(points[k + 1]), toQt(points[k + 2]), toQt(points[k + 3]));
  }
  painter.drawPath(curve);
}

void paintLabel(QPainter& painter, const Label& label) {
  painter.setFont(labelFont());
  for (const auto& line : label.lines()) {
    const double width = QFontMetricsF(painter.font()).horizontalAdvance(toQt(line.text));
    if (width == 0) continue;
    painter.save();
    painter.translate(toQt(line.baseline));
    painter.scale(line.width / width, label.fontSize() / measuredSize);
    painter.drawText(QPointF(), toQt(line.text));
    painter.restore();
  }
}

}  // namespace

QFont labelFont() {
  QFont font(QStringLiteral("sans-serif"));
  font.setPixelSize(measuredSize);
  // As wide in every size.
  font.setHintingPreference(QFont::PreferNoHinting);
  return font;
}

void measureLabels() {
  Label::widthOfLine = [](const NSRef<NSString>& line) {
    const double height = measuredSize / Label::fontSizeOfHeight;
    return QFontMetricsF(labelFont()).horizontalAdvance(toQt(line)) / height;
  };
}

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
  // A picture of a long line may be as thin as one.
  const QSize size = (area.size() * scale).toSize().expandedTo({1, 1});
  QImage image(size, QImage::Format_RGB32);
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
