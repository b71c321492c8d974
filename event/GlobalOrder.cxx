#include "event/GlobalOrder.h"

#include "event/OrderedGlobal.h"

// Globals of any file register here while it is constructed: all of these are
// constant-initialized.
qzGlobalOrder* qz_toolkitGlobalOrder = nullptr;
qzGlobalOrder* qz_applicationGlobalOrder = nullptr;

namespace {

bool toInitialize = true;
bool toCleanUp = true;

// Clears the flag first: what is run may ask for the same run again.
bool isFirst(bool& flag) {
    const bool first = flag;
    flag = false;
    return first;
}

const qzOrderedGlobal& at(const qzVoidPtrArray& globals, unsigned i) {
    return *static_cast<qzOrderedGlobal*>(globals[i]);
}

} // namespace

qzGlobalOrder::qzGlobalOrder() : sorted(0) { globals.setMaxLength(10); }

void qzGlobalOrder::createOrderings() {
    if (!qz_toolkitGlobalOrder) qz_toolkitGlobalOrder = new qzGlobalOrder;
    if (!qz_applicationGlobalOrder) qz_applicationGlobalOrder = new qzGlobalOrder;
}

void qzGlobalOrder::add(qzOrderedGlobal* global, int which) {
    createOrderings();
    const bool ours = which == qzOrderedGlobal::toolkit;
    (ours ? qz_toolkitGlobalOrder : qz_applicationGlobalOrder)->add(global);
}

void qzGlobalOrder::add(qzOrderedGlobal* global) {
    globals.append(global);
    sorted = 0;
}

void qzGlobalOrder::sort() {
    const unsigned n = globals.length();
    for (unsigned i = 0; i + 1 < n; ++i)
        for (unsigned j = i + 1; j < n; ++j)
            if (at(globals, i).dependsOn(at(globals, j))) globals.swap(i, j);
    sorted = 1;
}

void qzGlobalOrder::create() {
    if (!sorted) sort();
    for (unsigned i = 0; i < globals.length(); ++i)
        if (auto* const init = at(globals, i).init) init();
}

void qzGlobalOrder::destroy() {
    for (unsigned i = globals.length(); i-- > 0;)
        if (auto* const dest = at(globals, i).dest) dest();
}

void qzInitGlobalOrderings() {
    if (!isFirst(toInitialize)) return;
    qzGlobalOrder::createOrderings();
    qz_toolkitGlobalOrder->create();
    qz_applicationGlobalOrder->create();
}

void qzInitializeToolkit() { qzInitGlobalOrderings(); }

void qzCleanupGlobalOrderings() {
    if (!isFirst(toCleanUp)) return;
    qzGlobalOrder::createOrderings();
    qz_applicationGlobalOrder->destroy();
    qz_toolkitGlobalOrder->destroy();
}
