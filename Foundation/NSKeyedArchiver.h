#pragma once

#include <memory>
#include <span>

#include <Foundation/NSCoder.h>
#include <Foundation/NSData.h>
#include <Foundation/NSExport.h>

/// Writes an object graph as a keyed archive, a binary property list:
///
///     {$version: 100000, $archiver: "NSKeyedArchiver", $top: {root: <1>}, $objects: ["$null", …]}
///
/// Objects stand in the table once, however often they are referred to: strings, numbers and data
/// as they are, others as records of their keys with a reference to the record of their class. Keys
/// that begin with "$" get another one in front.
///
/// These can be archived: strings, numbers, data, `NSNull`, arrays, sets, dictionaries, `NSURL`,
/// `NSLocale`, and what derives from `NSCoding`; of other subclasses of these their contents. All
/// else raises `NSInvalidArchiveOperationException`, and so do a graph of more than 500 objects
/// in each other, and what libplist does not hold: an unsigned number of 2^63 and above, and text
/// with U+0000 or half of a surrogate pair. An archiver that has raised cannot be used further.
///
/// libplist's writer looks up each value among the others in a table of fixed size: documents are
/// written at once, hundreds of thousands of objects take minutes.
class NS_EXPORT NSKeyedArchiver : public NSCoder {
 public:
  /// The archive of one object, under the key "root". Nil is archived as nil.
  static NSRef<NSData> archivedDataWithRootObject(const NSRef<NSObject>& root);

  NSKeyedArchiver();
  ~NSKeyedArchiver() override;

  void encodeBool_forKey(bool value, const NSRef<NSString>& key) override;
  void encodeInteger_forKey(NSInteger value, const NSRef<NSString>& key) override;
  void encodeDouble_forKey(double value, const NSRef<NSString>& key) override;
  void encodeObject_forKey(const NSRef<NSObject>& object, const NSRef<NSString>& key) override;
  /// Text in its place, not as an object, as mutable strings write theirs.
  void encodeText_forKey(const NSString& text, const NSRef<NSString>& key);
  /// Objects as a list without a class, as collections write theirs.
  void encodeObjects_forKey(std::span<const NSRef<NSObject>> objects, const NSRef<NSString>& key);

  /// The archive of what has been encoded up to now.
  NSRef<NSData> encodedData() const;

 private:
  struct Archive;
  std::unique_ptr<Archive> _archive;
};
