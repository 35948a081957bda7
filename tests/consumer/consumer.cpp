// An application outside the tree, built against an installation.

#include <filesystem>
#include <iostream>

#include <ZKFoundation/ZKFoundation.h>

using namespace ZKFoundationExtensions;

namespace {

int failures = 0;

void expect(bool holds, const char* what) {
  if (holds) return;
  std::cerr << "consumer: wrong: " << what << '\n';
  ++failures;
}

}  // namespace

struct Chapter : NSObject {
  NSRef<NSString> heading = u"One"_ns;

  const NSPropertyTable& propertyTable() const override {
    static const NSPropertyTable table({{u"heading", &Chapter::heading}},
                                       NSObject::propertyTable());
    return table;
  }
};

int main() {
  const auto chapter = NSMake<Chapter>();
  const auto program = std::filesystem::canonical("/proc/self/exe").native();
  expect(bundle(chapter)->executablePath()->utf8() == program, "the bundle of its own class");
  expect(bundle<ZKFoundation>() != bundle(chapter), "the bundle of the library");
  expect(bundle<NSString>() != bundle(chapter), "the bundle of the platform layer");
  expect(bundle(u"x"_ns) == bundle<NSString>(), "the bundle of a string");

  expect(chapter->valueForKey(u"heading"_ns) == chapter->heading, "a published key");
  NSRef<NSString> line;
  NSSetLogSink([&](const NSRef<NSString>& text) { line = text; });
  expect(chapter->valueForKey(u"colour"_ns) == nullptr, "an unknown key");
  NSSetLogSink(nullptr);
  expect(line == u"KVO/Undefined Key: colour class:Chapter", "the line of the unknown key");

  try {
    makeObjectsPerformBlock(NSMake<NSArray>({chapter}), nullptr);
    expect(false, "an exception for no block");
  } catch (const NSException& exception) {
    expect(exception.name() == NSInvalidArgumentException, "the exception's name");
    expect(exception.reason() == u"aBlock is nil (in 'makeObjectsPerformBlock:')",
           "the exception's reason");
  }
  if (failures == 0) std::cout << "consumer: all as expected\n";
  return failures == 0 ? 0 : 1;
}
