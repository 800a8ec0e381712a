// A doubly linked list of copied items.
//
// An item is a managed allocation that the list owns; its address is its handle, valid until it is popped
// with the flag or the list goes. Pushing and popping at the ends take the same time whatever the length,
// everything that looks for an item or a position walks. Null lists are accepted everywhere and yield 0.
#pragma once

#include <cstddef>

struct ListLink {
    ListLink *previous;
    ListLink *next;
    void *item; // managed, owned by the list
    int size;   // of the item in bytes, above 0
};

struct ListHead {
    ListLink *head; // null if empty
    ListLink *tail;
    ListLink *walk; // next link for ListWalk and ListWalkBackward; moves on when that link is popped
    int count;
    int total;      // sum of the items' sizes in bytes
    int flBackward; // private: the walk's direction
};

// Null when memory is exhausted. Owns: the list; ListDel releases it.
[[nodiscard]] ListHead *ListCreate();
// Appends a copy of size bytes, or zeros for null contents; the item, or null (size below 1, no memory).
void *ListPushItem(ListHead *list, const void *contents, int size);
// Takes the item (null: the first) out of the list. With flFree it is released and the result is null;
// otherwise the result is the item. Null if it is not there. Owns: the result.
void *ListPopItem(ListHead *list, void *item, int flFree);
void *ListPopFirstItem(ListHead *list, int flFree);
void *ListPopLastItem(ListHead *list, int flFree);
// Positions count from 1; 0 or null for what is not there.
void *ListFindItemN(ListHead *list, int n);
int ListGetItemPos(ListHead *list, const void *item);
// Moves the item itself, not a copy, to the target's tail; nothing if it is not in the source.
void ListMoveItem(void *item, ListHead *source, ListHead *target);
// Appends copies of all items; a list may be copied onto itself.
void ListCopy(ListHead *source, ListHead *target);
void ListDelAllItems(ListHead *list);
void ListDel(ListHead *list);
// The next item; flGoOn 0 starts over; null at the end. The item just given may be popped. A list has one
// walk position, so walks of one list do not nest.
void *ListWalk(ListHead *list, int flGoOn);
void *ListWalkBackward(ListHead *list, int flGoOn);
// Prints the position and the first word of each item on standard output.
void ListDump(ListHead *list);
// The linking alone: count, total and walk stay right, link and item are not touched otherwise.
void ListPushLink(ListHead *list, ListLink *link);
void ListPopLink(ListHead *list, ListLink *link);
