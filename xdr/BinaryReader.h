// qzBinaryReader: rebuilds graphs of objects from the binary object format.
//
// It creates each object through its type object, runs the transcription function
// that wrote it, and stores into pointer members once what they point to has been
// read: a member holds its final value when readObject() returns, not before.
//
// Objects of one reader share their ids until reset(). Call that between two
// graphs when objects of the first may have been destroyed: the second could
// refer to them.
//
// Ownership: holds a reference on its stream. Objects and arrays that were read
//     belong to whoever gets the root; arrays come from malloc.
// Errors: a stream that ends is false from an operation. Among the members of an
//     object readObject() makes that fatal, elsewhere it returns null. Anything
//     that is not the format is fatal, whatever the bytes are: no record is
//     trusted with a length, an id or the kind of thing that an id stands for.
//     What cannot be checked is the class behind an object pointer, and whether
//     two objects each free what they share. What had been read by then stays
//     allocated, as the reader cannot know who owns what.
// Cost: one stream call for the data of a record. Memory grows with what the
//     stream really has, not with what it claims.
#ifndef QZ_XDR_BINARYREADER_H
#define QZ_XDR_BINARYREADER_H

#include <cstddef>
#include <cstdint>
#include <deque>

#include "util/VoidPtrArray.h"
#include "xdr/BinaryReaderItem.h"
#include "xdr/BinaryTranscriber.h"

class QZ_EXPORT qzBinaryReader : public qzBinaryTranscriber {
  public:
    // On a stream that stands after the header, with what the header says of
    // the byte order of shorts and longs and of the format of floats.
    qzBinaryReader(qzStream* stream, short testShort, long testLong, const char* floatFormat);
    ~qzBinaryReader() override;

    // Forgets all objects and the members that still wait for one.
    void reset() override;

    unsigned char xdr(char* values, unsigned n) override;
    unsigned char xdr(unsigned char* values, unsigned n) override;
    unsigned char xdr(short* values, unsigned n) override;
    unsigned char xdr(unsigned short* values, unsigned n) override;
    unsigned char xdr(long* values, unsigned n) override;
    unsigned char xdr(unsigned long* values, unsigned n) override;
    unsigned char xdr(float* values, unsigned n) override;
    unsigned char xdr(double* values, unsigned n) override;
    unsigned char xdr(qzStr* values, unsigned n) override;

    // Arrays are as long as the stream says, which is at least n elements. Arrays
    // of chars have a NUL behind them.
    unsigned char xdr(char** array, unsigned n) override;
    unsigned char xdr(unsigned char** array, unsigned n) override;
    unsigned char xdr(short** array, unsigned n) override;
    unsigned char xdr(unsigned short** array, unsigned n) override;
    unsigned char xdr(long** array, unsigned n) override;
    unsigned char xdr(unsigned long** array, unsigned n) override;
    unsigned char xdr(float** array, unsigned n) override;
    unsigned char xdr(double** array, unsigned n) override;
    unsigned char xdr(char** text) override;
    unsigned char xdr(unsigned char** text) override;

    unsigned char xdr(void* member, qzXDRObj* object, qzTypeObj& type, qzXDRObj* owner,
                      void* context) override;
    unsigned char xdr(qzTypeObj& type, void* whole, void* part) override;

    // The root of the next graph, or null when the stream ends at or between the
    // bodies of the graph. Deliberate: the type is not consulted, a graph's first
    // record tells it; callers pass whatever type object they have. Pinned by
    // qzBinaryReader.RootIsWhatTheStreamSays.
    void* readObject(qzTypeObj& type) override;
    unsigned char writeObject(void* root, qzXDRObj* object) override; // fatal: it is a reader
    const char* className() const override;

    // Whether memory may be taken that a stream claims before it has shown what is
    // to go in there, and that costs address space only until then. Of what is
    // not small, one binary reader grants 64 megabytes and 64 bytes for each byte
    // that came; other transcribers grant everything.
    static bool mayClaim(qzTranscriber& t, std::size_t nbytes);

    // Pointer members that were transcribed as the last ones have moved, with the
    // block of so many bytes that they are in: those that wait are filled in at
    // their new place. Costs a step for each of them.
    void membersMoved(const char* from, unsigned nbytes, char* to);

    using qzTranscriber::xdr;
    unsigned char xdr(int** array, unsigned n) override;
    unsigned char xdr(unsigned** array, unsigned n) override;

  protected:
    // Reads so many bytes of data and converts them where they are.
    using Conversion = unsigned char (*)(qzBinaryReader& reader, char* to, unsigned nbytes);

    // Reads the next record's header and data.
    unsigned char fill();
    // The header, and how many bytes of data stand behind it.
    unsigned char readHeader(unsigned& length);
    unsigned char readData(char* to, unsigned length);
    // Takes data of the record at hand and of those that follow it.
    unsigned char readBytes(char* to, unsigned nbytes);

    static unsigned char plain(qzBinaryReader& reader, char* to, unsigned nbytes);
    // In each unit of so many bytes, byte i changes places with byte i ^ Mask: 1
    // swaps neighbours, 2 the halves of words, 3 turns words round.
    template <unsigned Unit, unsigned Mask>
    static unsigned char swapped(qzBinaryReader& reader, char* to, unsigned nbytes);
    // Fatal: no stream is written in this format. No header selects it.
    static unsigned char floatsVAX(qzBinaryReader& reader, char* to, unsigned nbytes);

    Conversion shorts;
    Conversion longs;
    Conversion floats;
    Conversion doubles;
    std::deque<qzBinaryReaderItem> work; // members that wait, used as a stack

  private:
    // What an id stands for.
    struct Known {
        enum What : unsigned char { Nothing, AType, AnObject, AnArray };
        void* address;  // null until it has been read
        unsigned bytes; // of an array in memory
        What what;
        bool wide;   // array of longs that are, or will be, wider than in the stream
        bool shared; // array that a member has which is not a string's
        bool owned;  // array that a string has
    };
    // One whose id does not lie among those that the bytes since the last reset can
    // have told of; a broken stream may have any.
    struct Stray {
        Stray* next;
        Known known;
    };

    Known& known(unsigned id) {
        const unsigned place = id - firstId;
        if (place / chunkIds >= chunks.length()) return farKnown(id);
        return static_cast<Known*>(chunks[place / chunkIds])[place % chunkIds];
    }
    Known& farKnown(unsigned id);
    void addChunk();
    Known& learn(unsigned id, Known::What what, void* address);

    unsigned char defineType();
    unsigned char readConverted(Conversion conversion, void* to, unsigned n, unsigned size);
    template <class Long> unsigned char readLongs(Long* values, unsigned n);
    template <class T> unsigned char readPointer(T** array, unsigned n);
    unsigned char readPointer(qzBinaryReaderItem item);

    // The body whose header has been read, null when the stream ends.
    unsigned char skipDefinitions();
    void* readInstance();
    void* readArray();
    Conversion conversionOf(unsigned tag) const;
    // The array's bytes and a NUL in a new block.
    char* readBlock(Conversion conversion, unsigned length, bool wide, unsigned scale);
    unsigned char readPiece(Conversion conversion, char* to, unsigned nbytes, bool wide);
    void* readObjectBody();
    // Stores into the member what its id stands for.
    void store(const qzBinaryReaderItem& item, Known& target);
    void takeArray(const qzBinaryReaderItem& item, Known& array);

    static const unsigned chunkIds = 128;
    qzVoidPtrArray chunks; // of Known, from the first id on
    unsigned firstId;
    qzWordTable strayTable;   // by id
    Stray* strays;            // all, newest first
    std::uint64_t came;       // bytes from the stream, at least
    std::uint64_t cameBefore; // the last reset
    std::uint64_t claimed;    // bytes that were granted
};

// What qzTranscriber::addTranscriber() is given for "qzBinaryWriter".
QZ_EXPORT qzTranscriber* makeBinaryReader(qzStream* stream, short testShort, long testLong,
                                          const char* floatFormat);

#endif
