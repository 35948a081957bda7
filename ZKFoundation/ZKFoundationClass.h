#pragma once

#include <Foundation/NSObject.h>
#include <ZKFoundation/ZKExport.h>

/// The library's anchor: `ZKFoundationExtensions::bundle<ZKFoundation>()` is the library's bundle.
class ZK_EXPORT ZKFoundation : public NSObject {
 public:
  ZKFoundation() noexcept = default;
  ~ZKFoundation() override;
};
