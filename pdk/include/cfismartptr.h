#ifndef CFISMARTPTR_H
#define CFISMARTPTR_H

#include <type_traits>

#include <ace/Guard_T.h>

#include "cfiallocators.h"
#include "cfirefcount.h"

namespace qorin_pdk_4_4 {

// Reference-counting pointer to a class with CFiRefCount as a virtual base. The count is
// changed under the target's own mutex; the guard is released before a deletion because
// the mutex lives inside the target. The allocator policy only decides what create=true
// makes; pointers that differ only in policy convert freely.
template <class T, class A = CFiNullAllocator<T>>
class CFiSmartPtr {
public:
    explicit CFiSmartPtr(bool create = false) : m_ptr(nullptr)
    {
        if (create) {
            attach(A::allocate());
        }
    }
    CFiSmartPtr(T *object) : m_ptr(nullptr) { attach(object); }
    CFiSmartPtr(const CFiSmartPtr &other) : m_ptr(nullptr) { attach(other.m_ptr); }
    template <class U, class B, class = std::enable_if_t<std::is_convertible_v<U *, T *>>>
    CFiSmartPtr(const CFiSmartPtr<U, B> &other) : m_ptr(nullptr)
    {
        attach(other.get());
    }
    ~CFiSmartPtr() { detach(); }

    CFiSmartPtr &operator=(const CFiSmartPtr &other)
    {
        if (this != &other && other.m_ptr != m_ptr) {
            attach(other.m_ptr);
        }
        return *this;
    }
    template <class U, class B, class = std::enable_if_t<std::is_convertible_v<U *, T *>>>
    CFiSmartPtr &operator=(const CFiSmartPtr<U, B> &other)
    {
        if (other.get() != m_ptr) {
            attach(other.get());
        }
        return *this;
    }
    CFiSmartPtr &operator=(T *object)
    {
        if (object != m_ptr) {
            attach(object);
        }
        return *this;
    }

    // Takes a reference to object and drops what was held before. The new reference is
    // taken first so that dropping the old object can never destroy the new one. -1 if the
    // count's mutex couldn't be taken; the pointer is then left as it is.
    int attach(T *object)
    {
        if (object != nullptr) {
            CFiRefCount *rc = object;
            ACE_Guard<ACE_Thread_Mutex> guard(rc->refCountMutex());
            if (!guard.locked()) {
                return -1;
            }
            rc->addRef();
        }
        if (m_ptr != nullptr) {
            detach();
        }
        m_ptr = object;
        return 0;
    }

    // Releases the reference; the last one deletes the object. -1 for an empty pointer.
    int detach()
    {
        if (m_ptr == nullptr) {
            return -1;
        }
        T *object = m_ptr;
        m_ptr = nullptr;
        CFiRefCount *rc = object;
        bool last = false;
        {
            ACE_Guard<ACE_Thread_Mutex> guard(rc->refCountMutex());
            if (!guard.locked()) {
                return -1;
            }
            if (rc->releaseRef() == 0) {
                // The count reads 1 again so that a stray reader during deletion never sees 0.
                rc->addRef();
                last = true;
            }
        }
        if (last) {
            A::deallocate(object);
        }
        return 0;
    }

    T *get() const { return m_ptr; }
    T *operator->() const { return m_ptr; }
    T &operator*() const { return *m_ptr; }
    bool isNull() const { return m_ptr == nullptr; }
    explicit operator bool() const { return m_ptr != nullptr; }

private:
    T *m_ptr;
};

}  // namespace qorin_pdk_4_4

#endif
