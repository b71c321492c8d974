// qzConverter: the input channel between an output and an input of another type.
//
// Its own type is the one that it converts from. Its function gets the
// downstream channel as the object and the value in that type, converts it, and
// calls the downstream channel's function with that channel's object:
//
//     void intToDouble(qzInputChannel* downstream, int value);
//     new qzConverter(qzDT_int, qzDT_double, reinterpret_cast<void (*)()>(intToDouble));
//
// Constructing one makes a prototype and registers it. Connections get copies.
// A conversion is one step: no chain of two is ever tried.
//
// Ownership: a prototype is its maker's and stays registered while it lives; a
//     copy belongs to the connection and holds a reference on its downstream.
// Trusted: nobody counts references on a prototype.
// Cost: findConverter() walks the registry.
#ifndef QZ_EVENT_CONVERTER_H
#define QZ_EVENT_CONVERTER_H

#include "event/InputChannel.h"

class QZ_EXPORT qzConverter : public qzInputChannel {
  public:
    // Goes to the head of the registry, so that a program's own conversion comes
    // before the standard one of the same pair.
    qzConverter(unsigned short from, unsigned short to, void (*function)());
    qzConverter(const qzConverter&) = delete;
    qzConverter& operator=(const qzConverter&) = delete;
    ~qzConverter();

    // A new converter for the pair, to be spliced; null when there is none.
    static qzConverter* findConverter(unsigned short from, unsigned short to);
    // Puts this in front of the channel: takes a reference on it and its coalesce
    // flag.
    void splice(qzInputChannel* downstream);
    // For start-up: registers the conversions of the library.
    static void createStandardConverters();

    unsigned short getTargetType() const { return targetType; }

  protected:
    unsigned short targetType;
    qzConverter* next; // in the registry

  private:
    explicit qzConverter(const qzConverter* prototype);
};

extern QZ_EXPORT qzConverter* qz_theConverters; // head of the registry

#endif
