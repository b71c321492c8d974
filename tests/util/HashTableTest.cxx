#include "util/HashTable.h"

#include <gtest/gtest.h>

#include <csignal>
#include <map>
#include <random>
#include <vector>

namespace {

int values[8];

// The number of the bucket that holds the key, found without the hash.
int bucketOf(const HashTable& table, unsigned long key) {
    for (int bucket = 0; bucket < table.size; ++bucket)
        if (HashTable::searchBucketFor(table.buckets[bucket], key)) return bucket;
    return -1;
}

// Keys that share one chain whatever the size: the hash ignores high bits.
unsigned long sameChain(unsigned long n) { return n << 20 | 5; }

TEST(HashTable, AgreesWithAMapAndDoublesWhenFull) {
    std::mt19937 random(2603);
    HashTable table;
    std::map<unsigned long, void*> model;
    int additions = 0, size = 64;
    for (int step = 0; step < 60000; ++step) {
        const unsigned long key = random() % 3000 * 0x10005;
        const auto found = model.find(key);
        ASSERT_EQ(table.lookup(key), found == model.end() ? nullptr : found->second);
        if (random() % 2) {
            table.remove(key);
            model.erase(key);
        } else if (found == model.end()) {
            table.add(key, model[key] = &values[random() % 8]);
            if (additions++ >= 4 * size && size < 2048) size *= 2;
            ASSERT_EQ(table.size, size);
        }
    }
    ASSERT_GT(additions, 8192);
    std::size_t entries = 0;
    for (int bucket = 0; bucket < size; ++bucket) {
        const HashEntry* previous = nullptr;
        for (const HashEntry* entry = table.buckets[bucket]; entry; entry = entry->next) {
            ASSERT_EQ(entry->prev, previous);
            previous = entry;
            ++entries;
        }
    }
    EXPECT_EQ(entries, model.size());
}

TEST(HashTable, KeysGoToTheBucketOfTheirHash) {
    const struct {
        unsigned long key;
        int buckets[6]; // by bits, from 6 to 11
    } rows[] = {
        {0xfedcb, {2, 111, 41, 61, 560, 1078}},     {0xa2000, {34, 17, 42, 272, 648, 324}},
        {0x10000, {16, 8, 1, 128, 64, 32}},         {0x12345678, {36, 118, 42, 83, 877, 1778}},
        {0xff954321, {57, 13, 103, 384, 625, 905}},
    };
    HashTable table;
    for (const auto& row : rows)
        table.add(row.key, values);
    for (int bits = 6; bits <= 11; ++bits) {
        while (table.bits < bits)
            table.addElement(0);
        for (const auto& row : rows)
            EXPECT_EQ(bucketOf(table, row.key), row.buckets[bits - 6]) << std::hex << row.key;
    }
}

HashTable* mapped;
std::vector<unsigned long> visited;

TEST(HashTable, ChainsRunNewestFirstAndTurnRoundWhenTheTableGrows) {
    HashTable table;
    table.add(1, values); // in a bucket before the others
    std::vector<unsigned long> expected{1};
    for (unsigned long n = 0; n < 255; ++n) {
        table.add(sameChain(n), values);
        expected.insert(expected.begin() + 1, sameChain(n));
    }
    visited.clear();
    table.mapcar([](HashEntry* entry) { visited.push_back(entry->key); });
    EXPECT_EQ(visited, expected);

    table.add(sameChain(255), values);
    expected = {1, sameChain(255)};
    for (unsigned long n = 0; n < 255; ++n)
        expected.push_back(sameChain(n));
    mapped = &table;
    visited.clear();
    table.mapcar([](HashEntry* entry) {
        visited.push_back(entry->key);
        mapped->remove(entry->key);
    });
    EXPECT_EQ(visited, expected);
    EXPECT_EQ(bucketOf(table, 1), -1);
}

TEST(HashTable, RemovalDoesNotLowerTheCount) {
    HashTable table;
    for (int i = 0; i < 257; ++i) {
        table.add(9, values);
        table.remove(9);
    }
    EXPECT_EQ(table.count, 257);
    EXPECT_EQ(table.size, 128);
}

TEST(HashTableDeathTest, DuplicateKeyAborts) {
    HashTable table;
    table.add(1, nullptr);
    EXPECT_EXIT(table.add(1, values), testing::KilledBySignal(SIGABRT), "^$");
}

} // namespace
