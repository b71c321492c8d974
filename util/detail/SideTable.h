// SideTable: what the library knows about an object beyond its documented fields,
// found by the object's address.
//
// An object is used by one thread at a time, different ones by different threads
// at once. So find() takes no lock: what it may find was set by its own thread,
// or by one that has handed the object, or its memory, over to this one.
//
// A hash table with open addressing and linear probing. An entry never moves
// within a table; one that is full is replaced by a copy of twice the size and
// kept, as somebody may be looking into it.
//
// Errors: set() is false when there is no memory.
// Cost: find() is a few instructions. The tables take memory by the largest
//     number of objects at a time, and keep it.
#ifndef QZ_UTIL_DETAIL_SIDETABLE_H
#define QZ_UTIL_DETAIL_SIDETABLE_H

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <mutex>

class SideTable {
  public:
    // What was set for the object, or null.
    void* find(const void* object) const {
        const Slots* const slots = current.load(std::memory_order_acquire);
        if (!slots) return nullptr;
        for (std::size_t i = home(*slots, object);; i = (i + 1) & slots->last) {
            const void* const held = slots->slot[i].object.load(std::memory_order_acquire);
            if (held == object) return slots->slot[i].value;
            if (!held) return nullptr;
        }
    }
    // For an object that has nothing yet.
    bool set(const void* object, void* value);
    // Returns what was set, or null.
    void* take(const void* object);

  private:
    struct Slot {
        std::atomic<const void*> object; // null: free
        void* value;
    };
    struct Slots {
        std::size_t last;      // a power of two less one
        const Slots* replaced; // kept, and known to leak checkers
        Slot slot[1];          // last + 1
    };

    // Fibonacci hashing (Knuth, The Art of Computer Programming 3, 6.4).
    static std::size_t home(const Slots& slots, const void* object) {
        const auto address = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(object));
        return address * 2654435769u >> 12 & slots.last;
    }
    // Stands where an object was that others had to go past.
    const void* removed() const { return this; }
    bool isFree(const Slot& slot) const;
    void put(Slots& slots, const void* object, void* value);
    bool makeRoom();

    std::atomic<Slots*> current{nullptr};
    std::mutex changing;
    std::size_t used = 0; // slots that are not null
};

#endif
