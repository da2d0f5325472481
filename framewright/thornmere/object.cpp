#include "framewright/thornmere/object.h"

#include <cstring>
#include <mutex>

#include "framewright/thornmere/memory.h"
#include "framewright/thornmere/progress.h"
#include "framewright/thornmere/reference.h"

namespace {

// Constant-initialised and without a destructor: class objects come and go around them at any moment of
// loading and unloading.
constinit std::mutex gClassListMutex;
constinit ScMC_* gFirstClass = nullptr;
constinit unsigned long gLastSelector = 0;

void AddReferenceTo(void* object) {
    static_cast<SmObjectBase*>(object)->AddReference();
}
void ReleaseReferenceOf(void* object) {
    static_cast<SmObjectBase*>(object)->ReleaseReference();
}
long ReferenceCountOf(void const* object) {
    return static_cast<SmObjectBase const*>(object)->ReferenceCount();
}

constexpr StReferenceCountableFunctionTable kObjectTable = {AddReferenceTo, ReleaseReferenceOf,
                                                            ReferenceCountOf};

ScMC_ gObjectBaseClass("SmObjectBase", nullptr, sizeof(SmObjectBase), 0);

template <class Matches>
void* NewOfFirst(Matches matches) {
    for (ScMC_* cls = ScMC_::Next(nullptr); cls; cls = ScMC_::Next(cls)) {
        if (matches(*cls)) return cls->New();
    }
    SrThrow(SkSymbolNotFoundErrC(), nullptr);
}

}  // namespace

// --- the class object

ScMC_::ScMC_(char const* name, ScMC_* parent, unsigned int size, unsigned char version)
    : mName(name), mSize(size), mVersion(version), mParent(parent) {
    std::lock_guard lock(gClassListMutex);
    mSelector = ++gLastSelector;
    ScMC_** link = &gFirstClass;
    while (*link)
        link = &(*link)->mNextInList;
    *link = this;
}

ScMC_::~ScMC_() {
    LeaveList();
}

void ScMC_::LeaveList() {
    std::lock_guard lock(gClassListMutex);
    for (ScMC_** link = &gFirstClass; *link; link = &(*link)->mNextInList) {
        if (*link == this) {
            *link = mNextInList;
            break;
        }
    }
}

void* ScMC_::New() const {
    SrThrow(SkAbstractClassErrC(), nullptr);
}

void* ScMC_::NewByClassName(char const* name) const {
    return NewOfFirst([name](ScMC_ const& cls) { return name && std::strcmp(cls.Name(), name) == 0; });
}

void* ScMC_::NewByClassSelector(unsigned long selector) const {
    return NewOfFirst([selector](ScMC_ const& cls) { return cls.Selector() == selector; });
}

bool ScMC_::DerivesFrom(ScMC_ const* cls) const {
    for (ScMC_ const* ancestor = this; ancestor; ancestor = ancestor->mParent) {
        if (ancestor == cls) return true;
    }
    return false;
}

ScMC_* ScMC_::Next(ScMC_ const* previous) {
    std::lock_guard lock(gClassListMutex);
    return previous ? previous->mNextInList : gFirstClass;
}

// --- the root

SmObjectBase::~SmObjectBase() = default;

void* SmObjectBase::operator new(std::size_t size) noexcept {
    return SrAllocatePointer(size);
}
void SmObjectBase::operator delete(void* object, std::size_t size) {
    SrDeallocatePointer(object, size);
}

ScMC_* SmObjectBase::Class() {
    return &gObjectBaseClass;
}

StReferenceCountableFunctionTable const* SmObjectBase::GetReferenceCountableFunctionTable() {
    return &kObjectTable;
}

void* SmObjectBase::ImplementClone() const {
    SrThrow(SkAbstractClassErrC(), nullptr);
}
void SmObjectBase::ImplementBecome(void*) {
    SrThrow(SkAbstractClassErrC(), nullptr);
}
ScMC_* SmObjectBase::GetClass() const {
    return Class();
}
char const* SmObjectBase::GetClassName() const {
    return Class()->Name();
}
unsigned long SmObjectBase::GetClassSelector() const {
    return Class()->Selector();
}
unsigned int SmObjectBase::GetClassSize() const {
    return Class()->Size();
}
int SmObjectBase::GetClassVersion() const {
    return Class()->Version();
}
bool SmObjectBase::IsMemberOf(ScMC_* cls) const {
    return cls == Class();
}

void SmObjectBase::ReleaseReference() const {
    if (--mReferenceCount == 0) const_cast<SmObjectBase*>(this)->DeleteThis();
}

bool SmObjectBase::DeleteThis() {
    mReferenceCount =
        1;  // the ending's own: what Free takes and drops on the way must not end the object again
    Free();
    delete this;
    return true;
}

void SmObjectBase::Free() {}
void SmObjectBase::DeepenClone() {}

SmObjectBase* SmObjectBase::DeepClone() const {
    auto copy = StRef<SmObjectBase>::Adopt(static_cast<SmObjectBase*>(ImplementClone()));
    copy->DeepenClone();
    return copy.Release();
}

SmObject* SmObjectBase::MakeFullClone(ScProgressIndicator* progress) const {
    if (progress) progress->Report(0, 1);
    auto copy = StRef<SmObjectBase>::Adopt(DeepClone());
    if (progress) progress->Report(1, 1);
    return static_cast<SmObject*>(copy.Release());
}

void SmObjectBase::Modified(StReasons const&, void*) {}
bool SmObjectBase::ProviderChanged(SmObject*, StReasons const&, void*) {
    return false;
}
ScLocalDependentStorage* SmObjectBase::GetDependencyStorage() {
    return nullptr;
}

bool SmObjectBase::GetDeepSize(unsigned int& size) {
    size = GetClassSize();
    return true;
}

unsigned int SmObjectBase::MemoryIsLow(unsigned int) {
    return 0;
}
bool SmObjectBase::ReplaceObject(SmObject*, SmObject*, ScReplaceObjectCallback&) {
    return false;
}

// The object's old bytes wait in a buffer while the new state is built in its place; only then are they put
// back once more, at the address that they know as theirs, to release what they own.
void SmObjectBase::Become(void const* other, StBecomeParts const& parts) {
    void* const self = this;
    if (other == self) return;
    void* const saved = SrAllocatePointer(parts.size);
    SrThrowIfNIL(saved);
    std::int32_t const count = mReferenceCount;
    std::memcpy(saved, self, parts.size);
    std::memcpy(self, other, parts.size);  // a usable table of virtual operations
    parts.construct(self);
    try {
        parts.cloneFrom(self, other);
    } catch (...) {
        ++mReferenceCount;  // references that Free takes and drops must not end the object
        Free();
        parts.destroy(self);
        std::memcpy(self, saved, parts.size);
        SrDeallocatePointer(saved, parts.size);
        throw;
    }
    while (mReferenceCount < count)
        ++mReferenceCount;
    SrSwapBytes(self, saved, parts.size);
    Free();
    parts.destroy(self);
    SrSwapBytes(self, saved, parts.size);
    SrDeallocatePointer(saved, parts.size);
}

// --- the two branches

SM_DEFINE_CLASS(SmObject);
SmObject::~SmObject() = default;

SM_DEFINE_CLASS(SmStorageObject);
SmStorageObject::~SmStorageObject() = default;

SmObject* SmStorageObject::MakeFullClone(ScProgressIndicator* progress) const {
    return SmObject::MakeFullClone(progress);
}

void SmStorageObject::WriteTo(SmStream*) {}
void SmStorageObject::ReadFrom(SmStream*) {}
