// A doubly linked list of copied items.
#include "common/List.h"

#include "common/MemMgr.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

ListHead *ListCreate() {
    return static_cast<ListHead *>(GetMem(sizeof(ListHead)));
}

void ListPushLink(ListHead *list, ListLink *link) {
    if (!list || !link) return;
    link->next = nullptr;
    link->previous = list->tail;
    (list->tail ? list->tail->next : list->head) = link;
    list->tail = link;
    list->count++;
    list->total += link->size;
}

void ListPopLink(ListHead *list, ListLink *link) {
    if (!list || !link) return;
    if (list->walk == link) list->walk = list->flBackward ? link->previous : link->next;
    (link->previous ? link->previous->next : list->head) = link->next;
    (link->next ? link->next->previous : list->tail) = link->previous;
    link->previous = link->next = nullptr;
    list->count--;
    list->total -= link->size;
}

void *ListPushItem(ListHead *list, const void *contents, int size) {
    if (!list || size < 1) return nullptr;
    auto link = static_cast<ListLink *>(GetMem(sizeof(ListLink)));
    void *item = link ? GetMem(static_cast<size_t>(size)) : nullptr;
    if (!item) {
        PutMem(link);
        return nullptr;
    }
    if (contents) memcpy(item, contents, static_cast<size_t>(size));
    link->item = item;
    link->size = size;
    ListPushLink(list, link);
    return item;
}

static ListLink *ListFindLink(ListHead *list, const void *item) {
    ListLink *link = list ? list->head : nullptr;
    while (link && link->item != item) link = link->next;
    return link;
}

// Releases the link and, with the flag, the item.
static void *ListTakeItem(ListHead *list, ListLink *link, int flFree) {
    if (!link) return nullptr;
    void *item = link->item;
    ListPopLink(list, link);
    PutMem(link);
    if (!flFree) return item;
    PutMem(item);
    return nullptr;
}

void *ListPopItem(ListHead *list, void *item, int flFree) {
    return item ? ListTakeItem(list, ListFindLink(list, item), flFree) : ListPopFirstItem(list, flFree);
}

void *ListPopFirstItem(ListHead *list, int flFree) {
    return list ? ListTakeItem(list, list->head, flFree) : nullptr;
}

void *ListPopLastItem(ListHead *list, int flFree) {
    return list ? ListTakeItem(list, list->tail, flFree) : nullptr;
}

void *ListFindItemN(ListHead *list, int n) {
    if (!list || n < 1) return nullptr;
    ListLink *link = list->head;
    while (link && --n > 0) link = link->next;
    return link ? link->item : nullptr;
}

int ListGetItemPos(ListHead *list, const void *item) {
    int position = 1;
    if (!list || !item) return 0;
    for (ListLink *link = list->head; link; link = link->next, position++)
        if (link->item == item) return position;
    return 0;
}

void ListMoveItem(void *item, ListHead *source, ListHead *target) {
    ListLink *link = ListFindLink(source, item);
    if (!link || !target) return;
    ListPopLink(source, link);
    ListPushLink(target, link);
}

// The number of items is taken first: a list copied onto itself grows while it is read.
void ListCopy(ListHead *source, ListHead *target) {
    if (!source || !target) return;
    ListLink *link = source->head;
    for (int left = source->count; left > 0; left--, link = link->next)
        ListPushItem(target, link->item, link->size);
}

void ListDelAllItems(ListHead *list) {
    while (list && list->head) ListPopFirstItem(list, 1);
}

void ListDel(ListHead *list) {
    ListDelAllItems(list);
    PutMem(list);
}

void *ListWalk(ListHead *list, int flGoOn) {
    if (!list) return nullptr;
    if (!flGoOn) list->walk = list->head;
    list->flBackward = 0;
    ListLink *link = list->walk;
    if (!link) return nullptr;
    list->walk = link->next;
    return link->item;
}

void *ListWalkBackward(ListHead *list, int flGoOn) {
    if (!list) return nullptr;
    if (!flGoOn) list->walk = list->tail;
    list->flBackward = 1;
    ListLink *link = list->walk;
    if (!link) return nullptr;
    list->walk = link->previous;
    return link->item;
}

void ListDump(ListHead *list) {
    int position = 1;
    for (ListLink *link = list ? list->head : nullptr; link; link = link->next, position++) {
        long word = 0; // an item may be shorter than a word
        memcpy(&word, link->item, std::min(sizeof(word), static_cast<size_t>(link->size)));
        printf("%3i) %li\n", position, word);
    }
}
