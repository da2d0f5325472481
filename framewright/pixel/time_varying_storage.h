// What stands behind a colour with keys, and the two objects through which a value is seen as an
// SxTimeVarying.
#pragma once

#include <cstddef>

#include "framewright/pixel/time_varying.h"
#include "framewright/thornmere/memory.h"
#include "framewright/thornmere/multi_cache.h"

/// Passes everything on to the value. Starts with one reference.
template <class Value>
class ScTimeVaryingView : public SxTimeVarying {
  public:
    explicit ScTimeVaryingView(Value* value) : mValue(value) {}

    static void* operator new(std::size_t size) {
        void* const view = SrAllocatePointer(size);
        SrThrowIfNIL(view);
        return view;
    }
    static void operator delete(void* view, std::size_t size) { SrDeallocatePointer(view, size); }

    bool IsConstant() const override { return !mValue->IsTimeVarying(); }
    void CopyKeyTimes(double from, double to, double delta) override {
        mValue->CopyKeyTimes(from, to, delta);
    }
    void DeleteKeyTimes(double from, double to) override { mValue->DeleteKeyTimes(from, to); }
    void EachKeyTime(ScKeyTimeIterator& callback) const override { mValue->EachKey(callback); }
    void EachKeyTimeSpan(ScKeyTimeIterator& callback, ScInterpolator* interpolator) const override {
        mValue->EachSpan(callback, OwnOrLinear(interpolator));
    }
    void ForceKeyTime(double time) override { mValue->ForceKeyTime(time); }
    void ForceKeyTime(double time, ScInterpolator& interpolator) override {
        mValue->ForceKeyTime(time, OwnOrLinear(&interpolator));
    }
    void GetIndexForTime(double time, long& low, long& high) const override {
        mValue->GetIndexForTime(time, low, high);
    }
    double GetKeyTimeAt(long index) const override { return mValue->GetKeyTimeAt(index); }
    long GetNumKeyTimes() const override { return mValue->GetNumKeyTimes(); }
    void MoveKeyTimes(double from, double to, double delta) override {
        mValue->MoveKeyTimes(from, to, delta);
    }
    double GetLastKeyTime() const override { return mValue->GetLastKeyTime(); }
    long ReferenceCount() const override { return mReferences; }
    void AddReference() override { ++mReferences; }
    void DeleteThis() override { delete this; }
    void ReleaseReference() override {
        if (--mReferences == 0) DeleteThis();
    }

  protected:
    void LookAt(Value* value) { mValue = value; }

  private:
    using Interpolator = typename Value::Interpolator;

    static Interpolator& OwnOrLinear(ScInterpolator* interpolator) {
        auto* const own = dynamic_cast<Interpolator*>(interpolator);
        return own ? *own : Value::Linear::GetInterpolator();
    }

    long mReferences = 1;
    Value* mValue;
};

/// The storage of a value with keys: the keys, never none of them, and the values that were read last. The
/// value holds the first reference.
template <class Value, class Extended, class Change>
class ScTVS : public ScTimeVaryingView<StETV<Value, Extended, Change>> {
  public:
    using Owner = StETV<Value, Extended, Change>;
    using Map = ScTimeMap<Extended>;

    explicit ScTVS(Owner* owner) : ScTimeVaryingView<Owner>(owner) {}

    ScTimeCache<Value>& Cache() { return mCache; }
    Map& Keys() { return mKeys; }

    /// The owner, constant again or about to go, gives up its reference. To those who hold others it looks
    /// from then on like a constant of that value, which is nobody else's.
    void LeaveOwner(Value const& value) {
        mLast = value;
        this->LookAt(&mLast);
        this->ReleaseReference();
    }

  private:
    ScTimeCache<Value> mCache;
    Map mKeys;
    Owner mLast;
};

/// The view of a value that was constant when it was asked for.
template <class Value>
class ScNonConstNonTimeVarying : public ScTimeVaryingView<Value> {
  public:
    using ScTimeVaryingView<Value>::ScTimeVaryingView;
};

/// Sets the keys that it sees in another value.
template <class Value, class Extended, class Change>
class _ScCopyIteratorExTV : public ScTVI<Extended> {
  public:
    explicit _ScCopyIteratorExTV(StETV<Value, Extended, Change>& destination) : mDestination(destination) {}
    void KeyTime(double time, Extended const* value, bool, bool) override {
        mDestination.SetExtendedValue(time, *value);
    }

  private:
    StETV<Value, Extended, Change>& mDestination;
};
