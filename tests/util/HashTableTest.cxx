#include "util/HashTable.h"

#include <gtest/gtest.h>

#include <csignal>
#include <map>
#include <random>

namespace {

int values[8];

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
}

TEST(HashTable, KeysGoToTheBucketOfTheirHash) {
    const struct {
        unsigned long key;
        int buckets[6]; // by bits, from 6 to 11
    } rows[] = {
        {0xfedcb, {2, 111, 41, 61, 560, 1078}},
        {0x12345678, {36, 118, 42, 83, 877, 1778}},
        {0xff954321, {57, 13, 103, 384, 625, 905}},
    };
    for (const auto& row : rows) {
        HashTable table;
        table.add(row.key, values);
        for (int bits = 6; bits <= 11; ++bits) {
            while (table.bits < bits)
                table.addElement(0);
            HashEntry* const chain = table.buckets[row.buckets[bits - 6]];
            EXPECT_TRUE(HashTable::searchBucketFor(chain, row.key)) << row.key << ' ' << bits;
        }
    }
}

TEST(HashTable, RemovalDoesNotLowerTheCount) {
    HashTable table;
    for (unsigned long n = 0; n < 256; ++n) // the hash ignores these bits
        table.add(n << 20, values);
    EXPECT_EQ(table.buckets[0]->key, 255u << 20); // newest first
    table.remove(7u << 20);
    EXPECT_EQ(table.count, 256);
    table.add(256u << 20, values);
    EXPECT_EQ(table.size, 128);
    EXPECT_EQ(table.buckets[0]->next->key, 0u); // growing turns the chains round
}

TEST(HashTableDeathTest, DuplicateKeyAborts) {
    HashTable table;
    table.add(1, nullptr);
    EXPECT_EXIT(table.add(1, values), testing::KilledBySignal(SIGABRT), "^$");
}

} // namespace
