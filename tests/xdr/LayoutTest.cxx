// Slot orders: applications derive from these classes and are linked against
// newer libraries.
#include <cstring>

#include <gtest/gtest.h>

#include "event/Application.h"
#include "event/Data.h"
#include "event/Event.h"
#include "event/SelectHandler.h"
#include "event/Timer.h"
#include "regex/TextPattern.h"
#include "util/Dictionary.h"
#include "util/Set.h"
#include "util/StrArray.h"
#include "xdr/Stream.h"
#include "xdr/Transcriber.h"

namespace {

// The index of a virtual operation in its table, counted from 1, with the
// destructor's two entries as one slot. A pointer to a virtual member holds its
// offset in the table plus one.
template <class Member> unsigned slot(Member member) {
    std::size_t words[2];
    static_assert(sizeof member == sizeof words, "a pointer to member is two words");
    std::memcpy(words, &member, sizeof words);
    EXPECT_EQ(words[0] & 1, 1u) << "not virtual";
    return static_cast<unsigned>((words[0] - 1) / sizeof(void*));
}

template <class... Members> void expectSlots(unsigned first, Members... members) {
    for (unsigned actual : {slot(members)...})
        EXPECT_EQ(actual, first++);
}

template <class... Arguments> auto xdrOf() {
    using Xdr = unsigned char (qzTranscriber::*)(Arguments...);
    return static_cast<Xdr>(&qzTranscriber::xdr);
}
template <class... Pointers> void expectXdrSlots(unsigned first) {
    expectSlots(first, xdrOf<Pointers, unsigned>()...);
}

TEST(SlotOrder, Transcriber) {
    using T = qzTranscriber;
    expectSlots(2, &T::reset);
    expectXdrSlots<char*, unsigned char*, short*, unsigned short*, long*, unsigned long*, float*,
                   double*, qzStr*, char**, unsigned char**, short**, unsigned short**, long**,
                   unsigned long**, float**, double**>(3);
    expectSlots(20, xdrOf<char**>(), xdrOf<unsigned char**>(),
                xdrOf<void*, qzXDRObj*, qzTypeObj&, qzXDRObj*, void*>(),
                xdrOf<qzTypeObj&, void*, void*>(), &T::readObject, &T::writeObject, &T::className);
    expectXdrSlots<int*, unsigned*, int**, unsigned**>(27);
}

TEST(SlotOrder, SerializableBaseArrayAndStream) {
    using Xdr = unsigned char (qzXDRObj::*)(qzTranscriber&);
    using A = qzArray;
    using S = qzStream;
    expectSlots(2, &qzXDRObj::className, static_cast<Xdr>(&qzXDRObj::xdr), &qzXDRObj::getTypeObj,
                &qzXDRObj::xdrFail, &qzXDRObj::xdrSuccess, &A::getmem, &A::expand,
                &A::createElements, &A::destroyElements, &A::copyElements,
                &qzStrArray::compareElements);
    expectSlots(2, &S::hasError, &S::atEOF, &S::isReading, &S::isWriting, &S::getType, &S::getBytes,
                &S::getShorts, &S::getInts, &S::getLongs, &S::getFloats, &S::getDoubles,
                &S::putBytes, &S::putShorts, &S::putInts, &S::putLongs, &S::putFloats,
                &S::putDoubles);
}

TEST(SlotOrder, DataflowObjectsValuesAndPatterns) {
    expectSlots(2, &qzData::dataName, &qzData::deliverTo, &qzData::getValue, &qzData::getSize);
    expectSlots(7, &qzObj::connect, &qzObj::disconnect, &qzObj::subClassMustDefine);
    expectSlots(2, &qzTextPattern::findBuffer, &qzTextPattern::findEndBuffer,
                &qzTextPattern::bracketBuffer);
    expectSlots(10, &qzEvent::deliver, &qzEvent::dump, &qzEvent::getChannel);
    expectSlots(10, &qzSelectHandler::handleRead, &qzSelectHandler::handleWrite,
                &qzSelectHandler::handleException);
    expectSlots(10, &qzApplication::initialize, &qzApplication::open, &qzApplication::close);
    expectSlots(10, &qzTimer::tick);
}

TEST(SlotOrder, DictionaryAndSetHooks) {
    struct D : qzDictionary {
        static void check() {
            expectSlots(7, &D::addInternal, &D::hashKey, &D::compareKeys, &D::copyKey,
                        &D::destroyKey, &D::copyValue, &D::destroyValue, &D::createValue,
                        &D::xdrKey, &D::xdrValue);
        }
    };
    struct S : qzSet {
        static void check() {
            expectSlots(7, &S::hashKey, &S::compareKeys, &S::copyKey, &S::destroyKey, &S::xdrKey);
        }
    };
    D::check();
    S::check();
}

} // namespace
