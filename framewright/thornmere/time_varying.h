// Values that change over time, as seen by code that does not know what they are values of: key times, the
// interpolation between them, and one interface to list and edit them.
//
// Times are doubles in any unit; 0.0 is where a value begins. Times that are nearly equal are one time.
#pragma once

#include <cmath>
#include <map>
#include <utility>

#include "framewright/thornmere/export.h"
#include "framewright/thornmere/framework_allocator.h"

class SmObject;
struct StReferenceCountableFunctionTable;

/// Whether two times are at most a millionth apart, whatever their size. Never true of not-a-number.
inline bool SrNearEqualTimes(double a, double b) {
    return a == b || std::fabs(a - b) <= 1e-6;
}

/// The order of key times: below, and not nearly equal. Its use needs care, for being nearly equal is not
/// handed on from neighbour to neighbour. Any search among times that are more than a millionth apart, as
/// keys are, is well defined.
struct ScLT_ {
    bool operator()(double a, double b) const { return a < b && !SrNearEqualTimes(a, b); }
};

/// An ordered map on the framework's memory.
template <class Key, class Value, class Less>
using ScMapOrdered = std::map<Key, Value, Less, ScFrameworkAllocator<std::pair<Key const, Value>>>;
/// The keys of a value: what it is at which time.
template <class Value>
using ScTimeMap = ScMapOrdered<double, Value, ScLT_>;

/// Sees key times one by one. Derive from ScTVI, which knows the type of the values. Not deleted through this
/// class.
class FRAMEWRIGHT_EXPORT ScKeyTimeIterator {
  public:
    /// `value` is borrowed, and null where the value is not known (SrGetConstNonTimeVarying). What `same` and
    /// `flat` tell depends on the operation that calls. The keys must not be changed meanwhile.
    virtual void HandleKeyTime(double time, void const* value, bool same, bool flat) = 0;

  protected:
    ~ScKeyTimeIterator() = default;
};

/// What lies between two keys. Derive from ScVI, which knows the type of the values. Not deleted through this
/// class.
class FRAMEWRIGHT_EXPORT ScInterpolator {
  public:
    /// The name of the kind of interpolation; borrowed, lives as long as the interpolator. Empty at this
    /// level.
    virtual char const* GetInterpolatorName();

  protected:
    ~ScInterpolator() = default;
};

/// Sees the objects that a value refers to. Not deleted through this class.
class FRAMEWRIGHT_EXPORT ScSubObjectIterator {
  public:
    virtual void HandleSubObject(SmObject* object) = 0;

  protected:
    ~ScSubObjectIterator() = default;
};

/// The keys of some value. One is had from the value (GetTimeVarying), looks at it, and is valid only while
/// the value lives. A value without keys counts as one with a single key at 0.0. Ranges include both ends.
class FRAMEWRIGHT_EXPORT SxTimeVarying {
  public:
    // The virtual operations, in slot order.
    virtual ~SxTimeVarying();
    /// True while the value has no keys.
    virtual bool IsConstant() const = 0;
    virtual void CopyKeyTimes(double from, double to, double delta) = 0;
    virtual void DeleteKeyTimes(double from, double to) = 0;
    virtual void EachKeyTime(ScKeyTimeIterator& callback) const = 0;
    /// Null, or an interpolator that is for another type of value, means the linear one.
    virtual void EachKeyTimeSpan(ScKeyTimeIterator& callback, ScInterpolator* interpolator) const = 0;
    /// By the linear interpolator.
    virtual void ForceKeyTime(double time) = 0;
    /// One that is for another type of value means the linear one.
    virtual void ForceKeyTime(double time, ScInterpolator& interpolator) = 0;
    virtual void GetIndexForTime(double time, long& low, long& high) const = 0;
    virtual double GetKeyTimeAt(long index) const = 0;
    virtual long GetNumKeyTimes() const = 0;
    virtual void MoveKeyTimes(double from, double to, double delta) = 0;
    virtual double GetLastKeyTime() const = 0;
    /// Hands over the objects that the value refers to; none unless a class says so.
    virtual void EachSubObject(ScSubObjectIterator& iterator);
    virtual long ReferenceCount() const = 0;
    virtual void AddReference() = 0;
    /// Destroys the object. For the one who holds it last.
    virtual void DeleteThis() = 0;
    virtual void ReleaseReference() = 0;
    /// For those who edit keys to call when they are done. Nothing depends on keys unless a class says so.
    virtual void ModifiedKeyTimes();

    /// The three reference operations, for StRef.
    static StReferenceCountableFunctionTable const* GetReferenceCountableFunctionTable();
};

/// The one object that stands for the keys of every value that is constant and may not be changed: a single
/// key at 0.0 whose value is not known. Borrowed; lives as long as the library, and counts no references.
FRAMEWRIGHT_EXPORT SxTimeVarying const* SrGetConstNonTimeVarying();
