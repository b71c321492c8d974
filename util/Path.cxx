#include "util/Path.h"

#include "util/Companion.h"

namespace {

// `length` NULs, so that a part that is not written comes out empty.
void prepare(qzPath& part, unsigned length) {
    part.resize(0);
    part.resize(length);
}

void cutAtNul(qzPath& part) { part.resize(static_cast<unsigned>(std::strlen(part.c_str()))); }

} // namespace

int qzPath::split(qzPath* directory, qzPath* leaf) const {
    const qzStr path(*this);
    prepare(*directory, path.length());
    prepare(*leaf, path.length());
    const int status =
        fileutl_strip_leaf(path.c_str(), path.slength, directory->data, path.slength, leaf->data);
    cutAtNul(*directory);
    cutAtNul(*leaf);
    return status;
}

qzPath qzPath::leaf() const {
    qzPath directory, leaf;
    split(&directory, &leaf);
    return leaf;
}

qzPath qzPath::directory() const {
    qzPath directory, leaf;
    split(&directory, &leaf);
    return directory;
}
