// qzBinaryTranscriber: what the binary writer and reader share: the data buffer
// of the record at hand, its header and the object table.
#ifndef QZ_XDR_BINARYTRANSCRIBER_H
#define QZ_XDR_BINARYTRANSCRIBER_H

#include "xdr/BinaryRecord.h"
#include "xdr/Transcriber.h"

class QZ_EXPORT qzBinaryTranscriber : public virtual qzTranscriber {
  public:
    ~qzBinaryTranscriber() override;

  protected:
    // The object table, from words to words. It grows with its entries, so that
    // the cost of an object does not grow with the graph, and has them in one
    // block. They cannot be removed one by one.
    //
    // Open addressing with linear probing; slots by multiply-shift hashing
    // (Dietzfelbinger et al. 1997) with a multiplier that differs from process to
    // process, so that no stream can choose ids that collide.
    class QZ_EXPORT Table {
      public:
        Table();
        Table(const Table&) = delete;
        Table& operator=(const Table&) = delete;
        ~Table() { clear(); }

        // The key's value, null when it is absent. Values move as keys are added.
        unsigned long* lookup(unsigned long key) const {
            Slot& slot = slotFor(key);
            return slot.notKey ? &slot.value : nullptr;
        }
        // The value of the key, which is added with this one if it is absent.
        struct Found {
            unsigned long& value;
            bool isNew;
        };
        Found findOrAdd(unsigned long key, unsigned long value) {
            Slot* slot = &slotFor(key);
            if (slot->notKey) return {slot->value, false};
            if (++used > limit) slot = &grownSlotFor(key);
            slot->notKey = ~key;
            slot->value = value;
            return {slot->value, true};
        }
        void set(unsigned long key, unsigned long value) { findOrAdd(key, value).value = value; }
        void clear();

      private:
        struct Slot {
            unsigned long notKey; // the key's complement: 0, which no key has, is a free slot
            unsigned long value;
        };
        static const unsigned fewBits = 4; // of the number of slots that need no block

        // Where the key is, or where it would go.
        Slot& slotFor(unsigned long key) const {
            for (unsigned long i = key * multiplier >> shift;; i = (i + 1) & mask) {
                if (slots[i].notKey == ~key || !slots[i].notKey) return slots[i];
            }
        }
        Slot& grownSlotFor(unsigned long key);
        void useFew();

        Slot few[1 << fewBits];
        Slot* slots;
        unsigned long mask; // slots - 1
        unsigned shift;     // leaves the highest bits of a word, as many as the mask has
        unsigned long used;
        unsigned long limit; // of used
        const unsigned long multiplier;
    };

    // The record that is being put together or taken apart. A field keeps its
    // value from the record that last had it.
    struct Record {
        unsigned kind;    // of qzBinaryRecord::Kind
        unsigned id;      // of the object, array or part
        unsigned typeId;  // of the object's type, or the type defined
        unsigned version; // of the type last defined
        unsigned length;  // of an array in the stream, bytes
        const char* name; // of the type being defined
    };
    // The fields of a kind of record in the order in which they are in a stream.
    struct Fields {
        unsigned count;
        unsigned Record::*at[3];
    };
    static const Fields& fieldsOf(unsigned kind) {
        if (kind > qzBinaryRecord::LastUsedKind) noSuchRecord();
        return fieldsOfKinds[kind];
    }

    static const unsigned headerSize = 20; // at most: a tag, a length of 4 and fields of 12

    qzBinaryTranscriber();

    static unsigned long addressKey(const void* address) {
        return reinterpret_cast<unsigned long>(address);
    }

    [[noreturn]] static void noSuchRecord();
    static const Fields fieldsOfKinds[qzBinaryRecord::LastUsedKind + 1];

    char space[headerSize + qzBinaryRecord::maxData]; // a header, right before the data buffer
    char* const buffer;
    char* cursor;      // next byte to write or read
    unsigned capacity; // of the buffer
    unsigned count;    // data bytes of the current record in the buffer
    Table table;
    Record record;
    Table parts; // ids by address of the parts of the object at hand
};

#endif
