#include <array>
#include <cmath>
#include <iostream>
#include <string>
#include <utility>

#include <ZKFoundation/ZKFoundation.h>

using namespace ZKFoundationExtensions;

namespace {

template <class Result>
void show(const char* what, const Result& result) {
  std::cout << what << ": " << result << '\n';
}

NSRef<NSURL> url(const NSRef<NSString>& text) { return NSURL::URLWithString(text); }

void texts() {
  show("hexValue of 0X1A", hexValue(u"0X1A"_ns));
  show("hexValue of 1G", hexValue(u"1G"_ns));
  show("hexValue of 12 34", hexValue(u"12 34"_ns));
  show("hexValue of 123456789", hexValue(u"123456789"_ns) == 0x23456789);
  show("digits beyond the first 40", hexValue(NSMake<NSString>(std::string(40, '0') + "1")));
  show("line breaks kept at the ends",
       stringByRemovingSurroundingWhitespaceAndNewlines(u" \na\n "_ns)->length());
  show("units replaced for one emoji",
       stringByReplacingCharactersInSet_withString(
           u"\U0001F600"_ns, NSCharacterSet::whitespaceCharacterSet()->invertedSet(), u"?"_ns));
  show("title", titlecaseString(u"the lord of the rings"_ns));
  show("title of an acronym", titlecaseString(u"NASA and the moon"_ns));
  show("title of two lines",
       titlecaseString(u"lord of\nthe rings"_ns)
           ->stringByReplacingOccurrencesOfString_withString(u"\n"_ns, u" | "_ns));
  const auto comma = NSCharacterSet::characterSetWithCharactersInString(u","_ns);
  show("split at commas",
       componentsSeparatedByCharactersInSet_trimWhitespace(u",a, ,,b,"_ns, comma, true)
           ->componentsJoinedByString(u"|"_ns));
  show("word that starts with app",
       findString_searchRange_options_wordCompareOption(u"snapp apple"_ns, u"app"_ns, {0, 11}, 0,
                                                        ZKWordCompareStart));
  show("backwards by whole words",
       findString_searchRange_options_wordCompareOption(
           u"a ab"_ns, u"a"_ns, {0, 4}, NSBackwardsSearch, ZKWordCompareWhole) == NSNotFoundRange);
  show("what is selected is found",
       findString_selectedRange_options_wrap(u"ab"_ns, u"ab"_ns, {0, 2}, 0, true).length != 0);
  show("words at an empty range", rangeOfWordsIntersectingRange(u"one two"_ns, {5, 0}));
  show("end trimmed off spaces", trimRange_prefixRange_postfixRange_trimOptions(
                                     u"   "_ns, {0, 3}, nullptr, nullptr, ZKTrimEnd));
}

void numbers() {
  show("0 in decimal", ZKBinToStr(0, ZKNumberDecimal));
  show("2^64 - 1 in decimal", ZKBinToStr(NSUIntegerMax, ZKNumberDecimal));
  show("40 in Roman numerals", ZKBinToStr(40, ZKNumberUpperCaseRoman));
  show("50 in Roman numerals", ZKBinToStr(50, ZKNumberUpperCaseRoman));
  show("4999 in Roman numerals", ZKBinToStr(4999, ZKNumberUpperCaseRoman));
  show("5000 in Roman numerals", ZKBinToStr(5000, ZKNumberUpperCaseRoman));
}

// An object with a name that equals every other of that name, whatever its class.
struct Tag : NSObject {
  explicit Tag(NSRef<NSString> ownName) : name(std::move(ownName)) {}
  bool isEqual(const NSRef<NSObject>& other) const override {
    const auto* const tag = other.cast<Tag>();
    return tag != nullptr && tag->name->isEqualToString(name);
  }
  NSUInteger hash() const override { return name->hash(); }
  NSRef<NSString> name;
};
struct SpecialTag : Tag {
  using Tag::Tag;
};

void collections() {
  const auto one = NSMake<NSNumber>(1);
  const auto ones = NSMake<NSMutableArray>({one, one, one, one, one});
  show("1 among five ones", indexWhereObjectWouldBelong_inArraySortedUsingSelector(
                                ones, NSMake<NSNumber>(1), &NSNumber::compare));
  auto many = NSMake<NSMutableArray>();
  for (int k = 0; k < 40; ++k) many->addObject(NSMake<NSNumber>(k));
  show("elements at 30 indexes",
       arrayFromIndexes(many, NSMake<NSIndexSet>(NSRange{0, 30}))->count());
  const auto tags = NSMake<NSMutableArray>({NSMake<Tag>(u"a"_ns), NSMake<SpecialTag>(u"a"_ns)});
  removeAllObjectsWhichNotMemberOfClass(tags, NSClass::of<Tag>());
  show("left with an equal of another class", tags->count());
  show("elements whose value is nil",
       arrayFromArray_forKey_matching(NSMake<NSArray>({u"a"_ns}), u"none"_ns, nullptr)->count());
  show("indexes without a separator",
       stringValueWithSeparator(NSMake<NSIndexSet>(NSRange{1, 2}), nullptr));
  const auto visitor = NSMake<ZKGenericVisitor>();
  bool stop = false;
  visitor->visitObject_stop(NSMake<Tag>(u"a"_ns), stop);
  show("an equal object to visit", visitor->shouldVisitObject(NSMake<Tag>(u"a"_ns)));
}

void names() {
  show("a007 made unique",
       uniqueStringWithString_forStringArray(u"a007"_ns, NSMake<NSArray>({u"a007"_ns})));
  show("5 made unique", uniqueStringWithString_forStringArray(u"5"_ns, NSMake<NSArray>({u"5"_ns})));
  show("beside a.pdf",
       uniqueURLWithURL_forURLArray(url(u"file:///no/a.txt"_ns),
                                    NSMake<NSArray>({url(u"file:///no/a.pdf"_ns)})));
  const auto folder = NSMake<NSFileWrapper>(NSMake<NSDictionary>());
  NSRef<NSString> last;
  for (int k = 0; k < 3; ++k) {
    const auto page = NSMake<NSFileWrapper>(NSMake<NSData>());
    page->setPreferredFilename(u"a.txt"_ns);
    last = addFileWrapperWithUniqueFileName(folder, page);
  }
  show("third child", last);
  show("scoped without a query", isSecurityScoped(url(u"file:///a"_ns)));
  const auto domain = NSMake<NSString>(NSPOSIXErrorDomain()->view());
  show("web address stripped", strippedSecurityScopedURL(url(u"http://a.b/c"_ns)));
  show("a domain of the same text", isFileNotFoundError(NSMake<NSError>(domain, 2, nullptr)));
  const auto mark = [](const NSRef<NSString>& identifier) {
    return stringWithCharacter(openingDoubleQuotationForLocaleIdentifier(identifier));
  };
  show("marks of en, en_CH, EN and ja",
       stringWithStrings({mark(u"en"_ns), mark(u"en_CH"_ns), mark(u"EN"_ns), mark(u"ja"_ns)}));
}

void sizes() {
  const auto formatter = NSMake<ZKUnitOfInformationFormatter>();
  const auto bytes = [&](double count) {
    return formatter->stringFromNumberOfBits(NSMake<NSNumber>(count * 8));
  };
  show("1 byte", bytes(1));
  show("1,024 bytes", bytes(1024));
  show("200,000 bytes", bytes(200'000));
  show("-123,456 bytes", bytes(-123'456));
  show("1.9 bytes as a unit",
       formatter->stringFromNumber_ofUnit(NSMake<NSNumber>(1.9), ZKUnitOfInformationByte));
  show("2 with prefix 9", formatter->stringFromNumber_ofUnit_withPrefix(
                              NSMake<NSNumber>(2), ZKUnitOfInformationByte, 9));
  show("1536 as it is", formatter->nativeStringFromNumber(NSMake<NSNumber>(1536)));
  show("prefix of -1", formatter->prefixForInteger(-1) == ZKUnitOfInformationPrefixExa);
  formatter->setDisplaysInTermsOfBytes(false);
  show("2^61 bits", bytes(0x1p58));
}

void addresses() {
  const auto formatter = NSMake<ZKURLFormatter>();
  for (const auto& typed : {u"ftp://a.b"_ns, u"HTTP://a.b"_ns, u"file:///tmp"_ns,
                            u"mailto:a@b.c"_ns, u"./a"_ns, u"../a"_ns, u"localhost"_ns}) {
    NSRef<NSObject> object;
    NSRef<NSString> reason;
    formatter->getObjectValue_forString_errorDescription(object, typed, &reason);
    std::cout << typed << ": " << object << (object.as<NSString>() ? " (text)" : "") << ", "
              << reason << '\n';
  }
}

void geometry() {
  show("ZKSlope straight up", ZKSlope({0, 0}, {0, 1}));
  show("ZKPointIntersection of two crossing lines",
       ZKPointIntersection({0, 0}, {2, 2}, {0, 2}, {2, 0}));
  show("ZKPointIntersection2 beyond the first segment",
       ZKPointIntersection2({0, 0}, {1, 1}, {0, 4}, {4, 0}));
  show("ZKLineLength of 16,777,217 is one less",
       ZKLineLength({0, 0}, {16'777'217, 0}) == 16'777'216);
  show("ZKAngleBetween two directions", ZKAngleBetween({0, 0}, {-1, 1}, {-2, 0}));
  show("ZKRelPoint along no length", ZKRelPoint({1, 1}, {0, 0}, {0, 0}));
  show("circle through three points of a line",
       ZKCenterOfCircleFromThreePoints({0, 0}, {1, 1}, {2, 2}));
  show("400 degrees snapped", ZKSnapAngleToStandardAngles(400));
  show("NaN is similar", ZKAreSimilarPoints({NAN, 0}, {1, 0}, 0));
  NSRect rect = {{0, 0}, {10, 10}};
  show("handle 2 dragged up to y = 8 is now", ZKMovePointTo(&rect, ZKHandleMaxYEdge, {5, 8}));
  rect = {{0, 0}, {10, 20}};
  show("handle 0 dragged past the top is still", ZKMovePointTo(&rect, ZKHandleMinYEdge, {5, 25}));
  show("with the rectangle", rect);
  show("ZKUnionRect with an empty one", ZKUnionRect({{10, 10}, {5, 5}}, {}));
  show("point 9 of a rectangle", ZKGetPointOfRect(9, {{1, 2}, {3, 4}}));
  show("opposite of point 9", ZKOppositePointIndex(9) == NSUIntegerMax);
  show("edge 4", ZKCoordinateForRectEdge(4, {{1, 2}, {3, 4}}));
  show("handle 0 and edge 0", ZKCoordinateForRectEdge(NSMinXEdge, {{1, 2}, {2, 2}}) ==
                                  ZKGetPointOfRect(ZKHandleMinYEdge, {{1, 2}, {2, 2}}).x);
  show("scaled to fit itself, aligned left",
       ZKScaleRectToFitInRect(ZKScaleProportionallyDown, ZKAlignLeft, rect, rect));
  show("scaled from no width", ZKScaleRectToFitInRect(ZKScaleProportionallyUpOrDown, ZKAlignLeft,
                                                      {{0, 0}, {0, 0}}, {{0, 0}, {1, 1}}));
}

void curves() {
  const std::array<NSPoint, 4> curve = {{{3e-8, 1e-8}, {0, 2e-8}, {3e-8, 1e-8}, {4e-8, 3e-8}}};
  const NSPoint p = {3e-8, 2e-8};
  const auto distance = [&](NSPoint q) { return std::sqrt(ZKDiffPointSquaredLength(p, q)); };
  const double found = distance(ZKNearestPointOnCurve(curve.data(), nullptr, p));
  const double exact = distance(ZKNearestPointOnCurveRefined(curve.data(), nullptr, p));
  show("nearest point of a tiny curve is exact", found < exact * 1.001);
  const std::array<NSPoint, 4> cusp = {{{0, 0}, {0, 0}, {0, 1}, {0, 2}}};
  show("slope where a curve stands still", ZKBezierSlope(cusp.data(), 0));
}

void objects() {
  show("value of an unknown key", NSMake<Tag>(u"a"_ns)->valueForKey(u"no such key"_ns));
  ZKCopySpec contents = -1;
  const auto own = copySpecForCopySpec_subCopySpec(NSMake<Tag>(u"a"_ns), 6, &contents);
  std::cout << "copy spec 6: " << own << " and " << contents << '\n';
  try {
    (void)copyWithCopySpec(NSMake<Tag>(u"a"_ns), 6);
  } catch (const NSException& exception) {
    show("name of an exception", exception.name());
  }
  bool hasRun = false;
  performBlockOnMainThread(u"a"_ns, [&] { hasRun = true; });
  show("a block on the main thread has run", hasRun);
  hasRun = false;
  performBlockOnMainThread_waitUntilDone(
      u"a"_ns, [&] { hasRun = true; }, false);
  show("one that is not waited for has run", hasRun);
  hasRun = false;
  const auto center = NSNotificationCenter::defaultCenter();
  const auto observer = center->addObserverForName_object_queue_usingBlock(
      u"Done"_ns, nullptr, nullptr, [&] { hasRun = true; });
  enqueueNotificationInMainThread_postingStyle(
      NSNotification::notificationWithName_object(u"Done"_ns, nullptr), NSPostNow);
  show("a notification on the main thread has arrived", hasRun);
  center->removeObserver(observer);
}

}  // namespace

int main() {
  NSLocale::setCurrentLocale(NSLocale::localeWithLocaleIdentifier(u"en"_ns));
  NSSetLogSink([](const NSRef<NSString>& line) { show("logged", line); });
  std::cout << std::boolalpha;
  for (const auto part :
       {texts, numbers, collections, names, sizes, addresses, geometry, curves, objects}) {
    part();
  }
}
