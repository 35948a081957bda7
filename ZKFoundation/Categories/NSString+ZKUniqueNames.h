#pragma once

#include <Foundation/NSArray.h>
#include <Foundation/NSString.h>
#include <ZKFoundation/Categories/ZKNamingOptions.h>
#include <ZKFoundation/ZKExport.h>

namespace ZKFoundationExtensions {

/// Makes a string that is not in the array, compared exactly: a copy of the string, if that is
/// free. Otherwise its base with the first number after it that is free, counted from the one with
/// which it ends: "Untitled", "Untitled1", "Untitled2"; "Copy 9", "Copy 10"; "a007", "a8".
///
/// The number is the string's last decimal digits, of any script whose digits are single units, but
/// never its first unit: "5" gives "51", "12" gives "13". A number from 2^63 - 1 on belongs to the
/// base: then, as without a number, counting begins at 1. Linear in the names, however many numbers
/// are taken.
///
/// A nil array is empty, what is no string in it does not count. A nil string raises
/// `NSInvalidArgumentException`.
[[nodiscard]] ZK_EXPORT NSRef<NSString> uniqueStringWithString_forStringArray(
    const NSRef<NSString>& string, const NSRef<NSArray>& strings);

/// Makes a string that is not in the array by the naming options: a copy of the string, if that is
/// free, else with the first free number after its own: "name 2", "name (2)"; "shot 009" gives
/// "shot 010", and as the name of a file "archive.tar.gz" gives "archive 2.tar.gz". Linear in the
/// names.
///
/// Digits are ASCII; a number of more than 18 belongs to the name. A nil array is empty, what is no
/// string in it does not count. A nil string raises `NSInvalidArgumentException`.
[[nodiscard]] ZK_EXPORT NSRef<NSString> uniqueStringWithString_forStringArray_options(
    const NSRef<NSString>& string, const NSRef<NSArray>& strings, const ZKNamingOptions& options);

}  // namespace ZKFoundationExtensions
