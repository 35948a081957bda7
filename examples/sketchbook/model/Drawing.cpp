#include "examples/sketchbook/model/Drawing.h"

#include "examples/sketchbook/model/Shapes.h"

#include <algorithm>

using namespace ZKFoundationExtensions;

namespace sketchbook {

namespace {

NSRef<NSArray> shapesAt(const NSRef<NSArray>& shapes, const NSRef<NSIndexSet>& indexes) {
  const auto result = NSMake<NSMutableArray>();
  for (const NSUInteger index : indexes) result->addObject(shapes[index]);
  return result->copy();
}

void giveUniqueName(Shape& shape, const NSRef<NSString>& name, const NSRef<NSArray>& others) {
  shape.name = uniqueStringWithString_forStringArray_options(
      name, others->valueForKey(u"name"_ns).as<NSArray>(), ZKNamingOptions{});
}

void moveBy(Shape& shape, NSPoint vector) { shape.frame += vector; }

}  // namespace

const NSRef<NSString>& DrawingDidChange() { return NSConstantString<u"DrawingDidChange">(); }

NSRef<NSArray> changedShapes(const NSRef<NSArray>& shapes, const NSRef<NSIndexSet>& indexes,
                             const std::function<void(Shape&)>& change) {
  const auto result = shapes->mutableCopy();
  for (const NSUInteger index : indexes) {
    const auto shape = copyOf(shapes[index].as<Shape>());
    change(*shape);
    result->replaceObjectAtIndex_withObject(index, shape);
  }
  return result->copy();
}

NSRef<NSArray> Drawing::selectedShapes() const { return shapesAt(_state.shapes, _state.selection); }

NSRef<NSMutableArray> Drawing::otherShapes() const {
  auto result = NSMake<NSMutableArray>();
  for (NSUInteger index = 0; index < _state.shapes->count(); ++index) {
    if (!_state.selection->containsIndex(index)) result->addObject(_state.shapes[index]);
  }
  return result;
}

NSUInteger Drawing::indexOfShapeAt(NSPoint point, double tolerance) const {
  for (NSUInteger index = _state.shapes->count(); index-- > 0;) {
    if (_state.shapes[index].as<Shape>()->isHit(point, tolerance)) return index;
  }
  return NSNotFound;
}

NSRect Drawing::selectedFrame() const { return frameAround(selectedShapes()); }

void Drawing::select(const NSRef<NSIndexSet>& indexes) {
  _state.selection = indexes->copy();
  noteChange();
}

void Drawing::setShapes(const NSRef<NSArray>& shapes) {
  _past.clear();
  _future.clear();
  _state = {.shapes = shapes->copy(), .selection = NSMake<NSIndexSet>(), .action = nullptr};
  noteChange();
}

void Drawing::perform(const NSRef<NSString>& action, const NSRef<NSArray>& shapes,
                      const NSRef<NSIndexSet>& selection) {
  _future.clear();
  _state.action = action;
  _past.push_back(std::exchange(
      _state, {.shapes = shapes->copy(), .selection = selection->copy(), .action = nullptr}));
  noteChange();
}

void Drawing::amend(const NSRef<NSArray>& shapes) {
  _state.shapes = shapes->copy();
  noteChange();
}

void Drawing::revoke() {
  undo();
  if (!_future.empty()) _future.pop_back();
}

void Drawing::step(std::vector<State>& from, std::vector<State>& to) {
  if (from.empty()) return;
  State next = std::move(from.back());
  from.pop_back();
  _state.action = std::exchange(next.action, nullptr);
  to.push_back(std::exchange(_state, std::move(next)));
  noteChange();
}

void Drawing::noteChange() {
  enqueueNotificationName_object_postingStyle(NSNotificationQueue::defaultQueue(),
                                              DrawingDidChange(), self(), NSPostASAP);
}

void Drawing::changeSelected(const NSRef<NSString>& action,
                             const std::function<void(Shape&)>& change) {
  if (_state.selection->count() == 0) return;
  perform(action, changedShapes(_state.shapes, _state.selection, change), _state.selection);
}

void Drawing::add(const NSRef<NSString>& action, const NSRef<NSArray>& shapes) {
  const auto all = _state.shapes->mutableCopy();
  for (const auto& shape : shapes->each<Shape>()) {
    giveUniqueName(*shape, shape->name, all);
    all->addObject(shape);
  }
  perform(action, all, NSMake<NSIndexSet>(NSRange{_state.shapes->count(), shapes->count()}));
}

void Drawing::rename(const NSRef<NSString>& name) {
  if (_state.selection->count() == 0 || isEmptyString(name)) return;
  const auto all = _state.shapes->mutableCopy();
  for (const NSUInteger index : _state.selection) {
    const auto shape = copyOf(all[index].as<Shape>());
    const auto others = all->mutableCopy();
    others->removeObjectAtIndex(index);
    giveUniqueName(*shape, name, others);
    all->replaceObjectAtIndex_withObject(index, shape);
  }
  perform(u"Rename"_ns, all, _state.selection);
}

void Drawing::removeSelected(const NSRef<NSString>& action) {
  if (_state.selection->count() == 0) return;
  perform(action, otherShapes(), NSMake<NSIndexSet>());
}

void Drawing::bringToFront() {
  if (_state.selection->count() == 0) return;
  const auto all = otherShapes();
  const NSRange front{all->count(), _state.selection->count()};
  all->addObjectsFromArray(selectedShapes());
  perform(u"Bring to Front"_ns, all, NSMake<NSIndexSet>(front));
}

void Drawing::align(Alignment alignment) {
  const NSRect around = selectedFrame();
  changeSelected(u"Align"_ns, [&](Shape& shape) {
    NSRect& frame = shape.frame;
    switch (alignment) {
      case Alignment::left:
        frame.origin.x = NSMinX(around);
        break;
      case Alignment::center:
        frame.origin.x = NSMidX(around) - frame.size.width / 2;
        break;
      case Alignment::right:
        frame.origin.x = NSMaxX(around) - frame.size.width;
        break;
      case Alignment::top:
        frame.origin.y = NSMinY(around);
        break;
      case Alignment::middle:
        frame.origin.y = NSMidY(around) - frame.size.height / 2;
        break;
      case Alignment::bottom:
        frame.origin.y = NSMaxY(around) - frame.size.height;
        break;
    }
  });
}

void Drawing::distribute(bool vertically) {
  const NSUInteger count = _state.selection->count();
  if (count < 3) return;
  const auto start = [=](const NSRect& frame) {
    return vertically ? frame.origin.y : frame.origin.x;
  };
  const auto length = [=](const NSRect& frame) {
    return vertically ? frame.size.height : frame.size.width;
  };
  // What is selected, in the order in which it stands on the sheet.
  std::vector<NSUInteger> order(_state.selection->begin(), {});
  const auto frameOf = [&](NSUInteger index) { return _state.shapes[index].as<Shape>()->frame; };
  std::ranges::stable_sort(order, {}, [&](NSUInteger index) { return start(frameOf(index)); });
  const NSRect around = selectedFrame();
  double gap = length(around);
  for (const NSUInteger index : order) gap -= length(frameOf(index));
  gap /= static_cast<double>(count - 1);

  const auto all = _state.shapes->mutableCopy();
  double next = start(around);
  for (const NSUInteger index : order) {
    const auto shape = copyOf(all[index].as<Shape>());
    (vertically ? shape->frame.origin.y : shape->frame.origin.x) = next;
    next += length(shape->frame) + gap;
    all->replaceObjectAtIndex_withObject(index, shape);
  }
  perform(u"Distribute"_ns, all, _state.selection);
}

void Drawing::duplicate() {
  const auto copies = NSMake<NSMutableArray>();
  for (const auto& shape : selectedShapes()->each<Shape>()) {
    const auto copy = copyOf(shape);
    moveBy(*copy, {10, 10});
    copies->addObject(copy);
  }
  if (copies->count() > 0) add(u"Duplicate"_ns, copies);
}

NSRef<NSData> Drawing::copiedData() const {
  return _state.selection->count() == 0 ? nullptr : dataWithShapes(selectedShapes());
}

bool Drawing::paste(const NSRef<NSData>& data, NSRef<NSError>* error) {
  const auto pasted = shapesWithData(data, error);
  if (!pasted) return false;
  for (const auto& shape : pasted->each<Shape>()) {
    // Not exactly over what was copied, or over what was pasted before.
    const auto lies = [&](const NSRef<NSObject>& other) {
      return other.cast<Shape>()->frame == shape->frame;
    };
    while (std::ranges::any_of(_state.shapes->objects(), lies)) moveBy(*shape, {10, 10});
  }
  add(u"Paste"_ns, pasted);
  return true;
}

}  // namespace sketchbook
