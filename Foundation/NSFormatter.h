#pragma once

#include <Foundation/NSCoder.h>
#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>

class NSString;

/// What turns objects into text for people, and text back into objects where it can. A formatter
/// belongs to one thread at a time.
class NS_EXPORT NSFormatter : public NSObject, public NSCoding {
 public:
  NSFormatter() noexcept = default;
  explicit NSFormatter(const NSRef<NSCoder>& /*coder*/) noexcept {}
  NSFormatter(const NSFormatter&) = delete;

  /// The text of the object, nil when the formatter is not made for objects of its class.
  virtual NSRef<NSString> stringForObjectValue(const NSRef<NSObject>& object) const = 0;

  /// Sets `object` to what the text says and gives true, or gives false with the reason in `*error`
  /// unless that is null. A formatter that does not read gives false, nil and no reason; so does
  /// this one.
  virtual bool getObjectValue_forString_errorDescription(NSRef<NSObject>& object,
                                                         const NSRef<NSString>& string,
                                                         NSRef<NSString>* error) const;

  void encodeWithCoder(const NSRef<NSCoder>& coder) const override;
};
