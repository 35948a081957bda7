#include "tests/Support.h"

#include <array>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <string>

#include <unistd.h>

namespace fs = std::filesystem;

namespace {

NSRef<NSData> archived(const NSRef<NSObject>& object) {
  return NSKeyedArchiver::archivedDataWithRootObject(object);
}

NSRef<NSObject> read(const NSRef<NSData>& data) {
  return NSKeyedUnarchiver::unarchiveObjectWithData(data);
}

NSRef<NSObject> roundTrip(const NSRef<NSObject>& object) { return read(archived(object)); }

// A class with one value of every kind and two references.
struct Page : NSObject, NSCoding {
  Page() = default;
  explicit Page(const NSRef<NSCoder>& coder)
      : isOpen(coder->decodeBoolForKey(u"isOpen"_ns)),
        number(coder->decodeIntegerForKey(u"number"_ns)),
        scale(coder->decodeDoubleForKey(u"$scale"_ns)),
        hasNumber(coder->containsValueForKey(u"number"_ns)),
        next(coder->decodeObjectForKey(u"next"_ns)),
        title(coder->decodeObjectOfClass<NSString>(u"title"_ns)) {}
  void encodeWithCoder(const NSRef<NSCoder>& coder) const override {
    coder->encodeBool_forKey(isOpen, u"isOpen"_ns);
    coder->encodeInteger_forKey(number, u"number"_ns);
    coder->encodeDouble_forKey(scale, u"$scale"_ns);
    coder->encodeObject_forKey(next, u"next"_ns);
    coder->encodeObject_forKey(title, u"title"_ns);
  }

  bool isOpen = true;
  NSInteger number = NSIntegerMin;
  double scale = 0.1;
  bool hasNumber = false;
  NSRef<NSObject> next;
  NSRef<NSObject> title;
};

class Archiving : public testing::Test {
 protected:
  Archiving() { NSKeyedUnarchiver::setClass_forClassName<Page>(NSClass::of<Page>().name()); }
};

NSRef<NSObject> everything() {
  const auto shared = NSMake<NSMutableString>("geändert 😀");
  return NSMake<NSArray>(
      {u""_ns,
       u"Größe 😀"_ns,
       shared,
       shared,
       NSMake<NSNumber>(true),
       NSMake<NSNumber>(false),
       NSMake<NSNumber>(-5),
       NSMake<NSNumber>(NSIntegerMax),
       NSMake<NSNumber>(NSIntegerMin),
       NSMake<NSNumber>(0.1),
       NSMake<NSNumber>(1e300),
       NSMake<NSNumber>(-HUGE_VAL),
       NSMake<NSData>(std::string_view("\0\1\xFF", 3)),
       NSMake<NSData>(),
       NSNull::null(),
       NSMake<NSMutableArray>({u"a"_ns, NSMake<NSArray>()}),
       NSMake<NSSet>({u"a"_ns, NSMake<NSNumber>(1)}),
       NSMake<NSMutableSet>({u"b"_ns}),
       NSMake<NSDictionary>({{u"$key"_ns, shared}, {NSMake<NSNumber>(2), NSNull::null()}}),
       NSMake<NSMutableDictionary>(),
       NSURL::URLWithString(u"http://a.b/c?d"_ns),
       NSLocale::localeWithLocaleIdentifier(u"de_CH"_ns)});
}

TEST_F(Archiving, KeepsThePlatformsObjects) {
  const auto original = everything().as<NSArray>();
  const auto copy = roundTrip(original).as<NSArray>();
  ASSERT_TRUE(copy);
  ASSERT_EQ(copy->count(), original->count());
  for (NSUInteger k = 0; k < copy->count(); ++k) {
    const auto before = original->objectAtIndex(k);
    const auto after = copy->objectAtIndex(k);
    EXPECT_TRUE(after->isEqual(before)) << before << " became " << after;
    EXPECT_EQ(after->objectClass(), before->objectClass()) << before;
  }
  EXPECT_EQ(copy->objectAtIndex(2), copy->objectAtIndex(3));
  EXPECT_TRUE(copy->objectAtIndex(4).as<NSNumber>()->isBoolean());
  EXPECT_TRUE(std::isnan(roundTrip(NSMake<NSNumber>(std::nan(""))).as<NSNumber>()->doubleValue()));
  EXPECT_FALSE(roundTrip(nullptr));
  EXPECT_FALSE(NSKeyedUnarchiver::unarchivedObjectOfClass<NSArray>(archived(u"text"_ns)));
}

TEST_F(Archiving, KeepsObjectsOfTheProgram) {
  const auto original = NSMake<Page>();
  original->next = NSMake<Page>();
  original->title = u"first"_ns;
  const auto copy = roundTrip(original).as<Page>();
  EXPECT_TRUE(copy->isOpen);
  EXPECT_TRUE(copy->hasNumber);
  EXPECT_EQ(copy->number, NSIntegerMin);
  EXPECT_EQ(copy->scale, 0.1);
  EXPECT_TRUE(copy->title->isEqual(u"first"_ns));
  EXPECT_FALSE(copy->next.as<Page>()->title);

  struct Gone : NSObject, NSCoding {
    static NSRef<Gone> initWithCoder(const NSRef<NSCoder>& /*coder*/) { return nullptr; }
    void encodeWithCoder(const NSRef<NSCoder>& /*coder*/) const override {}
  };
  original->next = NSMake<Gone>();
  EXPECT_THROW(roundTrip(original), NSException);
  NSKeyedUnarchiver::registerClass<Gone>();
  EXPECT_FALSE(roundTrip(original).as<Page>()->next);
}

TEST_F(Archiving, RefusesWhatTheFormCannotHold) {
  struct Plain : NSObject {};
  const auto refusal = [](const NSRef<NSObject>& object, const char* reason) {
    expectRaises(NSInvalidArchiveOperationException,
                 std::string(reason).append(" cannot be archived"), [&] { archived(object); });
  };
  refusal(NSMake<NSString>(std::u16string_view(u"a\0b", 3)), "text with U+0000");
  refusal(NSMake<NSArray>({NSMake<NSString>(std::u16string_view(u"\xDC00"))}),
          "text with half of a surrogate pair");
  refusal(NSMake<NSNumber>(NSUIntegerMax), "the number 18446744073709551615");
  refusal(NSMake<Plain>(), ("an object of class " + NSClass::of<Plain>().name()->utf8()).c_str());
  auto nested = NSMake<NSArray>();
  for (int k = 1; k < 1000; ++k) nested = NSMake<NSArray>({nested});
  EXPECT_TRUE(roundTrip(nested)->isEqual(nested));
  refusal(NSMake<NSArray>({nested}), "a graph of more than 1000 objects in each other");

  const auto archiver = NSMake<NSKeyedArchiver>();
  expectRaises(NSInvalidArgumentException, "key is nil (in 'encodeBool:forKey:')",
               [&] { archiver->encodeBool_forKey(true, nullptr); });
  EXPECT_THROW(archiver->decodeBoolForKey(u"a"_ns), NSException);
  EXPECT_THROW(NSMake<NSKeyedUnarchiver>(archived(nullptr))->encodeBool_forKey(true, u"a"_ns),
               NSException);
}

// An archive with these entries at its top.
NSRef<NSData> archiveWith(const NSRef<NSDictionary>& entries) {
  const auto archiver = NSMake<NSKeyedArchiver>();
  for (const auto& [key, value] : entries) archiver->encodeObject_forKey(value, key.as<NSString>());
  return archiver->encodedData();
}

TEST_F(Archiving, RefusesValuesOfTheWrongKind) {
  const auto coder = NSMake<NSKeyedArchiver>();
  coder->encodeBool_forKey(true, u"bool"_ns);
  coder->encodeInteger_forKey(7, u"integer"_ns);
  coder->encodeDouble_forKey(7.5, u"double"_ns);
  coder->encodeObject_forKey(u"text"_ns, u"object"_ns);
  coder->encodeObjects_forKey({}, u"objects"_ns);
  const auto decoder = NSMake<NSKeyedUnarchiver>(coder->encodedData());
  const auto refusal = [](const char* reason, auto action) {
    expectRaises(NSInvalidUnarchiveOperationException, reason, action);
  };
  refusal("value for key 'integer' is not a boolean",
          [&] { decoder->decodeBoolForKey(u"integer"_ns); });
  refusal("value for key 'bool' is not an integer",
          [&] { decoder->decodeIntegerForKey(u"bool"_ns); });
  refusal("value for key 'bool' is not a number", [&] { decoder->decodeDoubleForKey(u"bool"_ns); });
  refusal("value for key 'objects' is not an object",
          [&] { decoder->decodeObjectForKey(u"objects"_ns); });
  refusal("value for key 'object' is not a list of objects",
          [&] { decoder->decodeObjectsForKey(u"object"_ns); });
  refusal("value for key 'object' is a NSString, not a NSNumber",
          [&] { decoder->decodeObjectOfClass<NSNumber>(u"object"_ns); });
  EXPECT_EQ(decoder->decodeDoubleForKey(u"integer"_ns), 7);
  EXPECT_EQ(decoder->decodeDoubleForKey(u"none"_ns), 0);
  EXPECT_EQ(decoder->decodeIntegerForKey(u"none"_ns), 0);
  EXPECT_FALSE(decoder->decodeBoolForKey(u"none"_ns));
  EXPECT_TRUE(decoder->decodeObjectsForKey(u"none"_ns).empty());
  EXPECT_FALSE(decoder->containsValueForKey(u"none"_ns));
}

TEST_F(Archiving, RefusesUnknownClassesAndGoesOn) {
  struct Stranger : NSObject, NSCoding {
    void encodeWithCoder(const NSRef<NSCoder>& /*coder*/) const override {}
  };
  const auto decoder = NSMake<NSKeyedUnarchiver>(
      archiveWith(NSMake<NSDictionary>({{u"bad"_ns, NSMake<NSArray>({u"a"_ns, NSMake<Stranger>()})},
                                        {u"good"_ns, NSMake<NSArray>({u"b"_ns})}})));
  const auto reason = "the class " + NSClass::of<Stranger>().name()->utf8() + " is not registered";
  for (int k = 0; k < 2; ++k) {
    expectRaises(NSInvalidUnarchiveOperationException, reason,
                 [&] { decoder->decodeObjectForKey(u"bad"_ns); });
    EXPECT_EQ(decoder->decodeObjectForKey(u"good"_ns)->description()->utf8(), "(b)");
  }
}

// Broken copies of an archive give an exception or objects, and nothing else.
TEST_F(Archiving, SurvivesBrokenBytes) {
  const auto page = NSMake<Page>();
  page->next = everything();
  const std::string bytes(archived(page)->view());
  const auto survives = [](std::string_view broken) {
    try {
      const auto object = read(NSMake<NSData>(broken));
      return object ? object->hash() != 1 : true;
    } catch (const NSException&) {
      return true;
    }
  };
  for (std::size_t length = 0; length < bytes.size(); ++length) {
    expectRaises(NSInvalidArgumentException,
                 "the data is no keyed archive (in 'initForReadingWithData:')",
                 [&] { read(NSMake<NSData>(std::string_view(bytes).substr(0, length))); });
  }
  expectProperty("changed bytes", [&](const std::vector<std::pair<std::uint16_t, char>>& changes) {
    std::string broken = bytes;
    for (const auto& [at, byte] : changes) broken[at % broken.size()] = byte;
    RC_ASSERT(survives(broken));
  });
  expectRaises(NSInvalidArgumentException, "data is nil (in 'initForReadingWithData:')",
               [] { read(nullptr); });
}

// Binary property lists written by hand: one byte for each offset and reference.
NSRef<NSData> propertyList(const std::vector<std::string>& objects) {
  std::string bytes = "bplist00";
  std::string offsets;
  for (const auto& object : objects) {
    offsets.push_back(static_cast<char>(bytes.size()));
    bytes += object;
  }
  std::string trailer(32, '\0');
  trailer[6] = trailer[7] = 1;
  trailer[15] = static_cast<char>(objects.size());
  trailer[31] = static_cast<char>(bytes.size());
  return NSMake<NSData>(std::string_view(bytes.append(offsets).append(trailer)));
}

TEST_F(Archiving, RefusesArchivesThatWouldNotFitInMemory) {
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
  for (const auto& objects : lists) {
    EXPECT_THROW(read(propertyList(objects)), NSException);
  }
}

TEST_F(Archiving, RefusesObjectsInThemselves) {
  // What plistutil makes of references is as easily written by hand.
  const auto reference = [](const char* index) {
    return std::string("<dict><key>CF$UID</key><integer>")
        .append(index)
        .append("</integer></dict>");
  };
  const auto archive = [&](const std::string& root, const std::string& element) {
    return "<plist version=\"1.0\"><dict><key>$version</key><integer>100000</integer>"
           "<key>$archiver</key><string>NSKeyedArchiver</string><key>$top</key><dict><key>root</"
           "key>" +
           reference(root.c_str()) +
           "</dict><key>$objects</key><array><string>$null</string><dict><key>$class</key>" +
           reference("2") + "<key>NS.objects</key><array>" + reference(element.c_str()) +
           "</array></dict><dict><key>$classname</key><string>NSArray</string></dict></array>"
           "</dict></plist>";
  };
  const fs::path folder = fs::temp_directory_path() / ("zk archive " + std::to_string(getpid()));
  fs::create_directory(folder);
  const auto outcome = [&](const std::string& xml) {
    std::ofstream(folder / "in.xml") << xml;
    const std::string command = "plistutil -i '" + (folder / "in.xml").native() + "' -o '" +
                                (folder / "out.bin").native() + "' -f bin";
    EXPECT_EQ(std::system(command.c_str()), 0);  // NOLINT: a fixed command
    std::ifstream file(folder / "out.bin", std::ios::binary);
    const std::string bytes(std::istreambuf_iterator<char>(file), {});
    try {
      return read(NSMake<NSData>(std::string_view(bytes)))->description()->utf8();
    } catch (const NSException& exception) {
      return exception.reason()->utf8();
    }
  };
  EXPECT_EQ(outcome(archive("1", "1")), "the object for key 'NS.objects' contains itself");
  EXPECT_EQ(outcome(archive("1", "9")),
            "value for key 'NS.objects' refers to an object that is not there");
  EXPECT_EQ(outcome(archive("1", "0")), "an element is nil (in 'initWithObjects:')");
  EXPECT_EQ(outcome(archive("2", "0")), "an object has no class");
  fs::remove_all(folder);
}

TEST_F(Archiving, ComesBackThroughXML) {
  const fs::path folder = fs::temp_directory_path() / ("zk archive " + std::to_string(getpid()));
  fs::create_directory(folder);
  const auto file = [&](const char* name) { return (folder / name).native(); };
  const auto original = everything();
  std::ofstream(file("a.bin"), std::ios::binary) << archived(original)->view();
  for (const auto& [from, to, format] :
       {std::tuple("a.bin", "a.xml", "xml"), {"a.xml", "b.bin", "bin"}}) {
    const std::string command =
        "plistutil -i '" + file(from) + "' -o '" + file(to) + "' -f " + format;
    ASSERT_EQ(std::system(command.c_str()), 0);  // NOLINT: a fixed command
  }
  std::ifstream stream(file("b.bin"), std::ios::binary);
  const std::string bytes(std::istreambuf_iterator<char>(stream), {});
  EXPECT_NE(bytes, archived(original)->view());
  EXPECT_TRUE(read(NSMake<NSData>(std::string_view(bytes)))->isEqual(original));
  fs::remove_all(folder);
}

}  // namespace
