// Inputs: everything that is to be read, some ninety of it at a time.
//
// Input "look", for a timer: asks those that sleep whether there is more to read.
// Output "ended", a void value behind the last lines.
#ifndef QZ_TOOLS_QZWATCH_INPUTS_H
#define QZ_TOOLS_QZWATCH_INPUTS_H

#include "event/Obj.h"
#include "util/StrArray.h"
#include "util/VoidPtrArray.h"

namespace qzwatch {

class Reader;

class Inputs : public qzObj {
  public:
    Inputs(const qzStrArray& paths, bool follow);
    ~Inputs() override;
    const char* className() const override { return "Inputs"; }

    // An object whose input "lines" all lines go to.
    void addReceiver(qzObj* receiver) { receivers.append(receiver); }
    // Whether somebody may come to sleep.
    bool needLooks() const;
    void start();
    // All of it, as the end of the inputs does.
    void finish();

  private:
    static void sweep(Inputs* inputs) { inputs->dropEnded(); }
    static void relieve(Inputs* inputs) { inputs->completeLongest(); }
    static void look(Inputs* inputs) { inputs->lookForNews(); }
    Reader& reader(unsigned i) const { return *static_cast<Reader*>(readers[i]); }
    unsigned awake() const;
    bool open(const qzStr& path);
    bool hasRoomLater(int error) const;
    void dropEnded();
    void completeLongest();
    void lookForNews();
    void takeTurns();

    const qzStrArray paths;
    const bool follow;
    unsigned next = 0;      // of the paths
    qzVoidPtrArray readers; // Reader*, owned
    qzVoidPtrArray receivers;
    qzOutputChannel* const ended;
};

} // namespace qzwatch

#endif
