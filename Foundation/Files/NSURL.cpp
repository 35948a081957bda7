#include "Foundation/NSURL.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <new>
#include <string>
#include <system_error>

#include <uriparser/Uri.h>

#include <Foundation/Files/FilePaths.h>
#include <Foundation/NSArray.h>
#include <Foundation/NSCharacterSet.h>
#include <Foundation/NSException.h>
#include <Foundation/NSKeyValueCoding.h>
#include <Foundation/NSNumber.h>
#include <Foundation/NSString.h>
#include <Foundation/Text/ASCII.h>
#include <Foundation/Text/PercentEncoding.h>

namespace fs = std::filesystem;

// The parts of a text, as uriparser finds them.
class NSURL::Parts {
 public:
  explicit Parts(std::string_view text) : _text(text) {
    const char* error = nullptr;
    const int status = uriParseSingleUriExA(&_uri, text.data(), text.data() + text.size(), &error);
    if (status == URI_ERROR_MALLOC) throw std::bad_alloc();
    _isValid = status == URI_SUCCESS;
  }
  Parts(const Parts&) = delete;
  ~Parts() {
    if (_isValid) uriFreeUriMembersA(&_uri);
  }

  [[nodiscard]] bool isValid() const { return _isValid; }
  [[nodiscard]] Part scheme() const { return part(_uri.scheme); }
  [[nodiscard]] Part userInfo() const { return part(_uri.userInfo); }
  [[nodiscard]] Part host() const { return part(_uri.hostText); }
  [[nodiscard]] Part port() const { return part(_uri.portText); }
  [[nodiscard]] Part query() const { return part(_uri.query); }
  [[nodiscard]] Part fragment() const { return part(_uri.fragment); }

  // What is between scheme and authority before it and query and fragment after it. uriparser gives
  // it in segments, without the "/" between them.
  [[nodiscard]] Part path() const {
    const auto endsPath = [](char byte) { return byte == '?' || byte == '#'; };
    const auto endsHost = [=](char byte) { return byte == '/' || endsPath(byte); };
    const auto* start = _text.begin() + (_uri.scheme.first == nullptr ? 0 : scheme().end + 1);
    if (std::string_view(start, _text.end()).starts_with("//")) {
      start = std::find_if(start + 2, _text.end(), endsHost);
    }
    const auto* const end = std::find_if(start, _text.end(), endsPath);
    return {static_cast<std::uint32_t>(start - _text.begin()),
            static_cast<std::uint32_t>(end - _text.begin())};
  }

 private:
  [[nodiscard]] Part part(const UriTextRangeA& range) const {
    if (range.first == nullptr) return {};
    // Empty ranges need not lie in the text.
    if (range.first == range.afterLast) return {0, 0};
    return {static_cast<std::uint32_t>(range.first - _text.data()),
            static_cast<std::uint32_t>(range.afterLast - _text.data())};
  }

  std::string_view _text;
  UriUriA _uri{};
  bool _isValid = false;
};

namespace {

fs::path filePath(const NSRef<NSString>& path, const char* operation) {
  if (!path) NSRaiseNilArgument("path", operation);
  return NSBytesOfPath(path->view());
}

NSRef<NSURL> fileURL(const fs::path& path, bool isDirectory) {
  std::error_code error;
  std::string bytes = path.empty() ? std::string() : fs::absolute(path, error).native();
  if (bytes.empty() || error || bytes.find('\0') != std::string::npos) return nullptr;
  if (isDirectory && !bytes.ends_with('/')) bytes.push_back('/');
  return NSURL::URLWithString(NSMake<NSString>(
      "file://" + NSPercentEncoded(bytes, *NSCharacterSet::URLPathAllowedCharacterSet())));
}

}  // namespace

NSURL::NSURL(const NSRef<NSString>& text, const Parts& parts) noexcept
    : _text(text),
      _scheme(parts.scheme()),
      _userInfo(parts.userInfo()),
      _host(parts.host()),
      _port(parts.port()),
      _path(parts.path()),
      _query(parts.query()),
      _fragment(parts.fragment()) {}

NSRef<NSURL> NSURL::URLWithString(const NSRef<NSString>& text) {
  if (!text || text->length() >= Part::missing || !NSIsASCII(text->view())) return nullptr;
  const std::u16string_view units = text->view();
  // Most URLs fit here; the bytes are needed for the parser alone.
  std::array<char, 256> room;
  std::string longer(units.size() > room.size() ? units.size() : 0, '\0');
  char* const bytes = longer.empty() ? room.data() : longer.data();
  std::ranges::transform(units, bytes, [](char16_t unit) { return static_cast<char>(unit); });
  const Parts parts(std::string_view(bytes, units.size()));
  return parts.isValid() ? NSMake<NSURL>(text->copy(), parts) : nullptr;
}

NSRef<NSURL> NSURL::fileURLWithPath(const NSRef<NSString>& path) {
  return fileURLWithPath(filePath(path, "fileURLWithPath:"));
}

NSRef<NSURL> NSURL::fileURLWithPath_isDirectory(const NSRef<NSString>& path, bool isDirectory) {
  return fileURL(filePath(path, "fileURLWithPath:isDirectory:"), isDirectory);
}

NSRef<NSURL> NSURL::fileURLWithPath(const fs::path& path) {
  std::error_code error;
  return fileURL(path, fs::is_directory(path, error));
}

NSRef<NSURL> NSURL::fileURLWithPath_isDirectory(const fs::path& path, bool isDirectory) {
  return fileURL(path, isDirectory);
}

NSRef<NSURL> NSURL::fileURLWithPathComponents(const NSRef<NSArray>& components) {
  if (!components || components->count() == 0) return nullptr;
  auto path = NSMake<NSMutableString>();
  for (const auto& object : components) {
    const auto component = object.as<NSString>();
    if (!component) continue;
    const bool isJoined = path->length() == 0 || path->view().ends_with(u'/');
    if (!isJoined) path->appendUnits(u"/");
    if (component->view() != u"/" || path->length() == 0) path->appendString(component);
  }
  return fileURLWithPath(path);
}

std::u16string_view NSURL::unitsOf(Part part) const noexcept {
  return part.exists() ? _text.get()->view().substr(part.start, part.end - part.start)
                       : std::u16string_view();
}

NSRef<NSString> NSURL::written(Part part) const {
  return part.exists() ? NSMake<NSString>(unitsOf(part)) : nullptr;
}

NSRef<NSString> NSURL::decoded(Part part) const {
  if (!part.exists() || unitsOf(part).find(u'%') == std::u16string_view::npos) {
    return written(part);
  }
  // Whole percent sequences are a part of the syntax.
  return NSMake<NSString>(std::string_view(*NSPercentDecoded(NSASCIIOf(unitsOf(part)))));
}

NSRef<NSString> NSURL::absoluteString() const noexcept { return _text; }

NSRef<NSString> NSURL::scheme() const { return written(_scheme); }

NSRef<NSString> NSURL::user() const {
  Part user = _userInfo;
  const std::size_t colon = unitsOf(user).find(u':');
  if (colon != std::u16string_view::npos) user.end = user.start + static_cast<std::uint32_t>(colon);
  return decoded(user);
}

NSRef<NSString> NSURL::password() const {
  const std::size_t colon = unitsOf(_userInfo).find(u':');
  if (colon == std::u16string_view::npos) return nullptr;
  return decoded({_userInfo.start + static_cast<std::uint32_t>(colon) + 1, _userInfo.end});
}

NSRef<NSString> NSURL::host() const { return decoded(_host); }

NSRef<NSNumber> NSURL::port() const {
  const std::string digits = NSASCIIOf(unitsOf(_port));
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  return error == std::errc() ? NSMake<NSNumber>(value) : nullptr;
}

bool NSURL::hasHierarchy() const noexcept {
  return !_scheme.exists() || _host.exists() || unitsOf(_path).starts_with(u'/');
}

NSRef<NSString> NSURL::path() const {
  if (!hasHierarchy()) return nullptr;
  Part path = _path;
  if (path.end - path.start > 1 && hasDirectoryPath()) --path.end;
  return decoded(path);
}

NSRef<NSString> NSURL::query() const { return written(_query); }
NSRef<NSString> NSURL::fragment() const { return written(_fragment); }

NSRef<NSArray> NSURL::pathComponents() const {
  const auto path = this->path();
  return path ? path->pathComponents() : nullptr;
}

NSRef<NSString> NSURL::lastPathComponent() const {
  const auto path = this->path();
  return path ? path->lastPathComponent() : nullptr;
}

NSRef<NSString> NSURL::pathExtension() const {
  const auto path = this->path();
  return path ? path->pathExtension() : nullptr;
}

NSRef<NSURL> NSURL::URLByAppendingPathComponent_isDirectory(const NSRef<NSString>& component,
                                                            bool isDirectory) const {
  if (!component) {
    NSRaiseNilArgument("component", "URLByAppendingPathComponent:isDirectory:");
  }
  const auto encoded = component->stringByAddingPercentEncodingWithAllowedCharacters(
      NSCharacterSet::URLPathAllowedCharacterSet());
  if (!encoded || !hasHierarchy()) return nullptr;
  std::u16string_view name = encoded->view();
  while (name.starts_with(u'/')) name.remove_prefix(1);
  while (name.ends_with(u'/')) name.remove_suffix(1);
  std::u16string text(_text.get()->view().substr(0, _path.end));
  // A relative reference to nothing stays relative.
  const bool isRelative = _path.start == _path.end && !_host.exists();
  if (isRelative && name.find(u':') != std::u16string_view::npos) text.append(u"./");
  if (!isRelative && !hasDirectoryPath() && !name.empty()) text.push_back(u'/');
  text.append(name);
  const bool isPlace = !isRelative || !name.empty();
  if (isDirectory && isPlace && !text.ends_with(u'/')) text.push_back(u'/');
  text.append(_text.get()->view().substr(_path.end));
  return URLWithString(NSMake<NSString>(text));
}

bool NSURL::hasDirectoryPath() const noexcept { return unitsOf(_path).ends_with(u'/'); }

bool NSURL::isFileURL() const noexcept {
  return std::ranges::equal(unitsOf(_scheme), std::u16string_view(u"file"),
                            [](char16_t a, char16_t b) { return (a | 0x20) == b; });
}

fs::path NSURL::fileSystemPath() const {
  if (!isFileURL()) return {};
  return *NSPercentDecoded(NSASCIIOf(unitsOf(_path)));
}

bool NSURL::isEqual(const NSRef<NSObject>& other) const {
  const auto* const url = other.cast<NSURL>();
  return url != nullptr && _text->isEqualToString(url->_text);
}

NSUInteger NSURL::hash() const { return _text->hash(); }

NSRef<NSString> NSURL::description() const { return _text; }

const NSPropertyTable& NSURL::propertyTable() const {
  static const NSPropertyTable table({{u"absoluteString", &NSURL::absoluteString},
                                      {u"scheme", &NSURL::scheme},
                                      {u"host", &NSURL::host},
                                      {u"path", &NSURL::path},
                                      {u"query", &NSURL::query},
                                      {u"fragment", &NSURL::fragment}},
                                     NSObject::propertyTable());
  return table;
}
