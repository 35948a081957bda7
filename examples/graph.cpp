#include <iostream>
#include <utility>
#include <vector>

#include <ZKFoundation/ZKFoundation.h>

using namespace ZKFoundationExtensions;

struct Style : NSObject, ZKDeepObjectCopyingProtocol {
  explicit Style(NSRef<NSString> aColour) : colour(std::move(aColour)) {}
  NSRef<NSObject> copyWithZone_refTable_copySpec_subCopySpec(
      NSZone* /*zone*/, const NSRef<NSMapTable>& refTable, ZKCopySpec /*copySpec*/,
      ZKCopySpec /*subCopySpec*/) const override {
    auto copy = NSMake<Style>(colour);
    refTable->setObject_forKey(copy, self());
    return copy;
  }
  ZKCopySpec copySpec(ZKCopySpec requested) const override { return requested; }

  NSRef<NSString> colour;
};

// A shape owns its parts and shares its style with others. Its parts know it: a cycle.
struct Shape : NSObject, ZKDeepObjectCopyingProtocol {
  Shape(NSRef<NSString> aName, NSRef<Style> aStyle)
      : name(std::move(aName)), style(std::move(aStyle)) {}

  void add(const NSRef<Shape>& part) {
    parts.push_back(part);
    part->group = this;
  }

  // What is copied already is in the table; what is not is asked for its copy.
  template <class T>
  static NSRef<T> copyOf(const NSRef<T>& object, NSZone* zone, const NSRef<NSMapTable>& refTable,
                         ZKCopySpec spec) {
    auto copy = refTable->objectForKey(object);
    if (!copy) {
      copy = object->copyWithZone_refTable_copySpec_subCopySpec(zone, refTable, spec, spec);
    }
    return copy.template as<T>();
  }

  NSRef<NSObject> copyWithZone_refTable_copySpec_subCopySpec(
      NSZone* zone, const NSRef<NSMapTable>& refTable, ZKCopySpec /*copySpec*/,
      ZKCopySpec subCopySpec) const override {
    // Our own meaning of the numbers: 3 copies what a shape refers to, any other makes a shape
    // without parts that shares the style.
    const bool isDeep = subCopySpec == 3;
    auto copy = NSMake<Shape>(name, style);
    refTable->setObject_forKey(copy, self());
    if (!isDeep) return copy;
    copy->style = copyOf(style, zone, refTable, subCopySpec);
    for (const auto& part : parts) copy->add(copyOf(part, zone, refTable, subCopySpec));
    return copy;
  }
  // Who asks for 5 gets a shape with all that it refers to.
  ZKCopySpec copySpec(ZKCopySpec requested) const override {
    return requested == 5 ? 7 : requested;
  }

  void offerTo(ZKObjectVisitor& visitor, bool& stop) {
    if (stop || !visitor.shouldVisitObject(self())) return;
    visitor.visitObject_stop(self(), stop);
    if (!stop && visitor.shouldVisitObject(style)) visitor.visitObject_stop(style, stop);
    if (group != nullptr) group->offerTo(visitor, stop);
    for (const auto& part : parts) part->offerTo(visitor, stop);
  }

  NSRef<NSString> name;
  NSRef<Style> style;
  std::vector<NSRef<Shape>> parts;
  Shape* group = nullptr;
};

int main() {
  const auto red = NSMake<Style>(u"red"_ns);
  const auto house = NSMake<Shape>(u"house"_ns, red);
  house->add(NSMake<Shape>(u"roof"_ns, red));
  house->add(NSMake<Shape>(u"door"_ns, NSMake<Style>(u"green"_ns)));

  const auto copy = copyWithCopySpec(house, 5).as<Shape>();
  const auto& roof = copy->parts[0];
  std::cout << roof->name << " of " << roof->group->name << ", " << roof->style->colour << '\n'
            << "within the copy: " << (roof->group == copy.get())
            << ", its style shared there: " << (roof->style.is(copy->style))
            << ", and with the original: " << (roof->style.is(red)) << '\n';

  const auto visitor = NSMake<ZKGenericVisitor>();
  bool stop = false;
  roof->offerTo(*visitor, stop);
  std::cout << "objects reached from the roof: " << visitor->visitedObjects()->count() << '\n';
}
