#pragma once

#include <Foundation/NSGeometry.h>
#include <ZKFoundation/ZKExport.h>

extern "C" {

/// Finds the point of a cubic (4 control points) that is nearest to p, as `ZKNearestPointOnCurve`
/// does, but to the precision of doubles at any scale: the distance is the smallest there is but
/// for a few units in the last place of the coordinates' differences, and the parameter is as exact
/// as the curve allows. Coordinates whose differences are infinite or NaN get the answer of
/// `ZKNearestPointOnCurve`; no others can end the process. Takes about 1 µs, and up to 1 ms where
/// the curve is a dot beside its distance, so that rounding leaves many candidates.
ZK_EXPORT NSPoint ZKNearestPointOnCurveRefined(const NSPoint* points, double* t, NSPoint p);

}  // extern "C"
