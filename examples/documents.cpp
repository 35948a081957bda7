#include <iostream>

#include <ZKFoundation/ZKFoundation.h>

using namespace ZKFoundationExtensions;

int main() {
  NSLocale::setCurrentLocale(NSLocale::localeWithLocaleIdentifier(u"en"_ns));
  const auto identifiers = NSMake<NSArray>({u"de_CH"_ns, u"pl"_ns, u"not a language"_ns});
  for (const auto& item : ZKLocaleEntity::entitiesForLocaleIdentifiers(identifiers)) {
    const auto identifier = item.as<ZKLocaleEntity>()->localeIdentifier();
    const auto opening = openingDoubleQuotationForLocaleIdentifier(identifier);
    const auto closing = closingDoubleQuotationForLocaleIdentifier(identifier);
    std::cout << item.as<ZKLocaleEntity>()->displayName() << ": " << stringWithCharacter(opening)
              << "quoted" << stringWithCharacter(closing) << '\n';
  }

  std::cout << uniqueStringWithString_forStringArray(
                   u"Layer 9"_ns, NSMake<NSArray>({u"Layer 9"_ns, u"Layer 10"_ns}))
            << '\n';

  const auto document = NSMake<NSFileWrapper>(NSMake<NSDictionary>());
  for (const char* const text : {"first", "second", "third"}) {
    const auto page = NSMake<NSFileWrapper>(NSMake<NSData>(text));
    page->setPreferredFilename(u"page.txt"_ns);
    std::cout << addFileWrapperWithUniqueFileName(document, page) << '\n';
  }

  NSRef<NSError> error;
  const auto place = temporaryFolder()->URLByAppendingPathComponent_isDirectory(UUIDString(), true);
  if (!document->writeToURL_options_originalContentsURL_error(place, 0, nullptr, &error)) {
    std::cerr << error << '\n';
    return 1;
  }
  const auto opened = NSFileWrapper::initWithURL_options_error(place, 0, &error);
  std::cout << opened->fileWrappers()->count() << " pages\n";
  std::filesystem::remove_all(place->fileSystemPath());

  if (!NSFileWrapper::initWithURL_options_error(place, 0, &error) && isFileNotFoundError(error)) {
    std::cout << error->localizedDescription() << '\n';
  }
}
