// Where virtual operations stand in the tables of their classes. Hosts that were compiled against one version
// of the library call into another by these places.
#pragma once

#include <cstddef>
#include <cstring>

/// The index of a virtual operation in the table of its class, -1 for one that is not virtual. A member
/// pointer is two words here: where in the table, then what to add to `this`. Which of the two has the bit
/// that says "virtual" depends on the processor. A virtual destructor takes two places.
template <class Member>
long SlotOf(Member member) {
    struct {
        std::ptrdiff_t place, adjustment;
    } words;
    static_assert(sizeof(member) == sizeof(words));
    std::memcpy(&words, &member, sizeof(words));
    if (!((words.place | words.adjustment) & 1)) return -1;
    return static_cast<long>((words.place & ~std::ptrdiff_t{1}) / std::ptrdiff_t{sizeof(void*)});
}
