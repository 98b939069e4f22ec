// The part of the Python module that runs for each value that is asked for as an attribute. It is
// optional: pgkit/_bases.py has the same classes in Python, and says what they are for.
//
// Only the stable interface of Python 3.9 and later is used, so that one build serves all of them.
// No function of the library is called: what is needed is in the blocks that it gave
// (bulk_values.h).
#define PY_SSIZE_T_CLEAN
#define Py_LIMITED_API 0x03090000
#include <Python.h>
#include <structmember.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "pgkit/bulk_values.h"

namespace {

// Of what this file and pgkit/_bases.py agree upon.
constexpr long kInterface = 1;

// What the module told. Only the main interpreter imports it.
PyObject* tagsOfNames = nullptr;  // dict of the names of attributes: tags as blocks have them
PyObject* personName = nullptr;   // the class
PyObject* blockText = nullptr;    // "block"
PyObject* valueOfText = nullptr;  // "_value_of"
PyTypeObject* levelType = nullptr;
// What the values of a VR are, by its code: see set_up.
char kindsOfVrs[256] = {};

struct Level {
    PyObject_HEAD PyObject* values;
    PyObject* block;
    PyObject* stale;
};

struct Item {
    PyObject_HEAD PyObject* level;
};

template <typename T>
T Load(const char* bytes) {
    T value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

// ---- Values -------------------------------------------------------------------------------------

PyObject* ValueOfText(const char* text, Py_ssize_t size, char kind) {
    constexpr std::string_view kKinds = "twnZR";
    if (kKinds.find(kind) == std::string_view::npos) return nullptr;
    const auto length = static_cast<size_t>(size);
    if (std::memchr(text, '\\', length) != nullptr || std::memchr(text, 0, length) != nullptr) {
        return nullptr;
    }
    while (kind == 't' && size > 0 && *text == ' ') {
        ++text;
        --size;
    }
    PyObject* const whole = PyUnicode_DecodeUTF8(text, size, nullptr);
    if (whole == nullptr || kind == 't' || kind == 'w') return whole;
    PyObject* const type = kind == 'n'   ? personName
                           : kind == 'Z' ? reinterpret_cast<PyObject*>(&PyLong_Type)
                                         : reinterpret_cast<PyObject*>(&PyFloat_Type);
    PyObject* const value = PyObject_CallFunctionObjArgs(type, whole, nullptr);
    Py_DECREF(whole);
    // Python tells where the text is that is no number.
    if (value == nullptr && PyErr_ExceptionMatches(PyExc_ValueError) != 0) PyErr_Clear();
    return value;
}

template <typename T>
bool IsOne(Py_ssize_t size) {
    return size == static_cast<Py_ssize_t>(sizeof(T));
}

PyObject* ValueOfNumber(const char* bytes, Py_ssize_t size, char kind) {
    switch (kind) {
        case 'H':
            return IsOne<uint16_t>(size) ? PyLong_FromLong(Load<uint16_t>(bytes)) : nullptr;
        case 'h':
            return IsOne<int16_t>(size) ? PyLong_FromLong(Load<int16_t>(bytes)) : nullptr;
        case 'I':
            return IsOne<uint32_t>(size) ? PyLong_FromUnsignedLong(Load<uint32_t>(bytes)) : nullptr;
        case 'i':
            return IsOne<int32_t>(size) ? PyLong_FromLong(Load<int32_t>(bytes)) : nullptr;
        case 'Q':
            return IsOne<uint64_t>(size) ? PyLong_FromUnsignedLongLong(Load<uint64_t>(bytes))
                                         : nullptr;
        case 'q':
            return IsOne<int64_t>(size) ? PyLong_FromLongLong(Load<int64_t>(bytes)) : nullptr;
        case 'f':
            return IsOne<float>(size) ? PyFloat_FromDouble(Load<float>(bytes)) : nullptr;
        case 'd':
            return IsOne<double>(size) ? PyFloat_FromDouble(Load<double>(bytes)) : nullptr;
        default:
            return nullptr;
    }
}

// The value of an element that has exactly one; null without an error where it takes more to say
// what the value is.
PyObject* OneValue(const char* block, Py_ssize_t size, const PgxElementRecord& record) {
    if (record.size == 0 || record.valueRep >= sizeof kindsOfVrs) return nullptr;
    if (record.offset > size || record.size > size - record.offset) return nullptr;
    const char kind = kindsOfVrs[record.valueRep];
    const char* const bytes = block + record.offset;
    if (record.kind == PGX_VALUE_TEXT) return ValueOfText(bytes, record.size, kind);
    return record.kind == PGX_VALUE_BYTES ? ValueOfNumber(bytes, record.size, kind) : nullptr;
}

// The record of the first element of a tag; false when there is none.
bool FindRecord(const char* block, Py_ssize_t size, uint32_t tag, PgxElementRecord& record) {
    const auto count = size_t{Load<PgxLevelHeader>(block).count};
    const size_t records = (sizeof(PgxLevelHeader) + count * sizeof tag + 7) / 8 * 8;
    if (records + count * sizeof record > static_cast<size_t>(size)) return false;
    for (size_t i = 0; i < count; ++i) {
        if (Load<uint32_t>(block + sizeof(PgxLevelHeader) + i * sizeof tag) != tag) continue;
        record = Load<PgxElementRecord>(block + records + i * sizeof record);
        return true;
    }
    return false;
}

// ---- Attributes ---------------------------------------------------------------------------------

// The value of an attribute; null without an error where Python has to look closer. A new
// reference.
PyObject* ValueInBlock(Level& level, PyObject* name, uint32_t tag) {
    if (level.values == nullptr || PyDict_Check(level.values) == 0) return nullptr;
    PyObject* const known = PyDict_GetItemWithError(level.values, name);
    if (known != nullptr || PyErr_Occurred() != nullptr) {
        Py_XINCREF(known);
        return known;
    }
    if (level.stale != nullptr && level.stale != Py_None) return nullptr;
    if (level.block == nullptr || level.block == Py_None) {
        auto* const self = reinterpret_cast<PyObject*>(&level);
        PyObject* const read = PyObject_CallMethodObjArgs(self, blockText, nullptr);
        if (read == nullptr) return nullptr;
        Py_DECREF(read);
    }
    char* block = nullptr;
    Py_ssize_t size = 0;
    if (level.block == nullptr || PyBytes_AsStringAndSize(level.block, &block, &size) != 0)
        return nullptr;
    PgxElementRecord record;
    if (size < static_cast<Py_ssize_t>(sizeof(PgxLevelHeader))) return nullptr;
    if (!FindRecord(block, size, tag, record)) {
        return PyErr_Format(PyExc_AttributeError, "the data set has no %U", name);
    }
    PyObject* const value = OneValue(block, size, record);
    if (value != nullptr && PyDict_SetItem(level.values, name, value) != 0) {
        Py_DECREF(value);
        return nullptr;
    }
    return value;
}

PyObject* GetAttribute(PyObject* self, PyObject* name) {
    PyObject* const tag = PyDict_GetItemWithError(tagsOfNames, name);
    if (tag != nullptr) {
        PyObject* const level = reinterpret_cast<Item*>(self)->level;
        const char* const bytes = PyBytes_AsString(tag);
        if (bytes == nullptr) return nullptr;
        if (level != nullptr && PyObject_TypeCheck(level, levelType)) {
            auto& known = *reinterpret_cast<Level*>(level);
            PyObject* const value = ValueInBlock(known, name, Load<uint32_t>(bytes));
            if (value != nullptr || PyErr_Occurred() != nullptr) return value;
        }
    } else {
        if (PyErr_Occurred() != nullptr) return nullptr;
        PyObject* const found = PyObject_GenericGetAttr(self, name);
        if (found != nullptr || PyErr_ExceptionMatches(PyExc_AttributeError) == 0) return found;
        PyErr_Clear();
    }
    return PyObject_CallMethodObjArgs(self, valueOfText, name, nullptr);
}

// ---- Types --------------------------------------------------------------------------------------

void Free(PyObject* self) {
    PyTypeObject* const type = Py_TYPE(self);
    reinterpret_cast<freefunc>(PyType_GetSlot(type, Py_tp_free))(self);
    Py_DECREF(type);
}

void FreeLevel(PyObject* self) {
    auto* const level = reinterpret_cast<Level*>(self);
    Py_CLEAR(level->values);
    Py_CLEAR(level->block);
    Py_CLEAR(level->stale);
    Free(self);
}

void FreeItem(PyObject* self) {
    Py_CLEAR(reinterpret_cast<Item*>(self)->level);
    Free(self);
}

PyMemberDef levelMembers[] = {
    {"values", T_OBJECT_EX, offsetof(Level, values), 0, nullptr},
    {"_block", T_OBJECT_EX, offsetof(Level, block), 0, nullptr},
    {"_stale", T_OBJECT_EX, offsetof(Level, stale), 0, nullptr},
    {nullptr, 0, 0, 0, nullptr},
};

PyMemberDef itemMembers[] = {
    {"_level", T_OBJECT_EX, offsetof(Item, level), 0, nullptr},
    {nullptr, 0, 0, 0, nullptr},
};

PyType_Slot levelSlots[] = {
    {Py_tp_members, levelMembers},
    {Py_tp_dealloc, reinterpret_cast<void*>(&FreeLevel)},
    {0, nullptr},
};

PyType_Slot itemSlots[] = {
    {Py_tp_members, itemMembers},
    {Py_tp_dealloc, reinterpret_cast<void*>(&FreeItem)},
    {Py_tp_getattro, reinterpret_cast<void*>(&GetAttribute)},
    {0, nullptr},
};

constexpr unsigned kTypeFlags = Py_TPFLAGS_DEFAULT | Py_TPFLAGS_BASETYPE;
PyType_Spec levelSpec = {"pgkit._speed.LevelBase", sizeof(Level), 0, kTypeFlags, levelSlots};
PyType_Spec itemSpec = {"pgkit._speed.ItemBase", sizeof(Item), 0, kTypeFlags, itemSlots};

// ---- The module ---------------------------------------------------------------------------------

void Replace(PyObject*& held, PyObject* with) {
    PyObject* const former = held;
    Py_INCREF(with);
    held = with;
    Py_XDECREF(former);
}

PyObject* SetUp(PyObject*, PyObject* arguments) {
    const char* kinds = nullptr;
    Py_ssize_t size = 0;
    PyObject* tags = nullptr;
    PyObject* nameClass = nullptr;
    if (PyArg_ParseTuple(arguments, "O!Oy#", &PyDict_Type, &tags, &nameClass, &kinds, &size) == 0)
        return nullptr;
    if (size != sizeof kindsOfVrs) return PyErr_Format(PyExc_ValueError, "kinds are 256 bytes");
    std::memcpy(kindsOfVrs, kinds, sizeof kindsOfVrs);
    Replace(tagsOfNames, tags);
    Replace(personName, nameClass);
    Py_RETURN_NONE;
}

PyMethodDef functions[] = {
    {"set_up", &SetUp, METH_VARARGS,
     "set_up(tags, person_name, kinds): the names of attributes with their tags as bytes, a dict "
     "that\n"
     "may grow; the class of names of people; and a character for the code of each VR: t text, w "
     "text\n"
     "in which leading blanks count, n name, Z integer and R decimal in a text, those of the "
     "module\n"
     "struct for numbers, and - for what Python decodes."},
    {nullptr, nullptr, 0, nullptr},
};

PyModuleDef moduleDefinition = {
    PyModuleDef_HEAD_INIT,
    "pgkit._speed",
    "Values as attributes.",
    -1,
    functions,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
};

// Adds a type to a module, and gives it; null when that fails.
PyObject* AddType(PyObject* module, const char* name, PyType_Spec& spec) {
    PyObject* const type = PyType_FromSpec(&spec);
    if (type == nullptr) return nullptr;
    Py_INCREF(type);  // for the module
    if (PyModule_AddObject(module, name, type) == 0) return type;
    Py_DECREF(type);
    Py_DECREF(type);
    return nullptr;
}

bool Fill(PyObject* module) {
    tagsOfNames = PyDict_New();
    blockText = PyUnicode_InternFromString("block");
    valueOfText = PyUnicode_InternFromString("_value_of");
    if (tagsOfNames == nullptr || blockText == nullptr || valueOfText == nullptr) return false;
    if (PyModule_AddIntConstant(module, "INTERFACE", kInterface) != 0) return false;
    PyObject* const level = AddType(module, "LevelBase", levelSpec);
    levelType = reinterpret_cast<PyTypeObject*>(level);
    return level != nullptr && AddType(module, "ItemBase", itemSpec) != nullptr;
}

}  // namespace

// Python makes the name of that of the module.
// NOLINTBEGIN(bugprone-reserved-identifier)
PyMODINIT_FUNC PyInit__speed();

PyMODINIT_FUNC PyInit__speed() {
    PyObject* const module = PyModule_Create(&moduleDefinition);
    if (module == nullptr || Fill(module)) return module;
    Py_DECREF(module);
    return nullptr;
}
// NOLINTEND(bugprone-reserved-identifier)
