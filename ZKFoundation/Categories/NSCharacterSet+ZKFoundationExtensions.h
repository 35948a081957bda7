#pragma once

#include <Foundation/NSCharacterSet.h>
#include <ZKFoundation/ZKExport.h>

// Sets that are made on the first call and kept: each function gives the same object always, from
// any thread.

namespace ZKFoundationExtensions {

/// U+FFFC alone, the object replacement character that stands for an attachment in a text.
ZK_EXPORT const NSRef<NSCharacterSet>& attachmentCharacterSet();

/// All but letters, marks and digits.
ZK_EXPORT const NSRef<NSCharacterSet>& wordBoundariesCharacterSet();

/// The platform's control characters and U+FFFC.
ZK_EXPORT const NSRef<NSCharacterSet>& controlAndAttachmentCharacterSet();

}  // namespace ZKFoundationExtensions
