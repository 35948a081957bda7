#pragma once

#include <Foundation/NSFormatter.h>
#include <ZKFoundation/ZKExport.h>

class NSArray;
class NSString;

/// Says why a typed text is refused.
enum ZKURLRefusal : NSInteger {
  ZKURLAccepted = 0,
  /// No file can have the path.
  ZKURLInvalidPath = 1,
  /// The text is no URL: there is a blank in it, or a letter outside ASCII.
  ZKURLInvalidSyntax = 2,
  /// There is neither a scheme nor a ".", by which a host is told from a word.
  ZKURLWithoutScheme = 3,
  /// There is a scheme but no host, or no path: "file:///tmp", "mailto:someone".
  ZKURLWithoutHost = 4,
  /// The scheme is not among the allowed ones.
  ZKURLSchemeNotAllowed = 5,
};

/// Reads what a user types into a field for web addresses and files, and writes URLs for it.
class ZK_EXPORT ZKURLFormatter : public NSFormatter {
 public:
  /// Allows "http", "https", "file" and "ssh".
  ZKURLFormatter();
  /// Reads what `encodeWithCoder` has written; without schemes every scheme is allowed.
  explicit ZKURLFormatter(const NSRef<NSCoder>& coder);

  /// Gives the schemes that are accepted, as strings, in the order in which a refusal lists them.
  /// They are compared letter by letter: "HTTP" is another one. Nil accepts every scheme.
  [[nodiscard]] NSRef<NSArray> allowedSchemes() const noexcept;
  /// Keeps a copy.
  void setAllowedSchemes(const NSRef<NSArray>& schemes);

  /// Gives a string as it is, the path of a file URL, the text of any other URL, and the empty
  /// string for everything else, nil too.
  [[nodiscard]] NSRef<NSString> stringForObjectValue(const NSRef<NSObject>& object) const override;

  /// Gives true when the text is acceptable:
  ///
  /// | text | object |
  /// |---|---|
  /// | the empty text, nil | nil |
  /// | from "/" | the file URL of the path |
  /// | from ".." | the path standardized, as a string |
  /// | a URL with an allowed scheme, a path, which may be empty, and a host | the URL |
  /// | the same without a scheme, with a "." somewhere: "a.b/c" | the URL "http://a.b/c" |
  ///
  /// Else it gives false with the reason in `*error`, which is nil after success and may be null:
  /// "Invalid filesystem path", "Invalid URL", or "URL protocol must be %@", percent sign and all,
  /// followed by the allowed schemes. The object is nil then if the text is no URL at all or has
  /// neither a scheme nor a ".", and the refused URL otherwise.
  bool getObjectValue_forString_errorDescription(NSRef<NSObject>& object,
                                                 const NSRef<NSString>& string,
                                                 NSRef<NSString>* error) const override;

  /// Reads the text as `getObjectValue_forString_errorDescription` does, which makes its reason of
  /// this code: the next three of `ZKURLInvalidPath` are all "Invalid URL".
  [[nodiscard]] ZKURLRefusal refusalOfString_objectValue(const NSRef<NSString>& string,
                                                         NSRef<NSObject>& object) const;
  /// Tells why the text is refused.
  [[nodiscard]] ZKURLRefusal refusalOfString(const NSRef<NSString>& string) const;

  /// Writes the schemes.
  void encodeWithCoder(const NSRef<NSCoder>& coder) const override;
  /// Publishes "allowedSchemes" besides what every object does.
  [[nodiscard]] const NSPropertyTable& propertyTable() const override;

 private:
  [[nodiscard]] ZKURLRefusal readAddress(const NSRef<NSString>& string,
                                         NSRef<NSObject>& object) const;
  [[nodiscard]] NSRef<NSString> reasonOf(ZKURLRefusal refusal) const;

  NSRef<NSArray> _allowedSchemes;
};
