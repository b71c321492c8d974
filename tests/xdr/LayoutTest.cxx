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

template <class... Arguments> unsigned xdrSlot() {
    using Xdr = unsigned char (qzTranscriber::*)(Arguments...);
    return slot(static_cast<Xdr>(&qzTranscriber::xdr));
}

void expectInOrder(unsigned first, std::initializer_list<unsigned> slots) {
    for (unsigned actual : slots)
        EXPECT_EQ(actual, first++);
}

TEST(SlotOrder, Transcriber) {
    using T = qzTranscriber;
    using C = unsigned char;
    using N = unsigned;
    expectInOrder(2, {slot(&T::reset),
                      xdrSlot<char*, N>(),
                      xdrSlot<C*, N>(),
                      xdrSlot<short*, N>(),
                      xdrSlot<unsigned short*, N>(),
                      xdrSlot<long*, N>(),
                      xdrSlot<unsigned long*, N>(),
                      xdrSlot<float*, N>(),
                      xdrSlot<double*, N>(),
                      xdrSlot<qzStr*, N>(),
                      xdrSlot<char**, N>(),
                      xdrSlot<C**, N>(),
                      xdrSlot<short**, N>(),
                      xdrSlot<unsigned short**, N>(),
                      xdrSlot<long**, N>(),
                      xdrSlot<unsigned long**, N>(),
                      xdrSlot<float**, N>(),
                      xdrSlot<double**, N>(),
                      xdrSlot<char**>(),
                      xdrSlot<C**>(),
                      xdrSlot<void*, qzXDRObj*, qzTypeObj&, qzXDRObj*, void*>(),
                      xdrSlot<qzTypeObj&, void*, void*>(),
                      slot(&T::readObject),
                      slot(&T::writeObject),
                      slot(&T::className),
                      xdrSlot<int*, N>(),
                      xdrSlot<N*, N>(),
                      xdrSlot<int**, N>(),
                      xdrSlot<N**, N>()});
}

TEST(SlotOrder, SerializableBaseArrayAndStream) {
    using Xdr = unsigned char (qzXDRObj::*)(qzTranscriber&);
    using A = qzArray;
    using S = qzStream;
    expectInOrder(2, {slot(&qzXDRObj::className), slot(static_cast<Xdr>(&qzXDRObj::xdr)),
                      slot(&qzXDRObj::getTypeObj), slot(&qzXDRObj::xdrFail),
                      slot(&qzXDRObj::xdrSuccess), slot(&A::getmem), slot(&A::expand),
                      slot(&A::createElements), slot(&A::destroyElements), slot(&A::copyElements),
                      slot(&qzStrArray::compareElements)});
    expectInOrder(2, {slot(&S::hasError), slot(&S::atEOF), slot(&S::isReading), slot(&S::isWriting),
                      slot(&S::getType), slot(&S::getBytes), slot(&S::getShorts), slot(&S::getInts),
                      slot(&S::getLongs), slot(&S::getFloats), slot(&S::getDoubles),
                      slot(&S::putBytes), slot(&S::putShorts), slot(&S::putInts),
                      slot(&S::putLongs), slot(&S::putFloats), slot(&S::putDoubles)});
}

TEST(SlotOrder, DataflowObjectsValuesAndPatterns) {
    expectInOrder(2, {slot(&qzData::dataName), slot(&qzData::deliverTo), slot(&qzData::getValue),
                      slot(&qzData::getSize)});
    expectInOrder(
        7, {slot(&qzObj::connect), slot(&qzObj::disconnect), slot(&qzObj::subClassMustDefine)});
    expectInOrder(2, {slot(&qzTextPattern::findBuffer), slot(&qzTextPattern::findEndBuffer),
                      slot(&qzTextPattern::bracketBuffer)});
    expectInOrder(10, {slot(&qzEvent::deliver), slot(&qzEvent::dump), slot(&qzEvent::getChannel)});
    expectInOrder(10, {slot(&qzSelectHandler::handleRead), slot(&qzSelectHandler::handleWrite),
                       slot(&qzSelectHandler::handleException)});
    expectInOrder(10, {slot(&qzApplication::initialize), slot(&qzApplication::open),
                       slot(&qzApplication::close)});
    expectInOrder(10, {slot(&qzTimer::tick)});
}

TEST(SlotOrder, DictionaryAndSetHooks) {
    struct D : qzDictionary {
        static void check() {
            expectInOrder(7, {slot(&D::addInternal), slot(&D::hashKey), slot(&D::compareKeys),
                              slot(&D::copyKey), slot(&D::destroyKey), slot(&D::copyValue),
                              slot(&D::destroyValue), slot(&D::createValue), slot(&D::xdrKey),
                              slot(&D::xdrValue)});
        }
    };
    struct S : qzSet {
        static void check() {
            expectInOrder(7, {slot(&S::hashKey), slot(&S::compareKeys), slot(&S::copyKey),
                              slot(&S::destroyKey), slot(&S::xdrKey)});
        }
    };
    D::check();
    S::check();
}

} // namespace
