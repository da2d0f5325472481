#include "framewright/pixel/time_varying.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <memory>

#include "framewright/core/startup.h"
#include "framewright/pixel/time_varying_storage.h"

SR_DEPENDS_ON(SrInitMemory);
SR_DEPENDS_ON(SrInitObjectBase);
SR_DEPENDS_ON(SrInitStorageManager);
SR_DEPENDS_ON(SrRegisterTrackTypeNames);
SR_DEPENDS_ON(SrInitColorMaps);
SR_DEPENDS_ON(SrRegisterPict);
SR_DEPENDS_ON(SrRegisterResPict);
SR_DEPENDS_ON(SrInitializeGlobalMedia);
SR_DEPENDS_ON(SrInitializeGlobalSpoolManager);
SR_DEPENDS_ON(SrInitializeLayerRegistries);
SR_DEPENDS_ON(SrInitializeMappedLayers);
SR_DEPENDS_ON(SrInitSfQuickTime);
SR_DEPENDS_ON(SrInitMipmaps);

namespace {

using Keys = StTimeVaryingColor::Storage::Map;
using LinearInterpolator = ScLI<StColorFloats>;

constinit LinearInterpolator gLinearInterpolator;

bool SameColor(StColorFloats const& a, StColorFloats const& b) {
    return a.red == b.red && a.green == b.green && a.blue == b.blue;
}

float Between(float a, float b, float weight) {
    return (b - a) * weight + a;
}

/// The key at a time nearly equal to `time`, or the place where it belongs: the first key not before it.
Keys::iterator PlaceOf(Keys& keys, double time, bool& found) {
    auto const place = keys.lower_bound(time);
    found = place != keys.end() && SrNearEqualTimes(place->first, time);
    return place;
}

void SetKey(Keys& keys, double time, StColorFloats const& color) {
    if (std::isnan(time)) return;
    bool found = false;
    auto const place = PlaceOf(keys, time, found);
    if (found) {
        place->second = color;
    } else {
        keys.emplace_hint(place, time, color);
    }
}

/// Moves all keys of `source` into `keys`. Asks for no memory, so that nothing can fail halfway.
void TakeKeys(Keys& keys, Keys& source) {
    while (!source.empty()) {
        auto node = source.extract(source.begin());
        bool found = false;
        auto const place = PlaceOf(keys, node.key(), found);
        if (found) {
            place->second = node.mapped();
        } else {
            keys.insert(place, std::move(node));
        }
    }
}

struct StKeyRange {
    Keys::iterator first, last;
};

/// From the first key not before `from` up to the first key after `to`; empty if that ran backward, or one of
/// them is no time.
StKeyRange KeysBetween(Keys& keys, double from, double to) {
    if (std::isnan(from) || std::isnan(to)) return {keys.end(), keys.end()};
    auto const first = keys.lower_bound(from), last = keys.upper_bound(to);
    bool const backward = last != keys.end() && (first == keys.end() || last->first < first->first);
    return {first, backward ? first : last};
}

/// All of them but the first key of the map.
void EraseKeys(Keys& keys, StKeyRange range) {
    if (range.first == range.last) return;
    if (range.first == keys.begin()) ++range.first;
    keys.erase(range.first, range.last);
}

std::unique_ptr<StTimeVaryingColor::Storage> NewStorage(StTimeVaryingColor* owner) {
    return std::make_unique<StTimeVaryingColor::Storage>(owner);
}

}  // namespace

// The linear interpolator

void LinearInterpolator::Interpolate(float weight, double, double, StColorFloats const& a,
                                     StColorFloats const& b, StColorFloats& out) {
    out = {Between(a.red, b.red, weight), Between(a.green, b.green, weight), Between(a.blue, b.blue, weight)};
}
char const* LinearInterpolator::GetInterpolatorName() {
    return "ScLinearInterpolator";
}
LinearInterpolator& LinearInterpolator::GetInterpolator() {
    return gLinearInterpolator;
}

// Between constant and keys

void StTimeVaryingColor::UseStorage(Storage* storage) {
    std::uintptr_t const word = storage ? reinterpret_cast<std::uintptr_t>(storage) | 1 : 0;
    std::memcpy(&mColor, &word, sizeof word);
}

void StTimeVaryingColor::DropKeys() {
    Storage* const storage = GetStorage();
    StColorFloats const color = storage->Keys().begin()->second;
    UseStorage(nullptr);
    SetConstant(color);
    storage->LeaveOwner(color);
}

/// After keys may have gone: one that is alone makes the colour constant.
void StTimeVaryingColor::KeysWereTaken() {
    if (GetStorage()->Keys().size() == 1) {
        DropKeys();
    } else {
        GetStorage()->Cache().Invalidate();
    }
}

void StTimeVaryingColor::AssignKeys(StETV const& other) {
    if (&other == this) return;
    if (IsTimeVarying()) DropKeys();
    _ScCopyIteratorExTV<StColorFloats, StColorFloats, ScNCg<StColorFloats>> copy(*this);
    other.EachKeyTime(copy);
}

void StTimeVaryingColor::ForceTimeVarying() {
    if (IsTimeVarying()) return;
    auto storage = NewStorage(this);
    SetKey(storage->Keys(), 0.0, mColor);
    storage->Cache().Store(0.0, mColor);
    UseStorage(storage.release());
}

void StTimeVaryingColor::SetExtendedValue(double time, StColorFloats const& color) {
    if (std::isnan(time)) return;
    if (IsTimeVarying()) {
        SetKey(GetStorage()->Keys(), time, color);
        GetStorage()->Cache().Store(time, color);
    } else if (SrNearEqualTimes(time, 0.0)) {
        SetConstant(color);
    } else {
        auto storage = NewStorage(this);
        SetKey(storage->Keys(), 0.0, mColor);
        SetKey(storage->Keys(), time, color);
        storage->Cache().Store(time, color);
        UseStorage(storage.release());
    }
}

void StTimeVaryingColor::ForceKeyTime(double time, Interpolator& interpolator) {
    SetExtendedValue(time, GetValue(time, interpolator));
}

// Reading

void StTimeVaryingColor::ReallyGetValue(double time, StColorFloats& out, Interpolator& interpolator) const {
    if (!IsTimeVarying()) {
        out = mColor;
        return;
    }
    Storage& storage = *GetStorage();
    if (storage.Cache().Lookup(time, out)) return;

    Keys& keys = storage.Keys();
    bool found = false;
    auto const next = PlaceOf(keys, time, found);
    if (next == keys.end()) {
        out = keys.rbegin()->second;
    } else if (found || next == keys.begin()) {
        out = next->second;
    } else {
        auto const& [time0, color0] = *std::prev(next);
        auto const& [time1, color1] = *next;
        float const weight = static_cast<float>((time - time0) / (time1 - time0));
        interpolator.Interpolate(weight, time0, time1, color0, color1, out);
    }
    storage.Cache().Store(time, out);
}

long StTimeVaryingColor::GetNumKeyTimes() const {
    return IsTimeVarying() ? static_cast<long>(GetStorage()->Keys().size()) : 1;
}

double StTimeVaryingColor::GetKeyTimeAt(long index) const {
    if (index <= 1 || !IsTimeVarying()) return 0.0;
    return std::next(GetStorage()->Keys().begin(), std::min(index, GetNumKeyTimes()) - 1)->first;
}

double StTimeVaryingColor::GetLastKeyTime() const {
    return IsTimeVarying() ? GetStorage()->Keys().rbegin()->first : 0.0;
}

void StTimeVaryingColor::GetIndexForTime(double time, long& low, long& high) const {
    if (time <= 0.0) {
        low = high = 1;
    } else if (!IsTimeVarying()) {
        low = 1;
        high = 2;
    } else {
        Keys& keys = GetStorage()->Keys();
        bool found = false;
        auto const next = PlaceOf(keys, time, found);
        high = 1 + static_cast<long>(std::distance(keys.begin(), next));
        low = found || high == 1 ? high : high - 1;
    }
}

StTimeVaryingColor::Iterator StTimeVaryingColor::GetKeyTimeBegin() const {
    return IsTimeVarying() ? Iterator(GetStorage()->Keys().cbegin()) : Iterator(Iterator::kConstant);
}

StTimeVaryingColor::Iterator StTimeVaryingColor::GetKeyTimeEnd() const {
    return IsTimeVarying() ? Iterator(GetStorage()->Keys().cend()) : Iterator(Iterator::kConstantEnd);
}

void StTimeVaryingColor::EachKey(ScKeyTimeIterator& callback) const {
    if (!IsTimeVarying()) {
        callback.HandleKeyTime(0.0, &mColor, true, true);
        return;
    }
    bool first = true;
    for (auto const& [time, color] : GetStorage()->Keys()) {
        callback.HandleKeyTime(time, &color, first, first);
        first = false;
    }
}

void StTimeVaryingColor::EachSpan(ScKeyTimeIterator& callback, Interpolator& interpolator) const {
    if (!IsTimeVarying()) {
        callback.HandleKeyTime(0.0, &mColor, true, true);
        return;
    }
    Keys const& keys = GetStorage()->Keys();
    for (auto key = keys.begin(); key != keys.end(); ++key) {
        auto const& [time, color] = *key;
        bool same = true, flat = true;
        if (key != keys.begin()) {
            auto const& [time0, color0] = *std::prev(key);
            same = SameColor(color, color0);
            flat = same && SameColor(color, ReallyGetValue((time0 + time) * 0.5, interpolator));
        }
        callback.HandleKeyTime(time, &color, same, flat);
    }
}

// Editing

void StTimeVaryingColor::ShiftKeys(double from, double to, double delta, bool keep) {
    Keys& keys = GetStorage()->Keys();
    StKeyRange const range = KeysBetween(keys, from, to);
    Keys shifted;
    for (auto key = range.first; key != range.last; ++key)
        SetKey(shifted, key->first + delta, key->second);
    if (!keep) EraseKeys(keys, range);
    TakeKeys(keys, shifted);
}

void StTimeVaryingColor::MoveKeyTimes(double from, double to, double delta) {
    if (std::isnan(delta) || SrNearEqualTimes(delta, 0.0)) return;
    ForceTimeVarying();
    ShiftKeys(from, to, delta, false);
    KeysWereTaken();
}

void StTimeVaryingColor::CopyKeyTimes(double from, double to, double delta) {
    if (std::isnan(delta) || SrNearEqualTimes(delta, 0.0)) return;
    ForceTimeVarying();
    ShiftKeys(from, to, delta, true);
    GetStorage()->Cache().Invalidate();
}

void StTimeVaryingColor::DeleteKeyTimes(double from, double to) {
    if (!IsTimeVarying()) return;
    EraseKeys(GetStorage()->Keys(), KeysBetween(GetStorage()->Keys(), from, to));
    KeysWereTaken();
}

// As an object of its own

SxTimeVarying* StTimeVaryingColor::GetTimeVarying() {
    if (IsTimeVarying()) return GetStorage();
    return new ScNonConstNonTimeVarying<StETV>(this);
}

SxTimeVarying const* StTimeVaryingColor::GetTimeVarying() const {
    return IsTimeVarying() ? GetStorage() : SrGetConstNonTimeVarying();
}
