// Counter: what has been counted under one NAME: lines, and occurrences by key.
//
// Inputs "matches" and "keys", as a Matcher sends them. Can be transcribed; see
// State.h. A key never holds a newline: one in it stands for a NUL (see Lines.h).
//
// Units: counts are doubles: exact to 9e15, and 8 bytes in a stream, where an
//     integer has 4.
// Cost: memory for each different key.
#ifndef QZ_TOOLS_QZWATCH_COUNTER_H
#define QZ_TOOLS_QZWATCH_COUNTER_H

#include <memory>

#include "event/Obj.h"
#include "util/DoubleArray.h"
#include "util/StrArray.h"
#include "util/TypedDictionary.h"

namespace qzwatch {

// Keys of a log begin alike, and strings are hashed by their beginnings.
struct WholeText {
    using Key = qzStr;
    static unsigned hash(const qzStr& key);
    static int compare(const qzStr& a, const qzStr& b) { return a == b ? 0 : 1; }
};

class KeyCounts : public qzTypedDictionary<KeyCounts, WholeText, double> {
  public:
    using qzTypedDictionary::qzTypedDictionary;
    ~KeyCounts() override;
};
using KeyCountsIter = qzTypedDictIter<KeyCounts>;

class Counter : public qzObj {
  public:
    explicit Counter(const qzStr& name);
    ~Counter() override;

    const qzStr& getName() const { return name; }
    double getLines() const { return lines; }
    KeyCounts& getKeys() { return *keys; }

    // Transcription
    explicit Counter(qzTypeObj& type); // for a reader
    const char* className() const override { return "Counter"; }
    unsigned char xdr(qzTranscriber& t) override;
    qzTypeObj& getTypeObj() const override;
    static void* newInstance(qzTypeObj& type);
    static void deleteInstance(void* object);
    static unsigned char xdr(void* object, qzTranscriber& t);

    // Between the counter and what a stream has of it: its keys as arrays, how
    // many counters follow, and a sum over everything. unpack() is false when
    // these do not fit together.
    void pack(int following);
    bool unpack();
    int getFollowing() const { return followingPacked; }
    // The one that a reader made last: a stream may name another class for what
    // should be a Counter.
    static Counter* lastRead;

  private:
    void addInputs();
    static void addMatches(Counter* counter, int n) { counter->lines += n; }
    static void addKeys(Counter* counter, qzStr found);
    void add(const qzStr& key, double n);
    int sum() const;

    qzStr name;
    double lines = 0;
    unsigned chains = 1024; // of keys
    std::unique_ptr<KeyCounts> keys;

    int followingPacked = 0; // in a stream only, as the rest
    int sumPacked = 0;
    qzStrArray keysPacked;
    qzDoubleArray countsPacked;
};

extern qzTypeObj Counter_type;

} // namespace qzwatch

#endif
