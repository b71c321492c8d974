// qzObj: base of every object that takes part in the dataflow.
//
// An object carries properties (values by tag, attached at run time), named
// inputs that receive values and named outputs that send them. Outputs are
// connected to inputs by name:
//
//     ticks = sender.addOutput("ticks", qzDT_int);
//     receiver.addInput("count", qzDT_float, &receiver, (void (*)())onCount, 0);
//     sender.connect("ticks", &receiver, "count");
//     sender.sendInt(ticks, 3, qzObj::qzSF_Queued);
//
// Ownership: holds one reference on each of its properties. Inputs and outputs
//     are kept in two of them, so an object without any costs a null pointer.
//     A copy has no properties.
// Errors: names that nobody has added are ignored.
// Cost: a property is found by binary search, a name by a linear one. What a
//     send costs is in event/EventHandler.h.
//
// Every operation may be called from receivers, deleters and destructors, those
// that it runs itself included. No message reaches an input once the object has
// gone, or once the input has been removed.
#ifndef QZ_EVENT_OBJ_H
#define QZ_EVENT_OBJ_H

#include "xdr/XDRObj.h"

class qzData;
class qzInputChannel;
class qzOutputChannel;
class qzProperty;
class qzVoidPtrArray;
class qzVoidPtrDict;

class QZ_EXPORT qzObj : public qzXDRObj {
  public:
    enum qzSendFlags {
        qzSF_Queued = 0,    // through the queue, at its tail
        qzSF_Immediate = 1, // within the call
        qzSF_Urgent = 2     // through the queue, at its head
    };

    qzObj() : properties(nullptr) {}
    explicit qzObj(qzTypeObj& type) : qzXDRObj(type), properties(nullptr) {}
    qzObj(const qzObj& other) : qzXDRObj(other), properties(nullptr) {}
    qzObj& operator=(const qzObj&) = delete;

    // slot 1; slots 2-6 are qzXDRObj's
    ~qzObj() override {
        if (properties) destroyProperties();
    }
    // slots 7-9
    // Connects this object's output to the target's input, converting on the
    // way where the types differ; fatal when that is not possible. Does nothing
    // when they are connected.
    virtual void connect(const char* outputName, qzObj* target, const char* inputName);
    virtual void disconnect(const char* outputName, qzObj* target, const char* inputName);
    // Ends the process, naming the class and the method.
    virtual void subClassMustDefine(const char* method) const;

    // For classes that have an order; this one has none and ends the process.
    int compare(const qzObj* other) const;

    // Properties, at most one with a tag. The index is the position in the
    // order of tags or, when there is none, that of a neighbour; 0 for an
    // unknown name.
    qzProperty* findProperty(unsigned short tag, unsigned* index = nullptr) const;
    qzProperty* findProperty(const char* name, unsigned* index = nullptr) const;
    unsigned char containsProperty(unsigned short tag) const {
        return findProperty(tag) != nullptr;
    }
    unsigned char containsProperty(const char* name) const { return findProperty(name) != nullptr; }
    // The i-th in the order of tags; null when there never was any.
    qzProperty* getProperty(unsigned i) const;
    unsigned getNumberOfProperties() const;
    // Takes a reference on the property, which replaces one with its tag.
    void setProperty(qzProperty* property);
    void removeProperty(unsigned short tag);
    void removeProperty(const char* name);
    void removeAllProperties();

    // Inputs and outputs. Deliberate: an input that is added under a name in use
    // takes the name only; the old one stays connected and gets what has been
    // queued for it, so that a receiver can be exchanged without losing values.
    // Pinned by Reentrancy.RandomProgramsAgreeWithTheModel.
    qzInputChannel* addInput(const char* name, unsigned short type, void* object,
                             void (*function)(), unsigned char coalesce);
    // An output under a name in use is destroyed.
    qzOutputChannel* addOutput(const char* name, unsigned short type);
    void removeInput(const char* name);
    void removeOutput(const char* name);

    // Sending on an output of this object. Takes the data.
    void sendData(qzOutputChannel* output, qzData* data, qzSendFlags how);
    void sendVoid(qzOutputChannel* output, qzSendFlags how);
    void sendBool(qzOutputChannel* output, unsigned char value, qzSendFlags how);
    void sendInt(qzOutputChannel* output, int value, qzSendFlags how);
    void sendLong(qzOutputChannel* output, long value, qzSendFlags how);
    void sendFloat(qzOutputChannel* output, float value, qzSendFlags how);
    void sendDouble(qzOutputChannel* output, double value, qzSendFlags how);
    // Sends a copy of the text.
    void sendCharPtr(qzOutputChannel* output, const char* text, qzSendFlags how);

    // The names of the two properties that hold the channels by name, each a
    // qzVoidPtrDict.
    static const char inputs[];
    static const char outputs[];

  protected:
    qzOutputChannel* findOutput(const char* name) const; // or null

  private:
    void destroyProperties();
    template <class Data, class... Value>
    void sendValue(qzOutputChannel* output, qzSendFlags how, Value... value);
    static unsigned short channelsTag(const char* propertyName); // or noTag
    qzProperty* findChannels(const char* propertyName) const;    // or null
    qzVoidPtrDict* channels(const char* propertyName) const;     // or null
    qzVoidPtrDict& makeChannels(const char* propertyName, void (*deleter)(void*));

    qzVoidPtrArray* properties; // qzProperty*, ascending by tag; null until the first
};

static_assert(sizeof(void*) != 4 || sizeof(qzObj) == 12, "derived classes start behind it");

#endif
