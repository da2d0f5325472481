#include "framewright/frame/layer_registration.h"

#include "framewright/frame/registries.h"
#include "framewright/thornmere/string_lists.h"
#include "framewright/thornmere/vector.h"

namespace frame {

void RegisterLayers(std::span<StLayerRow const> rows) {
    SrThrowIfNIL(SrGetLayerRegistry());
    SrThrowIfNIL(SrGetLayerNameRegistry());
    // From here on the registry keeps the prototypes. Dropped from the end, the last made first.
    ScVector<StRef<SmImagerFrame>> prototypes;
    for (StLayerRow const& row : rows) {
        prototypes.push_back(StRef<SmImagerFrame>::Adopt(row.newPrototype()));
        ScLayerRegistry::RegisterObject(row.cls(), prototypes.back().Get());
        ScString63 name;
        SrGetIndexedString(name, kLayerNameStrings, row.nameIndex);
        ScLayerNameRegistry::RegisterObject(row.pixelID, name.AsCString());
    }
}

void UnRegisterLayers(std::span<StLayerRow const> rows) {
    if (SrGetLayerRegistry()) {
        for (StLayerRow const& row : rows)
            ScLayerRegistry::UnRegisterObject(row.cls());
    }
    if (SrGetLayerNameRegistry()) {
        for (StLayerRow const& row : rows)
            ScLayerNameRegistry::UnRegisterObject(row.pixelID);
    }
}

}  // namespace frame
