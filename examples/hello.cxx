#include <iostream>

#include "util/StrStrDictionary.h"
#include "util/StrStrDictionaryIter.h"

int main() {
    qzStrStrDictionary capitals(100);
    capitals.add("France", "Paris");
    capitals.add("Japan", "Tokyo");
    capitals["Peru"] = qzStr("Li") | "m" | "a";
    for (qzStrStrDictionaryIter i(capitals); i.notDone(); ++i)
        if (*i.getValue() == "Paris") capitals.remove(*i.getKey()); // safe: the iterator moves on
    std::cout << capitals.size() << " left, Peru: " << capitals["Peru"] << "\n";
}
