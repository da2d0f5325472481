// The set-up routines of the library, beyond the framework's own. They run by themselves when the library is
// loaded and when it goes (see thornmere/startup.h); a host has no need to call them. One may be run with
// true and then with false again, to bring its registry entries or globals back to how they were after
// loading.
//
// Their order, and what each needs, is the table in startup_table.cpp.
#pragma once

#include <span>
#include <vector>

#include "framewright/thornmere/startup.h"

/// Enters the names of the six track types into the track name registry.
SR_STARTUP_ROUTINE(SrRegisterTrackTypeNames);
/// Does nothing: pictures in resources are opened by direct use and never recognized, so there is nothing to
/// enter.
SR_STARTUP_ROUTINE(SrRegisterResPict);
/// Makes the global media manager and gives it a clone of every registered recognizer. -108 when it cannot be
/// made; after a failure there is none.
SR_STARTUP_ROUTINE(SrInitializeGlobalMedia);
/// Builds the ten standard colour tables. -192 when one of the first eight cannot be had, -108 for the last
/// two.
SR_STARTUP_ROUTINE(SrInitColorMaps);
/// Makes the three spooling preferences anew, and the global spool manager unless there is one.
SR_STARTUP_ROUTINE(SrInitializeGlobalSpoolManager);
/// Enters the standard and the depth layers with their names, and the layer purposes.
SR_STARTUP_ROUTINE(SrInitializeLayerRegistries);
/// Enters the dithered and the mapped layers.
SR_STARTUP_ROUTINE(SrInitializeMappedLayers);
/// Enters the PICT recognizer and its names.
SR_STARTUP_ROUTINE(SrRegisterPict);
/// Does nothing at set-up; with true it releases every scratch folder, the last one first.
SR_STARTUP_ROUTINE(SrInitializeScratch);
/// Enters the mipmap prototypes.
SR_STARTUP_ROUTINE(SrInitMipmaps);
/// Makes the preference "MIP Mapping disabled".
SR_STARTUP_ROUTINE(SrInitializeTracks);
/// Starts QuickTime, where there is one, and switches its media on.
SR_STARTUP_ROUTINE(SrInitSfQuickTime);
/// Enters the AVI recognizer and its names, where Video for Windows can be had.
SR_STARTUP_ROUTINE(SrRegisterAvi);
/// Enters the BMP recognizer and its names.
SR_STARTUP_ROUTINE(SrRegisterBmp);

/// The names of the routines that set-up ran, in the order in which they ran. Empty when set-up failed.
FRAMEWRIGHT_EXPORT std::vector<char const*> SrGetInitializerNames();

/// 0 when the library is in service, else the error code with which set-up failed. A failed set-up cannot be
/// an exception, since loading a library has nobody to catch it: what had been set up is taken back, and the
/// library stays loaded with empty registries and without media manager and colour tables. A host that loads
/// it while memory is short asks here before anything else.
FRAMEWRIGHT_EXPORT long SrGetStartupError();

namespace core {

/// The table of all nineteen routines, in the order in which they run.
std::span<StStartupRow const> StartupTable();

}  // namespace core
