#include <iostream>

#include <ZKFoundation/ZKFoundation.h>

using namespace ZKFoundationExtensions;

int main() {
  const auto manager = NSFileManager::defaultManager();
  const auto folder =
      temporaryFolder()->URLByAppendingPathComponent_isDirectory(UUIDString(), true);
  const auto place = [&](const NSRef<NSString>& name) {
    return folder->URLByAppendingPathComponent_isDirectory(name, false);
  };
  NSRef<NSError> error;
  if (!manager->createDirectoryAtURL_withIntermediateDirectories_attributes_error(
          folder, true, nullptr, &error)) {
    std::cerr << error << '\n';
    return 1;
  }

  u"Ein Löffel voll"_ns->writeToURL_atomically_encoding_error(
      place(u"recipe"_ns), true, NSUTF16LittleEndianStringEncoding, &error);
  NSStringEncoding encoding{};
  const auto text =
      NSString::stringWithContentsOfURL_usedEncoding_error(place(u"recipe"_ns), &encoding, &error);
  std::cout << text << " (" << NSNameOfEncoding(encoding) << ")\n";

  manager->copyItemAtURL_toURL_error(place(u"recipe"_ns), place(u"recipe 2"_ns), &error);
  if (!manager->moveItemAtURL_toURL_error(place(u"recipe"_ns), place(u"recipe 2"_ns), &error)) {
    std::cout << error->localizedDescription() << '\n';
  }
  NSMake<NSData>(
      "L\xF6"
      "ffel")
      ->writeToURL_options_error(place(u"broken"_ns), 0, &error);
  if (!NSString::stringWithContentsOfURL_usedEncoding_error(place(u"broken"_ns), nullptr, &error)) {
    std::cout << error->localizedDescription() << '\n';
  }
  const auto found = manager->contentsOfDirectoryAtURL_includingPropertiesForKeys_options_error(
      folder, nullptr, 0, &error);
  for (const auto& url : found->each<NSURL>()) std::cout << url->lastPathComponent() << '\n';
  manager->removeItemAtURL_error(folder, &error);

  std::u16string_view rest = u"M 10,-2.5e1";
  rest.remove_prefix(2);
  const auto x = NSTakeInteger(rest);
  rest.remove_prefix(1);
  const auto y = NSTakeDouble(rest);
  std::cout << x.value_or(0) << " and " << y.value_or(0) << '\n';
}
