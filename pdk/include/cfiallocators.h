#ifndef CFIALLOCATORS_H
#define CFIALLOCATORS_H

#include <type_traits>

namespace qorin_pdk_4_4 {

// Allocator policy of the process-wide singletons: a smart pointer made with create=true
// owns a fresh object. Abstract or non-default-constructible classes yield null; their
// accessor creates the concrete object itself.
template <class T>
struct CFiContextSingletonAllocator {
    static T *allocate()
    {
        if constexpr (std::is_default_constructible_v<T> && !std::is_abstract_v<T>) {
            return new T;
        } else {
            return nullptr;
        }
    }
    static void deallocate(T *object) { delete object; }
};

// Allocator policy of objects created elsewhere (sessions, messages, private data).
template <class T>
struct CFiNullAllocator {
    static T *allocate() { return nullptr; }
    static void deallocate(T *object) { delete object; }
};

}  // namespace qorin_pdk_4_4

#endif
