#pragma once

#include <mutex>
#include <string>
#include <unordered_map>

#include <Foundation/NSArray.h>
#include <Foundation/NSBundle.h>
#include <Foundation/NSDictionary.h>

/// The tables of localized strings that a bundle has read, in the user's present languages.
class NSLocalizedStrings {
 public:
  /// Gives the text for the key; nil when there is no such table or entry. From any thread.
  [[nodiscard]] NSRef<NSString> find(const NSRef<NSString>& key, const NSRef<NSString>& table,
                                     const NSBundle& bundle);

 private:
  // Notes a fault of the table when it is read.
  const NSRef<NSDictionary>& entries(const NSRef<NSString>& table, const NSBundle& bundle,
                                     std::string& fault);

  std::mutex _mutex;
  NSRef<NSArray> _languages;
  std::uint64_t _generation = 0;
  std::unordered_map<NSRef<NSObject>, NSRef<NSDictionary>> _tables;
  // The one asked for last, as callers mostly ask for several texts of one table.
  NSRef<NSString> _recentTable;
  NSRef<NSDictionary> _recentEntries;
};
