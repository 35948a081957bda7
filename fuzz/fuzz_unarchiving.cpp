#include "fuzz/Support.h"

#include <string>
#include <string_view>

#include <ZKFoundation/ZKFoundation.h>

namespace {

NSRef<NSObject> sample() {
  const auto text = NSMake<NSMutableString>("text");
  return NSMake<NSArray>(
      {NSMake<ZKUnitOfInformationFormatter>(), NSMake<ZKURLFormatter>(), text, text,
       NSMake<NSDictionary>({{u"ключ"_ns, NSMake<NSNumber>(0.1)}, {u"k"_ns, NSNull::null()}}),
       NSMake<NSSet>({NSMake<NSNumber>(true), NSMake<NSNumber>(-1)}),
       NSMake<NSData>(std::string_view("bytes")), NSURL::URLWithString(u"http://a"_ns)});
}

// A sound archive with some bytes changed: pairs of a position and a value.
std::string changed(std::string_view edits) {
  static const std::string sound(NSKeyedArchiver::archivedDataWithRootObject(sample())->view());
  std::string bytes = sound;
  for (std::size_t k = 0; k + 2 < edits.size(); k += 3) {
    const auto at =
        static_cast<unsigned char>(edits[k]) * 256U + static_cast<unsigned char>(edits[k + 1]);
    bytes[at % bytes.size()] = edits[k + 2];
  }
  return bytes;
}

// A property list whose objects are pieces of the input, each with its length in front.
std::string composed(std::string_view input) {
  std::string bytes = "bplist00";
  std::string offsets;
  while (!input.empty()) {
    const std::string_view object = input.substr(1, static_cast<unsigned char>(input[0]) % 32U);
    offsets.push_back(static_cast<char>(bytes.size() >> 8U));
    offsets.push_back(static_cast<char>(bytes.size() & 0xFFU));
    bytes += object;
    input.remove_prefix(1 + object.size());
  }
  std::string trailer(32, '\0');
  trailer[6] = 2;
  trailer[7] = 1;
  trailer[14] = static_cast<char>((offsets.size() / 2) >> 8U);
  trailer[15] = static_cast<char>((offsets.size() / 2) & 0xFFU);
  trailer[30] = static_cast<char>(bytes.size() >> 8U);
  trailer[31] = static_cast<char>(bytes.size() & 0xFFU);
  return bytes.append(offsets).append(trailer);
}

}  // namespace

// Whatever the bytes are, they are refused or give objects, which survive another archive.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string_view input(reinterpret_cast<const char*>(data) + 1, size - 1);
  const std::string bytes = data[0] % 3 == 0   ? std::string(input)
                            : data[0] % 3 == 1 ? changed(input)
                                               : composed(input);
  NSRef<NSData> first;
  try {
    const auto object = NSKeyedUnarchiver::unarchiveObjectWithData(NSMake<NSData>(bytes));
    first = NSKeyedArchiver::archivedDataWithRootObject(object);
  } catch (const NSException&) {
    return 0;
  }
  const auto again = NSKeyedUnarchiver::unarchiveObjectWithData(first);
  require(NSKeyedArchiver::archivedDataWithRootObject(again)->isEqualToData(first));
  return 0;
}
