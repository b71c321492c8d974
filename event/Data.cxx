// The data classes: the root, its blocks, and the one place where each member of
// the pattern is compiled.
#include "event/Data.h"

#include "event/BoolData.h"
#include "event/CharPtrData.h"
#include "event/DoubleData.h"
#include "event/FloatData.h"
#include "event/IntData.h"
#include "event/LongData.h"
#include "event/StrArrayData.h"
#include "event/StrData.h"
#include "event/VoidData.h"
#include "event/detail/BlockPool.h"

static_assert(sizeof(void*) != 4 || (sizeof(qzIntData) == 16 && sizeof(qzDoubleData) == 20 &&
                                     sizeof(qzStrArrayData) == 36),
              "one value behind the count and the type");

qzData::~qzData() = default;

void* qzData::operator new(std::size_t bytes) { return qzBlockPool<qzData>::take(bytes); }
void qzData::operator delete(void* block, std::size_t bytes) {
    qzBlockPool<qzData>::giveBack(block, bytes);
}

qzVoidData::qzVoidData() : qzData(qzDT_void) {}
qzVoidData::~qzVoidData() = default;

const char* qzVoidData::dataName() const { return "void"; }

void qzVoidData::deliverTo(void (*function)(), void* object) {
    reinterpret_cast<void (*)(void*)>(function)(object);
}

void qzVoidData::getValue(unsigned short, void*) {}

unsigned qzVoidData::getSize() { return 0; }

const char* qzCharPtrData::dataName() const { return "char *"; }

qzBoolData::~qzBoolData() = default;
qzIntData::~qzIntData() = default;
qzLongData::~qzLongData() = default;
qzFloatData::~qzFloatData() = default;
qzDoubleData::~qzDoubleData() = default;
qzCharPtrData::~qzCharPtrData() { qzRawFree(value); }
qzStrData::~qzStrData() = default;
qzStrArrayData::~qzStrArrayData() = default;

template class qzTypedData<unsigned char, qzDT_qzBool>;
template class qzTypedData<int, qzDT_int>;
template class qzTypedData<long, qzDT_long>;
template class qzTypedData<float, qzDT_float>;
template class qzTypedData<double, qzDT_double>;
template class qzTypedData<char*, qzDT_CharPtr>;
template class qzTypedData<qzStr, qzDT_qzStr>;
template class qzTypedData<qzStrArray, qzDT_qzStrArray>;
