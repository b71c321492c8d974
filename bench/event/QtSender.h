// A sender of ints for the benchmarks; Qt's compiler makes the other half of it.
#ifndef QZ_BENCH_EVENT_QTSENDER_H
#define QZ_BENCH_EVENT_QTSENDER_H

#include <QtCore/QObject>

class QtSender : public QObject {
    Q_OBJECT

  Q_SIGNALS:
    void value(int);
};

#endif
