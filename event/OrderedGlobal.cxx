#include "event/OrderedGlobal.h"

#include "event/GlobalOrder.h"

qzOrderedGlobal::qzOrderedGlobal(void (*init)(), qzOrderedGlobal** dependencies, int which)
    : qzOrderedGlobal(init, nullptr, dependencies, which) {}

qzOrderedGlobal::qzOrderedGlobal(void (*init)(), void (*dest)(), qzOrderedGlobal** dependencies,
                                 int which)
    : init(init), dest(dest), dependencies(dependencies) {
    qzGlobalOrder::add(this, which);
}

unsigned char qzOrderedGlobal::dependsOn(const qzOrderedGlobal& other) const {
    if (!dependencies) return 0;
    for (qzOrderedGlobal** dependency = dependencies; *dependency; ++dependency)
        if (*dependency == &other) return 1;
    return 0;
}
