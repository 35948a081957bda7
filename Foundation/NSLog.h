#pragma once

#include <functional>

#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>

class NSString;

/// Receives the text of a log line.
using NSLogSink = std::function<void(const NSRef<NSString>& text)>;

/// Writes one line to the sink; by default to the system log (as a notice) and, with the time, the
/// program's name and its process and thread numbers, to standard error. The text is no format: a
/// percent sign is a percent sign. Control characters are written as "\x0A", so that the line
/// stays one. Nil writes "(null)". May be called from any thread.
NS_EXPORT void NSLog(const NSRef<NSString>& text);

/// Replaces the sink and gives the former one; an empty sink stands for the default one. Calls of
/// `NSLog` that have begun before may still reach the former sink. A sink may log itself.
NS_EXPORT NSLogSink NSSetLogSink(NSLogSink sink);
