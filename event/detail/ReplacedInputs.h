// qzReplacedInputs: the input channels that lost their name to another one and
// are still held by connections or messages.
//
// Nothing else leads from an object to these channels, which keep delivering to
// it: when its inputs are torn down, they have to go, too.
//
// Ownership: borrows the channels, which leave by themselves when destroyed.
#ifndef QZ_EVENT_DETAIL_REPLACEDINPUTS_H
#define QZ_EVENT_DETAIL_REPLACEDINPUTS_H

class qzInputChannel;
class qzVoidPtrDict;

class qzReplacedInputs {
  public:
    // The channel had a name in these inputs.
    static void add(qzInputChannel* channel, const qzVoidPtrDict* inputs);
    // Forgets one of the inputs' channels and returns it; null when there is none.
    static qzInputChannel* take(const qzVoidPtrDict* inputs);
    static void destroyed(const qzInputChannel* gone) {
        if (first) forget(gone);
    }

  private:
    static void forget(const qzInputChannel* gone);

    struct Entry {
        qzInputChannel* channel;
        const qzVoidPtrDict* inputs;
        Entry* next;
    };
    // Takes the first entry out for which the condition holds.
    template <class Condition> static qzInputChannel* takeIf(Condition holds);

    static Entry* first;
};

#endif
