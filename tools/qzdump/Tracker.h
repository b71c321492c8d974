// Tracker: what the records of a stream say together: which body is open, what
// each id stands for and what is still to come.
#ifndef QZ_TOOLS_QZDUMP_TRACKER_H
#define QZ_TOOLS_QZDUMP_TRACKER_H

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "tools/qzdump/Format.h"

namespace qzdump {

class Tracker {
  public:
    // Takes the next record in. Why it makes no sense after those before it, or an
    // empty text; the records behind it may be taken in either way.
    std::string add(const Record& record);
    // The same for the end of the stream.
    std::string finish();

    // The open body: ObjectBody, the kind of an array body, or Continuation for
    // none; the data of the record added last belong to it.
    unsigned openKind() const { return open.kind; }
    std::uint32_t openId() const { return open.id; }
    // The number of the graph whose root the record added last is, or 0.
    unsigned rootOf() const { return lastIsRoot ? graphs : 0; }
    // "?" for an id that is not a type's.
    const std::string& typeName(std::uint32_t typeId) const;
    // Objects and arrays that were pointed to and did not come, in ascending order.
    std::vector<std::uint32_t> missing() const;

  private:
    enum Sort { Type, Array, Object, Part };
    struct Entry {
        Sort sort;
        bool here = false;
        bool expected = false;      // pointed to, body to come
        std::uint32_t promised = 0; // bytes that pointers to an array speak of
    };
    struct Body {
        unsigned kind = Continuation;
        std::uint32_t id = 0;
        std::uint32_t length = 0; // of an array, bytes
        std::uint32_t lacks = 0;  // of those, not yet here
    };

    std::string take(const Record& record);
    std::string closeArray();
    std::string continueBody(const Record& record);
    std::string openArray(const Record& record);
    std::string openObject(const Record& record);
    std::string pointer(const Record& record);
    std::string enter(std::uint32_t id, Sort sort);
    std::string expect(std::uint32_t id, Sort sort, std::uint32_t length);
    std::string arrive(std::uint32_t id, Sort sort);
    std::string refer(std::uint32_t id, Sort sort) const;
    std::string enterPart(std::uint32_t id);

    static bool agree(Sort one, Sort other);
    static std::string described(Sort sort, std::uint32_t id);

    std::unordered_map<std::uint32_t, Entry> entries;
    std::unordered_map<std::uint32_t, std::string> typeNames;
    Body open;
    std::uint32_t expectedBodies = 0;
    unsigned graphs = 0;
    bool lastIsRoot = false;
    bool lastIsType = false;
};

} // namespace qzdump

#endif
