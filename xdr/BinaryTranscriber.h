// qzBinaryTranscriber: what the binary writer and reader share: the data buffer
// of the record at hand, its header, the object table and the work list.
#ifndef QZ_XDR_BINARYTRANSCRIBER_H
#define QZ_XDR_BINARYTRANSCRIBER_H

#include "util/VoidPtrArray.h"
#include "xdr/BinaryOTDict.h"
#include "xdr/Transcriber.h"

class QZ_EXPORT qzBinaryTranscriber : public virtual qzTranscriber {
  public:
    ~qzBinaryTranscriber() override;

  protected:
    // Blocks of one size that are taken and given back last first. They come from
    // the heap many at a time and do not move.
    class QZ_EXPORT Blocks {
      public:
        explicit Blocks(unsigned blockSize) : blockSize(blockSize), used(0) {}
        Blocks(const Blocks&) = delete;
        Blocks& operator=(const Blocks&) = delete;
        ~Blocks() { clear(); }
        void* take();
        void giveBack();
        void clear();

      private:
        static const unsigned perChunk = 256;
        void freeChunksFrom(unsigned n);

        const unsigned blockSize; // bytes
        unsigned used;            // blocks
        qzVoidPtrArray chunks;
    };

    // The object table: as a qzBinaryOTDict, but with more chains as it fills,
    // so that the cost of an object does not grow with the graph, and with its
    // entries in few blocks. They cannot be removed one by one.
    class Table : private qzBinaryOTDict {
      public:
        Table();
        ~Table() override;
        unsigned long* lookup(unsigned long key) const;
        void set(unsigned long key, unsigned long value);
        // For a key that is not there. The value stays where it is until clear().
        unsigned long* add(unsigned long key, unsigned long value);
        // Removes every entry and goes back to the default chains; nothing if
        // there is none.
        void clear();

      private:
        struct Entry;
        void relink(unsigned chains);

        Blocks entries;
    };

    // Record kinds; 5 to 9 are the tags of primitive arrays.
    enum Kind : unsigned {
        Continuation = 0,
        NullPointer = 1,
        TypeDefinition = 2,
        NewArray = 3,
        KnownArray = 4,
        Object = 10,
        NewObject = 11,
        KnownObject = 12,
        NewPart = 13,
        KnownPart = 14,
        LastKind = 16
    };

    // The record that is being put together or taken apart. A field keeps its
    // value from the record that last had it.
    struct Record {
        unsigned kind;
        unsigned id;      // of the object, array or part
        unsigned typeId;  // of the object's type, or the type defined
        unsigned version; // of the type last defined
        unsigned length;  // of an array in the stream, bytes
        const char* name; // of the type being defined
    };

    static const unsigned bufferSize = 512;
    static const unsigned headerSize = 20; // at most: a tag, a length of 4 and fields of 12

    qzBinaryTranscriber();

    static unsigned long addressKey(const void* address) {
        return reinterpret_cast<unsigned long>(address);
    }

    char space[headerSize + bufferSize]; // a header, right before the data buffer
    char* const buffer;
    char* cursor;      // next byte to write or read
    unsigned capacity; // bufferSize
    unsigned count;    // data bytes of the current record in the buffer
    Table table;
    Record record;
    qzVoidPtrArray work; // pending items, used as a stack
    Table parts;         // ids by address of the parts of the object at hand
};

#endif
