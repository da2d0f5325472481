// The registries of media: a prototype of each format's recognizer, and the names of formats, codecs and
// track types for a host's menus. Walks by index go in the order of the codes.
#pragma once

#include "framewright/core/type_registry.h"
#include "framewright/media/media_recognizer.h"
#include "framewright/thornmere/export.h"

/// The recognizers, by type. The global manager works on clones of its own (see SrAddGlobalRecognizers).
class FRAMEWRIGHT_EXPORT ScMediaRegistry
    : public ScObjectRegistryFacade<ScMediaRegistry, unsigned long, SmMediaRecognizer> {
    friend ScRegistryFacade;
    static Registry& Global();
};

/// The names of formats, by type.
class FRAMEWRIGHT_EXPORT ScStreamNameRegistry
    : public ScNameRegistryFacade<ScStreamNameRegistry, unsigned long> {
    friend ScRegistryFacade;
    static Registry& Global();

  public:
    using ScRegistryFacade::GetObjectByIndex;
};

/// The names of codecs, by code.
class FRAMEWRIGHT_EXPORT ScCodecNameRegistry
    : public ScNameRegistryFacade<ScCodecNameRegistry, unsigned long> {
    friend ScRegistryFacade;
    static Registry& Global();

  public:
    using ScRegistryFacade::GetObjectByIndex;
};

/// The names of track types, by type.
class FRAMEWRIGHT_EXPORT ScTrackNameRegistry
    : public ScNameRegistryFacade<ScTrackNameRegistry, unsigned long> {
    friend ScRegistryFacade;
    static Registry& Global();
};

/// The registries; never null once the library has loaded.
FRAMEWRIGHT_EXPORT ScMediaRegistry* SrGetMediaRegistry();
FRAMEWRIGHT_EXPORT ScStreamNameRegistry* SrGetStreamNameRegistry();
FRAMEWRIGHT_EXPORT ScCodecNameRegistry* SrGetCodecNameRegistry();
FRAMEWRIGHT_EXPORT ScTrackNameRegistry* SrGetTrackNameRegistry();
