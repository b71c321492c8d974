// Fuzzes the transcriber factory and the binary reader. Input: a stream. Whatever
// the bytes are, reading ends in a root, null or qzFatal; none may be accessed
// where it is not, and no memory taken that the input does not justify.
#include <cstdarg>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <unordered_set>

#include <sanitizer/allocator_interface.h>

#include "tests/support/Everything.h"
#include "tests/support/MemoryStream.h"
#include "util/BoolArray.h"
#include "util/CharArray.h"
#include "util/DoubleArray.h"
#include "util/Fatal.h"
#include "util/FloatArray.h"
#include "util/LongArray.h"
#include "util/ShortArray.h"
#include "util/Str.h"
#include "xdr/BinaryGraphWriter.h"
#include "xdr/BinaryReader.h"

namespace {

struct Fatal {};

// The blocks that an input leaves: what a broken stream had brought has no owner.
std::unordered_set<const volatile void*> blocks;
bool noting = false;

void note(const volatile void* block, std::size_t) {
    if (!noting) return;
    noting = false;
    blocks.insert(block);
    noting = true;
}
void forget(const volatile void* block) {
    if (!noting) return;
    noting = false;
    blocks.erase(block);
    noting = true;
}
void freeBlocks() {
    noting = false;
    for (const volatile void* block : blocks)
        std::free(const_cast<void*>(block));
    blocks.clear();
}

// All typed arrays are "ARRAY" in a stream, of which one would be found.
void registerTypes() {
    static const struct {
        const char* name;
        qzTypeObj& type;
    } arrays[] = {{"bools", qzBoolArray_type},     {"chars", qzCharArray_type},
                  {"doubles", qzDoubleArray_type}, {"floats", qzFloatArray_type},
                  {"longs", qzLongArray_type},     {"shorts", qzShortArray_type},
                  {"strings", qzStrArray_type},    {"ints", qzIntArray_type}};
    for (const auto& array : arrays)
        new qzTypeObj(array.name, 1, array.type.create, array.type.destroy, array.type.xdr);
    new qzTypeObj("DICT", 1, qzStrStrDictionary_type.create, qzStrStrDictionary_type.destroy,
                  qzStrStrDictionary_type.xdr);
    qzTranscriber::addTranscriber("qzBinaryWriter", makeBinaryReader);
}

// Returns how many objects are in graphs that came whole.
std::size_t readGraphs(MemoryStream& stream) {
    std::size_t whole = 0;
    try {
        const std::unique_ptr<qzTranscriber> reader(qzTranscriber::getReader(&stream));
        while (reader && reader->readObject(qzXDRObj_type))
            whole = Everything::made().size();
    } catch (const Fatal&) {
    }
    return whole;
}

// They can be looked at and written.
void useObjects(std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) {
        Everything* const object = Everything::made()[i];
        volatile double total = object->sum();
        static_cast<void>(total);
        qzBinaryGraphWriter writer(new MemoryStream(std::size_t(1) << 16));
        writer.writeObject(object, object);
    }
}

} // namespace

// freeBlocks() does not know what came from new.
extern "C" const char* __asan_default_options() {
    return "alloc_dealloc_mismatch=0:allocator_may_return_null=1";
}

// In place of the library's own, which ends the process.
void qzFatal(const char*, ...) { throw Fatal(); }

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    registerTypes();
    __sanitizer_install_malloc_and_free_hooks(note, forget);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    {
        MemoryStream stream(std::string(reinterpret_cast<const char*>(data), size));
        stream.addRef();
        noting = true;
        useObjects(readGraphs(stream));
    }
    Everything::destroyAll();
    freeBlocks();
    return 0;
}
