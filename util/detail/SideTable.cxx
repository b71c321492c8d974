#include "util/detail/SideTable.h"

#include "util/detail/RawMemory.h"

bool SideTable::isFree(const Slot& slot) const {
    const void* const held = slot.object.load(std::memory_order_relaxed);
    return !held || held == removed();
}

void SideTable::put(Slots& slots, const void* object, void* value) {
    std::size_t i = home(slots, object);
    while (!isFree(slots.slot[i]))
        i = (i + 1) & slots.last;
    Slot& slot = slots.slot[i];
    used += slot.object.load(std::memory_order_relaxed) == nullptr;
    slot.value = value;
    slot.object.store(object, std::memory_order_release);
}

// At most three slots in four are used.
bool SideTable::makeRoom() {
    const Slots* const old = current.load(std::memory_order_relaxed);
    if (old && used <= old->last / 4 * 3) return true;
    const std::size_t n = old ? 2 * (old->last + 1) : 16;
    auto* const slots = static_cast<Slots*>(qzRawTryZeroed(sizeof(Slots) + (n - 1) * sizeof(Slot)));
    if (!slots) return false;
    slots->last = n - 1;
    slots->replaced = old;
    used = 0;
    for (std::size_t i = 0; old && i <= old->last; ++i) {
        const Slot& slot = old->slot[i];
        if (!isFree(slot)) put(*slots, slot.object.load(std::memory_order_relaxed), slot.value);
    }
    current.store(slots, std::memory_order_release);
    return true;
}

bool SideTable::set(const void* object, void* value) {
    const std::lock_guard<std::mutex> lock(changing);
    if (!makeRoom()) return false;
    put(*current.load(std::memory_order_relaxed), object, value);
    return true;
}

void* SideTable::take(const void* object) {
    void* const value = find(object);
    if (!value) return nullptr;
    const std::lock_guard<std::mutex> lock(changing);
    Slots& slots = *current.load(std::memory_order_relaxed);
    std::size_t i = home(slots, object);
    while (slots.slot[i].object.load(std::memory_order_relaxed) != object)
        i = (i + 1) & slots.last;
    slots.slot[i].object.store(removed(), std::memory_order_release);
    // Nobody goes past a slot that has a null one behind it.
    if (slots.slot[(i + 1) & slots.last].object.load(std::memory_order_relaxed)) return value;
    while (slots.slot[i].object.load(std::memory_order_relaxed) == removed()) {
        slots.slot[i].object.store(nullptr, std::memory_order_release);
        --used;
        i = (i - 1) & slots.last;
    }
    return value;
}
