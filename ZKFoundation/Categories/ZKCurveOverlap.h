#pragma once

#include <ZKFoundation/Categories/ZKMeetings.h>

/// Whether two curves have a stretch in common, within 1e-9 of the size of the smaller one.
[[nodiscard]] bool ZKAreOverlapping(const ZKCubic& first, const ZKCubic& second);

/// Adds the ends of either curve that lie on the other one, as near as that.
void ZKAddSharedEnds(const ZKCubic& first, const ZKCubic& second, ZKMeetings& meetings);
