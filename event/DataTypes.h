// The type codes of values: what channels carry and properties hold.
//
// A program that defines value types of its own draws their codes from
// *qz_nextDataType, which start-up has set to go on behind these.
#ifndef QZ_EVENT_DATATYPES_H
#define QZ_EVENT_DATATYPES_H

#include "util/Export.h"

class qzSequencer;

extern QZ_EXPORT qzSequencer* qz_nextDataType; // null until start-up

extern QZ_EXPORT unsigned short qzDT_void;
extern QZ_EXPORT unsigned short qzDT_qzBool; // unsigned char
extern QZ_EXPORT unsigned short qzDT_int;
extern QZ_EXPORT unsigned short qzDT_long;
extern QZ_EXPORT unsigned short qzDT_float;
extern QZ_EXPORT unsigned short qzDT_double;
extern QZ_EXPORT unsigned short qzDT_CharPtr;
extern QZ_EXPORT unsigned short qzDT_qzStr;
extern QZ_EXPORT unsigned short qzDT_VoidPtr; // in properties only, as the next two
extern QZ_EXPORT unsigned short qzDT_ObjPtr;
extern QZ_EXPORT unsigned short qzDT_DataPtr;
extern QZ_EXPORT unsigned short qzDT_qzStrArray;

// For start-up: makes the sequencer and draws the codes above, in their order;
// nothing when the sequencer exists.
QZ_EXPORT void qzDrawDataTypes();

#endif
