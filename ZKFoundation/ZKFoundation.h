#pragma once

/// \file
/// The whole library, and the platform layer with it.

#include <Foundation/Foundation.h>
#include <ZKFoundation/Categories/NSArray+ZKFoundationExtensions.h>
#include <ZKFoundation/Categories/NSArray+ZKSorting.h>
#include <ZKFoundation/Categories/NSCharacterSet+ZKFoundationExtensions.h>
#include <ZKFoundation/Categories/NSDictionary+ZKFoundationExtensions.h>
#include <ZKFoundation/Categories/NSError+ZKFoundationExtensions.h>
#include <ZKFoundation/Categories/NSFileManager+ZKFoundationExtensions.h>
#include <ZKFoundation/Categories/NSFileWrapper+ZKFoundationExtensions.h>
#include <ZKFoundation/Categories/NSGeometry+ZKFoundationExtensions.h>
#include <ZKFoundation/Categories/NSGeometry+ZKRectangles.h>
#include <ZKFoundation/Categories/NSIndexSet+ZKFoundationExtensions.h>
#include <ZKFoundation/Categories/NSLocale+ZKFoundationExtensions.h>
#include <ZKFoundation/Categories/NSMapTable+ZKFoundationExtensions.h>
#include <ZKFoundation/Categories/NSMutableString+ZKFoundationExtensions.h>
#include <ZKFoundation/Categories/NSNotificationQueue+ZKFoundationExtensions.h>
#include <ZKFoundation/Categories/NSNumber+ZKFoundationExtensions.h>
#include <ZKFoundation/Categories/NSObject+ZKDeepCopying.h>
#include <ZKFoundation/Categories/NSObject+ZKFoundationExtensions.h>
#include <ZKFoundation/Categories/NSObject+ZKPerforming.h>
#include <ZKFoundation/Categories/NSOrderedSet+ZKFoundationExtensions.h>
#include <ZKFoundation/Categories/NSPointerArray+ZKFoundationExtensions.h>
#include <ZKFoundation/Categories/NSSet+ZKFoundationExtensions.h>
#include <ZKFoundation/Categories/NSString+ZKEditing.h>
#include <ZKFoundation/Categories/NSString+ZKFoundationExtensions.h>
#include <ZKFoundation/Categories/NSString+ZKSearching.h>
#include <ZKFoundation/Categories/NSString+ZKUniqueNames.h>
#include <ZKFoundation/Categories/NSURL+ZKFoundationExtensions.h>
#include <ZKFoundation/Classes/ObjectTreeVisitors/ZKGenericVisitor.h>
#include <ZKFoundation/Classes/ObjectTreeVisitors/ZKObjectVisitor.h>
#include <ZKFoundation/Classes/ZKLocaleEntity/ZKLocaleEntity.h>
#include <ZKFoundation/Classes/ZKURLFormatter/ZKURLFormatter.h>
#include <ZKFoundation/Classes/ZKUnitOfInformationFormatter/ZKUnitOfInformationFormatter.h>
#include <ZKFoundation/ZKFoundationClass.h>
