#include <iostream>

#include <ZKFoundation/ZKFoundation.h>

int main() {
  NSLocale::setCurrentLocale(NSLocale::localeWithLocaleIdentifier(u"de"_ns));
  auto sizes = NSMake<ZKUnitOfInformationFormatter>();
  for (const long bytes : {999L, 1'536L, 200'000L, 3'000'000'000L}) {
    std::cout << sizes->stringFromNumber_ofUnit(NSMake<NSNumber>(bytes), ZKUnitOfInformationByte)
              << '\n';
  }

  auto addresses = NSMake<ZKURLFormatter>();
  for (const auto& typed : {u"example.org/a"_ns, u"../b/./c"_ns, u"ftp://example.org"_ns}) {
    NSRef<NSObject> object;
    NSRef<NSString> reason;
    if (addresses->getObjectValue_forString_errorDescription(object, typed, &reason)) {
      std::cout << typed << " became " << object << '\n';
    } else {
      std::cout << typed << " was refused: " << reason << '\n';
    }
  }

  sizes->setUsesIECBinaryPrefixesForDisplay(true);
  const auto archive = NSKeyedArchiver::archivedDataWithRootObject(sizes);
  const auto copy =
      NSKeyedUnarchiver::unarchivedObjectOfClass<ZKUnitOfInformationFormatter>(archive);
  std::cout << copy->stringFromNumberOfBits(NSMake<NSNumber>(12'288)) << " from an archive of "
            << archive->length() << " bytes\n";
}
