#include "event/DataTypes.h"

#include <initializer_list>

#include "util/Sequencer.h"

qzSequencer* qz_nextDataType;

// What drawing them gives. They are right from the beginning because programs
// make objects, with inputs of these types, before start-up.
unsigned short qzDT_void = 0;
unsigned short qzDT_qzBool = 1;
unsigned short qzDT_int = 2;
unsigned short qzDT_long = 3;
unsigned short qzDT_float = 4;
unsigned short qzDT_double = 5;
unsigned short qzDT_CharPtr = 6;
unsigned short qzDT_qzStr = 7;
unsigned short qzDT_VoidPtr = 8;
unsigned short qzDT_ObjPtr = 9;
unsigned short qzDT_DataPtr = 10;
unsigned short qzDT_qzStrArray = 11;

void qzDrawDataTypes() {
    if (qz_nextDataType) return;
    qz_nextDataType = new qzSequencer;
    for (unsigned short* code :
         {&qzDT_void, &qzDT_qzBool, &qzDT_int, &qzDT_long, &qzDT_float, &qzDT_double, &qzDT_CharPtr,
          &qzDT_qzStr, &qzDT_VoidPtr, &qzDT_ObjPtr, &qzDT_DataPtr, &qzDT_qzStrArray})
        *code = static_cast<unsigned short>((*qz_nextDataType)());
}
