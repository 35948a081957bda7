#include "tests/Support.h"

namespace editor {

struct Shape : NSObject {};
struct Named {
  virtual ~Named() = default;
};
struct Circle : Named, Shape {};
struct Disc final : Circle {};

}  // namespace editor

namespace {

using editor::Circle, editor::Disc, editor::Shape;

TEST(NSClass, NamesTheClassOfAnObject) {
  const NSRef<NSObject> object = NSMake<Circle>();
  EXPECT_TRUE(object->objectClass().name() == u"editor::Circle");
  EXPECT_TRUE(NSStringFromClass(NSClass::of<NSString>()) == u"NSString");
}

TEST(NSClass, KnowsItsSuperclasses) {
  EXPECT_EQ(NSClass::of<Disc>().superclass(), NSClass::of<Circle>());
  EXPECT_EQ(NSClass::of<Circle>().superclass(), NSClass::of<Shape>());
  EXPECT_EQ(NSClass::of<Shape>().superclass(), NSClass::of<NSObject>());
  EXPECT_EQ(NSClass::of<NSObject>().superclass(), std::nullopt);
}

TEST(NSClass, TellsKindFromMembership) {
  const auto disc = NSMake<Disc>();
  const auto isKind = [&]<class T>() { return disc->isKindOfClass(NSClass::of<T>()); };
  EXPECT_TRUE(isKind.operator()<Disc>());
  EXPECT_TRUE(isKind.operator()<Circle>());
  EXPECT_TRUE(isKind.operator()<editor::Named>());
  EXPECT_TRUE(isKind.operator()<NSObject>());
  EXPECT_FALSE(isKind.operator()<NSString>());
  EXPECT_TRUE(disc->isMemberOfClass(NSClass::of<Disc>()));
  EXPECT_FALSE(disc->isMemberOfClass(NSClass::of<Circle>()));
}

TEST(NSObject, DescribesItselfByClassAndAddress) {
  const auto circle = NSMake<Circle>();
  std::ostringstream expected;
  expected << "<editor::Circle: " << static_cast<void*>(static_cast<NSObject*>(circle.get()))
           << '>';
  std::ostringstream printed;
  printed << circle;
  EXPECT_EQ(printed.str(), expected.str());
  expectRaises(NSInvalidArgumentException,
               "editor::Circle does not support copying (in 'copyWithZone:')",
               [&] { (void)circle->copy(); });
}

}  // namespace
