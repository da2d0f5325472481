// A growing array that can be moved as bytes: it holds a pointer and two counts, and nothing points into it.
// It belongs to the object that holds it, and to that object's thread.
#pragma once

#include <algorithm>
#include <cstddef>
#include <limits>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

#include "framewright/thornmere/error.h"
#include "framewright/thornmere/memory.h"

/// The operations of std::vector that hosts use, on memory of the framework's allocator. Growth that memory
/// refuses throws -108 and leaves the array as it was.
template <class T>
class ScVector {
  public:
    using value_type = T;
    using iterator = T*;
    using const_iterator = T const*;

    ScVector() = default;
    ScVector(ScVector const& other) {
        try {
            reserve(other.mSize);
            for (T const& value : other)
                push_back(value);
        } catch (...) {
            Release();
            throw;
        }
    }
    ScVector(ScVector&& other) noexcept { swap(other); }
    ScVector& operator=(ScVector other) noexcept {
        swap(other);
        return *this;
    }
    ~ScVector() { Release(); }

    std::size_t size() const { return mSize; }
    std::size_t capacity() const { return mCapacity; }
    bool empty() const { return mSize == 0; }
    T* data() { return mData; }
    T const* data() const { return mData; }
    T& operator[](std::size_t i) { return mData[i]; }
    T const& operator[](std::size_t i) const { return mData[i]; }
    T& front() { return mData[0]; }
    T const& front() const { return mData[0]; }
    T& back() { return mData[mSize - 1]; }
    T const& back() const { return mData[mSize - 1]; }
    T* begin() { return mData; }
    T* end() { return mData + mSize; }
    T const* begin() const { return mData; }
    T const* end() const { return mData + mSize; }

    void push_back(T value) {
        if (mSize == mCapacity) Grow(mCapacity ? mCapacity * 2 : 4);
        new (mData + mSize) T(std::move(value));
        ++mSize;
    }
    void pop_back() { mData[--mSize].~T(); }
    void reserve(std::size_t count) {
        if (count > mCapacity) Grow(count);
    }
    /// Grows with value-initialised entries, or drops entries from the end. Many small steps cost no more
    /// than as many push_back.
    void resize(std::size_t count) {
        if (count > mCapacity) Grow(std::max(count, mCapacity * 2));
        while (mSize > count)
            pop_back();
        if (mSize < count) {
            std::uninitialized_value_construct(mData + mSize, mData + count);
            mSize = count;
        }
    }
    iterator insert(const_iterator place, T value) {
        std::size_t const at = static_cast<std::size_t>(place - mData);
        push_back(std::move(value));
        for (std::size_t i = mSize - 1; i > at; --i)
            std::swap(mData[i], mData[i - 1]);
        return mData + at;
    }
    iterator erase(const_iterator place) {
        std::size_t const at = static_cast<std::size_t>(place - mData);
        for (std::size_t i = at; i + 1 < mSize; ++i)
            mData[i] = std::move(mData[i + 1]);
        pop_back();
        return mData + at;
    }
    void clear() {
        while (mSize)
            pop_back();
    }
    void swap(ScVector& other) noexcept {
        std::swap(mData, other.mData);
        std::swap(mSize, other.mSize);
        std::swap(mCapacity, other.mCapacity);
    }

  private:
    void Grow(std::size_t capacity) {
        static_assert(std::is_nothrow_move_constructible_v<T> && alignof(T) <= alignof(std::max_align_t));
        if (capacity > std::numeric_limits<std::size_t>::max() / sizeof(T)) SrThrow(SkMemoryFull(), nullptr);
        T* grown = static_cast<T*>(SrAllocatePointer(capacity * sizeof(T)));
        SrThrowIfNIL(grown);
        std::uninitialized_move(begin(), end(), grown);
        std::destroy(begin(), end());
        SrDeallocatePointer(mData, mCapacity * sizeof(T));
        mData = grown;
        mCapacity = capacity;
    }
    void Release() {
        clear();
        mData = static_cast<T*>(SrDeallocatePointer(mData, mCapacity * sizeof(T)));
        mCapacity = 0;
    }

    T* mData = nullptr;
    std::size_t mSize = 0;
    std::size_t mCapacity = 0;
};
