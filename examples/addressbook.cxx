// addressbook FILE: saves a graph of objects in the file and reads it back. Two
// people know each other and share an address: the circle closes again, and the
// address is still one.
#include <cstdio>

#include "event/GlobalOrder.h"
#include "util/StrArray.h"
#include "xdr/BinaryGraphWriter.h"
#include "xdr/StdioStream.h"

extern qzTypeObj Address_type;
extern qzTypeObj Person_type;

class Address : public qzXDRObj {
  public:
    explicit Address(const qzStr& street = qzStr()) : street(street) {}
    unsigned char xdr(qzTranscriber& t) override { return t.xdr(&street, 1); }
    qzTypeObj& getTypeObj() const override { return Address_type; }

    qzStr street;
};

class Person : public qzXDRObj {
  public:
    Person() {}
    Person(const qzStr& name, Address* home) : name(name), home(home) {}
    // Writing and reading alike. The pointers are set once all has been read.
    unsigned char xdr(qzTranscriber& t) override {
        return t.xdr(&name, 1) && phones.xdr(t) &&
               t.xdr(&home, home, Address_type, this, nullptr) &&
               t.xdr(&knows, knows, Person_type, this, nullptr);
    }
    qzTypeObj& getTypeObj() const override { return Person_type; }

    qzStr name;
    qzStrArray phones;
    Address* home = nullptr;
    Person* knows = nullptr;
};

template <class T> void* create(qzTypeObj&) { return new T; }
template <class T> void destroy(void* object) { delete static_cast<T*>(object); }
template <class T> unsigned char transcribe(void* object, qzTranscriber& t) {
    return static_cast<T*>(object)->xdr(t);
}

qzTypeObj Address_type("Address", 1, create<Address>, destroy<Address>, transcribe<Address>);
qzTypeObj Person_type("Person", 1, create<Person>, destroy<Person>, transcribe<Person>);

bool save(Person* root, const char* path) {
    std::FILE* const file = std::fopen(path, "w"); // a new file, or an empty one
    if (!file) return false;
    qzTranscriber* const writer =
        qzTranscriber::getWriter(new qzStdioStream(file, qzStream::qzST_Write));
    const bool saved = writer && writer->writeObject(root, root);
    delete writer;
    return saved;
}

// The reference keeps the stream until here when no reader comes to own it.
Person* load(const char* path) {
    qzStream* const stream = new qzStdioStream(path, qzStream::qzST_Read);
    stream->addRef();
    qzTranscriber* const reader = qzTranscriber::getReader(stream);
    void* const root = reader ? reader->readObject(Person_type) : nullptr;
    delete reader;
    stream->delRef();
    return static_cast<Person*>(root);
}

void show(const Person& person) {
    std::printf("%s, %s, knows %s\n", person.name.c_str(), person.home->street.c_str(),
                person.knows->name.c_str());
    for (unsigned i = 0; i < person.phones.length(); ++i)
        std::printf("    %s\n", person.phones[i].c_str());
}

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: addressbook FILE\n", stderr);
        return 2;
    }
    qzInitializeToolkit(); // registers the reader
    qzTranscriber::changeDefaultWriter(makeGraphWriter);

    Address house("12 High Street");
    Person ann("Ann", &house);
    Person bob("Bob", &house);
    ann.knows = &bob;
    bob.knows = &ann;
    ann.phones.append("555 0101");
    ann.phones.append("555 0102");

    Person* const copy = save(&ann, argv[1]) ? load(argv[1]) : nullptr;
    if (!copy) {
        std::fprintf(stderr, "addressbook: cannot save or load %s\n", argv[1]);
        return 1;
    }
    Person* const other = copy->knows;
    show(*copy);
    show(*other);
    std::printf("the circle %s, the address is %s\n", other->knows == copy ? "closes" : "is open",
                other->home == copy->home ? "shared" : "copied");
    delete copy->home;
    delete other;
    delete copy;
}
