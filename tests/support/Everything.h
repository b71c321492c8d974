// An object with a member of every kind that can be transcribed.
#ifndef QZ_TESTS_SUPPORT_EVERYTHING_H
#define QZ_TESTS_SUPPORT_EVERYTHING_H

#include <cstdlib>
#include <cstring>
#include <set>
#include <vector>

#include "util/IntArray.h"
#include "util/StrArray.h"
#include "util/StrSet.h"
#include "util/StrStrDictionary.h"
#include "xdr/Transcriber.h"
#include "xdr/XDRObj.h"

// A base part at an address of its own, with a version of its own.
struct Part : qzXDRObj {
    static qzTypeObj type;
    static unsigned char xdr(void* part, qzTranscriber& t) {
        Part& self = *static_cast<Part*>(part);
        return t.xdr(&self.weight, 1) && self.name.xdr(t) && self.names.xdr(t) &&
               self.dictionary.xdr(t);
    }
    qzTypeObj& getTypeObj() const override { return type; }
    double weight = 0;
    qzStr name;
    qzStrArray names;
    qzStrStrDictionary dictionary;
};

// Members only point: destroyAll() frees each object and array once, whoever
// shares it.
struct Everything : qzXDRObj {
    static qzTypeObj type;
    static std::vector<Everything*>& made() {
        static std::vector<Everything*> all;
        return all;
    }
    static Everything* make() {
        made().push_back(new Everything);
        return made().back();
    }
    static void destroyAll() {
        std::set<void*> arrays;
        for (Everything* object : made()) {
            arrays.insert({object->chars, object->shorts, object->ints, object->longs,
                           object->floats, object->doubles, object->text});
            delete object;
        }
        std::vector<Everything*>().swap(made());
        for (void* array : arrays)
            std::free(array);
    }

    qzTypeObj& getTypeObj() const override { return type; }
    unsigned char xdr(qzTranscriber& t) override {
        return t.xdr(&letter, 1) && t.xdr(&small, 1) && t.xdr(&number, 1) && t.xdr(&big, 1) &&
               t.xdr(&ratio, 1) && t.xdr(&n, 1) && t.xdr(&chars, n) && t.xdr(&shorts, n) &&
               t.xdr(&ints, n) && t.xdr(&longs, n) && t.xdr(&floats, n) && t.xdr(&doubles, n) &&
               t.xdr(&text) && string.xdr(t) && t.xdr(strings, 2) &&
               t.xdr(Part::type, this, &part) && t.xdr(Part::type, this, &part) &&
               t.xdr(&left, left, type, this, nullptr) &&
               t.xdr(&right, right, type, this, nullptr) && intArray.xdr(t) && strArray.xdr(t) &&
               dictionary.xdr(t) && set.xdr(t) && t.xdr(&precise, 1);
    }

    // Sets every value, with arrays of four elements.
    Everything& fillIn() {
        letter = 'q';
        small = -2;
        number = 0x01020304;
        big = -5;
        ratio = 0.5f;
        precise = 0.25;
        n = 4;
        chars = copy<char>({'a', 'b', 'c', 'd'});
        shorts = copy<short>({1, -2, 3, 4});
        ints = copy<int>({10, -20, 30, 40});
        longs = copy<long>({100, -200, 300, 400});
        floats = copy<float>({0.5f, 1, 2, 4});
        doubles = copy<double>({0.25, 8, 16, 32});
        text = strdup("text");
        string = "string";
        strings[1] = "second";
        part.weight = 1.5;
        part.name = "part";
        part.names.append("of a part");
        part.dictionary["part"] = "whole";
        intArray.append(7);
        strArray.append("element");
        dictionary["key"] = "value";
        set.add("member");
        return *this;
    }

    // Looks at all that was read; the same for equal values.
    double sum() const {
        double total = letter + small + double(number) + double(big) + ratio + precise +
                       part.weight + part.name.length() + part.names.length() +
                       part.dictionary.size() + string.length() + strings[1].length() +
                       intArray.length() + strArray.length() + dictionary.size() + set.size();
        for (unsigned i = 0; i < n && chars && shorts && ints && longs && floats && doubles; ++i)
            total +=
                chars[i] + shorts[i] + double(ints[i]) + double(longs[i]) + floats[i] + doubles[i];
        total += text ? double(std::strlen(text)) : -1;
        for (const qzStr* s : {&string, &strings[0], &strings[1]})
            total += double(std::strlen(s->data));
        return total;
    }

    char letter = 0;
    short small = 0;
    int number = 0;
    long big = 0;
    float ratio = 0;
    unsigned n = 0;
    char* chars = nullptr;
    short* shorts = nullptr;
    int* ints = nullptr;
    long* longs = nullptr;
    float* floats = nullptr;
    double* doubles = nullptr;
    char* text = nullptr;
    qzStr string;
    qzStr strings[2];
    Part part;
    Everything* left = nullptr;
    Everything* right = nullptr;
    qzIntArray intArray;
    qzStrArray strArray;
    qzStrStrDictionary dictionary;
    qzStrSet set;
    double precise = 0;

  private:
    template <class T> static T* copy(std::initializer_list<T> values) {
        T* array = static_cast<T*>(std::malloc(values.size() * sizeof(T)));
        std::memcpy(array, values.begin(), values.size() * sizeof(T));
        return array;
    }
};

inline qzTypeObj Part::type("Part", 7, nullptr, nullptr, Part::xdr);
inline qzTypeObj Everything::type(
    "Everything", 3, [](qzTypeObj&) -> void* { return make(); }, nullptr,
    [](void* object, qzTranscriber& t) { return static_cast<Everything*>(object)->xdr(t); });

#endif
