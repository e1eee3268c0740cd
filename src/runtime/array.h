// The library's own containers. They allocate through the platform, say whether that succeeded and free what they own.
#pragma once

#include "platform/platform.h"

#include <new>
#include <type_traits>
#include <utility>

namespace zlv {

namespace detail {

// The element count of an array that would not fit into memory's address range.
template <class T>
constexpr bool IsImpossibleCount(u64 count)
{
    return count > SIZE_MAX / 2 / sizeof(T);
}

template <class T>
T* ConstructElements(void* memory, size_t count)
{
    T* const elements = static_cast<T*>(memory);
    // Numbers are left as they come: most arrays are written whole before they are read.
    if constexpr (!std::is_trivially_default_constructible_v<T>) {
        for (size_t i = 0; i < count; ++i) new (elements + i) T();
    }
    return elements;
}

template <class T>
void DestroyElements(T* elements, size_t count)
{
    if constexpr (!std::is_trivially_destructible_v<T>) {
        for (size_t i = count; i > 0; --i) elements[i - 1].~T();
    }
}

// What the two plain arrays share: they differ in the type of their count.
template <class T, class Count>
class OwnedArray {
public:
    OwnedArray() = default;
    ~OwnedArray() { Clear(); }
    OwnedArray(const OwnedArray&) = delete;
    OwnedArray& operator=(const OwnedArray&) = delete;

    // The present size keeps the contents. Any other loses them, and the new elements are not cleared. False leaves the
    // array empty: memory is out, or newCount is not above zero, which callers treat alike.
    [[nodiscard]] bool Resize(Count newCount)
    {
        if (newCount == count_ && data_) return true;
        Clear();
        if (newCount < 1 || IsImpossibleCount<T>(u64(newCount))) return false;
        void* const memory = platform::Allocate(size_t(newCount) * sizeof(T));
        if (!memory) return false;
        data_ = ConstructElements<T>(memory, size_t(newCount));
        count_ = newCount;
        return true;
    }

    void Clear()
    {
        DestroyElements(data_, size_t(count_));
        platform::Free(data_);
        data_ = nullptr;
        count_ = 0;
    }

    T* GetData() { return data_; }
    const T* GetData() const { return data_; }
    Count GetCount() const { return count_; }

    T& operator[](size_t i) { return data_[i]; }
    const T& operator[](size_t i) const { return data_[i]; }

private:
    Count count_ = 0;
    T* data_ = nullptr;
};

}  // namespace detail

// The owning array of the effects.
template <class T>
class ZLVArray : public detail::OwnedArray<T, i32> {
public:
    // Sets each byte; nothing happens to an empty array.
    void Fill(u8 value) requires std::is_same_v<T, u8>
    {
        for (i32 i = 0; i < this->GetCount(); ++i) (*this)[size_t(i)] = value;
    }
};

// The owning array of the base layer, for more elements than an i32 counts.
template <class T>
class MVBuffer : public detail::OwnedArray<T, u64> {
};

// An array at an address that is a multiple of `alignment`, a power of two.
template <class T>
class MVAlignedArray {
    static_assert(std::is_trivial_v<T>);

public:
    MVAlignedArray() = default;
    ~MVAlignedArray() { Clear(); }
    MVAlignedArray(const MVAlignedArray&) = delete;
    MVAlignedArray& operator=(const MVAlignedArray&) = delete;

    // The present count and alignment keep the contents. False leaves the array empty.
    [[nodiscard]] bool Resize(u64 count, u64 alignment)
    {
        if (data_ && count == count_ && alignment == alignment_) return true;
        Clear();
        if (count == 0 || detail::IsImpossibleCount<T>(count) || alignment > kLargestAlignment) return false;
        block_ = platform::Allocate(size_t(count) * sizeof(T) + size_t(alignment));
        if (!block_) return false;
        const u64 start = (reinterpret_cast<u64>(block_) + alignment - 1) & ~(alignment - 1);
        data_ = reinterpret_cast<T*>(start);
        count_ = count;
        alignment_ = alignment;
        return true;
    }

    void Clear()
    {
        platform::Free(block_);
        block_ = nullptr;
        data_ = nullptr;
        count_ = alignment_ = 0;
    }

    T* GetData() { return data_; }
    const T* GetData() const { return data_; }
    u64 GetCount() const { return count_; }

private:
    static constexpr u64 kLargestAlignment = 4096;

    u64 count_ = 0;
    u64 alignment_ = 0;
    T* data_ = nullptr;
    void* block_ = nullptr;
};

// A growing vector of objects that it owns and deletes, first to last. T brings its own operator delete.
template <class T>
class MVPtrVector {
public:
    MVPtrVector() = default;
    ~MVPtrVector() { Clear(); }
    MVPtrVector(const MVPtrVector&) = delete;
    MVPtrVector& operator=(const MVPtrVector&) = delete;

    // Takes the object over. False, with the object still the caller's, when memory is out.
    [[nodiscard]] bool Append(T* object)
    {
        if (count_ == capacity_ && !Grow()) return false;
        objects_[count_++] = object;
        return true;
    }

    // Deletes the objects and keeps the room that they had.
    void DeleteAll()
    {
        for (u32 i = 0; i < count_; ++i) delete objects_[i];
        count_ = 0;
    }

    void Clear()
    {
        DeleteAll();
        platform::Free(objects_);
        objects_ = nullptr;
        capacity_ = 0;
    }

    void Swap(MVPtrVector& other)
    {
        std::swap(objects_, other.objects_);
        std::swap(count_, other.count_);
        std::swap(capacity_, other.capacity_);
    }

    u32 GetCount() const { return count_; }
    T* operator[](u32 i) const { return objects_[i]; }

private:
    bool Grow()
    {
        const u32 wanted = capacity_ ? capacity_ * 2 : 8;
        T** const larger = static_cast<T**>(platform::Allocate(size_t(wanted) * sizeof(T*)));
        if (!larger) return false;
        for (u32 i = 0; i < count_; ++i) larger[i] = objects_[i];
        platform::Free(objects_);
        objects_ = larger;
        capacity_ = wanted;
        return true;
    }

    T** objects_ = nullptr;
    u32 count_ = 0;
    u32 capacity_ = 0;
};

}  // namespace zlv
