#include "ZKFoundation/Classes/ZKURLFormatter/ZKURLFormatter.h"

#include <Foundation/NSArray.h>
#include <Foundation/NSKeyValueCoding.h>
#include <Foundation/NSKeyedUnarchiver.h>
#include <Foundation/NSNeverDestroyed.h>
#include <Foundation/NSString.h>
#include <Foundation/NSURL.h>

namespace {

[[gnu::constructor]] void registerClass() { NSKeyedUnarchiver::registerClass<ZKURLFormatter>(); }

ZKURLRefusal invalidPathUnless(const NSRef<NSObject>& object) {
  return object ? ZKURLAccepted : ZKURLInvalidPath;
}

}  // namespace

ZKURLFormatter::ZKURLFormatter()
    : _allowedSchemes(NSMake<NSArray>({u"http"_ns, u"https"_ns, u"file"_ns, u"ssh"_ns})) {}

ZKURLFormatter::ZKURLFormatter(const NSRef<NSCoder>& coder) : NSFormatter(coder) {
  setAllowedSchemes(coder->decodeObjectOfClass<NSArray>(u"allowedSchemes"_ns));
}

void ZKURLFormatter::encodeWithCoder(const NSRef<NSCoder>& coder) const {
  NSFormatter::encodeWithCoder(coder);
  coder->encodeObject_forKey(_allowedSchemes, u"allowedSchemes"_ns);
}

const NSPropertyTable& ZKURLFormatter::propertyTable() const {
  static const NSPropertyTable table({{u"allowedSchemes", &ZKURLFormatter::allowedSchemes}},
                                     NSFormatter::propertyTable());
  return table;
}

NSRef<NSArray> ZKURLFormatter::allowedSchemes() const noexcept { return _allowedSchemes; }

void ZKURLFormatter::setAllowedSchemes(const NSRef<NSArray>& schemes) {
  _allowedSchemes = schemes ? schemes->copy() : nullptr;
}

NSRef<NSString> ZKURLFormatter::stringForObjectValue(const NSRef<NSObject>& object) const {
  if (auto string = object.as<NSString>()) return string;
  const auto url = object.as<NSURL>();
  const auto text = !url ? nullptr : url->isFileURL() ? url->path() : url->absoluteString();
  return text ? text : u""_ns;
}

bool ZKURLFormatter::getObjectValue_forString_errorDescription(NSRef<NSObject>& object,
                                                               const NSRef<NSString>& string,
                                                               NSRef<NSString>* error) const {
  const ZKURLRefusal refusal = refusalOfString_objectValue(string, object);
  if (error != nullptr) *error = reasonOf(refusal);
  return refusal == ZKURLAccepted;
}

ZKURLRefusal ZKURLFormatter::refusalOfString_objectValue(const NSRef<NSString>& string,
                                                         NSRef<NSObject>& object) const {
  // The text may be in the reference that is about to be changed.
  const auto text = string ? string->copy() : u""_ns;
  object = nullptr;
  return readAddress(text, object);
}

ZKURLRefusal ZKURLFormatter::refusalOfString(const NSRef<NSString>& string) const {
  NSRef<NSObject> object;
  return refusalOfString_objectValue(string, object);
}

ZKURLRefusal ZKURLFormatter::readAddress(const NSRef<NSString>& string,
                                         NSRef<NSObject>& object) const {
  if (string->length() == 0) return ZKURLAccepted;
  if (string->view().starts_with(u'/')) {
    object = NSURL::fileURLWithPath(string);
    return invalidPathUnless(object);
  }
  if (string->view().starts_with(u"..")) {
    object = string->stringByStandardizingPath();
    return invalidPathUnless(object);
  }

  auto url = NSURL::URLWithString(string);
  auto scheme = url ? url->scheme() : nullptr;
  if (url && !scheme) {
    if (string->view().find(u'.') == std::u16string_view::npos) return ZKURLWithoutScheme;
    static const NSNeverDestroyed<NSRef<NSString>> http(u"http://"_ns);
    url = NSURL::URLWithString((*http)->stringByAppendingString(string));
    scheme = url ? url->scheme() : nullptr;
  }
  object = url;
  if (!url) return ZKURLInvalidSyntax;
  if (!url->hasHierarchy() || NSViewOf(url->host()).empty()) return ZKURLWithoutHost;
  const bool isAllowed = !_allowedSchemes || _allowedSchemes->containsObject(scheme);
  return isAllowed ? ZKURLAccepted : ZKURLSchemeNotAllowed;
}

NSRef<NSString> ZKURLFormatter::reasonOf(ZKURLRefusal refusal) const {
  switch (refusal) {
    case ZKURLAccepted:
      return nullptr;
    case ZKURLInvalidPath:
      return u"Invalid filesystem path"_ns;
    case ZKURLSchemeNotAllowed:
      return u"URL protocol must be %@"_ns->stringByAppendingString(
          _allowedSchemes->componentsJoinedByString(u", "_ns));
    default:
      return NSConstantString<u"Invalid URL">();
  }
}
