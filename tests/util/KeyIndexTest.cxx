// Large containers of texts and words, which have an index, and classes derived
// from them, which have none, beside the same model that walks chains.
#include <gtest/gtest.h>

#include <cctype>
#include <cstdlib>

#include "support/ChainModel.h"
#include "support/RecordingTranscriber.h"
#include "util/StrSetIter.h"
#include "util/StrStrDictionaryIter.h"
#include "xdr/BinaryOTDictIter.h"

namespace {

// How a class hashes and compares, for it and its model.

struct Plain {
    static unsigned hash(const std::string& s) {
        return qzStr(s.data(), unsigned(s.size())).hash();
    }
    static bool equal(const std::string& searched, const std::string& stored) {
        return !std::strcmp(searched.c_str(), stored.c_str());
    }
};
struct AllEqual : Plain {
    static bool equal(const std::string&, const std::string&) { return true; }
};
struct CaseBlind : Plain { // in the chain that the case decides
    static bool equal(const std::string& searched, const std::string& stored) {
        return !strcasecmp(searched.c_str(), stored.c_str());
    }
};
struct Lopsided : Plain { // what starts alike and is not longer is found
    static unsigned hash(const std::string& s) { return s.empty() ? 0 : s[0]; }
    static bool equal(const std::string& searched, const std::string& stored) {
        return stored.compare(0, searched.size(), searched) == 0;
    }
};

std::string textOf(const qzStr& text) { return std::string(text.data, text.length()); }
std::string textOf(unsigned long word) { return std::to_string(word); }
template <class T> T as(const std::string& text) { return std::strtoul(text.c_str(), nullptr, 10); }
template <> qzStr as(const std::string& text) { return qzStr(text.data(), unsigned(text.size())); }

struct WordRule {
    static unsigned hash(const std::string& s) { return unsigned(as<unsigned long>(s) >> 2); }
    static bool equal(const std::string& searched, const std::string& stored) {
        return searched == stored;
    }
};

template <class Base, class Hooks> struct Hooked : Base {
    using Base::Base;
    static std::string text(const void* key) { return textOf(*static_cast<const qzStr*>(key)); }
    unsigned hashKey(const void* key) const override { return Hooks::hash(text(key)); }
    int compareKeys(const void* a, const void* b) const override {
        return !Hooks::equal(text(a), text(b));
    }
};

// One way to call them all.

template <class D, class I> struct Entries {
    using Container = D;
    using Iter = I;
    using Key = typename D::Key;
    using Value = typename D::Value;
    static const bool hasValues = true;
    static std::string value(const Iter& i) { return textOf(*i.getValue()); }
    static void add(D& d, const std::string& k, const std::string& v) {
        d.add(as<Key>(k), as<Value>(v));
    }
    static std::string valueAt(const Value* found) { return textOf(*found); }
    static std::string create(D& d, const std::string& k) { return textOf(d[as<Key>(k)]); }
    static void cut(D& d, const std::string& k) {
        Value* const value = d.cut(as<Key>(k));
        if (value) value->~Value();
        std::free(value);
    }
};
template <class D> using Texts = Entries<D, qzStrStrDictionaryIter>;
using Words = Entries<qzBinaryOTDict, qzBinaryOTDictIter>;

template <class S> struct Keys {
    using Container = S;
    using Iter = qzStrSetIter;
    using Key = qzStr;
    static const bool hasValues = false;
    static std::string value(const Iter&) { return ""; }
    static void add(S& s, const std::string& k, const std::string&) { s.add(as<qzStr>(k)); }
    static std::string valueAt(const void*) { return ""; }
    static std::string create(S& s, const std::string& k) {
        qzStrSet added(1);
        added.add(as<qzStr>(k));
        s |= added;
        return "";
    }
    static void cut(S& s, const std::string& k) {
        qzStrSet cut(1);
        cut.add(as<qzStr>(k));
        s -= cut;
    }
};

// Mostly too few to be new; a third start alike, a third have a NUL early.
std::string someKey(std::mt19937& random) {
    const std::string number = std::to_string(random() % 300 * 4);
    switch (random() % 4) {
    case 0:
        return "/all/have/a/common/start/" + number;
    case 1:
        return number + std::string("\0", 1) + char('x' + random() % 2);
    case 2:
        return number + (random() % 2 ? "Kb" : "kb");
    default:
        return number;
    }
}

enum Stream { none, good, wrongChains, keysTwice };

// A container, iterators on it, and the model.
template <class Calls, class Rule> struct Program {
    using Container = typename Calls::Container;
    using Iter = typename Calls::Iter;
    using Key = typename Calls::Key;

    Program(unsigned chains, unsigned seed) : random(seed), container(chains), model(chains) {
        model.hash = Rule::hash;
        model.equal = Rule::equal;
        model.iters.resize(std::size(iters));
    }

    // What a writer of such entries writes, newest last.
    bool read(Stream stream) {
        std::string bytes;
        const unsigned entries = 700, first = random() % 100;
        model.entries.clear();
        for (unsigned i = 0; i < entries; ++i) {
            const std::string key =
                stream == keysTwice ? someKey(random) : std::to_string(first + 4 * i);
            const bool wrong = stream == wrongChains && random() % 8 == 0;
            const unsigned chain = (wrong ? random() : Rule::hash(key)) % model.chains;
            const std::string value = Calls::hasValues ? std::to_string(i) : "";
            bytes += str(key) + (Calls::hasValues ? str(value) : "") + word(chain);
            model.push(chain, key, value);
        }
        const std::string valueSize = Calls::hasValues ? word(8) : "";
        RecordingTranscriber t(word(entries) + word(8) + valueSize + word(model.chains) + bytes);
        for (auto& iter : model.iters)
            iter.key.clear();
        return container.xdr(t);
    }
    static std::string str(const std::string& text) {
        return word(unsigned(text.size()) + 1) + (text + std::string(1, '\0')).substr(text.empty());
    }

    void step(bool grows) {
        const std::string key = textOf(as<Key>(someKey(random)));
        const std::string value = Calls::hasValues ? std::to_string(random() % 1000) : "";
        const auto* expected = model.find(key);
        const auto* const found = container.find(as<Key>(key));
        ASSERT_EQ(!found, !expected) << key;
        if (found) {
            ASSERT_EQ(Calls::valueAt(found), expected->value);
        }
        const unsigned operation = random() % 8;
        if (operation == 0) {
            const std::string created = Calls::create(container, key);
            if (!expected) model.add(key, created);
        } else if (operation == 1) {
            Calls::cut(container, key);
            model.remove(key);
        } else if (operation == 2) {
            moveSomeIterator();
        } else if (grows ? operation > 3 : operation == 3) {
            Calls::add(container, key, value);
            model.add(key, value);
        } else {
            container.remove(as<Key>(key));
            model.remove(key);
        }
        ASSERT_EQ(container.size(), model.entries.size());
    }
    void moveSomeIterator() {
        const unsigned slot = random() % std::size(iters);
        if (!model.iters[slot].key.empty()) {
            ++iters[slot];
            model.step(model.iters[slot]);
        } else if (follows) {
            iters[slot] = container;
            model.enter(model.iters[slot], model.entries.data());
        }
    }
    void expectSame() {
        std::string all;
        for (Iter i(container); i.notDone(); ++i)
            all += std::to_string(i.bucket) + ' ' + textOf(*i.getKey()) + Calls::value(i) + ' ';
        ASSERT_EQ(all, picture(model));
        for (unsigned slot = 0; slot < std::size(iters); ++slot) {
            const auto& [key, removed] = model.iters[slot];
            const bool stands = !key.empty() && !removed;
            ASSERT_EQ(iters[slot].getKey() ? textOf(*iters[slot].getKey()) : "none",
                      stands ? key : "none");
        }
    }
    void run(Stream stream) {
        SCOPED_TRACE(testing::Message() << model.chains << " chains, stream " << stream);
        follows = stream != wrongChains && stream != keysTwice; // keys tell entries apart
        for (int i = 0; i < 4000; ++i) {
            if (stream != none && i % 2000 == 0) {
                ASSERT_TRUE(read(stream));
                container.find(Key());
                ASSERT_TRUE(read(stream)); // as many entries, perhaps in the same place
            }
            ASSERT_NO_FATAL_FAILURE(step(i / 1000 % 2 == 0)) << "step " << i;
            if (i % 50 == 0) {
                ASSERT_NO_FATAL_FAILURE(expectSame()) << "step " << i;
            }
        }
    }

    std::mt19937 random;
    Container container;
    ChainModel model;
    Iter iters[4];
    bool follows = true;
};

using Streams = std::initializer_list<Stream>;
template <class Calls, class Rule> void runPrograms(unsigned chains, Streams streams) {
    for (const Stream stream : streams)
        Program<Calls, Rule>(chains, 7 + chains).run(stream);
}

template <class Rule, class Base> using HookedTexts = Texts<Hooked<Base, Rule>>;
template <class Rule, class Base> using HookedKeys = Keys<Hooked<Base, Rule>>;

TEST(KeyIndex, FindsWhatAWalkWouldFind) {
    for (const unsigned chains : {0, 3}) {
        runPrograms<Texts<qzStrStrDictionary>, Plain>(chains, {none, good, wrongChains, keysTwice});
        runPrograms<Keys<qzStrSet>, Plain>(chains, {none, good, wrongChains, keysTwice});
        runPrograms<Words, WordRule>(chains, {none});
    }
}

TEST(KeyIndex, IsNotForClassesWithHooksOfTheirOwn) {
    const Streams streams = {good, keysTwice};
    runPrograms<HookedTexts<AllEqual, qzStrStrDictionary>, AllEqual>(0, streams);
    runPrograms<HookedTexts<CaseBlind, qzStrStrDictionary>, CaseBlind>(0, streams);
    runPrograms<HookedTexts<Lopsided, qzStrStrDictionary>, Lopsided>(0, streams);
    runPrograms<HookedKeys<CaseBlind, qzStrSet>, CaseBlind>(0, streams);
}

// A member of the family that reaches into its chains.
class Tinkered : public qzTypedDictionary<Tinkered, qzStrKeys, qzStr> {
  public:
    using qzTypedDictionary::qzTypedDictionary;
    void hang(const qzStr& key) {
        char* const block = static_cast<char*>(std::malloc(2 * sizeof(qzStr)));
        copyKey(&key, block);
        createValue(block + sizeof(qzStr));
        qzDictBucket*& head = buckets[key.hash() % buckets.length()];
        head = new qzDictBucket(block, head);
        ++numItems;
    }
    qzStr dropFirst() {
        qzDictBucket* const first = buckets[0];
        const qzStr key = *reinterpret_cast<qzStr*>(first->kvmem);
        buckets[0] = first->next;
        destroyKey(first->kvmem);
        destroyValue(first->kvmem + keySize);
        delete first;
        --numItems;
        return key;
    }
};

TEST(KeyIndex, IsDroppedWhenItNoLongerFits) {
    Tinkered d(1);
    for (int i = 0; i < 400; ++i)
        d.add(i, "");
    EXPECT_TRUE(d.find("399"));
    const qzStr dropped = d.dropFirst();
    const qzStr again("as many again");
    static_cast<qzDictionary&>(d).findCreate(&again);
    EXPECT_FALSE(d.find(dropped));
    EXPECT_TRUE(d.find("as many again"));
    d.hang("by hand");
    EXPECT_TRUE(d.find("by hand"));
    d.remove("by hand");
    d.remove("as many again");
    EXPECT_EQ(d.size(), 399u);
    EXPECT_FALSE(d.find("by hand"));
    EXPECT_TRUE(d.find("1"));
}

// Slots of removed entries count until they are swept.
TEST(KeyIndex, KeepsRoomForEverWhileEntriesComeAndGo) {
    qzBinaryOTDict d(1);
    for (unsigned long i = 0; i < 30000; ++i) {
        d.add(i, i);
        if (i >= 300) d.remove(i - 300);
        ASSERT_EQ(*d.find(i), i);
    }
    EXPECT_EQ(d.size(), 300u);
}

} // namespace
