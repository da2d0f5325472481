// The standard colour tables: ten QuickDraw tables, built at set-up by SrInitColorMaps and disposed of at
// shut-down. Between the two they are only read.
//
// The grey tables run from white at 0 to black, the opposite of StGray8Pixel: they serve pictures whose
// indices mean what QuickDraw means by them.
#pragma once

#include "framewright/platform/quickdraw_types.h"
#include "framewright/thornmere/export.h"

/// The system's table of true colours; a table without entries where there is no such system. Like the
/// others: borrowed, null outside the library's service.
FRAMEWRIGHT_EXPORT ColorTable** SkColorTableTrue();

// For pictures without a table of their own, by index width; the first is white, then black.
ColorTable** SkColorTable1Bit();
ColorTable** SkColorTable2Bit();
ColorTable** SkColorTable4Bit();
ColorTable** SkColorTable8Bit();
/// 256 greys from black at 0 to white.
ColorTable** SkColorTableGrayRamp();
