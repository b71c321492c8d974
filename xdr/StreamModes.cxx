#include "xdr/StreamModes.h"

#include <fcntl.h>

const char* stdioType(qzStream::qzStreamType type) {
    switch (type) {
    case qzStream::qzST_Read:
        return "r";
    case qzStream::qzST_Write:
        return "w";
    case qzStream::qzST_ReadWrite:
        return "r+";
    }
    return nullptr;
}

int unixType(qzStream::qzStreamType type) {
    switch (type) {
    case qzStream::qzST_Read:
        return O_RDONLY;
    case qzStream::qzST_Write:
        return O_WRONLY;
    case qzStream::qzST_ReadWrite:
        return O_RDWR;
    }
    return O_RDONLY;
}
