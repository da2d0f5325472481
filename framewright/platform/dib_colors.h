// The colour table of a bitmap of GDI.
#pragma once

/// Gives `count` colours, each an RGBQUAD of blue, green, red and a byte that is not used, to the bitmap that
/// is selected into `deviceContext`, from index `start` on. Returns how many were taken: 0 where there is no
/// GDI.
unsigned SetDIBColorTable(void* deviceContext, unsigned start, unsigned count, void const* colors);
