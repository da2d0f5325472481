#include "framewright/frame/layer_factory.h"

#include "framewright/frame/frame_globals.h"
#include "framewright/frame/layer_registration.h"
#include "framewright/frame/registries.h"
#include "framewright/spool/spool_preferences.h"

namespace {

bool IsBig(StPoint const& size) {
    return size.vertical > frame::gSpoolThresholdHeight && size.horizontal > frame::gSpoolThresholdWidth;
}

/// The first prototype that `matches`, or null.
template <class Matches>
SmImagerFrame* FindPrototype(Matches const& matches) {
    ScLayerRegistry* const registry = SrGetLayerRegistry();
    SmImagerFrame* prototype = nullptr;
    for (int i = 0; (prototype = registry->GetObjectByIndex(i)) != nullptr; ++i) {
        if (matches(*prototype)) break;
    }
    return prototype;
}

}  // namespace

SmImagerFrame* SrMakeFrame(StPoint const& size, unsigned long pixelID, bool spoolIfLarge, bool nativeBitmap) {
    return SrMakeLayerWithSpooling(size, pixelID, IsBig(size) && spoolIfLarge, nativeBitmap);
}

SmImagerFrame* SrMakeFrameWithSpooling(StPoint const& size, unsigned long pixelID, bool nativeBitmap) {
    bool const spooled = IsBig(size) && SrGetImageSpoolingState();
    return SrMakeLayerWithSpooling(size, pixelID, spooled, nativeBitmap);
}

SmImagerFrame* SrMakeLayerWithSpooling(StPoint const& size, unsigned long pixelID, bool spooled,
                                       bool nativeBitmap) {
    SmImagerFrame* const prototype =
        FindPrototype([&](SmImagerFrame& frame) { return frame.PixelID() == pixelID; });
    return prototype ? prototype->CloneAtNewSize(size, spooled, nativeBitmap) : nullptr;
}

SmImagerFrame* frame::FindLayerPrototype(unsigned long pixelID, unsigned long familyID, long pixelSize) {
    return FindPrototype([&](SmImagerFrame& frame) {
        return frame.PixelID() == pixelID && frame.FamilyID() == familyID && frame.PixelSize() == pixelSize;
    });
}

SmImagerFrame* SrImagerLayerFromType(unsigned long pixelID, unsigned long familyID, long pixelSize,
                                     StPoint const& size, bool spooled, bool nativeBitmap) {
    SmImagerFrame* const prototype = frame::FindLayerPrototype(pixelID, familyID, pixelSize);
    return prototype ? prototype->CloneAtNewSize(size, spooled, nativeBitmap) : nullptr;
}
