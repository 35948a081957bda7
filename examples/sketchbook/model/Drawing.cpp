#include "examples/sketchbook/model/Drawing.h"

#include "examples/sketchbook/model/Shapes.h"

#include <algorithm>
#include <array>

using namespace ZKFoundationExtensions;

namespace sketchbook {

namespace {

constexpr NSPoint aside = {10, 10};

NSRef<NSMutableArray> namesOf(const NSRef<NSArray>& shapes) {
  return shapes->valueForKey(u"name"_ns).as<NSArray>()->mutableCopy();
}

// Gives the shape a name that is not taken, and takes it.
void giveUniqueName(Shape& shape, const NSRef<NSString>& name, const NSRef<NSMutableArray>& taken) {
  shape.name = uniqueStringWithString_forStringArray_options(name, taken, ZKNamingOptions{});
  taken->addObject(shape.name);
}

}  // namespace

const NSRef<NSString>& DrawingDidChange() { return NSConstantString<u"DrawingDidChange">(); }

NSRef<NSArray> Drawing::selectedShapes() const {
  return _state.shapes->objectsAtIndexes(_state.selection);
}

NSRef<NSMutableArray> Drawing::otherShapes() const {
  auto result = _state.shapes->mutableCopy();
  result->removeObjectsAtIndexes(_state.selection);
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
  const auto names = namesOf(_state.shapes);
  for (const auto& shape : shapes->each<Shape>()) giveUniqueName(*shape, shape->name, names);
  const auto all = _state.shapes->mutableCopy();
  all->addObjectsFromArray(shapes);
  perform(action, all, NSMake<NSIndexSet>(NSRange{_state.shapes->count(), shapes->count()}));
}

void Drawing::rename(const NSRef<NSString>& name) {
  if (isEmptyString(name)) return;
  const auto names = namesOf(otherShapes());
  changeSelected(u"Rename"_ns, [&](Shape& shape) { giveUniqueName(shape, name, names); });
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
  // The top of the sheet has the smallest y.
  constexpr std::array places = {ZKAlignLeft,   ZKAlignCenter, ZKAlignRight,
                                 ZKAlignBottom, ZKAlignCenter, ZKAlignTop};
  const auto place = places[static_cast<std::size_t>(alignment)];
  const NSRect around = selectedFrame();
  changeSelected(u"Align"_ns, [=](Shape& shape) {
    const NSPoint origin = ZKAlignRectangles(place, shape.frame, around);
    if (alignment <= Alignment::right) {
      shape.frame.origin.x = origin.x;
    } else {
      shape.frame.origin.y = origin.y;
    }
  });
}

void Drawing::distribute(bool vertically) {
  if (_state.selection->count() < 3) return;
  const auto start = vertically ? &NSPoint::y : &NSPoint::x;
  const auto length = vertically ? &NSSize::height : &NSSize::width;
  const NSRect around = selectedFrame();
  double gaps = around.size.*length;
  std::vector<Shape*> order;
  const auto shapes = changedShapes(_state.shapes, _state.selection, [&](Shape& shape) {
    gaps -= shape.frame.size.*length;
    order.push_back(&shape);
  });
  std::ranges::stable_sort(order, {}, [=](Shape* shape) { return shape->frame.origin.*start; });
  double next = around.origin.*start;
  for (Shape* const shape : order) {
    shape->frame.origin.*start = next;
    next += shape->frame.size.*length + gaps / static_cast<double>(order.size() - 1);
  }
  perform(u"Distribute"_ns, shapes, _state.selection);
}

void Drawing::duplicate() {
  if (_state.selection->count() == 0) return;
  const auto copies = copyObjectsWithCopySpec(selectedShapes(), 0);
  for (const auto& copy : copies->each<Shape>()) copy->frame += aside;
  add(u"Duplicate"_ns, copies);
}

NSRef<NSData> Drawing::copiedData() const {
  return _state.selection->count() == 0 ? nullptr : dataWithShapes(selectedShapes());
}

bool Drawing::paste(const NSRef<NSData>& data, NSRef<NSError>* error) {
  const auto pasted = shapesWithData(data, error);
  if (!pasted || pasted->count() == 0) return static_cast<bool>(pasted);
  // Not exactly over what was copied, or over what was pasted before.
  NSRect place = pasted[0].as<Shape>()->frame;
  const auto lies = [&](const auto& other) { return other.template cast<Shape>()->frame == place; };
  NSPoint vector = NSZeroPoint;
  while (std::ranges::any_of(_state.shapes->objects(), lies)) {
    place += aside;
    vector += aside;
  }
  for (const auto& shape : pasted->each<Shape>()) shape->frame += vector;
  add(u"Paste"_ns, pasted);
  return true;
}

}  // namespace sketchbook
