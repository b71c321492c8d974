// What the tests of dictionaries and sets share: records of the keys and values
// that are alive, and a naive model of chains and of the iterators on them.
#ifndef QZ_TESTS_SUPPORT_COUNTINGENTRY_H
#define QZ_TESTS_SUPPORT_COUNTINGENTRY_H

#include <gtest/gtest.h>

#include <list>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <vector>

// A key or value that counts how many there are.
struct CountingEntry {
    CountingEntry(int id = 0) : id(id) { ++alive; }
    CountingEntry(const CountingEntry& other) : CountingEntry(other.id) {}
    CountingEntry& operator=(const CountingEntry&) = delete;
    ~CountingEntry() { --alive; }

    static inline int alive = 0;
    const int id;
};

// For hooks on raw blocks: the addresses at which something is alive.
struct LiveAddresses : std::set<const void*> {
    ~LiveAddresses() { EXPECT_TRUE(empty()) << "never destroyed"; }
    void construct(const void* at) { EXPECT_TRUE(insert(at).second) << "constructed twice"; }
    void destroy(const void* at) { EXPECT_EQ(erase(at), 1u) << "destroyed, but not alive"; }
};

// Chains as lists, newest entry first. A set is a model without values.
struct ChainModel {
    struct Entry {
        std::string key, value;
    };
    struct Iter {
        bool attached = false, removed = false;
        unsigned chain = 0;
        std::list<Entry>::iterator at;
    };

    explicit ChainModel(unsigned n) : chains(n ? n : 31) {}

    // The key's whole words, least significant byte first, under XOR.
    std::list<Entry>& chainOf(const std::string& key) {
        unsigned hash = 0;
        for (unsigned i = 0; i < key.size() / 4 * 4; ++i)
            hash ^= unsigned(static_cast<unsigned char>(key[i])) << i % 4 * 8;
        return chains[hash % chains.size()];
    }
    Entry* find(const std::string& key) {
        for (Entry& entry : chainOf(key))
            if (entry.key == key) return &entry;
        return nullptr;
    }
    void add(const std::string& key, const std::string& value = "") {
        if (Entry* entry = find(key)) {
            entry->value = value;
        } else {
            chainOf(key).push_front({key, value});
        }
    }
    void remove(const std::string& key) {
        Entry* const entry = find(key);
        for (Iter& iter : iters) {
            if (!entry || !iter.attached || &*iter.at != entry) continue;
            advance(iter);
            iter.removed = true;
        }
        chainOf(key).remove_if([entry](const Entry& other) { return &other == entry; });
    }
    std::vector<Entry> entries() const {
        std::vector<Entry> all;
        for (const auto& chain : chains)
            all.insert(all.end(), chain.begin(), chain.end());
        return all;
    }

    void attach(Iter& iter) { enter(iter = {true, false, 0, chains[0].begin()}); }
    void step(Iter& iter) {
        if (!iter.attached) return;
        if (!iter.removed) advance(iter);
        iter.removed = !iter.attached;
    }
    void advance(Iter& iter) {
        ++iter.at;
        enter(iter);
    }
    // Goes on to the next chain while there is nothing more in this one.
    void enter(Iter& iter) {
        while (iter.attached && iter.at == chains[iter.chain].end()) {
            iter.attached = ++iter.chain < chains.size();
            iter.removed = !iter.attached;
            if (iter.attached) iter.at = chains[iter.chain].begin();
        }
    }

    std::vector<std::list<Entry>> chains;
    std::vector<Iter> iters;
};

// The chains as text. A Probe is a container of raw blocks that makes `buckets`
// and `iters` accessible and has an entrySize().
inline std::string picture(const ChainModel& model) {
    std::string all;
    for (const auto& chain : model.chains) {
        for (const auto& entry : chain)
            all += entry.key + entry.value + ' ';
        all += '|';
    }
    return all;
}
template <class Probe> std::string picture(const Probe& probe) {
    std::string all;
    for (unsigned chain = 0; chain < probe.buckets.length(); ++chain, all += '|')
        for (const auto* node = probe.buckets[chain]; node; node = node->next)
            all += std::string(node->kvmem, probe.entrySize()) + ' ';
    return all;
}

// A container beside its model, with iterators on both.
template <class Probe, class Iter> struct Modelled {
    template <class... Sizes>
    explicit Modelled(unsigned chains, Sizes... sizes) : model(chains), probe(sizes..., chains) {
        model.iters.resize(std::size(iters));
        for (auto& iter : iters)
            iter.emplace();
    }

    void moveSomeIterator(std::mt19937& random) {
        const unsigned slot = random() % std::size(iters), move = random() % 12;
        if (move < 2) {
            iters[slot].emplace();
            model.iters[slot] = {};
        }
        if (move == 1 || move == 2) {
            *iters[slot] = probe;
            model.attach(model.iters[slot]);
        } else {
            ++*iters[slot];
            model.step(model.iters[slot]);
        }
    }

    void expectSame() {
        ASSERT_EQ(picture(probe), picture(model));
        ASSERT_EQ(probe.size(), model.entries().size());
        unsigned attached = 0;
        for (unsigned slot = 0; slot < std::size(iters); ++slot) {
            const Iter& iter = *iters[slot];
            const ChainModel::Iter& expected = model.iters[slot];
            ASSERT_EQ(iter.attached(), expected.attached);
            ASSERT_EQ(iter.notDone(), expected.attached);
            ASSERT_EQ(iter.removed(), expected.removed);
            const bool current = expected.attached && !expected.removed;
            ASSERT_EQ(iter.getKey(), current ? iter.node->kvmem : nullptr);
            if (!expected.attached) continue;
            ASSERT_EQ(iter.bucket, expected.chain);
            ASSERT_EQ(std::string(iter.node->kvmem, expected.at->key.size()), expected.at->key);
            ++attached;
        }
        ASSERT_EQ(probe.iters.length(), attached);
    }

    std::optional<Iter> iters[6];
    ChainModel model;
    Probe probe; // goes before its iterators
};

// Few enough keys to meet each often; the first and the last byte differ, and
// the last of six takes no part in the hash.
inline std::string randomKey(std::mt19937& random, unsigned size) {
    std::string key(size, 'x');
    key[0] ^= char(random() % 8 * 37);
    key[size - 1] ^= char(random() % 4);
    return key;
}

// A key or value of four bytes that a test knows by one letter.
inline std::string fourBytes(char letter) { return letter + std::string("..."); }

// The letter of the key under an iterator, '-' when there is none.
template <class Iter> char letterAt(const Iter& iter) {
    return iter.getKey() ? *static_cast<const char*>(iter.getKey()) : '-';
}

#endif
