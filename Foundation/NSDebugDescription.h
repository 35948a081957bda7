#pragma once

#include <Foundation/NSExport.h>

class NSObject;

/// Describes an object in one line of UTF-8, for debuggers: `call NSDebugDescription(object)`.
/// Strings stand in quotation marks, with C's escapes; other objects give their `description`,
/// "nil" a null pointer. A text of more than 1,000 units is cut. What `description` throws is told
/// in place of it. The text is the calling thread's, until its next call.
extern "C" NS_EXPORT const char* NSDebugDescription(const NSObject* object) noexcept;

/// Lists the elements of an array or a set, or the keys and values of a dictionary in turns, with a
/// null pointer behind the last; gives null for other objects. The list is the calling thread's,
/// until its next call.
extern "C" NS_EXPORT const NSObject* const* NSDebugElements(const NSObject* object) noexcept;
