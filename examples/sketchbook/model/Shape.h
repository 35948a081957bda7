#pragma once

#include <functional>

#include <ZKFoundation/ZKFoundation.h>

namespace sketchbook {

/// What a drawing is made of. Whoever makes a shape may set it up; a shape that is in a drawing is
/// never changed: the drawing makes a copy and changes that. So the states of a drawing share the
/// shapes in which they do not differ, and other threads may read them.
class Shape : public NSObject, public NSCoding, public ZKDeepObjectCopyingProtocol {
 public:
  static constexpr double lineWidth = 2;

  /// Whether a click at the point means the shape.
  virtual bool isHit(NSPoint point, double tolerance) const;
  /// Turns the inside around within the frame, as when a handle is dragged over the opposite edge.
  virtual void flip(bool /*horizontally*/, bool /*vertically*/) {}
  /// Gives the text that people read in the shape; nil for shapes without one.
  virtual NSRef<NSString> text() const { return nullptr; }
  virtual void setText(const NSRef<NSString>& /*text*/) {}
  /// Gives the shape's element of an SVG picture.
  virtual NSRef<NSString> svgElement() const = 0;

  void encodeWithCoder(const NSRef<NSCoder>& coder) const override;
  NSRef<NSObject> copyWithZone_refTable_copySpec_subCopySpec(NSZone* zone,
                                                             const NSRef<NSMapTable>& refTable,
                                                             ZKCopySpec copySpec,
                                                             ZKCopySpec subCopySpec) const override;
  ZKCopySpec copySpec(ZKCopySpec requested) const override { return requested; }
  /// Whether an archive of the one has what an archive of the other has.
  bool isEqual(const NSRef<NSObject>& other) const override;
  NSUInteger hash() const override { return name->hash(); }
  const NSPropertyTable& propertyTable() const override;

  NSRef<NSString> name;
  /// Where the shape leads, an address for the desktop; may be nil.
  NSRef<NSURL> link;
  NSRect frame;
  /// 0xRRGGBB
  NSInteger colour = 0x2B6CB0;

  /// Raises what an archive raises that cannot be read.
  [[noreturn]] static void refuse(const char* reason);

 protected:
  Shape(const NSRef<NSString>& aName, NSRect aFrame) : name(aName), frame(aFrame) {}
  explicit Shape(const NSRef<NSCoder>& coder);
  Shape(const Shape&) = default;

  virtual NSRef<Shape> shallowCopy() const = 0;
};

/// Gives the array with changed copies in the places of the indexes.
NSRef<NSArray> changedShapes(const NSRef<NSArray>& shapes, const NSRef<NSIndexSet>& indexes,
                             const std::function<void(Shape&)>& change);

/// Gives the smallest frame around all the shapes, empty without any.
NSRect frameAround(const NSRef<NSArray>& shapes);

/// Writes the signs that have a meaning in XML as entities, and leaves out those that it forbids.
NSRef<NSString> svgText(const NSRef<NSString>& text);

}  // namespace sketchbook
