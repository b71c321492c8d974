// qzLinkItem: the base of objects that a qzIndexableList holds.
//
// The links are in the object itself, so an item is in one list at a time.
#ifndef QZ_UTIL_LINKITEM_H
#define QZ_UTIL_LINKITEM_H

#include "util/Export.h"

class QZ_EXPORT qzLinkItem {
  public:
    qzLinkItem() = default;
    // The links belong to the place in the list, not to the value: a copy is in
    // no list, and an item that is assigned to stays where it is.
    qzLinkItem(const qzLinkItem&) {}
    // NOLINTNEXTLINE(bugprone-unhandled-self-assignment)
    qzLinkItem& operator=(const qzLinkItem&) { return *this; }

    // Public for reading; change them only through the list's operations.
    qzLinkItem* next = nullptr;
    qzLinkItem* prev = nullptr;
};

#endif
