#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include <Foundation/NSCoder.h>
#include <Foundation/NSData.h>
#include <Foundation/NSExport.h>

/// Writes an object graph as a keyed archive, a binary property list:
///
///     {$version: 100000, $archiver: "NSKeyedArchiver", $top: {root: <1>}, $objects: ["$null", …]}
///
/// Objects stand in the table once, however often they are referred to: strings, numbers and data
/// as they are, others as records of their keys with a reference to the record of their class. Keys
/// that begin with "$" get another one in front. Equal strings, numbers and data become one object,
/// so that an archive that is read and written again has the same bytes. Members of a set, or keys,
/// that have been changed and are equal now become one, too.
///
/// These can be archived: strings, numbers, data, `NSNull`, arrays, sets, dictionaries, `NSURL`,
/// `NSLocale`, the contents of other subclasses of these, and what derives from `NSCoding`. All
/// else raises `NSInvalidArchiveOperationException`, and so does what could not be read again: a
/// graph of more than 500 objects in each other, an object that contains itself, such as a part
/// that writes its owner, and a second value for one key of an object. What it does not look at is
/// how often reading will hash long texts that can change (`NSKeyedUnarchiver`). A collection that
/// is changed while its elements are encoded raises `NSGenericException`. An archiver that has
/// raised cannot be used further.
class NS_EXPORT NSKeyedArchiver : public NSCoder {
 public:
  /// Archives one object, under the key "root". Nil is archived as nil. There is no form with an
  /// error: what cannot be archived raises, so that nothing is saved over a sound document.
  [[nodiscard]] static NSRef<NSData> archivedDataWithRootObject(const NSRef<NSObject>& root);

  /// Gives the class another name in all archives that are written from now on than its C++ name,
  /// which a class in an unnamed namespace shares with others. Nil takes that back.
  /// `NSKeyedUnarchiver::setClass_forClassName` is its counterpart. May be called from any thread.
  static void setClassName_forClass(const NSRef<NSString>& codedName, NSClass aClass);

  NSKeyedArchiver();
  ~NSKeyedArchiver() override;

  void encodeBool_forKey(bool value, const NSRef<NSString>& key) override;
  void encodeInteger_forKey(NSInteger value, const NSRef<NSString>& key) override;
  void encodeDouble_forKey(double value, const NSRef<NSString>& key) override;
  void encodeObject_forKey(const NSRef<NSObject>& object, const NSRef<NSString>& key) override;
  /// Writes a text in its place, not as an object, as mutable strings write theirs.
  void encodeText_forKey(const NSString& text, const NSRef<NSString>& key);
  /// Writes the objects of a collection, or what the projection takes of its elements, as a list
  /// without a class, as collections write theirs.
  template <class Objects, class Projection = std::identity>
  void encodeObjects_forKey(const Objects& objects, const NSRef<NSString>& key,
                            Projection projection = {}) {
    const std::uint32_t list = beginList(key);
    for (const auto& object : objects) appendToList(list, projection(object));
  }

  /// Gives the archive of what has been encoded up to now.
  [[nodiscard]] NSRef<NSData> encodedData() const;

 private:
  std::uint32_t beginList(const NSRef<NSString>& key);
  void appendToList(std::uint32_t list, const NSRef<NSObject>& object);

  struct Archive;
  std::unique_ptr<Archive> _archive;
};
