// What tests/tools/gdb.sh looks at through the pretty-printers.
#include "util/IntArray.h"
#include "util/StrArray.h"
#include "util/StrSet.h"
#include "util/StrStrDictionary.h"

// The debugger stops here, one frame below the objects.
__attribute__((noinline)) void stopHere() { asm volatile(""); }

int main() {
    qzStr text("some text");
    qzStr empty;
    qzIntArray ints;
    for (int i = 1; i <= 3; ++i) ints.append(i * 10);
    qzStrArray strings;
    strings.append("one");
    strings.append("");
    qzStrStrDictionary dictionary(1);
    dictionary.add("first", "1");
    dictionary.add("second", "2");
    qzStrSet set(1);
    set.add("member");
    stopHere();
    return text.length() + empty.length() + ints.length() == 12 ? 0 : 1;
}
