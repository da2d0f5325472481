// Colours that may change over time. A colour that does not is three floats and a test; one that does has key
// times, with interpolation between them.
//
//     StTimeVaryingColor sky(StColorFloats{0.0f, 0.0f, 0.1f});     // constant: 12 bytes, nothing else
//     sky.SetExtendedValue(12.0, {0.4f, 0.6f, 1.0f});              // keys at 0.0 and 12.0
//     StColorFloats const morning = sky.GetValue(6.0);             // half way
//
// A colour may be read by several threads at once as long as nobody changes it.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

#include "framewright/pixel/color_pixels.h"
#include "framewright/thornmere/export.h"
#include "framewright/thornmere/time_varying.h"

/// How a value gets from one key to the next. Hosts derive their own.
template <class Value>
class FRAMEWRIGHT_EXPORT ScVI : public ScInterpolator {
  public:
    /// `out` becomes the value at `weight`, 0.0 to 1.0, of the way from `a` at time `t0` to `b` at time `t1`.
    /// The times are those of the keys, for interpolators that go by them.
    virtual void Interpolate(float weight, double t0, double t1, Value const& a, Value const& b,
                             Value& out) = 0;

  protected:
    ~ScVI() = default;
};

/// The straight way.
template <class Value>
class ScLI;
template <>
class FRAMEWRIGHT_EXPORT ScLI<StColorFloats> : public ScVI<StColorFloats> {
  public:
    /// (b - a) * weight + a in each channel, in floats.
    void Interpolate(float weight, double t0, double t1, StColorFloats const& a, StColorFloats const& b,
                     StColorFloats& out) override;
    /// "ScLinearInterpolator".
    char const* GetInterpolatorName() override;
    /// The shared one; it has no state.
    static ScLI& GetInterpolator();
};

/// Sees the keys of a value one by one.
template <class Value>
class FRAMEWRIGHT_EXPORT ScTVI : public ScKeyTimeIterator {
  public:
    /// `value` is borrowed for the call; null where it is not known (SrGetConstNonTimeVarying). The keys must
    /// not be changed meanwhile.
    ///
    /// EachKeyTime gives true, true for the first key and false, false for the others. EachKeyTimeSpan tells
    /// of the span that ends with this key: whether the key before has the same value, and whether the value
    /// does not leave it in between; true, true for the first key.
    virtual void KeyTime(double time, Value const* value, bool same, bool flat) = 0;

    void HandleKeyTime(double time, void const* value, bool same, bool flat) final {
        KeyTime(time, static_cast<Value const*>(value), same, flat);
    }

  protected:
    ~ScTVI() = default;
};

/// Who is told that a value has changed: nobody.
template <class Value>
struct ScNCg {};

template <class Value, class Extended, class Change>
class StETV;
template <class Value, class Extended, class Change>
class ScTVS;
template <class Value>
class ScTimeVaryingView;

/// A place among the key times of a value: a key, or the single time of a constant, or the end of either.
/// Good until that key goes, or the value becomes constant or ceases to be.
template <class Value, class Extended, class Change>
class ScExtendedTimeVaryingIterator {
  public:
    /// The time. Not at the end.
    double operator*() const { return mState == kKey ? mNode->first : 0.0; }
    /// Not at the end of keys; the end of a constant stays.
    ScExtendedTimeVaryingIterator& operator++() {
        if (mState == kKey) {
            ++mNode;
        } else {
            mState = kConstantEnd;
        }
        return *this;
    }
    friend bool operator==(ScExtendedTimeVaryingIterator const& a, ScExtendedTimeVaryingIterator const& b) {
        return a.mState == b.mState && (a.mState != kKey || a.mNode == b.mNode);
    }

  private:
    friend StETV<Value, Extended, Change>;
    using Node = typename ScTimeMap<Extended>::const_iterator;
    enum State { kKey = 0, kConstant = 1, kConstantEnd = 2 };

    explicit ScExtendedTimeVaryingIterator(Node node) : mNode(node), mState(kKey) {}
    explicit ScExtendedTimeVaryingIterator(State state) : mNode(), mState(state) {}

    Node mNode;
    State mState;
};

/// A colour that is constant until a key time other than 0.0 is set, and from then on has keys. It becomes
/// constant again when a colour is assigned, or when deleting or moving keys leaves one.
///
/// It takes 12 bytes on every machine:
///
///     byte   0    4      8
///           red  green  blue       constant: bit 0 of byte 0 is 0
///           address      -         with keys: the address of their storage, bit 0 of byte 0 is 1
///
/// So a constant loses the last bit of red's mantissa: a red of 0x3F800001 comes back as 0x3F800000. Copying
/// bytes does not copy a colour with keys, nor may they be moved.
///
/// A constant takes no memory and makes no virtual call. Keys and their storage come from the framework's
/// allocator; refused memory throws -108, and the colour is then what it was, except that an assignment may
/// have copied a part of the keys, and that a constant may have got one key of its colour at 0.0.
///
/// Times that are at most a millionth apart are one time. The first key is never deleted and is at 0.0,
/// unless keys are set or moved before that. Ranges of times include both ends; one that ends before it
/// begins is empty. What is not a number is no time: it sets and moves nothing, and reads as before the first
/// key.
template <>
class FRAMEWRIGHT_EXPORT StETV<StColorFloats, StColorFloats, ScNCg<StColorFloats>> {
  public:
    using Storage = ScTVS<StColorFloats, StColorFloats, ScNCg<StColorFloats>>;
    using Iterator = ScExtendedTimeVaryingIterator<StColorFloats, StColorFloats, ScNCg<StColorFloats>>;
    using Interpolator = ScVI<StColorFloats>;
    using Linear = ScLI<StColorFloats>;
    using Callback = ScTVI<StColorFloats>;

    /// Black.
    StETV() : mColor{} {}
    StETV(StColorFloats const& color) { SetConstant(color); }
    StETV(StETV const& other) : StETV() { *this = other; }
    ~StETV() {
        if (IsTimeVarying()) DropKeys();
    }

    /// Deletes all keys: the colour is constant.
    StETV& operator=(StColorFloats const& color) {
        StColorFloats const kept = color;  // which may be that of a key
        if (IsTimeVarying()) DropKeys();
        SetConstant(kept);
        return *this;
    }
    /// Deletes all keys, then sets those of `other`. A colour with one key becomes a constant; one without a
    /// key at 0.0 becomes a copy that has one there too.
    StETV& operator=(StETV const& other) {
        if (IsTimeVarying() || other.IsTimeVarying()) {
            AssignKeys(other);
        } else {
            mColor = other.mColor;
        }
        return *this;
    }

    /// Whether the colour has keys.
    bool IsTimeVarying() const { return *reinterpret_cast<unsigned char const*>(&mColor) & 1; }

    /// The colour at a time: that of a key at a nearly equal time, or of the first or last key before or
    /// behind all keys, or interpolated, linearly unless told otherwise. The two times that were read last
    /// are remembered, whatever interpolated them: what is read there comes from there until keys are
    /// deleted, moved or copied, or other times push it out. So who reads by different interpolators, or
    /// changes a key next to a time that was read, may get what was read before.
    StColorFloats GetValue(double time) const {
        return IsTimeVarying() ? ReallyGetValue(time, Linear::GetInterpolator()) : mColor;
    }
    StColorFloats GetValue(double time, Interpolator& interpolator) const {
        return IsTimeVarying() ? ReallyGetValue(time, interpolator) : mColor;
    }
    void ReallyGetValue(double time, StColorFloats& out, Interpolator& interpolator) const;
    StColorFloats ReallyGetValue(double time, Interpolator& interpolator) const {
        StColorFloats color;
        ReallyGetValue(time, color, interpolator);
        return color;
    }
    /// The context is not looked at.
    void ReallyGetValue(double time, StColorFloats& out, Interpolator& interpolator, void const*) const {
        ReallyGetValue(time, out, interpolator);
    }

    /// Sets the key at `time`, or the value of the one that is there. A constant that is set at 0.0 stays
    /// constant; set elsewhere, it gets a key of its own colour at 0.0 too.
    void SetExtendedValue(double time, StColorFloats const& color);
    /// Gives a constant a key of its own colour at 0.0.
    void ForceTimeVarying();
    /// Sets a key of the colour that is at `time`: a key more on the same curve, if that is linear.
    void ForceKeyTime(double time, Interpolator& interpolator);
    void ForceKeyTime(double time) { ForceKeyTime(time, Linear::GetInterpolator()); }

    /// 1 for a constant.
    long GetNumKeyTimes() const;
    /// The time of a key, counted from 1. 0.0 for an index of 1 or less and for a constant, the last key's
    /// time for an index beyond it.
    double GetKeyTimeAt(long index) const;
    /// 0.0 for a constant.
    double GetLastKeyTime() const;
    /// The indices, counted from 1, of the keys on both sides of a time: the same twice for the time of a key
    /// and for 0.0 and below; one beyond the number of keys for `high` behind the last, and of a constant.
    void GetIndexForTime(double time, long& low, long& high) const;
    Iterator GetKeyTimeBegin() const;
    Iterator GetKeyTimeEnd() const;

    /// Calls back for each key in order of time, for a constant once at 0.0.
    void EachKeyTime(Callback& callback) const { EachKey(callback); }
    /// The same, and looks at what lies between: whether a span has the same value at both ends and in its
    /// middle.
    void EachKeyTimeSpan(Callback& callback, Interpolator& interpolator) const {
        EachSpan(callback, interpolator);
    }
    void EachKeyTimeSpan(Callback& callback) const { EachSpan(callback, Linear::GetInterpolator()); }

    /// Moves the keys from `from` to `to` by `delta`, over keys that are there. The first key of all is
    /// copied instead: it stays where it was as well.
    void MoveKeyTimes(double from, double to, double delta);
    /// Copies them. A constant gets a key at 0.0 by that, even if the range has none.
    void CopyKeyTimes(double from, double to, double delta);
    /// Deletes them, except for the first key of all.
    void DeleteKeyTimes(double from, double to);

    /// The keys for code that does not know what they are keys of. Of a constant it is a new object that the
    /// caller releases and that looks at this colour, so it must not be used longer. Of a colour with keys it
    /// is borrowed; who adds a reference, as StRef does, may keep it when the colour becomes constant or
    /// goes, and has in it a constant apart from the colour from then on.
    SxTimeVarying* GetTimeVarying();
    /// Of a constant it is SrGetConstNonTimeVarying(). Borrowed.
    SxTimeVarying const* GetTimeVarying() const;

  protected:
    /// Takes over a storage, or with null lets go of the one that is there, which is not destroyed; the
    /// colour is to be set next.
    void UseStorage(Storage* storage);

  private:
    friend ScTimeVaryingView<StETV>;

    void SetConstant(StColorFloats const& color) {
        mColor = {std::bit_cast<float>(std::bit_cast<std::uint32_t>(color.red) & ~1u), color.green,
                  color.blue};
    }
    Storage* GetStorage() const {
        std::uintptr_t word;
        std::memcpy(&word, &mColor, sizeof word);
        return reinterpret_cast<Storage*>(word & ~std::uintptr_t{1});
    }
    void AssignKeys(StETV const& other);
    void DropKeys();
    void KeysWereTaken();
    void ShiftKeys(double from, double to, double delta, bool keep);
    void EachKey(ScKeyTimeIterator& callback) const;
    void EachSpan(ScKeyTimeIterator& callback, Interpolator& interpolator) const;

    StColorFloats mColor;  ///< or the storage, see above
};

/// The library's one time-varying type.
using StTimeVaryingColor = StETV<StColorFloats, StColorFloats, ScNCg<StColorFloats>>;

static_assert(sizeof(StTimeVaryingColor) == 12);
