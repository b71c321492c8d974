// What the tests of dictionaries and sets share: a record of the keys and values
// that are alive, and a naive model of chains and of the iterators on them.
#ifndef QZ_TESTS_SUPPORT_CHAINMODEL_H
#define QZ_TESTS_SUPPORT_CHAINMODEL_H

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <vector>

// The addresses at which hooks on raw blocks have constructed something.
struct LiveAddresses : std::set<const void*> {
    ~LiveAddresses() { EXPECT_TRUE(empty()) << "never destroyed"; }
    void copy(const void* src, void* dst, unsigned nbytes) {
        EXPECT_TRUE(insert(dst).second) << "constructed twice";
        std::memcpy(dst, src, nbytes);
    }
    void destroy(const void* at) { EXPECT_EQ(erase(at), 1u) << "destroyed, but not alive"; }
};

// XOR of whole words, least significant byte first.
inline unsigned hashOfWords(const std::string& key) {
    unsigned hash = 0;
    for (unsigned i = 0; i < key.size() / 4 * 4; ++i)
        hash ^= unsigned(static_cast<unsigned char>(key[i])) << i % 4 * 8;
    return hash;
}
inline bool sameBytes(const std::string& searched, const std::string& stored) {
    return searched == stored;
}

// The entries in the order of a walk: by chain, newest first. A set has no values.
struct ChainModel {
    struct Entry {
        unsigned chain;
        std::string key, value;
    };
    struct Iter {
        std::string key; // none: not attached
        bool removed = false;
    };

    explicit ChainModel(unsigned n) : chains(n ? n : 31) {}

    Entry* find(const std::string& key) {
        const unsigned chain = hash(key) % chains;
        for (Entry& entry : entries)
            if (entry.chain == chain && equal(key, entry.key)) return &entry;
        return nullptr;
    }
    void add(const std::string& key, const std::string& value = "") {
        if (Entry* entry = find(key)) {
            entry->value = value;
        } else {
            push(hash(key) % chains, key, value);
        }
    }
    void push(unsigned chain, const std::string& key, const std::string& value) {
        entries.insert(std::find_if(entries.begin(), entries.end(),
                                    [chain](const Entry& entry) { return entry.chain >= chain; }),
                       {chain, key, value});
    }
    void remove(const std::string& key) {
        const Entry* const entry = find(key);
        if (!entry) return;
        for (Iter& iter : iters) {
            if (iter.key != entry->key) continue;
            enter(iter, entry + 1);
            iter.removed = true;
        }
        entries.erase(entries.begin() + (entry - entries.data()));
    }
    void step(Iter& iter) {
        if (iter.key.empty()) return;
        if (!iter.removed) {
            const auto under = std::find_if(entries.begin(), entries.end(),
                                            [&](const Entry& e) { return e.key == iter.key; });
            return enter(iter, entries.data() + (under - entries.begin()) + 1);
        }
        iter.removed = false;
    }
    void enter(Iter& iter, const Entry* at) {
        iter.removed = at == entries.data() + entries.size();
        iter.key = iter.removed ? "" : at->key;
    }

    unsigned chains;
    unsigned (*hash)(const std::string&) = hashOfWords;
    bool (*equal)(const std::string& searched, const std::string& stored) = sameBytes;
    std::vector<Entry> entries;
    std::vector<Iter> iters;
};

// The entries as text, each with its chain: "0 key 1 otherkey ". A Probe is a
// container of raw blocks that makes `buckets` and `iters` accessible and has an
// entrySize().
inline std::string picture(const ChainModel& model) {
    std::string all;
    for (const auto& entry : model.entries)
        all += std::to_string(entry.chain) + ' ' + entry.key + entry.value + ' ';
    return all;
}
template <class Probe> std::string picture(const Probe& probe) {
    std::string all;
    for (unsigned chain = 0; chain < probe.buckets.length(); ++chain)
        for (const auto* node = probe.buckets[chain]; node; node = node->next)
            all += std::to_string(chain) + ' ' + std::string(node->kvmem, probe.entrySize()) + ' ';
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
        if (move == 0) iters[slot].emplace();
        if (move <= 1) {
            *iters[slot] = probe;
            model.enter(model.iters[slot], model.entries.data());
        } else {
            ++*iters[slot];
            model.step(model.iters[slot]);
        }
    }

    void expectSame() {
        ASSERT_EQ(picture(probe), picture(model));
        ASSERT_EQ(probe.size(), model.entries.size());
        unsigned attached = 0;
        for (unsigned slot = 0; slot < std::size(iters); ++slot) {
            const Iter& iter = *iters[slot];
            const auto& [key, removed] = model.iters[slot];
            ASSERT_EQ(iter.attached(), !key.empty());
            ASSERT_EQ(iter.removed(), removed);
            ASSERT_EQ(iter.notDone() ? std::string(iter.node->kvmem, key.size()) : "", key);
            ASSERT_EQ(iter.getKey(), removed || key.empty() ? nullptr : iter.node->kvmem);
            attached += iter.attached();
        }
        ASSERT_EQ(probe.iters.length(), attached);
    }

    std::optional<Iter> iters[6];
    ChainModel model;
    Probe probe; // goes before its iterators
};

// Few enough keys to meet each often; the last byte of six is not hashed.
inline std::string randomKey(std::mt19937& random, unsigned size) {
    std::string key(size, 'x');
    key[0] ^= char(random() % 8 * 37);
    key[size - 1] ^= char(random() % 4);
    return key;
}

#endif
