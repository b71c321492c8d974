// The properties of an object: a list in ascending order of tags, one of a tag.
//
// Releasing a property may call back and change the list or destroy the object.
// A property is therefore out of the list, and the list in order, before it is
// released, and the release is the last thing that is done.
#include <cassert>

#include "event/Obj.h"
#include "event/Property.h"
#include "util/VoidPtrArray.h"

unsigned qzObj::getNumberOfProperties() const { return properties ? properties->length() : 0; }

qzProperty* qzObj::getProperty(unsigned i) const {
    return properties ? static_cast<qzProperty*>((*properties)[i]) : nullptr;
}

qzProperty* qzObj::findProperty(unsigned short tag, unsigned* index) const {
    unsigned ignored;
    unsigned& middle = index ? *index : ignored;
    middle = 0;
    for (unsigned low = 0, high = getNumberOfProperties(); low < high;) {
        middle = low + (high - 1 - low) / 2;
        qzProperty* const property = getProperty(middle);
        if (property->getTag() == tag) return property;
        if (property->getTag() < tag) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    return nullptr;
}

qzProperty* qzObj::findProperty(const char* name, unsigned* index) const {
    const unsigned short tag = qzProperty::findTag(name);
    if (tag != qzProperty::noTag) return findProperty(tag, index);
    if (index) *index = 0;
    return nullptr;
}

void qzObj::setProperty(qzProperty* property) {
    assert(property);
    property->addRef();
    if (!properties) properties = new qzVoidPtrArray;
    unsigned index;
    if (qzProperty* const old = findProperty(property->getTag(), &index)) {
        (*properties)[index] = property;
        old->delRef();
        return;
    }
    if (index < properties->length() && getProperty(index)->getTag() < property->getTag()) ++index;
    properties->insert(property, index);
}

void qzObj::removeProperty(unsigned short tag) {
    unsigned index;
    qzProperty* const property = findProperty(tag, &index);
    if (!property) return;
    properties->remove(index, 1);
    property->delRef();
}

void qzObj::removeProperty(const char* name) {
    const unsigned short tag = qzProperty::findTag(name);
    if (tag != qzProperty::noTag) removeProperty(tag);
}

void qzObj::removeAllProperties() {
    if (getNumberOfProperties() == 0) return;
    // The inputs go first: what the other properties call back must not reach an
    // object that has been destroyed meanwhile.
    qzProperty* const first = findChannels(inputs);
    const qzVoidPtrArray all = properties->cut(0, properties->length());
    if (first) first->delRef();
    for (unsigned i = 0; i < all.length(); ++i)
        if (all[i] != first) static_cast<qzProperty*>(all[i])->delRef();
}
