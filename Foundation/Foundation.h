#pragma once

/// \file
/// All of the platform layer.

#include <Foundation/NSArray.h>
#include <Foundation/NSAutoreleasePool.h>
#include <Foundation/NSBlock.h>
#include <Foundation/NSBundle.h>
#include <Foundation/NSCharacterSet.h>
#include <Foundation/NSClass.h>
#include <Foundation/NSDictionary.h>
#include <Foundation/NSException.h>
#include <Foundation/NSGeometry.h>
#include <Foundation/NSIndexSet.h>
#include <Foundation/NSKeyValueCoding.h>
#include <Foundation/NSLog.h>
#include <Foundation/NSMapTable.h>
#include <Foundation/NSNeverDestroyed.h>
#include <Foundation/NSNull.h>
#include <Foundation/NSNumber.h>
#include <Foundation/NSObject.h>
#include <Foundation/NSOrderedSet.h>
#include <Foundation/NSPointerArray.h>
#include <Foundation/NSPredicate.h>
#include <Foundation/NSRange.h>
#include <Foundation/NSRef.h>
#include <Foundation/NSSet.h>
#include <Foundation/NSString.h>
#include <Foundation/NSTypes.h>
#include <Foundation/NSUnicode.h>
#include <Foundation/NSUnitBuffer.h>
#include <Foundation/NSValue.h>
