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

/// A text whose lines fill the frame: each is as high as the others, and the longest is as wide as
/// it.
class Label : public Shape {
 public:
  /// The size of letters, of the height of a line.
  static constexpr double fontSizeOfHeight = 0.75;
  /// Measures a line of text, in heights of a line. Guesses, until the window sets it, which knows
  /// fonts.
  static double (*widthOfLine)(const NSRef<NSString>& line);

  Label(const NSRef<NSString>& aName, NSRect aFrame, const NSRef<NSString>& text)
      : Shape(aName, aFrame), _text(text->copy()), _lines(linesOf(_text)) {}
  /// Makes a label with lines of that height, as large as its text.
  Label(const NSRef<NSString>& aName, NSPoint origin, double lineHeight,
        const NSRef<NSString>& text);
  explicit Label(const NSRef<NSCoder>& coder);

  NSRef<NSString> text() const override { return _text; }
  /// Keeps the height of a line; the frame becomes as large as the text.
  void setText(const NSRef<NSString>& text) override;
  /// Gives the height of a line: the frame's over the number of lines.
  double lineHeight() const { return frame.size.height / static_cast<double>(_lines->count()); }
  double fontSize() const { return lineHeight() * fontSizeOfHeight; }

  struct Line {
    NSRef<NSString> text;
    /// Where it starts.
    NSPoint baseline;
    /// The text is stretched to it.
    double width;
  };
  /// Gives the lines that have a text.
  std::vector<Line> lines() const;

  NSRef<NSString> svgElement() const override;
  void encodeWithCoder(const NSRef<NSCoder>& coder) const override;

 protected:
  NSRef<Shape> shallowCopy() const override { return NSMake<Label>(*this); }

 private:
  static NSRef<NSArray> linesOf(const NSRef<NSString>& text) {
    return text->componentsSeparatedByString(u"\n"_ns);
  }

  NSRef<NSString> _text;
  NSRef<NSArray> _lines;
};

/// Archives shapes as one object.
NSRef<NSData> dataWithShapes(const NSRef<NSArray>& shapes);
/// Reads shapes from bytes that may be anything; nil, and the reason, for those that are none.
NSRef<NSArray> shapesWithData(const NSRef<NSData>& data, NSRef<NSError>* error);

}  // namespace sketchbook
