#include <iostream>

#include <ZKFoundation/ZKFoundation.h>

// As an older version of the program wrote it.
struct Note : NSObject, NSCoding {
  void encodeWithCoder(const NSRef<NSCoder>& coder) const override {
    coder->encodeObject_forKey(u"Buy milk"_ns, u"text"_ns);
    coder->encodeBool_forKey(true, u"urgent"_ns);
  }
};

// The same today, with another name, with tags, and with a number in the place of the flag.
struct Entry : NSObject, NSCoding {
  explicit Entry(const NSRef<NSCoder>& coder)
      : text(coder->decodeObjectOfClass<NSString>(u"text"_ns)),
        tags(coder->decodeObjectOfClass<NSArray>(u"tags"_ns)),
        priority(coder->decodeIntegerForKey(u"priority"_ns)) {
    if (!tags) tags = NSMake<NSArray>();
    if (!coder->containsValueForKey(u"priority"_ns) && coder->decodeBoolForKey(u"urgent"_ns)) {
      priority = 9;
    }
  }
  void encodeWithCoder(const NSRef<NSCoder>& coder) const override {
    coder->encodeObject_forKey(text, u"text"_ns);
    coder->encodeObject_forKey(tags, u"tags"_ns);
    coder->encodeInteger_forKey(priority, u"priority"_ns);
  }

  NSRef<NSString> text;
  NSRef<NSArray> tags;
  NSInteger priority;
};

int main() {
  NSKeyedUnarchiver::registerClass<Entry>();
  NSKeyedUnarchiver::setClass_forClassName<Entry>(u"Note"_ns);
  const auto archive = NSKeyedArchiver::archivedDataWithRootObject(NSMake<Note>());
  NSRef<NSError> error;
  const auto entry =
      NSKeyedUnarchiver::unarchivedObjectOfClass_fromData_error<Entry>(archive, &error);
  if (!entry) {
    std::cerr << error << '\n';
    return 1;
  }
  std::cout << entry->text << ", priority " << entry->priority << ", " << entry->tags->count()
            << " tags\n";
}
