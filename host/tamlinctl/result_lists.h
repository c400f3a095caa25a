// What a host does with a result list it got: every record and text in it is malloc'ed
// and belongs to the host.
#ifndef RESULT_LISTS_H
#define RESULT_LISTS_H

#include <cstdlib>
#include <vector>

#include "qrn_records.h"

namespace result_lists {

inline void freeTexts(wchar_t **texts)
{
    for (size_t i = 0; texts != nullptr && texts[i] != nullptr; ++i) {
        free(texts[i]);
    }
    free(texts);
}

inline void freeList(qrn_provider_list *list)
{
    while (list != nullptr) {
        qrn_provider_list *next = list->next;
        free(list->provider);
        freeTexts(list->claimPatterns);
        free(list);
        list = next;
    }
}

inline void freeList(qrn_fim_list *list)
{
    while (list != nullptr) {
        qrn_fim_list *next = list->next;
        free(list->name);
        free(list->description);
        free(list->version);
        free(list->extra);
        free(list->provider);
        free(list);
        list = next;
    }
}

inline void freeList(qrn_node_list *list)
{
    while (list != nullptr) {
        qrn_node_list *next = list->next;
        free(list->displayName);
        free(list->id);
        free(list->provider);
        free(list);
        list = next;
    }
}

inline void freeList(qrn_host_node_list *list)
{
    while (list != nullptr) {
        qrn_host_node_list *next = list->next;
        free(list->hostName);
        freeTexts(list->ports);
        free(list->enclosureId);
        free(list);
        list = next;
    }
}

inline void freeList(qrn_enclosure_node_list *list)
{
    while (list != nullptr) {
        qrn_enclosure_node_list *next = list->next;
        free(list->name);
        free(list->provider);
        free(list->enclosureId);
        free(list->vendor);
        free(list->product);
        free(list);
        list = next;
    }
}

template <class Record>
std::vector<Record *> elements(Record *list)
{
    std::vector<Record *> out;
    for (; list != nullptr; list = list->next) {
        out.push_back(list);
    }
    return out;
}

}  // namespace result_lists

#endif
