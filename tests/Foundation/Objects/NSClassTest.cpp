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

TEST(NSClass, KnowsItsSuperclasses) {
  EXPECT_EQ(NSClass::of<Disc>().superclass(), NSClass::of<Circle>());
  EXPECT_EQ(NSClass::of<Circle>().superclass(), NSClass::of<Shape>());
  EXPECT_EQ(NSClass::of<Shape>().superclass(), NSClass::of<NSObject>());
  EXPECT_EQ(NSClass::of<NSObject>().superclass(), std::nullopt);
}

TEST(NSClass, TellsKindFromMembership) {
  const auto disc = NSMake<Disc>();
  for (const auto kind : {NSClass::of<Disc>(), NSClass::of<Circle>(), NSClass::of<editor::Named>(),
                          NSClass::of<NSObject>()}) {
    EXPECT_TRUE(disc->isKindOfClass(kind)) << kind.name();
    EXPECT_EQ(disc->isMemberOfClass(kind), kind == NSClass::of<Disc>()) << kind.name();
  }
  EXPECT_FALSE(disc->isKindOfClass(NSClass::of<NSString>()));
}

TEST(NSObject, DescribesItselfByClassAndAddress) {
  const NSRef<NSObject> circle = NSMake<Circle>();
  EXPECT_EQ(NSStringFromClass(circle->objectClass()), u"editor::Circle");
  std::ostringstream expected;
  expected << "<editor::Circle: " << static_cast<void*>(circle.get()) << '>';
  EXPECT_EQ(testing::PrintToString(circle), expected.str());
}

TEST(NSObject, IsCopiedOnlyByClassesThatCopy) {
  expectRaises(NSInvalidArgumentException,
               "editor::Circle does not support copying (in 'copyWithZone:')",
               [] { (void)NSMake<Circle>()->copy(); });
}

TEST(NSException, KeepsItsTexts) {
  const auto text = NSMake<NSMutableString>("early");
  const NSException exception(text, text);
  text->appendString(u" and late"_ns);
  EXPECT_EQ(exception.name()->utf8() + ": " + exception.reason()->utf8(), exception.what());
}

}  // namespace
