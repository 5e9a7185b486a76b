/// \file
/// ZEFArray: the library's array, a std::vector with int sizes and raw-pointer
/// begin()/end() that are both null when the array is empty. Elements that are
/// pointers are never followed: the array owns its storage, not what it points at.
/// Beside it: deletePtrArray and fillArithmeticalSuite.
#pragma once

#include <memory>
#include <type_traits>
#include <vector>

/// The library's array: a std::vector with int sizes and null begin() and end() when empty.
template <class T, class A = std::allocator<T>>
class ZEFArray : public std::vector<T, A> {
public:
    /// The standard vector this array derives from.
    using Base = std::vector<T, A>;

    ZEFArray() = default;
    /// Sets an empty array that allocates through allocator.
    explicit ZEFArray(const A &allocator) : Base(allocator) {}

    /// Returns the number of elements as int.
    int size() const { return static_cast<int>(Base::size()); }

    ///@{
    /// Returns the first element, or null if the array is empty (never a past-the-end pointer).
    T *begin() { return Base::empty() ? nullptr : Base::data(); }
    const T *begin() const { return Base::empty() ? nullptr : Base::data(); }
    ///@}
    ///@{
    /// Returns the pointer behind the last element, or null if the array is empty.
    T *end() { return Base::empty() ? nullptr : Base::data() + Base::size(); }
    const T *end() const { return Base::empty() ? nullptr : Base::data() + Base::size(); }
    ///@}

    ///@{
    /// Returns the vector's own iterator at the first element.
    typename Base::iterator vbegin() { return Base::begin(); }
    typename Base::const_iterator vbegin() const { return Base::begin(); }
    ///@}

    /// Sets the array to exactly count elements, all zero.
    void assign(int count) { Base::assign(static_cast<typename Base::size_type>(count), T(0)); }

    /// Removes the element at index (later elements move down, a pointer element is not
    /// deleted) and returns begin() + index: the new end() after removing the last, null
    /// when the array is now empty. Bad index: returns null, array unchanged.
    T *erase(int index) {
        if (index < 0 || index >= size())
            return nullptr;
        Base::erase(Base::begin() + index);
        T *first = begin();
        return first ? first + index : nullptr;
    }

    /// Removes the element at position; null if the array is empty or position lies
    /// outside [begin(), end()), the array then unchanged.
    T *erase(T *position) {
        T *first = begin();
        if (!first || position < first || position >= end())
            return nullptr;
        return erase(static_cast<int>(position - first));
    }
};

/// Deletes every non-null pointer of the array with delete. The array keeps its size
/// and its now dangling pointers: empty or discard it right after.
template <class Array>
void deletePtrArray(Array &array) {
    for (int i = 0; i < array.size(); ++i) {
        if (array[i])
            delete array[i];
    }
}

/// Stores start, start + step, start + 2 * step, ... into [first, last).
/// first at or above last: nothing. Integer progressions wrap around silently.
template <class T>
void fillArithmeticalSuite(T *first, T *last, const T &start, const T &step) {
    if constexpr (std::is_integral_v<T>) {
        using U = std::make_unsigned_t<T>;
        U value = static_cast<U>(start);
        for (T *p = first; p < last; ++p) {
            *p = static_cast<T>(value);
            value = static_cast<U>(value + static_cast<U>(step));
        }
    } else {
        T value = start;
        for (T *p = first; p < last; ++p) {
            *p = value;
            value = value + step;
        }
    }
}
