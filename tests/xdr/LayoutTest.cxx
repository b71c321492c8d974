// Slot orders: applications derive from these classes and are linked against
// newer libraries.
#include <cstring>
#include <string>

#include <gtest/gtest.h>

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

template <class Function> unsigned transcriberSlot(Function qzTranscriber::*member) {
    return slot(member);
}

TEST(SlotOrder, Transcriber) {
    using T = qzTranscriber;
    using B = unsigned char;
    EXPECT_EQ(slot(&T::reset), 2u);
    EXPECT_EQ(transcriberSlot<B(char*, unsigned)>(&T::xdr), 3u);
    EXPECT_EQ(transcriberSlot<B(unsigned char*, unsigned)>(&T::xdr), 4u);
    EXPECT_EQ(transcriberSlot<B(short*, unsigned)>(&T::xdr), 5u);
    EXPECT_EQ(transcriberSlot<B(unsigned short*, unsigned)>(&T::xdr), 6u);
    EXPECT_EQ(transcriberSlot<B(long*, unsigned)>(&T::xdr), 7u);
    EXPECT_EQ(transcriberSlot<B(unsigned long*, unsigned)>(&T::xdr), 8u);
    EXPECT_EQ(transcriberSlot<B(float*, unsigned)>(&T::xdr), 9u);
    EXPECT_EQ(transcriberSlot<B(double*, unsigned)>(&T::xdr), 10u);
    EXPECT_EQ(transcriberSlot<B(qzStr*, unsigned)>(&T::xdr), 11u);
    EXPECT_EQ(transcriberSlot<B(char**, unsigned)>(&T::xdr), 12u);
    EXPECT_EQ(transcriberSlot<B(unsigned char**, unsigned)>(&T::xdr), 13u);
    EXPECT_EQ(transcriberSlot<B(short**, unsigned)>(&T::xdr), 14u);
    EXPECT_EQ(transcriberSlot<B(unsigned short**, unsigned)>(&T::xdr), 15u);
    EXPECT_EQ(transcriberSlot<B(long**, unsigned)>(&T::xdr), 16u);
    EXPECT_EQ(transcriberSlot<B(unsigned long**, unsigned)>(&T::xdr), 17u);
    EXPECT_EQ(transcriberSlot<B(float**, unsigned)>(&T::xdr), 18u);
    EXPECT_EQ(transcriberSlot<B(double**, unsigned)>(&T::xdr), 19u);
    EXPECT_EQ(transcriberSlot<B(char**)>(&T::xdr), 20u);
    EXPECT_EQ(transcriberSlot<B(unsigned char**)>(&T::xdr), 21u);
    EXPECT_EQ((transcriberSlot<B(void*, qzXDRObj*, qzTypeObj&, qzXDRObj*, void*)>(&T::xdr)), 22u);
    EXPECT_EQ((transcriberSlot<B(qzTypeObj&, void*, void*)>(&T::xdr)), 23u);
    EXPECT_EQ(slot(&T::readObject), 24u);
    EXPECT_EQ(slot(&T::writeObject), 25u);
    EXPECT_EQ(slot(&T::className), 26u);
    EXPECT_EQ(transcriberSlot<B(int*, unsigned)>(&T::xdr), 27u);
    EXPECT_EQ(transcriberSlot<B(unsigned*, unsigned)>(&T::xdr), 28u);
    EXPECT_EQ(transcriberSlot<B(int**, unsigned)>(&T::xdr), 29u);
    EXPECT_EQ(transcriberSlot<B(unsigned**, unsigned)>(&T::xdr), 30u);
}

TEST(SlotOrder, SerializableBaseAndArray) {
    EXPECT_EQ(slot(&qzXDRObj::className), 2u);
    EXPECT_EQ(slot(static_cast<unsigned char (qzXDRObj::*)(qzTranscriber&)>(&qzXDRObj::xdr)), 3u);
    EXPECT_EQ(slot(&qzXDRObj::getTypeObj), 4u);
    EXPECT_EQ(slot(&qzXDRObj::xdrFail), 5u);
    EXPECT_EQ(slot(&qzXDRObj::xdrSuccess), 6u);
    EXPECT_EQ(slot(&qzArray::getmem), 7u);
    EXPECT_EQ(slot(&qzArray::expand), 8u);
    EXPECT_EQ(slot(&qzArray::createElements), 9u);
    EXPECT_EQ(slot(&qzArray::destroyElements), 10u);
    EXPECT_EQ(slot(&qzArray::copyElements), 11u);
    EXPECT_EQ(slot(&qzArray::compareElements), 12u);
    EXPECT_EQ(slot(&qzStrArray::compareElements), 12u);
}

TEST(SlotOrder, DictionaryAndSetHooks) {
    struct D : qzDictionary {
        static void check() {
            EXPECT_EQ(slot(&D::addInternal), 7u);
            EXPECT_EQ(slot(&D::hashKey), 8u);
            EXPECT_EQ(slot(&D::compareKeys), 9u);
            EXPECT_EQ(slot(&D::copyKey), 10u);
            EXPECT_EQ(slot(&D::destroyKey), 11u);
            EXPECT_EQ(slot(&D::copyValue), 12u);
            EXPECT_EQ(slot(&D::destroyValue), 13u);
            EXPECT_EQ(slot(&D::createValue), 14u);
            EXPECT_EQ(slot(&D::xdrKey), 15u);
            EXPECT_EQ(slot(&D::xdrValue), 16u);
        }
    };
    struct S : qzSet {
        static void check() {
            EXPECT_EQ(slot(&S::hashKey), 7u);
            EXPECT_EQ(slot(&S::compareKeys), 8u);
            EXPECT_EQ(slot(&S::copyKey), 9u);
            EXPECT_EQ(slot(&S::destroyKey), 10u);
            EXPECT_EQ(slot(&S::xdrKey), 11u);
        }
    };
    D::check();
    S::check();
}

TEST(SlotOrder, Stream) {
    EXPECT_EQ(slot(&qzStream::hasError), 2u);
    EXPECT_EQ(slot(&qzStream::atEOF), 3u);
    EXPECT_EQ(slot(&qzStream::getType), 6u);
    EXPECT_EQ(slot(&qzStream::getBytes), 7u);
    EXPECT_EQ(slot(&qzStream::getDoubles), 12u);
    EXPECT_EQ(slot(&qzStream::putBytes), 13u);
    EXPECT_EQ(slot(&qzStream::putDoubles), 18u);
}

} // namespace
