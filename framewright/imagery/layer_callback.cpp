#include "framewright/imagery/layer_callback.h"

#include "framewright/thornmere/reference.h"

ScLayerCallback::~ScLayerCallback() = default;

bool ScLayerCallback::DeleteThis() {
    delete this;
    return true;
}

void ScLayerCallback::ReleaseReference() const {
    if (--mReferenceCount == 0) const_cast<ScLayerCallback*>(this)->DeleteThis();
}

StReferenceCountableFunctionTable const* ScLayerCallback::GetReferenceCountableFunctionTable() {
    static constexpr StReferenceCountableFunctionTable kTable{
        [](void* object) { static_cast<ScLayerCallback*>(object)->AddReference(); },
        [](void* object) { static_cast<ScLayerCallback*>(object)->ReleaseReference(); },
        [](void const* object) { return static_cast<ScLayerCallback const*>(object)->ReferenceCount(); }};
    return &kTable;
}
