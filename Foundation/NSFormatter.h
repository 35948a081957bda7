#pragma once

#include <Foundation/NSCoder.h>
#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>

class NSString;

/// Turns objects into text for people, and text back where it can. Belongs to one thread at a time.
class NS_EXPORT NSFormatter : public NSObject, public NSCoding {
 public:
  NSFormatter() noexcept = default;
  explicit NSFormatter(const NSRef<NSCoder>& /*coder*/) noexcept {}
  NSFormatter(const NSFormatter&) = delete;

  /// Gives the text of the object, nil when the formatter is not made for objects of its class.
  [[nodiscard]] virtual NSRef<NSString> stringForObjectValue(
      const NSRef<NSObject>& object) const = 0;

  /// Reads the text: sets `object` and gives true, or gives false with the reason in `*error`
  /// unless that is null. One that does not read, as this, gives false, nil and no reason.
  virtual bool getObjectValue_forString_errorDescription(NSRef<NSObject>& object,
                                                         const NSRef<NSString>& string,
                                                         NSRef<NSString>* error) const;

  void encodeWithCoder(const NSRef<NSCoder>& coder) const override;
};
