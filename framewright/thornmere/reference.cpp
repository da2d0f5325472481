#include "framewright/thornmere/reference.h"

#include "framewright/thornmere/vector.h"

namespace {

/// The references that the framework has been given; what is left when the library goes is released then.
struct StAutoObjects {
    ScVector<StReferenceCountableInterface> references;

    ~StAutoObjects() { ReleaseAll(); }

    void ReleaseAll() {
        // One by one from the end: a release may add to the list.
        while (!references.empty()) {
            StReferenceCountableInterface const last = references.back();
            references.pop_back();
            last.table->releaseReference(last.object);
        }
    }
};

constinit StAutoObjects gAutoObjects;

}  // namespace

void SrAutoDisposeObject(StReferenceCountableInterface reference) {
    if (!reference.object) return;
    try {
        gAutoObjects.references.push_back(reference);
    } catch (...) {
        reference.table->releaseReference(reference.object);
        throw;
    }
}

void SrDisposeAutoObjects() {
    gAutoObjects.ReleaseAll();
}
