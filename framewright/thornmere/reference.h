// Handles that hold one reference to a counted object: StRef for a known class, and the type-erased pair.
#pragma once

#include <cstddef>
#include <type_traits>
#include <utility>

#include "framewright/thornmere/export.h"
#include "framewright/thornmere/object.h"

/// How to count references of an object whose class is not known.
struct StReferenceCountableFunctionTable {
    void (*addReference)(void* object);
    void (*releaseReference)(void* object);
    long (*referenceCount)(void const* object);
};

/// A type-erased reference: both members are null for no object.
struct StReferenceCountableInterface {
    void* object;
    StReferenceCountableFunctionTable const* table;
};

/// Gives the reference that `reference` holds to the framework, which releases it when the library shuts
/// down or at SrDisposeAutoObjects, whichever comes first; the newest goes first. A null pair is ignored.
/// When memory for the note is refused, the reference is released at once and -108 thrown. First-class
/// threads only.
FRAMEWRIGHT_EXPORT void SrAutoDisposeObject(StReferenceCountableInterface reference);
FRAMEWRIGHT_EXPORT void SrDisposeAutoObjects();

/// A smart pointer that holds one reference. T is any class with AddReference and ReleaseReference.
template <class T>
class StRef {
  public:
    StRef() = default;
    StRef(std::nullptr_t) {}
    /// Adds a reference of its own.
    StRef(T* object) : mObject(object) {
        if (mObject) mObject->AddReference();
    }
    StRef(StRef const& other) : StRef(other.mObject) {}
    StRef(StRef&& other) noexcept : mObject(std::exchange(other.mObject, nullptr)) {}
    StRef& operator=(StRef other) noexcept {
        std::swap(mObject, other.mObject);
        return *this;
    }
    ~StRef() {
        if (mObject) mObject->ReleaseReference();
    }

    /// Takes over the caller's reference; null gives a null handle.
    static StRef Adopt(T* object) {
        StRef result;
        result.mObject = object;
        return result;
    }

    T* Get() const { return mObject; }
    T* operator->() const { return mObject; }
    T& operator*() const { return *mObject; }
    explicit operator bool() const { return mObject != nullptr; }
    /// Gives the reference to the caller and becomes null.
    T* Release() { return std::exchange(mObject, nullptr); }

    /// T::New() as a type-erased reference; a null pair if it gave null.
    static StReferenceCountableInterface AllocateNewObject() {
        return AsReferenceCountableInterface(T::New());
    }
    /// Wraps a pointer without adding a reference; a null pair for null.
    static StReferenceCountableInterface AsReferenceCountableInterface(T* object) {
        if (!object) return {nullptr, nullptr};
        if constexpr (std::is_base_of_v<SmObjectBase, T>) {
            return {static_cast<SmObjectBase*>(object), T::GetReferenceCountableFunctionTable()};
        } else {
            return {object, T::GetReferenceCountableFunctionTable()};
        }
    }

  private:
    T* mObject = nullptr;
};
