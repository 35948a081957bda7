#pragma once

#include <Foundation/NSCharacterSet.h>
#include <ZKFoundation/ZKExport.h>

// Sets that are made on the first call and kept: each function gives the same object always, from
// any thread.

namespace ZKFoundationExtensions {

/// Gives U+FFFC alone, the object replacement character that stands for an attachment in a text.
[[nodiscard]] ZK_EXPORT const NSRef<NSCharacterSet>& attachmentCharacterSet();

/// Gives all characters but letters, marks and digits.
[[nodiscard]] ZK_EXPORT const NSRef<NSCharacterSet>& wordBoundariesCharacterSet();

/// Gives the platform's control characters and U+FFFC.
[[nodiscard]] ZK_EXPORT const NSRef<NSCharacterSet>& controlAndAttachmentCharacterSet();

}  // namespace ZKFoundationExtensions
