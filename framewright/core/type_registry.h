// Type registries: small global ordered maps from an identifier to a value, for the sets of things that are
// open: layer classes, their names, purposes, recognizers, and the names of codecs, streams and tracks. They
// are filled by the set-up routines and emptied by them at shut-down.
//
// A registry is a ScTR_ in one source file, with a facade of static functions in front of it:
//
//     class FRAMEWRIGHT_EXPORT ScStreamNameRegistry                             // in a header
//         : public ScNameRegistryFacade<ScStreamNameRegistry, unsigned long> {
//         friend ScRegistryFacade;
//         static Registry& Global();
//
//       public:
//         using ScRegistryFacade::GetObjectByIndex;                             // if hosts walk it by index
//     };
//     FRAMEWRIGHT_EXPORT ScStreamNameRegistry* SrGetStreamNameRegistry();
//
//     static ScStreamNameRegistry::Registry gStreamNames;                       // in its source file
//     ScStreamNameRegistry::Registry& ScStreamNameRegistry::Global() { return gStreamNames; }
//     static ScStreamNameRegistry gStreamNameRegistry;
//     ScStreamNameRegistry* SrGetStreamNameRegistry() { return &gStreamNameRegistry; }
//
// (An object registry has ScObjectRegistryFacade<ScMediaRegistry, unsigned long, SmMediaRecognizer> as its
// base.)
//
// Nothing locks: registries are written only by set-up and shut-down, and read in between.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <iterator>
#include <map>
#include <type_traits>
#include <utility>

#include "framewright/thornmere/error.h"
#include "framewright/thornmere/framework_allocator.h"
#include "framewright/thornmere/reference.h"
#include "framewright/thornmere/text.h"

/// How an object registry stores a value: as one reference of its own.
template <class T>
class ScObjectStore {
  public:
    explicit ScObjectStore(T* object) : mObject(object) {}
    T* Get() const { return mObject.Get(); }
    /// The shared object, or a clone that the caller owns.
    T* LookUp(bool clone) const {
        return clone && mObject ? static_cast<T*>(mObject->ImplementClone()) : mObject.Get();
    }

  private:
    StRef<T> mObject;
};

/// How a name registry stores a value: as a private copy of its first 63 bytes. Null counts as empty.
class ScNameStore {
  public:
    explicit ScNameStore(char const* name) : mName(name) {}
    char const* Get() const { return mName.AsCString(); }
    char const* LookUp(bool) const { return Get(); }

  private:
    ScString63 mName;
};

/// An ordered map of `Key` to `Store`; values come in as `In` and go out as `Out`. Codes have 32 bits
/// whatever the width of their type here: `unsigned long` keys are kept and ordered as unsigned 32-bit
/// values, `long` keys as signed ones, and pointers by address.
template <class Key, class Store, class In, class Out>
class ScTR_ {
  public:
    ScTR_() = default;
    ScTR_(ScTR_ const&) = delete;
    ScTR_& operator=(ScTR_ const&) = delete;

    // The virtual operations, in slot order.
    virtual ~ScTR_() = default;
    /// Enters a value. A key that is present keeps the value that it has: the result is then false. -108 when
    /// memory is refused; the registry is then as it was.
    virtual bool RegisterObject(Key key, In value) {
        return mEntries.try_emplace(static_cast<KeptKey>(key), value).second;
    }
    /// Removes an entry and drops its reference; an absent key is ignored.
    virtual void UnRegisterObject(Key key) { mEntries.erase(static_cast<KeptKey>(key)); }
    virtual void UnRegisterObjectAll() { mEntries.clear(); }
    /// Stores the value of `key`, or returns false and leaves `value` alone. An object is borrowed, unless
    /// `clone` asks for a copy, which the caller owns. A text is valid while its entry exists, whatever other
    /// keys come and go; `clone` then means nothing.
    virtual bool GetObjectByID(Key key, bool clone, Out& value) {
        auto const entry = mEntries.find(static_cast<KeptKey>(key));
        if (entry == mEntries.end()) return false;
        value = entry->second.LookUp(clone);
        return true;
    }
    /// The stored value itself, borrowed, whatever `clone` says. An absent key throws SkSymbolNotFoundErrC().
    virtual Out GetObjectByID(Key key, [[maybe_unused]] bool clone) {
        auto const entry = mEntries.find(static_cast<KeptKey>(key));
        if (entry == mEntries.end()) SrThrow(SkSymbolNotFoundErrC(), nullptr);
        return entry->second.Get();
    }

    /// The entry that stands at `index` in the order of the keys, counted from 0; false outside, and `key`
    /// and `value` are left alone.
    bool GetObjectByIndex(int index, Key& key, Out& value) const {
        if (index < 0 || static_cast<std::size_t>(index) >= mEntries.size()) return false;
        auto const entry = std::next(mEntries.begin(), index);
        key = static_cast<Key>(entry->first);
        value = entry->second.Get();
        return true;
    }

  private:
    using KeptKey =
        std::conditional_t<std::is_pointer_v<Key>, Key,
                           std::conditional_t<std::is_signed_v<Key>, std::int32_t, std::uint32_t>>;

    std::map<KeptKey, Store, std::less<KeptKey>, ScFrameworkAllocator<std::pair<KeptKey const, Store>>>
        mEntries;
};

/// What all facades share: static functions that forward to the one registry, which `Facade::Global()` gives.
template <class Facade, class Key, class Store, class In, class Out>
class ScRegistryFacade {
  public:
    using Registry = ScTR_<Key, Store, In, Out>;

    static bool RegisterObject(Key key, In value) { return Facade::Global().RegisterObject(key, value); }
    static void UnRegisterObject(Key key) { Facade::Global().UnRegisterObject(key); }
    static bool GetObjectByID(Key key, bool clone, Out& value) {
        return Facade::Global().GetObjectByID(key, clone, value);
    }
    static Out GetObjectByID(Key key, bool clone) { return Facade::Global().GetObjectByID(key, clone); }

  protected:
    /// For the facades that are walked: past the end the result is false and `value` null.
    static bool GetObjectByIndex(int index, Key& key, Out& value) {
        value = nullptr;
        return Facade::Global().GetObjectByIndex(index, key, value);
    }
};

template <class Facade, class Key, class T>
using ScObjectRegistryFacade = ScRegistryFacade<Facade, Key, ScObjectStore<T>, T*, T*>;

template <class Facade, class Key>
using ScNameRegistryFacade = ScRegistryFacade<Facade, Key, ScNameStore, char const*, char const*>;
