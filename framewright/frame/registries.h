// The registries of frames: prototypes of the layer classes, and the names of pixel types and of purposes.
// They are filled at set-up and emptied at shut-down; other modules take part by registering in between.
#pragma once

#include "framewright/core/type_registry.h"
#include "framewright/frame/frame.h"
#include "framewright/thornmere/export.h"

/// One prototype for each layer class that the frame factory knows: a 1 by 1 frame, keyed by its class
/// object. The keys are addresses, so the order by index means nothing: search the whole registry.
class FRAMEWRIGHT_EXPORT ScLayerRegistry
    : public ScObjectRegistryFacade<ScLayerRegistry, ScMC_*, SmImagerFrame> {
    friend ScRegistryFacade;
    static Registry& Global();

  public:
    /// The prototype at `index`, counted from 0; borrowed, null past the end.
    SmImagerFrame* GetObjectByIndex(int index);
};

/// The display names of pixel types, by PixelID.
class FRAMEWRIGHT_EXPORT ScLayerNameRegistry
    : public ScNameRegistryFacade<ScLayerNameRegistry, unsigned long> {
    friend ScRegistryFacade;
    static Registry& Global();

  public:
    using ScRegistryFacade::GetObjectByIndex;
};

/// The display names of purposes, by code.
class FRAMEWRIGHT_EXPORT ScLayerPurposeRegistry : public ScNameRegistryFacade<ScLayerPurposeRegistry, long> {
    friend ScRegistryFacade;
    static Registry& Global();
};

/// The registries; never null once the library has loaded.
FRAMEWRIGHT_EXPORT ScLayerRegistry* SrGetLayerRegistry();
FRAMEWRIGHT_EXPORT ScLayerNameRegistry* SrGetLayerNameRegistry();
FRAMEWRIGHT_EXPORT ScLayerPurposeRegistry* SrGetLayerPurposeRegistry();
