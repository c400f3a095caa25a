#ifndef HPEVA_SINGLE_NODE_H
#define HPEVA_SINGLE_NODE_H

#include <cstdint>

// The single-node form of the list entries: with no list, a count of 0 and one node given,
// the call works on a list of that one node, which is the entry's own argument slot and so
// lives only for the call. Any other combination goes forward as it came.
template <class Node>
void singleNodeForm(Node *&one, Node **&list, int32_t &count)
{
    if (list == nullptr && count == 0 && one != nullptr) {
        list = &one;
        count = 1;
    }
}

#endif
