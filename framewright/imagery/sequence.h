// The array of entries that tracks and movies have, of which any may be missing.
#pragma once

#include <cstdint>

#include "framewright/thornmere/error.h"
#include "framewright/thornmere/reference.h"
#include "framewright/thornmere/vector.h"

/// The entries of a sequence: counted objects by number, null where there is none. It can be moved as bytes.
template <class T>
class ScSequence {
  public:
    /// Entries up to the last one that was ever put, nulls included.
    long Count() const { return static_cast<long>(mEntries.size()); }
    /// Borrowed; null outside.
    T* At(long number) const {
        return Has(number) ? mEntries[static_cast<std::size_t>(number)].Get() : nullptr;
    }
    /// Puts `entry`, or null, in the place of what was there and adds a reference; the array grows with nulls
    /// up to it. A number below 0 counts as 0. -108, and nothing has changed, where there is no memory, or
    /// for a number past 32 bits.
    void Put(long number, T* entry) {
        if (number < 0) number = 0;
        if (number > INT32_MAX) SrThrow(SkMemoryFull(), nullptr);
        auto const place = static_cast<std::size_t>(number);
        if (place >= mEntries.size()) mEntries.resize(place + 1);
        mEntries[place] = entry;
    }
    /// Leaves null; nothing outside.
    void Drop(long number) {
        if (Has(number)) mEntries[static_cast<std::size_t>(number)] = nullptr;
    }
    /// Drops the entries, the last one first.
    void Clear() { mEntries.clear(); }
    /// Puts a clone of each entry of `other` at the end, null for null.
    void AppendClones(ScSequence const& other) {
        mEntries.reserve(mEntries.size() + other.mEntries.size());
        for (StRef<T> const& entry : other.mEntries)
            mEntries.push_back(StRef<T>::Adopt(entry ? entry->Clone() : nullptr));
    }

  private:
    bool Has(long number) const { return number >= 0 && number < Count(); }

    ScVector<StRef<T>> mEntries;
};
