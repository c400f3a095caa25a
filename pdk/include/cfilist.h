#ifndef CFILIST_H
#define CFILIST_H

#include <cstdint>

#include "cfiexport.h"

namespace qorin_pdk_4_4 {

// Collects one of the host's singly linked result lists. The list reaches the host only
// when the factory goes out of scope, so every list operation makes its factory in a scope
// of its own. ListRecord needs a `next` field; a derived factory turns an Item into a
// record with the framework's builder.
template <class ListRecord, class Item>
class QORIN_PDK_API CFiList {
public:
    CFiList(ListRecord **out, int32_t *count) : m_head(nullptr), m_tail(nullptr), m_out(out), m_count(count) {}

    // A new record, or null to drop the item.
    virtual ListRecord *buildNode(Item &item) = 0;

    virtual ~CFiList()
    {
        if (m_out != nullptr) {
            *m_out = m_head;
        }
    }

    // Appends the item's record and counts it. Without an out pointer the item is only
    // counted: a record nobody receives would leak, as the host has no way to free it.
    virtual void add(Item &item)
    {
        if (m_out == nullptr) {
            if (m_count != nullptr) {
                ++*m_count;
            }
            return;
        }
        ListRecord *record = buildNode(item);
        if (record == nullptr) {
            return;
        }
        record->next = nullptr;
        if (m_tail == nullptr) {
            m_head = record;
        } else {
            m_tail->next = record;
        }
        m_tail = record;
        if (m_count != nullptr) {
            ++*m_count;
        }
    }

    CFiList(const CFiList &) = delete;
    CFiList &operator=(const CFiList &) = delete;

protected:
    ListRecord *m_head;
    ListRecord *m_tail;
    ListRecord **m_out;
    int32_t *m_count;
};

}  // namespace qorin_pdk_4_4

#endif
