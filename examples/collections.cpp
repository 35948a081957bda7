#include <iostream>

#include <ZKFoundation/ZKFoundation.h>

using namespace ZKFoundationExtensions;

class Chapter : public NSObject {
 public:
  Chapter(NSRef<NSString> aTitle, int aPages) : title(std::move(aTitle)), pages(aPages) {}

  NSInteger compare(const Chapter& other) const { return pages - other.pages; }

  const NSPropertyTable& propertyTable() const override {
    static const NSPropertyTable table(
        {{u"title", &Chapter::title}, {u"pages", &Chapter::pages}, {u"place", &Chapter::place}},
        NSObject::propertyTable());
    return table;
  }
  // Where people look for the title.
  NSRef<NSData> place() const { return NSLocale::currentLocale()->collationKeyForString(title); }

  NSRef<NSString> title;
  int pages;
};

static NSRef<NSString> titles(const NSRef<NSArray>& chapters) {
  NSUInteger left = chapters->count();
  auto text = NSMake<NSMutableString>();
  for (const auto& chapter : chapters->each<Chapter>()) {
    appendStrings(text, {chapter->title, --left > 0 ? u"; "_ns : nullptr});
  }
  return text;
}

int main() {
  NSLocale::setCurrentLocale(NSLocale::localeWithLocaleIdentifier(u"en"_ns));
  const auto chapters = NSMake<NSMutableArray>(
      {NSMake<Chapter>(u"A chapter"_ns, 30), NSMake<Chapter>(u"The end"_ns, 2),
       NSMake<Chapter>(u"das Ende"_ns, 2), NSMake<Chapter>(u"La fin"_ns, 9)});

  // By a method of the objects, then looked up and inserted by it.
  sortUsingSelector(chapters, &Chapter::compare);
  std::cout << titles(chapters) << '\n';
  const auto shorter = NSMake<Chapter>(u"Another"_ns, 2);
  const NSRange equals =
      equalRangeOfObject_inArraySortedUsingSelector(chapters, shorter, &Chapter::compare);
  std::cout << equals.length << " of " << chapters->count() << " are as long\n";
  insertObject_afterEqualsInArraySortedUsingSelector(chapters, shorter, &Chapter::compare);
  std::cout << titles(chapters->subarrayWithRange({0, 3})) << '\n';

  // By the values for a key path, each read once, and by any callable.
  std::cout << titles(sortedArrayUsingKeyPath(chapters, u"title"_ns)) << '\n';
  const auto byBytes = [](const NSRef<NSObject>& a, const NSRef<NSObject>& b) {
    return a.cast<NSData>()->view() <=> b.cast<NSData>()->view();
  };
  std::cout << titles(sortedArrayUsingKeyPath_function(chapters, u"place"_ns, byBytes)) << '\n';
  const auto byLength = [](const NSRef<NSObject>& a, const NSRef<NSObject>& b) {
    return a.cast<Chapter>()->title->length() <=> b.cast<Chapter>()->title->length();
  };
  std::cout << titles(reversedArray(sortedArrayUsingFunction(chapters, byLength))) << '\n';

  // Elements of another class are noticed.
  chapters->addObject(u"no chapter"_ns);
  try {
    (void)titles(chapters);
  } catch (const NSException& exception) {
    std::cout << exception.reason() << '\n';
  }
}
