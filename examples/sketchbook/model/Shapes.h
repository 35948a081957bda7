#pragma once

#include "examples/sketchbook/model/Shape.h"

#include <span>
#include <vector>

namespace sketchbook {

class Rectangle : public Shape {
 public:
  Rectangle(const NSRef<NSString>& aName, NSRect aFrame) : Shape(aName, aFrame) {}
  explicit Rectangle(const NSRef<NSCoder>& coder) : Shape(coder) {}
  NSRef<NSString> svgElement() const override;

 protected:
  NSRef<Shape> shallowCopy() const override { return NSMake<Rectangle>(*this); }
};

/// A chain of cubic curves. Its points are kept as fractions of the frame, with which they move.
class Path : public Shape {
 public:
  /// Makes a smooth line through the points, of which there must be two.
  Path(const NSRef<NSString>& aName, std::span<const NSPoint> points);
  explicit Path(const NSRef<NSCoder>& coder);

  /// Gives the control points in the plane: 3 for each curve, after the first one.
  std::vector<NSPoint> points() const;

  /// The line itself is hit, not its frame.
  bool isHit(NSPoint point, double tolerance) const override;
  void flip(bool horizontally, bool vertically) override;
  NSRef<NSString> svgElement() const override;
  void encodeWithCoder(const NSRef<NSCoder>& coder) const override;

 protected:
  NSRef<Shape> shallowCopy() const override { return NSMake<Path>(*this); }

 private:
  std::vector<NSPoint> _fractions;
};

class Label : public Shape {
 public:
  Label(const NSRef<NSString>& aName, NSRect aFrame, const NSRef<NSString>& text)
      : Shape(aName, aFrame), _text(text->copy()) {}
  /// Makes a label with lines of that height, about as large as its text.
  Label(const NSRef<NSString>& aName, NSPoint origin, double lineHeight,
        const NSRef<NSString>& text);
  explicit Label(const NSRef<NSCoder>& coder);

  NSRef<NSString> text() const override { return _text; }
  /// Keeps the height of a line; the frame becomes about as large as the text.
  void setText(const NSRef<NSString>& text) override;
  /// Gives the height of a line: the frame's over the number of lines.
  double lineHeight() const;
  NSRef<NSArray> lines() const { return _text->componentsSeparatedByString(u"\n"_ns); }

  NSRef<NSString> svgElement() const override;
  void encodeWithCoder(const NSRef<NSCoder>& coder) const override;

 protected:
  NSRef<Shape> shallowCopy() const override { return NSMake<Label>(*this); }

 private:
  NSRef<NSString> _text;
};

/// Archives shapes as one object.
NSRef<NSData> dataWithShapes(const NSRef<NSArray>& shapes);
/// Reads shapes from bytes that may be anything; nil, and the reason, for those that are none.
NSRef<NSArray> shapesWithData(const NSRef<NSData>& data, NSRef<NSError>* error);

}  // namespace sketchbook
