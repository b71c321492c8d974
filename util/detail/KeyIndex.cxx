#include "util/detail/KeyIndex.h"

#include <cassert>
#include <cstdint>
#include <emmintrin.h>
#include <new>

#include "util/StrKeys.h"
#include "util/detail/IndexedChains.h"
#include "xdr/BinaryOTDict.h"

namespace {

const std::uint32_t oddKeys[] = {0x9e3779b1, 0x85ebca77, 0xc2b2ae3d, 0x27d4eb2f};

std::uint64_t product(std::uint32_t a, std::uint32_t b) { return std::uint64_t(a) * b; }

std::uint32_t fold(std::uint64_t both) {
    return static_cast<std::uint32_t>(both) ^ static_cast<std::uint32_t>(both >> 32);
}

// Spreads a sum over all bits.
std::uint32_t finish(std::uint64_t sum, unsigned length) {
    const auto low = static_cast<std::uint32_t>(sum);
    const auto high = static_cast<std::uint32_t>(sum >> 32);
    return fold(product(low ^ oddKeys[0] ^ length, high ^ oddKeys[1]));
}

// NH of UMAC (Black, Halevi, Krawczyk, Krovetz, Rogaway: UMAC: Fast and Secure
// Message Authentication, 1999): a sum of products of pairs of words, each of
// them added to a number that goes with its position. Such products do not wait
// for each other.
class Products {
  public:
    void add(__m128i text) {
        anyNul = _mm_or_si128(anyNul, _mm_cmpeq_epi8(text, _mm_setzero_si128()));
        const __m128i words = _mm_add_epi32(text, keys);
        sum = _mm_add_epi64(sum, _mm_mul_epu32(words, _mm_srli_epi64(words, 32)));
        keys = _mm_add_epi32(keys, _mm_set1_epi32(static_cast<int>(oddKeys[3])));
    }
    bool sawNul() const { return _mm_movemask_epi8(anyNul); }
    std::uint64_t total() const {
        std::uint64_t result;
        const __m128i both = _mm_add_epi64(sum, _mm_unpackhi_epi64(sum, sum));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(&result), both);
        return result;
    }

  private:
    __m128i keys = _mm_loadu_si128(reinterpret_cast<const __m128i*>(oddKeys));
    __m128i sum = _mm_setzero_si128();
    __m128i anyNul = _mm_setzero_si128();
};

__m128i load16(const char* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }
__m128i load4(const char* p) { return _mm_cvtsi32_si128(static_cast<int>(qzLoadWord(p))); }

// 4 to 15 bytes as 16: those of shorter texts are in there twice. One case for
// all lengths, since the processor cannot guess which it will be.
__m128i loadUpTo15(const char* text, unsigned length) {
    const unsigned middle = length / 8 * 4;
    const char* const last = text + length - 4;
    return _mm_unpacklo_epi64(_mm_unpacklo_epi32(load4(text), load4(text + middle)),
                              _mm_unpacklo_epi32(load4(last - middle), load4(last)));
}

std::uint32_t hashText(const char* text, unsigned length);

std::uint32_t hashUpToNul(const char* text) {
    return hashText(text, static_cast<unsigned>(std::strlen(text)));
}

std::uint32_t hashTinyText(const char* text, unsigned length) {
    std::uint32_t word = 0;
    for (unsigned i = 0; i < length; ++i) {
        if (!text[i]) return hashUpToNul(text);
        word = word << 8 | static_cast<unsigned char>(text[i]);
    }
    return finish(product(word ^ oddKeys[2], oddKeys[3]), length);
}

// Covers the text up to the first NUL. Nothing behind the text is read: its last
// bytes are taken twice instead where the length is not a multiple of 16.
std::uint32_t hashText(const char* text, unsigned length) {
    if (length < 4) return hashTinyText(text, length);
    Products products;
    if (length < 16) {
        products.add(loadUpTo15(text, length));
    } else {
        for (unsigned at = 0; length - at >= 16; at += 16)
            products.add(load16(text + at));
        if (length % 16) products.add(load16(text + length - 16));
    }
    if (products.sawNul()) return hashUpToNul(text);
    return finish(products.total(), length);
}

bool same16(__m128i a, __m128i b) { return _mm_movemask_epi8(_mm_cmpeq_epi8(a, b)) == 0xffff; }

bool sameText(const qzStr& a, const qzStr& b) {
    const unsigned length = a.slength;
    if (length != b.slength) return false;
    if (length < 4) return std::memcmp(a.data, b.data, length) == 0;
    if (length < 16) return same16(loadUpTo15(a.data, length), loadUpTo15(b.data, length));
    for (unsigned at = 0; length - at >= 16; at += 16)
        if (!same16(load16(a.data + at), load16(b.data + at))) return false;
    return same16(load16(a.data + length - 16), load16(b.data + length - 16));
}

struct TextKeys {
    static const qzStr& at(const void* key) { return *static_cast<const qzStr*>(key); }
    static unsigned hash(const void* key) { return hashText(at(key).data, at(key).length()); }
    static bool isComplete(const void* key) {
        return at(key).data && (at(key).length() == 0 || at(key).data != &qzStr::emptyString);
    }
    static unsigned chain(const void* key, unsigned chains) {
        return qzStrKeys::hash(at(key)) % chains;
    }
    static bool same(const void* a, const void* b) { return sameText(at(a), at(b)); }
    static bool compareEqual(const void* a, const void* b) {
        return qzStrKeys::compare(at(a), at(b)) == 0;
    }
};

struct WordKeys {
    static unsigned long at(const void* key) { return *static_cast<const unsigned long*>(key); }
    static unsigned hash(const void* key) {
        return fold(product(fold(at(key)) ^ oddKeys[2], oddKeys[0]));
    }
    static bool isComplete(const void*) { return true; }
    static unsigned chain(const void* key, unsigned chains) {
        return qzAddressKeys::hash(at(key)) % chains;
    }
    static bool same(const void* a, const void* b) { return at(a) == at(b); }
    static bool compareEqual(const void* a, const void* b) { return same(a, b); }
};

__m128i tagsOf(const unsigned char* group) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(group));
}
// A bit for each of the 16 tags that is the one wanted.
unsigned matches(__m128i tags, unsigned char wanted) {
    const __m128i equal = _mm_cmpeq_epi8(tags, _mm_set1_epi8(static_cast<char>(wanted)));
    return static_cast<unsigned>(_mm_movemask_epi8(equal));
}
unsigned lowest(unsigned bits) { return static_cast<unsigned>(__builtin_ctz(bits)); }

} // namespace

SideTable qzKeyIndexes;

KeyIndex* KeyIndex::make(qzKeyKind kind, const Chains& chains, std::size_t nodeOffset) {
    void* const memory = qzRawTryAlloc(sizeof(KeyIndex));
    if (!memory) return nullptr;
    auto* const index = new (memory) KeyIndex(kind, chains, nodeOffset);
    if (index->rebuild(chains.entries / usableOfGroup + 1)) return index;
    destroy(index);
    return nullptr;
}

void KeyIndex::destroy(KeyIndex* index) {
    if (index) qzRawFree(index->tags);
    qzRawFree(index);
}

void KeyIndex::giveUp() {
    qzRawFree(tags);
    tags = nullptr;
    chains.heads = nullptr; // it fits nothing any more
    live = unused = groups = 0;
}

unsigned KeyIndex::hash(const void* key) const {
    return kind == qzKeyKind::text ? TextKeys::hash(key) : WordKeys::hash(key);
}

bool KeyIndex::isComplete(const void* key) const {
    return kind == qzKeyKind::text ? TextKeys::isComplete(key) : WordKeys::isComplete(key);
}

bool KeyIndex::isAtHome(const void* key, unsigned chain) const {
    return chain == (kind == qzKeyKind::text ? TextKeys::chain(key, chains.number)
                                             : WordKeys::chain(key, chains.number));
}

KeyIndex::Tag KeyIndex::tagOf(unsigned hash) {
    const Tag low = static_cast<Tag>(hash);
    return low > erased ? low : low + 2;
}

// The high bits, scaled to the number of groups.
unsigned KeyIndex::home(unsigned hash) const {
    return static_cast<unsigned>(product(hash, groups) >> 32);
}

// Keys whose texts are the same hang in the same chain; those that are equal only
// up to a NUL may not.
template <class Keys> char* KeyIndex::findAs(const void* key, unsigned hash) const {
    const Tag tag = tagOf(hash);
    for (unsigned group = home(hash);; group = after(group)) {
        const __m128i tagsHere = tagsOf(tags + groupSize * group);
        for (unsigned hits = matches(tagsHere, tag); hits; hits &= hits - 1) {
            char* const block = blocks[groupSize * group + lowest(hits)];
            if (Keys::same(key, block)) return block;
            if (Keys::compareEqual(key, block) &&
                Keys::chain(key, chains.number) == Keys::chain(block, chains.number)) {
                return block;
            }
        }
        if (matches(tagsHere, empty)) return nullptr;
    }
}

char* KeyIndex::findBlock(const void* key) const {
    return kind == qzKeyKind::text ? findAs<TextKeys>(key, TextKeys::hash(key))
                                   : findAs<WordKeys>(key, WordKeys::hash(key));
}

KeyIndex::Found KeyIndex::find(const void* key) const {
    const unsigned hashOfKey = hash(key);
    char* const block = kind == qzKeyKind::text ? findAs<TextKeys>(key, hashOfKey)
                                                : findAs<WordKeys>(key, hashOfKey);
    return {block, hashOfKey};
}

// A slot without an entry, or ~0u when there is none near enough.
unsigned KeyIndex::slotFor(unsigned hash) const {
    unsigned group = home(hash);
    for (unsigned probes = 0; probes < maxProbes; ++probes, group = after(group)) {
        const __m128i tagsHere = tagsOf(tags + groupSize * group);
        const unsigned available = matches(tagsHere, empty) | matches(tagsHere, erased);
        if (available) return groupSize * group + lowest(available);
    }
    return ~0u;
}

bool KeyIndex::insert(char* block, unsigned hash) {
    if (unused == 0 && !makeRoom()) return false;
    const unsigned slot = slotFor(hash);
    if (slot == ~0u) return false;
    unused -= tags[slot] == empty;
    tags[slot] = tagOf(hash);
    blocks[slot] = block;
    ++live;
    return true;
}

// A group that has an empty slot never was full: no search goes past it.
void KeyIndex::erase(const char* block, unsigned hash) {
    const Tag tag = tagOf(hash);
    for (unsigned group = home(hash);; group = after(group)) {
        const __m128i tagsHere = tagsOf(tags + groupSize * group);
        const bool hasEmpty = matches(tagsHere, empty);
        for (unsigned hits = matches(tagsHere, tag); hits; hits &= hits - 1) {
            const unsigned slot = groupSize * group + lowest(hits);
            if (blocks[slot] != block) continue;
            tags[slot] = hasEmpty ? empty : erased;
            unused += hasEmpty;
            --live;
            return;
        }
        if (hasEmpty) break;
    }
    assert(!"the entry is in the index");
}

// Doubles; or only sweeps, when many slots are erased.
bool KeyIndex::makeRoom() {
    const bool sweeps = live < groups * (usableOfGroup / 2);
    return rebuild(sweeps ? groups : 2 * groups);
}

// Asks for what an entry's hash is made of ahead of time, or each would wait for
// the memory twice.
void KeyIndex::prefetch(unsigned slot) const {
    const unsigned slots = groupSize * groups, near = slot + 8, far = slot + 24;
    if (far < slots && tags[far] > erased) __builtin_prefetch(blocks[far]);
    if (kind == qzKeyKind::text && near < slots && tags[near] > erased)
        __builtin_prefetch(TextKeys::at(blocks[near]).data);
}

bool KeyIndex::rebuild(unsigned newGroups) {
    const std::size_t slots = std::size_t(groupSize) * newGroups;
    if (slots > ~std::size_t(0) / (1 + sizeof(char*))) return false;
    auto* const memory = static_cast<Tag*>(qzRawTryAlloc(slots * (1 + sizeof(char*))));
    if (!memory) return false;
    KeyIndex larger(kind, chains, nodeOffset);
    larger.tags = memory;
    larger.blocks = reinterpret_cast<char**>(memory + slots);
    larger.groups = newGroups;
    larger.unused = usableOfGroup * newGroups;
    qzRawZero(memory, slots);
    for (unsigned slot = 0; slot < groupSize * groups; ++slot) {
        prefetch(slot);
        if (tags[slot] <= erased) continue;
        if (!larger.insert(blocks[slot], hash(blocks[slot]))) {
            qzRawFree(memory);
            return false;
        }
    }
    qzRawFree(tags);
    tags = larger.tags;
    blocks = larger.blocks;
    groups = larger.groups;
    unused = larger.unused;
    return true;
}
