#pragma once

#include <memory_resource>

#include <Foundation/NSArray.h>
#include <Foundation/NSCharacterSet.h>
#include <Foundation/NSString.h>
#include <ZKFoundation/ZKExport.h>

// Editing by character set, and splitting. The plain functions ask about every unit by itself, the
// halves of a surrogate pair apart. A nil set has no members, a nil replacement is the empty
// string; a nil receiver raises `NSInvalidArgumentException`. All of it is linear in the length of
// the text and of the result.

/// Replaces in place every unit that is a member of the set by the whole replacement: "a,,b" with
/// "; " for "," becomes "a; ; b". A string without members is left alone. When memory runs out the
/// string is as it was.
ZK_EXPORT void ZKReplaceCharactersInCharacterSet(const NSRef<NSMutableString>& string,
                                                 const NSRef<NSCharacterSet>& set,
                                                 const NSRef<NSString>& replacement);

/// Deletes in place every unit that is a member of the set.
ZK_EXPORT void ZKRemoveCharactersInCharacterSet(const NSRef<NSMutableString>& string,
                                                const NSRef<NSCharacterSet>& set);

/// Splits the string at the members of the separator set, into a new array of new strings. Empty
/// components are left out: ",a,,b," at "," gives ("a", "b"). With `trimsWhitespace` white space
/// (no line breaks) is dropped from both ends of each component; a blank one stays, as the empty
/// string: " a , ,b" gives ("a", "", "b").
///
/// Memory that is needed only while it works comes from the allocator; null means
/// `std::pmr::get_default_resource()`.
[[nodiscard]] ZK_EXPORT NSRef<NSMutableArray>
ZKStringCreateComponentsSeparatedByCharacterSetTrimWhitespace(
    std::pmr::memory_resource* allocator, const NSRef<NSString>& string,
    const NSRef<NSCharacterSet>& separators, bool trimsWhitespace);

namespace ZKFoundationExtensions {

/// Replaces in place, as `ZKReplaceCharactersInCharacterSet` does.
ZK_EXPORT void replaceOccurrencesOfCharactersInSet_withString(const NSRef<NSMutableString>& string,
                                                              const NSRef<NSCharacterSet>& set,
                                                              const NSRef<NSString>& replacement);

/// Deletes in place, as `ZKRemoveCharactersInCharacterSet` does.
ZK_EXPORT void removeCharactersInCharacterSet(const NSRef<NSMutableString>& string,
                                              const NSRef<NSCharacterSet>& set);

/// Replaces in place every character that is a member of the set, a surrogate pair as one; a nil or
/// empty replacement deletes them. Otherwise as `ZKReplaceCharactersInCharacterSet`.
ZK_EXPORT void replaceWholeCharactersInSet_withString(const NSRef<NSMutableString>& string,
                                                      const NSRef<NSCharacterSet>& set,
                                                      const NSRef<NSString>& replacement);

/// Splits at characters, a surrogate pair as one, and otherwise as
/// `componentsSeparatedByCharactersInSet_trimWhitespace` does.
[[nodiscard]] ZK_EXPORT NSRef<NSMutableArray>
componentsSeparatedByWholeCharactersInSet_trimWhitespace(const NSRef<NSString>& string,
                                                         const NSRef<NSCharacterSet>& set,
                                                         bool trimsWhitespace);

/// Gives the string without the members of the set; a surrogate pair is one member. With
/// `NSAnchoredSearch` only the members at the very beginning go; `NSBackwardsSearch` means nothing.
[[nodiscard]] ZK_EXPORT NSRef<NSMutableString> stringByRemovingCharactersInSet_options(
    const NSRef<NSString>& string, const NSRef<NSCharacterSet>& set,
    NSOptions<NSStringCompareOptions> options);

/// Gives the string without the members of the set, wherever they stand; a surrogate pair is one
/// member.
[[nodiscard]] ZK_EXPORT NSRef<NSMutableString> stringByRemovingCharactersInSet(
    const NSRef<NSString>& string, const NSRef<NSCharacterSet>& set);

/// Gives the string without that unit, wherever it stands.
[[nodiscard]] ZK_EXPORT NSRef<NSMutableString> stringByRemovingCharacter(
    const NSRef<NSString>& string, unichar unit);

/// Gives the string itself when it has no member of the set; otherwise a mutable copy in which
/// every member unit is replaced.
[[nodiscard]] ZK_EXPORT NSRef<NSString> stringByReplacingCharactersInSet_withString(
    const NSRef<NSString>& string, const NSRef<NSCharacterSet>& set,
    const NSRef<NSString>& replacement);

/// Gives the string without spaces and tabs, wherever they stand; line breaks stay.
[[nodiscard]] ZK_EXPORT NSRef<NSMutableString> stringByRemovingWhitespace(
    const NSRef<NSString>& string);

/// Gives the string without the spaces and tabs at its beginning and end; line breaks stay.
[[nodiscard]] ZK_EXPORT NSRef<NSString> stringByRemovingSurroundingWhitespace(
    const NSRef<NSString>& string);

/// Does exactly what `stringByRemovingSurroundingWhitespace` does: in spite of its name, line
/// breaks at the beginning and end stay.
[[nodiscard]] ZK_EXPORT NSRef<NSString> stringByRemovingSurroundingWhitespaceAndNewlines(
    const NSRef<NSString>& string);

/// Splits as `ZKStringCreateComponentsSeparatedByCharacterSetTrimWhitespace` does, with the default
/// allocator.
[[nodiscard]] ZK_EXPORT NSRef<NSMutableArray> componentsSeparatedByCharactersInSet_trimWhitespace(
    const NSRef<NSString>& string, const NSRef<NSCharacterSet>& set, bool trimsWhitespace);

/// Gives the run of units around the index that are no members; it ends at the index when the unit
/// there is one. The index may be the length; beyond it `NSRangeException` is raised. A surrogate
/// pair is one member, but the halves of one that the index divides are asked about by themselves.
[[nodiscard]] ZK_EXPORT NSRange rangeWithoutCharactersFromSet_atIndex(
    const NSRef<NSString>& string, const NSRef<NSCharacterSet>& set, NSUInteger index);

}  // namespace ZKFoundationExtensions
