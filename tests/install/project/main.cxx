// A program of somebody else's: derives from a library class, uses a template's
// members and the type information.
#include <cstdio>
#include <typeinfo>

#include "util/IntArray.h"
#include "util/StrStrDictionary.h"
#include "util/StrStrDictionaryIter.h"

namespace {

struct Descending : qzIntArray {
    int compareElements(const void* a, const void* b) const override {
        return *static_cast<const int*>(b) - *static_cast<const int*>(a);
    }
};

} // namespace

int main() {
    Descending numbers;
    for (int i = 0; i < 10; ++i)
        numbers.append(i);
    numbers.qsort();

    qzStrStrDictionary dictionary(0);
    dictionary.add("key", qzStr("va") | "lue");
    qzStrStrDictionaryIter entry(dictionary);

    const bool derived = dynamic_cast<qzArray*>(static_cast<qzRCObj*>(&numbers)) != nullptr;
    std::printf("%d %s %s %d\n", numbers[0], entry.getKey()->c_str(), entry.getValue()->c_str(),
                derived);
    return 0;
}
