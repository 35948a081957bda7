#pragma once

#include <Foundation/NSCharacterSet.h>
#include <ZKFoundation/ZKExport.h>

// Sets that are made once: each function always gives the same object, from any thread.

namespace ZKFoundationExtensions {

/// Gives U+FFFC alone, the object replacement character that stands for an attachment in a text.
[[nodiscard]] ZK_EXPORT const NSRef<NSCharacterSet>& attachmentCharacterSet();

/// Gives all characters but letters, marks and digits.
[[nodiscard]] ZK_EXPORT const NSRef<NSCharacterSet>& wordBoundariesCharacterSet();

/// Gives the platform's control characters and U+FFFC.
[[nodiscard]] ZK_EXPORT const NSRef<NSCharacterSet>& controlAndAttachmentCharacterSet();

}  // namespace ZKFoundationExtensions
