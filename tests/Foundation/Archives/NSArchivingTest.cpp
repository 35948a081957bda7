#include "tests/Files.h"

#include <ZKFoundation/ZKFoundation.h>

using namespace std::string_view_literals;

namespace {

NSRef<NSData> archived(const NSRef<NSObject>& object) {
  return NSKeyedArchiver::archivedDataWithRootObject(object);
}

NSRef<NSObject> read(const NSRef<NSData>& data) {
  return NSKeyedUnarchiver::unarchiveObjectWithData(data);
}

NSRef<NSObject> roundTrip(const NSRef<NSObject>& object) { return read(archived(object)); }

// A class with one value of every kind.
struct Page : NSObject, NSCoding {
  Page() = default;
  explicit Page(const NSRef<NSCoder>& coder)
      : isOpen(coder->decodeBoolForKey(u"isOpen"_ns)),
        number(coder->decodeIntegerForKey(u"number"_ns)),
        scale(coder->decodeDoubleForKey(u"$scale"_ns)),
        next(coder->decodeObjectForKey(u"next"_ns)) {}
  void encodeWithCoder(const NSRef<NSCoder>& coder) const override {
    coder->encodeBool_forKey(isOpen, u"isOpen"_ns);
    coder->encodeInteger_forKey(number, u"number"_ns);
    coder->encodeDouble_forKey(scale, u"$scale"_ns);
    coder->encodeObject_forKey(next, u"next"_ns);
  }

  bool isOpen = true;
  NSInteger number = NSIntegerMin;
  double scale = 0.1;
  NSRef<NSObject> next;
};

// One that writes what a test wants, and that no archive may make.
struct Stranger : NSObject, NSCoding {
  using Encode = std::function<void(NSCoder&)>;
  explicit Stranger(Encode does) : encode(std::move(does)) {}
  void encodeWithCoder(const NSRef<NSCoder>& coder) const override { encode(*coder); }
  Encode encode;
};

// A text of the program's own.
struct Note : NSString, NSCoding {
  Note() : NSString(u"note") {}
  explicit Note(const NSRef<NSCoder>& coder)
      : NSString(coder->decodeObjectOfClass<NSString>(u"text"_ns)->view()),
        priority(std::stoi(coder->decodeObjectOfClass<NSString>(u"priority"_ns)->utf8())) {}
  void encodeWithCoder(const NSRef<NSCoder>& coder) const override {
    coder->encodeObject_forKey(NSMake<NSString>(view()), u"text"_ns);
    coder->encodeObject_forKey(
        priority < 0 ? u"low"_ns : NSMake<NSString>(std::to_string(priority)), u"priority"_ns);
  }
  int priority = 7;
};

// An archive of arrays, in which these are sets.
NSRef<NSData> archivedAsSets(const NSRef<NSArray>& array) {
  NSKeyedArchiver::setClassName_forClass(u"NSSet"_ns, NSClass::of<NSMutableArray>());
  auto data = archived(array);
  NSKeyedArchiver::setClassName_forClass(nullptr, NSClass::of<NSMutableArray>());
  return data;
}

NSRef<NSMutableArray> everything() {
  const auto shared = NSMake<NSMutableString>("geändert 😀");
  auto all = NSMake<NSMutableArray>(
      {u""_ns, u"Größe 😀"_ns, shared, shared, NSMake<NSNumber>(true), NSMake<NSNumber>(false),
       number(-5), NSMake<NSNumber>(NSIntegerMax), NSMake<NSNumber>(NSIntegerMin),
       NSMake<NSNumber>(NSUIntegerMax), NSMake<NSNumber>(0.1), NSMake<NSNumber>(1e300),
       NSMake<NSNumber>(-HUGE_VAL), NSMake<NSData>(std::string_view("\0\1\xFF", 3)),
       NSMake<NSData>(), NSNull::null(), NSMake<NSMutableDictionary>(),
       NSURL::URLWithString(u"http://a.b/c?d"_ns),
       NSLocale::localeWithLocaleIdentifier(u"de_CH"_ns)});
  for (const char* const text : {"$null", "$null"}) all->addObject(NSMake<NSString>(text));
  all->addObject(NSMake<NSMutableArray>({u"a"_ns, NSMake<NSArray>()}));
  all->addObject(NSMake<NSSet>({u"a"_ns, number(1)}));
  all->addObject(NSMake<NSMutableSet>({u"b"_ns}));
  all->addObject(NSMake<NSDictionary>({{u"$key"_ns, shared}, {number(2), NSNull::null()}}));
  return all;
}

TEST(Archiving, KeepsThePlatformsObjects) {
  const auto original = everything();
  // Texts that no XML could hold.
  for (const auto units : {u"a\0b"sv, u"\0ä"sv, u"\xDC00\xD800"sv}) {
    original->addObject(NSMake<NSString>(units));
    original->addObject(NSMake<NSMutableString>(units));
  }
  const auto copy = roundTrip(original).as<NSArray>();
  ASSERT_TRUE(copy);
  ASSERT_EQ(copy->count(), original->count());
  for (NSUInteger k = 0; k < copy->count(); ++k) {
    const auto before = original->objectAtIndex(k);
    const auto after = copy->objectAtIndex(k);
    EXPECT_EQ(after, before);
    EXPECT_EQ(after->objectClass(), before->objectClass()) << before;
  }
  EXPECT_PRED2(areSame, copy->objectAtIndex(2), copy->objectAtIndex(3));
  // Equal texts have become one object, of which the same archive is made.
  EXPECT_EQ(archived(copy), archived(original));
  EXPECT_TRUE(copy->objectAtIndex(4).as<NSNumber>()->isBoolean());
  EXPECT_TRUE(std::isnan(roundTrip(NSMake<NSNumber>(std::nan(""))).as<NSNumber>()->doubleValue()));
  EXPECT_FALSE(roundTrip(nullptr));
  EXPECT_FALSE(NSKeyedUnarchiver::unarchivedObjectOfClass<NSArray>(archived(u"text"_ns)));
}

TEST(Archiving, KeepsObjectsOfTheProgram) {
  NSKeyedUnarchiver::registerClass<Page>();
  const auto original = NSMake<Page>();
  original->next = NSMake<Page>();
  const auto copy = roundTrip(original).as<Page>();
  EXPECT_TRUE(copy->isOpen);
  EXPECT_EQ(copy->number, NSIntegerMin);
  EXPECT_EQ(copy->scale, 0.1);
  EXPECT_EQ(copy->next.as<Page>()->next, nullptr);
  NSKeyedUnarchiver::registerClass<Note>();
  const auto note = roundTrip(NSMake<Note>()).as<Note>();
  EXPECT_EQ(note, u"note");
  EXPECT_EQ(note->priority, 7);
}

TEST(Archiving, KeepsAnyNumberOfKeys) {
  const auto coder = NSMake<NSKeyedArchiver>();
  // Some differ far from their beginning alone.
  const auto key = [](int k) {
    return NSMake<NSString>(std::string(k % 3 == 0 ? 100 : 1, 'k') + std::to_string(k));
  };
  for (int k = 0; k < 500; ++k) coder->encodeInteger_forKey(k, key(k));
  const auto reader = NSMake<NSKeyedUnarchiver>(coder->encodedData());
  for (int k = 499; k >= 0; --k) EXPECT_EQ(reader->decodeIntegerForKey(key(k)), k);
  EXPECT_FALSE(reader->containsValueForKey(key(501)));
  EXPECT_EQ(reader->decodeIntegerForKey(key(250)), 250);
  for (const int k : {7, 499}) EXPECT_THROW(coder->encodeBool_forKey(true, key(k)), NSException);
}

TEST(Archiving, KnowsClassesByOtherNames) {
  struct Gone : NSObject, NSCoding {
    static NSRef<Gone> initWithCoder(const NSRef<NSCoder>& /*coder*/) { return nullptr; }
    void encodeWithCoder(const NSRef<NSCoder>& /*coder*/) const override {}
  };
  // Names stay known.
  static int runs = 0;
  const auto name = NSString::stringWithFormat(u"Lost %d"_ns, ++runs);
  onThreads(4, [&] {
    NSKeyedArchiver::setClassName_forClass(name, NSClass::of<Gone>());
    (void)archived(NSMake<Gone>());
  });
  const auto data = archived(NSMake<Gone>());
  EXPECT_NE(data->view().find(name->utf8()), std::string_view::npos);
  EXPECT_THROW(read(data), NSException);
  onThreads(4, [&] {
    NSKeyedUnarchiver::setClass_forClassName<Gone>(name);
    EXPECT_EQ(read(data), nullptr);
  });
}

TEST(Archiving, RaisesWhenWhatItWalksIsChanged) {
  const auto saboteur = NSMake<Stranger>(nullptr);
  const auto array = NSMake<NSMutableArray>({saboteur, NSMake<NSArray>()});
  saboteur->encode = [&](auto&) { array->removeAllObjects(); };
  expectRaises(NSGenericException, "NSMutableArray was mutated while being enumerated",
               [&] { archived(array); });
  const auto page = NSMake<Page>();
  page->next = NSMake<Stranger>([&](auto&) { page->next = nullptr; });
  EXPECT_TRUE(archived(page));
}

TEST(Archiving, RefusesWhatTheFormCannotHold) {
  struct Plain : NSObject {};
  const auto refusal = [](const NSRef<NSObject>& object, const char* reason) {
    expectRaises(NSInvalidArchiveOperationException,
                 std::string(reason).append(" cannot be archived"), [&] { archived(object); });
  };
  refusal(NSMake<Plain>(), ("an object of class " + NSClass::of<Plain>().name()->utf8()).c_str());
  auto nested = NSMake<NSArray>();
  for (int k = 1; k < 500; ++k) nested = NSMake<NSArray>({nested});
  EXPECT_EQ(roundTrip(nested), nested);
  refusal(NSMake<NSArray>({nested}), "a graph of more than 500 objects in each other");
  // Each is written before the one that it is in.
  const auto links = NSMake<NSMutableArray>({NSMake<NSArray>()});
  for (int k = 0; k < 600; ++k) links->addObject(NSMake<NSArray>({links->lastObject()}));
  refusal(links, "a graph of more than 500 objects in each other");
  const auto page = NSMake<Page>();
  page->next = NSMake<NSArray>({page});
  refusal(page, "an object of class (anonymous namespace)::Page that contains itself");
  page->next = nullptr;
  refusal(NSMake<Stranger>([](auto& coder) {
            coder.encodeBool_forKey(true, u"k"_ns);
            coder.encodeObject_forKey(nullptr, u"k"_ns);
          }),
          "a second value for the key 'k' of an object");
}

TEST(Archiving, GoesInOneDirection) {
  const auto archiver = NSMake<NSKeyedArchiver>();
  refusesNil("key", "encodeBool:forKey:", [&] { archiver->encodeBool_forKey(true, nullptr); });
  const auto reader = NSMake<NSKeyedUnarchiver>(archived(nullptr));
  const auto key = u"a"_ns;
  const std::vector<std::function<void()>> wrong = {
      [&] { reader->encodeBool_forKey(true, key); },
      [&] { reader->encodeInteger_forKey(1, key); },
      [&] { reader->encodeDouble_forKey(1, key); },
      [&] { reader->encodeObject_forKey(key, key); },
      [&] { (void)archiver->containsValueForKey(key); },
      [&] { (void)archiver->decodeBoolForKey(key); },
      [&] { (void)archiver->decodeIntegerForKey(key); },
      [&] { (void)archiver->decodeDoubleForKey(key); },
      [&] { (void)archiver->decodeObjectForKey(key); },
  };
  for (const auto& call : wrong) EXPECT_THROW(call(), NSException);
}

TEST(Archiving, RefusesValuesOfTheWrongKind) {
  const auto coder = NSMake<NSKeyedArchiver>();
  coder->encodeBool_forKey(true, u"bool"_ns);
  coder->encodeInteger_forKey(7, u"integer"_ns);
  coder->encodeObject_forKey(u"text"_ns, u"object"_ns);
  coder->encodeObjects_forKey(NSMake<NSArray>(), u"objects"_ns);
  const auto archive = NSMake<NSKeyedUnarchiver>(coder->encodedData());
  const Rows<const char*, std::function<void()>> rows = {
      {"integer' is not a boolean", [&] { (void)archive->decodeBoolForKey(u"integer"_ns); }},
      {"bool' is not an integer", [&] { (void)archive->decodeIntegerForKey(u"bool"_ns); }},
      {"bool' is not a number", [&] { (void)archive->decodeDoubleForKey(u"bool"_ns); }},
      {"objects' is not an object", [&] { (void)archive->decodeObjectForKey(u"objects"_ns); }},
      {"object' is not a list of objects",
       [&] { (void)archive->decodeObjectsForKey(u"object"_ns); }},
      {"object' is a NSString, not a NSNumber",
       [&] { (void)archive->decodeObjectOfClass<NSNumber>(u"object"_ns); }},
  };
  for (const auto& [reason, action] : rows) {
    expectRaises(NSInvalidUnarchiveOperationException,
                 std::string("value for key '").append(reason), action);
  }
  EXPECT_EQ(archive->decodeDoubleForKey(u"integer"_ns), 7);
  EXPECT_TRUE(archive->containsValueForKey(u"integer"_ns));
  // Nothing reads as no value.
  EXPECT_EQ(archive->decodeDoubleForKey(u"none"_ns), 0);
  EXPECT_EQ(archive->decodeIntegerForKey(u"none"_ns), 0);
  EXPECT_FALSE(archive->decodeBoolForKey(u"none"_ns));
  EXPECT_TRUE(archive->decodeObjectsForKey(u"none"_ns).empty());
  EXPECT_FALSE(archive->containsValueForKey(u"none"_ns));
}

TEST(Archiving, RefusesUnknownClassesAndGoesOn) {
  const auto stranger = NSMake<Stranger>([](auto&) {});
  const auto coder = NSMake<NSKeyedArchiver>();
  coder->encodeObject_forKey(NSMake<NSArray>({u"a"_ns, stranger}), u"bad"_ns);
  coder->encodeObject_forKey(NSMake<NSArray>({u"b"_ns}), u"good"_ns);
  const auto decoder = NSMake<NSKeyedUnarchiver>(coder->encodedData());
  const auto reason = "the class " + NSClass::of<Stranger>().name()->utf8() + " is not registered";
  for (int k = 0; k < 2; ++k) {
    expectRaises(NSInvalidUnarchiveOperationException, reason,
                 [&] { (void)decoder->decodeObjectForKey(u"bad"_ns); });
    EXPECT_EQ(decoder->decodeObjectForKey(u"good"_ns)->description(), u"(b)");
  }
}

// Broken copies of an archive give an error or objects, and nothing else.
TEST(Archiving, GivesDamageBackAsAnError) {
  NSKeyedUnarchiver::registerClass<Page>();
  const auto page = NSMake<Page>();
  page->next = everything();
  const std::string bytes(archived(page)->view());
  NSRef<NSError> error;
  const auto isRead = [&](std::string_view broken) {
    error = nullptr;
    return static_cast<bool>(NSKeyedUnarchiver::unarchivedObjectOfClass_fromData_error<Page>(
        NSMake<NSData>(broken), &error));
  };
  for (std::size_t length = 0; length < bytes.size(); ++length) {
    EXPECT_FALSE(isRead(std::string_view(bytes).substr(0, length)));
    EXPECT_EQ(
        error->description()->utf8(),
        "NSCocoaErrorDomain 4864: the data is no keyed archive (in 'initForReadingWithData:')");
  }
  for (std::size_t bit = 0; bit < 8 * bytes.size(); ++bit) {
    std::string broken = bytes;
    broken[bit / 8] = static_cast<char>(broken[bit / 8] ^ 1 << bit % 8);
    const bool wasRead = isRead(broken);
    EXPECT_NE(wasRead, static_cast<bool>(error)) << bit;
  }
  NSKeyedUnarchiver::registerClass<Note>();
  const auto note = NSMake<Note>();
  note->priority = -1;
  EXPECT_FALSE(isRead(archived(note)->view()));
  EXPECT_EQ(error->localizedDescription(), u"stoi");
  EXPECT_FALSE(isRead(archived(NSNull::null())->view()));
  EXPECT_EQ(error->code(), NSCoderReadCorruptError);
  EXPECT_FALSE(isRead(archived(nullptr)->view()));
  EXPECT_EQ(error->code(), NSCoderValueNotFoundError);
  refusesNil("data", "initForReadingWithData:", [] { read(nullptr); });
}

TEST(Archiving, RefusesListsThatWouldNotFitInMemory) {
  using namespace std::string_literals;
  const std::vector<std::vector<std::string>> lists = {
      {"\xA1\0"s},                                                // A list in itself.
      {"\xA2\1\1"s, "\xA2\2\2"s, "\xA2\3\3"s, "\xA1\4"s, "\1"s},  // One that doubles at each step.
      {"\xAF\x13\x7F\xFF\xFF\xFF\xFF\xFF\xFF\xFF"s},              // More elements than bytes.
      {"\x5F\x12\x7F\xFF\xFF\xFF"s},
      {"\xD1\1"s, "Qk"s},
      {"\x14"s},
      {"\x6F\x10\x7Fk"s},
      {"\xA1\x09"s},
  };
  // Written by hand: one byte for each offset and reference.
  for (const auto& list : lists) {
    std::string bytes = "bplist00", offsets;
    for (const auto& object : list) {
      offsets.push_back(static_cast<char>(bytes.size()));
      bytes += object;
    }
    std::string trailer(32, '\0');
    trailer[6] = trailer[7] = 1;
    trailer[15] = static_cast<char>(list.size());
    trailer[31] = static_cast<char>(bytes.size());
    const auto data = NSMake<NSData>(std::string_view(bytes.append(offsets).append(trailer)));
    EXPECT_THROW(read(data), NSException);
  }
}

TEST(Archiving, RefusesTextsThatAreCopiedTooOften) {
  // In the place of mutable strings, each with a copy of one long text.
  const auto text = NSMake<NSString>(std::string(100'000, 'x'));
  const auto copies = NSMake<NSMutableArray>();
  for (int k = 0; k < 10'000; ++k) {
    copies->addObject(
        NSMake<Stranger>([&](auto& coder) { coder.encodeObject_forKey(text, u"NS.string"_ns); }));
  }
  NSKeyedArchiver::setClassName_forClass(u"NSMutableString"_ns, NSClass::of<Stranger>());
  const auto data = archived(copies);
  NSKeyedArchiver::setClassName_forClass(nullptr, NSClass::of<Stranger>());
  expectRaises(NSInvalidUnarchiveOperationException, "texts are repeated too often",
               [&] { read(data); });

  const auto inSets = [](const NSRef<NSObject>& member) {
    const auto sets = NSMake<NSMutableArray>();
    for (int k = 0; k < 100'000; ++k) sets->addObject(NSMake<NSMutableArray>({member}));
    const auto all = NSMake<NSArray>({sets->firstObject(), sets->copy()});
    return read(archivedAsSets(all));
  };
  const auto hashed = NSMake<NSString>(std::string(8'000'000, 'x'));
  const auto nested = NSMake<NSArray>({hashed, NSMake<NSArray>({hashed, hashed})});
  EXPECT_EQ(inSets(nested).as<NSArray>()->lastObject().as<NSArray>()->count(), 100'000);
  expectRaises(NSInvalidUnarchiveOperationException, "long texts are hashed too often",
               [&] { inSets(hashed->mutableCopy()); });

  // One set asks for the hash of its members' text once.
  const auto records = NSMake<NSMutableSet>();
  const auto body = text->mutableCopy();
  for (int k = 0; k < 1000; ++k) records->addObject(NSMake<NSArray>({body, number(k)}));
  EXPECT_EQ(roundTrip(records), records);
}

// The bytes in another format, by the tool of libplist's: "xml" or "bin".
std::string converted(std::string_view bytes, const std::string& format) {
  const TestFolder folder;
  writeFile(folder / "in", bytes);
  std::string command = "plistutil -i '" + (folder / "in").native();
  command.append("' -o '").append(folder / "out").append("' -f ").append(format);
  EXPECT_EQ(std::system(command.c_str()), 0);  // NOLINT: a fixed command
  return contentsOf(folder / "out");
}

std::string reference(int index) {
  return "<dict><key>CF$UID</key><integer>" + std::to_string(index) + "</integer></dict>";
}

std::string record(int classIndex, const std::string& entries) {
  return "<dict><key>$class</key>" + reference(classIndex) + entries + "</dict>";
}

std::string listOf(std::initializer_list<int> indexes) {
  std::string list = "<key>NS.objects</key><array>";
  for (const int index : indexes) list += reference(index);
  return list + "</array>";
}

std::string classNamed(const char* name) {
  return std::string("<dict><key>$classname</key><string>").append(name).append("</string></dict>");
}

// What becomes of an archive of these objects, the first of which is the root.
std::string outcome(const std::string& objects) {
  const std::string xml =
      "<plist version=\"1.0\"><dict><key>$version</key><integer>100000</integer>"
      "<key>$archiver</key><string>NSKeyedArchiver</string><key>$top</key><dict><key>root</key>" +
      reference(1) + "</dict><key>$objects</key><array><string>$null</string>" + objects +
      "</array></dict></plist>";
  try {
    const auto object = read(NSMake<NSData>(std::string_view(converted(xml, "bin"))));
    return shown(object);
  } catch (const NSException& exception) {
    return exception.reason()->utf8();
  }
}

TEST(Archiving, ReadsRecordsOfOtherWriters) {
  const std::string array = classNamed("NSArray");
  const auto listed = [&](int index) { return record(2, listOf({index})) + array; };
  for (const auto& [objects, expected] : Rows<std::string, const char*>{
           {record(2, "<key>NS.string</key><string>a</string>") + classNamed("NSMutableString"),
            "a"},
           {record(2, "<key>NS.data</key><data>AAEC</data>") + classNamed("NSMutableData"),
            "NSData of 3 bytes"},
           {listed(1), "the object for key 'NS.objects' contains itself"},
           {listed(3), "value for key 'NS.objects' refers to an object that is not there"},
           {listed(-1), "value for key 'NS.objects' refers to an object that is not there"},
           {listed(0), "an element is nil (in 'initWithObjects:')"},
           {record(3, "") + array, "an object has no class"},
           {record(1, "") + array, "a class has no name"},
           {array + array, "an object has no class"},
           {"<array/>", "an object of the archive is of no kind that objects have"},
       }) {
    EXPECT_EQ(outcome(objects), expected);
  }

  // Chains of 400 in each other; the second begins with the end of the first.
  const auto chained = [&](int first, int count, int end) {
    std::string chain;
    for (int k = 0; k < count; ++k)
      chain += record(2, listOf({k + 1 < count ? first + k + 1 : end}));
    return chain;
  };
  const std::string head = record(2, listOf({3, 403})) + array;
  EXPECT_EQ(outcome(head + chained(3, 400, 503) + chained(403, 100, 3) + "<string>a</string>"),
            "more than 500 objects are in each other");
  EXPECT_EQ(outcome(head + chained(3, 400, 502) + chained(403, 99, 3) + "<string>a</string>")
                .substr(0, 2),
            "((");
}

NSRef<NSArray> sample() {
  const auto sizes = NSMake<ZKUnitOfInformationFormatter>();
  sizes->setUsesIECBinaryPrefixesForCalculation(false);
  sizes->setUsesIECBinaryPrefixesForDisplay(true);
  sizes->numberFormatter()->setMinimumFractionDigits(1);
  return NSMake<NSArray>(
      {sizes, NSMake<NSMutableString>("text"), NSMake<NSDictionary>({{u"key"_ns, u"value"_ns}}),
       NSURL::URLWithString(u"http://a.b"_ns), NSLocale::localeWithLocaleIdentifier(u"de_CH"_ns)});
}

// The form is fixed: others read it, and archives are kept for long.
TEST(Archiving, HasTheFormThatIsKept) {
  const std::string kept = contentsOf(ZK_ARCHIVES "/sample.xml");
  const auto withoutLayout = [](std::string xml) {
    std::erase_if(xml, [](char c) { return c == '\n' || c == '\t'; });
    return xml;
  };
  EXPECT_EQ(withoutLayout(converted(archived(sample())->view(), "xml")), withoutLayout(kept));

  const auto copy = read(NSMake<NSData>(std::string_view(converted(kept, "bin")))).as<NSArray>();
  EXPECT_EQ(withoutLayout(converted(archived(copy)->view(), "xml")), withoutLayout(kept));
  const auto sizes = copy->firstObject().as<ZKUnitOfInformationFormatter>();
  EXPECT_EQ(sizes->numberFormatter()->roundingIncrement()->doubleValue(), 0.01F);
}

TEST(Archiving, ComesBackThroughXML) {
  const auto original = everything();
  const std::string xml = converted(archived(original)->view(), "xml");
  const std::string bytes = converted(xml, "bin");
  EXPECT_NE(bytes, archived(original)->view());
  EXPECT_EQ(read(NSMake<NSData>(std::string_view(bytes))), original);
}

TEST(Archiving, MayBeLarge) {
  for (const std::size_t length : {65'000U, 66'000U, 17'000'000U}) {
    const auto text = NSMake<NSString>(std::string(length, 'x'));
    EXPECT_TRUE(roundTrip(text)->isEqual(text)) << length;
  }
  const auto repeated = [](int count, auto make) {
    const auto list = NSMake<NSMutableArray>();
    for (int k = 0; k < count; ++k) list->addObject(make());
    const auto data = archived(list);
    EXPECT_TRUE(read(data)->isEqual(list));
    return data->length();
  };
  EXPECT_LT(repeated(600, [] { return NSMake<NSString>(std::string(2000, 'x')); }), 10'000);
  EXPECT_LT(repeated(20'000, [] { return NSMake<NSString>(std::string(300, 'x')); }), 300'000);
  repeated(600, [] { return NSMake<NSMutableString>(std::string(2000, 'x')); });
  repeated(20'000, [] { return NSMake<NSMutableString>(std::string(64, 'x')); });
  repeated(100'000, [] { return NSMake<NSArray>({u"x"_ns}); });
  const auto rows = NSMake<NSMutableSet>();
  for (int k = 0; k < 50'000; ++k)
    rows->addObject(NSMake<NSDictionary>({{u"id"_ns, NSMake<NSSet>({NSMake<NSNumber>(k)})}}));
  EXPECT_TRUE(roundTrip(rows)->isEqual(rows));
}

// Collections that share the next one twice, in each other, and once more, in a set.
TEST(Archiving, ComparesWhatIsSharedOnce) {
  const auto doubled = [](int kind, const NSRef<NSObject>& next) -> NSRef<NSObject> {
    if (kind == 0) return NSMake<NSArray>({next, next});
    if (kind == 1) return NSMake<NSSet>({next, NSMake<NSArray>({next})});
    return NSMake<NSDictionary>({{next, next}, {u"b"_ns, next}});
  };
  for (const int kind : {0, 1, 2}) {
    const auto nested = [&](const char* last) {
      NSRef<NSObject> chain = NSMake<NSString>(last);
      for (int k = 0; k < 60; ++k) chain = doubled(kind, chain);
      return chain;
    };
    EXPECT_FALSE(nested("a")->isEqual(nested("b")));
    const auto data =
        archivedAsSets(NSMake<NSMutableArray>({nested("a"), nested("a"), nested("b")}));
    EXPECT_EQ(read(data).as<NSSet>()->count(), 2);
  }
}

}  // namespace
