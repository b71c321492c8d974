#include "tools/qzdump/Tracker.h"

#include <algorithm>

namespace qzdump {

std::string Tracker::add(const Record& record) {
    const std::string before = record.kind == Continuation ? "" : closeArray();
    lastIsRoot = record.kind == ObjectBody && expectedBodies == 0;
    lastIsType = record.kind == TypeDefinition;
    if (lastIsRoot) ++graphs;
    const std::string now = take(record);
    return before.empty() ? now : before;
}

std::string Tracker::finish() {
    const std::string unfinished = closeArray();
    if (!unfinished.empty()) return unfinished;
    if (expectedBodies > 0) {
        const std::uint32_t first = missing().front();
        std::string why = described(entries.at(first).sort, first);
        if (expectedBodies > 1) why += " and " + std::to_string(expectedBodies - 1) + " more";
        return "the stream ends before the body of " + why;
    }
    return lastIsType ? "the stream ends between a type definition and what it is for" : "";
}

const std::string& Tracker::typeName(std::uint32_t typeId) const {
    static const std::string unknown = "?";
    const auto found = typeNames.find(typeId);
    return found == typeNames.end() ? unknown : found->second;
}

std::vector<std::uint32_t> Tracker::missing() const {
    std::vector<std::uint32_t> ids;
    for (const auto& [id, entry] : entries)
        if (entry.expected) ids.push_back(id);
    std::sort(ids.begin(), ids.end());
    return ids;
}

std::string Tracker::take(const Record& record) {
    if (record.kind == Continuation) return continueBody(record);
    if (isArrayBody(record.kind)) return openArray(record);
    if (record.kind == ObjectBody) return openObject(record);
    if (record.kind != TypeDefinition) return pointer(record);
    typeNames[record.id] = record.name;
    return enter(record.id, Type);
}

// Bodies

std::string Tracker::closeArray() {
    if (open.lacks == 0) return "";
    const std::uint32_t lacks = open.lacks;
    open.lacks = 0;
    return described(Array, open.id) + " lacks " + std::to_string(lacks) + " of its " +
           std::to_string(open.length) + " bytes";
}

std::string Tracker::continueBody(const Record& record) {
    if (open.kind == ObjectBody) return "";
    if (open.kind == Continuation) return "a continuation, and nothing to continue";
    if (record.data.size() > open.lacks) {
        open.lacks = 0;
        return "more data than the " + std::to_string(open.length) + " bytes of " +
               described(Array, open.id);
    }
    open.lacks -= static_cast<std::uint32_t>(record.data.size());
    return "";
}

std::string Tracker::openArray(const Record& record) {
    open = {record.kind, record.id, record.length, record.length};
    const bool awaited = expectedBodies > 0;
    const std::string data = continueBody(record);
    const std::string arrival = arrive(record.id, Array);
    if (!arrival.empty()) return arrival;
    if (!awaited) return described(Array, record.id) + " where a graph should begin";
    const std::uint32_t promised = entries.at(record.id).promised;
    if (record.length < promised) {
        return described(Array, record.id) + " has " + std::to_string(record.length) +
               " bytes, and pointers promised " + std::to_string(promised);
    }
    if (record.length % elementSize(record.kind) != 0) {
        return std::to_string(record.length) + " bytes are no whole number of " +
               kindName(record.kind);
    }
    return data;
}

std::string Tracker::openObject(const Record& record) {
    open = {record.kind, record.id, 0, 0};
    const std::string arrival = arrive(record.id, Object);
    if (!arrival.empty()) return arrival;
    const auto type = entries.find(record.typeId);
    if (type == entries.end() || type->second.sort != Type) {
        return described(Object, record.id) + " has type " + std::to_string(record.typeId) +
               ", which was not defined";
    }
    return "";
}

// Pointers and parts

std::string Tracker::pointer(const Record& record) {
    if (open.kind != ObjectBody) {
        return std::string("a record of kind ") + kindName(record.kind) + " outside of an object";
    }
    switch (record.kind) {
    case NewArray:
        return expect(record.id, Array, record.length);
    case KnownArray:
        return refer(record.id, Array);
    case NewObject:
        return expect(record.id, Object, 0);
    case KnownObject:
        return refer(record.id, Object);
    case NewPart:
        return enterPart(record.id);
    case KnownPart:
        return refer(record.id, Part);
    default:
        return "";
    }
}

// Ids

std::string Tracker::enter(std::uint32_t id, Sort sort) {
    if (id == 0) return "id 0 stands for the null pointer and nothing else";
    const Entry& entry = entries.try_emplace(id, Entry{sort}).first->second;
    if (agree(entry.sort, sort)) return "";
    return described(sort, id) + " was " + described(entry.sort, id) + " before";
}

std::string Tracker::expect(std::uint32_t id, Sort sort, std::uint32_t length) {
    const std::string why = enter(id, sort);
    if (!why.empty()) return why;
    Entry& entry = entries.at(id);
    entry.promised = std::max(entry.promised, length);
    if (!entry.here && !entry.expected) {
        entry.expected = true;
        ++expectedBodies;
    }
    return "";
}

std::string Tracker::arrive(std::uint32_t id, Sort sort) {
    const std::string why = enter(id, sort);
    if (!why.empty()) return why;
    Entry& entry = entries.at(id);
    entry.here = true;
    if (entry.expected) {
        entry.expected = false;
        --expectedBodies;
    }
    return "";
}

// A known id may be 0: a null pointer.
std::string Tracker::refer(std::uint32_t id, Sort sort) const {
    if (id == 0) return "";
    const auto found = entries.find(id);
    if (found == entries.end()) return described(sort, id) + " was not heard of before";
    if (agree(found->second.sort, sort)) return "";
    return described(sort, id) + " was " + described(found->second.sort, id) + " before";
}

std::string Tracker::enterPart(std::uint32_t id) {
    const auto known = entries.find(id);
    if (known != entries.end() && known->second.here) {
        return described(Part, id) + " is new and was here before";
    }
    return arrive(id, Part);
}

// A part can be pointed to as an object, and an object be met as a part.
bool Tracker::agree(Sort one, Sort other) {
    return one == other || (one >= Object && other >= Object);
}

std::string Tracker::described(Sort sort, std::uint32_t id) {
    static const char* const names[] = {"type ", "array ", "object ", "part "};
    return names[sort] + std::to_string(id);
}

} // namespace qzdump
