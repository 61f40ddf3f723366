// Converts messages to records and back, and calls the library with the records: what _codec.py does, compiled.
//
// It includes no header of the library. Where members lie, and the addresses of functions, come from Python.
#define PY_SSIZE_T_CLEAN
#define Py_LIMITED_API 0x030b0000
#include <Python.h>
#include <limits.h>
#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>
#include <structmember.h>

// --- The memory of one call: blocks one after the other, released together, up to a limit ---

typedef struct chunk {
  struct chunk *next;
  max_align_t bytes[];
} chunk;

typedef struct {
  chunk *chunks;
  char *at, *end;
  size_t left;  // for the library: what the limit leaves
  max_align_t first[512];
} arena;

static void open_arena(arena *memory, size_t limit) {
  memory->chunks = NULL;
  memory->at = (char *)memory->first;
  memory->end = memory->at + sizeof memory->first;
  memory->left = limit;
}

static void close_arena(arena *memory) {
  while (memory->chunks != NULL) {
    chunk *const last = memory->chunks;
    memory->chunks = last->next;
    free(last);
  }
}

static void *take(arena *memory, size_t size) {
  if (size > SIZE_MAX / 4) return NULL;
  size = (size + 7) & ~(size_t)7;
  if (size > (size_t)(memory->end - memory->at)) {
    const size_t capacity = size > 65536 ? size : 65536;
    chunk *const more = malloc(sizeof *more + capacity);
    if (more == NULL) return NULL;
    more->next = memory->chunks;
    memory->chunks = more;
    memory->at = (char *)more->bytes;
    memory->end = memory->at + capacity;
  }
  void *const block = memory->at;
  memory->at += size;
  return block;
}

static void *take_zeroed(arena *memory, size_t count, size_t size) {
  void *const block = count <= SIZE_MAX / size ? take(memory, count * size) : NULL;
  if (block == NULL) return PyErr_NoMemory();
  return memset(block, 0, count * size);
}

// The allocator that the library is given.
static void *allocate(size_t size, void *context) {
  arena *const memory = context;
  if (size > memory->left) return NULL;
  memory->left -= size;
  return take(memory, size);
}

// --- What is known of a class ---

// In the order of KINDS.
enum kind { flag, integer, string, bytes, integer_list, message_list, nested };

typedef int decode_function(void *, const unsigned char *, size_t, void *(*)(size_t, void *), void *);
typedef int decode_function_with_options(void *, const unsigned char *, size_t, void *(*)(size_t, void *), void *,
                                         uint32_t);
typedef size_t encode_function(const void *, unsigned char *, size_t, void *, uint32_t *);
typedef size_t encode_function_with_options(const void *, unsigned char *, size_t, void *, uint32_t *, uint32_t);
typedef int compare_function(const void *, const void *);

typedef struct codec codec;

typedef struct {
  PyObject *name;
  enum kind kind;
  unsigned bits;
  bool is_signed;
  size_t offset, count;  // of the members in the record
  codec *child;
} row;

struct codec {
  PyObject_HEAD PyTypeObject *class;
  size_t size, presence, presence_size;
  uintptr_t decode, encode, compare;
  bool takes_options;
  Py_ssize_t row_count;
  row *rows;
};

// A long list of integers that has been decoded and not been looked at: its elements as they are in the record.
typedef struct unread_list {
  struct unread_list *next;
  PyObject *name;
  size_t count, size;  // of the elements, and of each
  uint64_t elements[];
} unread_list;

// A message: its dictionary holds the present fields, except those that are unread lists. Every way to the dictionary
// leads through `fields_of`, which makes them lists first; only attributes that are found in it are read without it.
typedef struct {
  PyObject_HEAD PyObject *fields;
  PyObject *weak_references;
  PyObject *implicit;
  unread_list *unread;
} message;

static PyObject *empty_message(codec *type) {
  message *const made = (message *)PyType_GenericAlloc(type->class, 0);
  if (made == NULL) return NULL;
  made->fields = PyDict_New();
  if (made->fields != NULL) return (PyObject *)made;
  Py_DECREF(made);
  return NULL;
}

static bool set_integers(PyObject *list, const char *at, size_t count, size_t size);

static void drop_first_unread(message *of) {
  unread_list *const first = of->unread;
  of->unread = first->next;
  Py_DECREF(first->name);
  PyMem_Free(first);
}

// Makes lists of what is unread. Only making an empty list can start the garbage collector, and so code in Python that
// looks at this message.
static bool read_lists(message *of) {
  while (of->unread != NULL) {
    unread_list *const first = of->unread;
    PyObject *const list = PyList_New((Py_ssize_t)first->count);
    if (list == NULL) return false;
    bool is_done = true;
    if (of->unread == first) {
      is_done = set_integers(list, (const char *)first->elements, first->count, first->size) &&
                PyDict_SetItem(of->fields, first->name, list) == 0;
      if (is_done) drop_first_unread(of);
    }
    Py_DECREF(list);
    if (!is_done) return false;
  }
  return true;
}

static bool is_of_class(codec *type, PyObject *value) {
  if (Py_TYPE(value) == type->class) return true;
  PyErr_SetString(PyExc_TypeError, "a message of another class");
  return false;
}

// The dictionary of a message of this class, or null with an exception.
static PyObject *fields_of(codec *type, PyObject *value) {
  if (!is_of_class(type, value)) return NULL;
  message *const of = (message *)value;
  if (of->fields == NULL) of->fields = PyDict_New();
  return of->fields != NULL && read_lists(of) ? of->fields : NULL;
}

// The row of a name, searched from where the last one was found: names are mostly the same objects, in this order.
static const row *row_of(codec *type, PyObject *name, Py_ssize_t *last) {
  for (Py_ssize_t tried = 0; tried < type->row_count; ++tried) {
    if (*last == type->row_count) *last = 0;
    const row *const found = &type->rows[(*last)++];
    if (found->name == name) return found;
  }
  for (Py_ssize_t i = 0; i < type->row_count; ++i) {
    if (PyUnicode_Check(name) && PyUnicode_Compare(type->rows[i].name, name) == 0) return &type->rows[i];
  }
  PyErr_SetString(PyExc_AttributeError, "no such field");
  return NULL;
}

static uint32_t bit_of(codec *type, const row *field) { return (uint32_t)1 << (field - type->rows); }

static uint64_t load(const char *at, size_t size) {
  uint64_t whole;
  uint32_t half;
  uint16_t quarter;
  switch (size) {
    case 8:
      memcpy(&whole, at, 8);
      return whole;
    case 4:
      memcpy(&half, at, 4);
      return half;
    case 2:
      memcpy(&quarter, at, 2);
      return quarter;
    default:
      return *(const unsigned char *)at;
  }
}

static void store(char *at, uint64_t value, size_t size) {
  const uint32_t half = (uint32_t)value;
  const uint16_t quarter = (uint16_t)value;
  switch (size) {
    case 8:
      memcpy(at, &value, 8);
      break;
    case 4:
      memcpy(at, &half, 4);
      break;
    case 2:
      memcpy(at, &quarter, 2);
      break;
    default:
      *(unsigned char *)at = (unsigned char)value;
  }
}

static void *load_pointer(const char *at) {
  void *pointer;
  memcpy(&pointer, at, sizeof pointer);
  return pointer;
}

static void store_pointer(char *at, const void *pointer) { memcpy(at, &pointer, sizeof pointer); }

// --- Records to messages ---

// Lists of fewer integers are made at once: keeping them would take as long.
enum { LONG_LIST = 64 };

typedef struct {
  const char *start;  // of the input
  PyObject *view;     // of the input in reference mode, else null
  bool is_partial;    // decoding failed
} source;

static PyObject *read_message(codec *type, const char *record, const source *from);

// Sets the elements of a new list: unsigned integers of 8 or 32 bits.
static bool set_integers(PyObject *list, const char *at, size_t count, size_t size) {
  for (size_t i = 0; i < count; ++i) {
    const uint64_t number = load(at + i * size, size);
    PyObject *const element =
        number <= LONG_MAX ? PyLong_FromLong((long)number) : PyLong_FromUnsignedLong((unsigned long)number);
    if (element == NULL || PyList_SetItem(list, (Py_ssize_t)i, element) != 0) return false;
  }
  return true;
}

static PyObject *read_integers(const row *field, const char *at, size_t count) {
  PyObject *list = PyList_New((Py_ssize_t)count);
  if (list != NULL && !set_integers(list, at, count, field->bits / 8)) Py_CLEAR(list);
  return list;
}

// Keeps a list of integers as it is in the record.
static bool keep_integers(const row *field, const char *record, message *made) {
  const size_t count = load(record + field->count, 4), size = field->bits / 8;
  unread_list *const kept = PyMem_Malloc(sizeof *kept + count * size);
  if (kept == NULL) return PyErr_NoMemory() != NULL;
  kept->next = made->unread;
  kept->name = Py_NewRef(field->name);
  kept->count = count;
  kept->size = size;
  memcpy(kept->elements, load_pointer(record + field->offset), count * size);
  made->unread = kept;
  return true;
}

static PyObject *read_messages(const row *field, const char *at, size_t count, const source *from) {
  codec *const child = field->child;
  PyObject *const list = PyList_New((Py_ssize_t)count);
  for (size_t i = 0; list != NULL && i < count; ++i) {
    PyObject *const element = read_message(child, at + i * child->size, from);
    if (element == NULL || PyList_SetItem(list, (Py_ssize_t)i, element) != 0) {
      Py_DECREF(list);
      return NULL;
    }
  }
  return list;
}

static PyObject *read_value(const row *field, const char *record, const source *from) {
  const char *const at = record + field->offset;
  const char *const count = record + field->count;
  switch (field->kind) {
    case flag:
      return PyBool_FromLong(*at != 0);
    case integer:
      if (!field->is_signed) return PyLong_FromUnsignedLongLong(load(at, field->bits / 8));
      return PyLong_FromLongLong(field->bits == 64 ? (int64_t)load(at, 8) : (int32_t)load(at, 4));
    case string: {
      const char *const text = load_pointer(at);
      return PyUnicode_DecodeUTF8(text, (Py_ssize_t)strlen(text), "surrogateescape");
    }
    case bytes: {
      const char *const start = load_pointer(at);
      const Py_ssize_t size = (Py_ssize_t)load(count, 8);
      if (from->view == NULL) return PyBytes_FromStringAndSize(start, size);
      return PySequence_GetSlice(from->view, start - from->start, start - from->start + size);
    }
    case integer_list:
      return read_integers(field, load_pointer(at), load(count, 4));
    case message_list:
      return read_messages(field, load_pointer(at), load(count, 4), from);
    case nested:
      return read_message(field->child, at, from);
  }
  return NULL;
}

// If decoding failed in a nested message, the record holds what was read of it, whether or not its presence bit is set.
static bool is_empty(codec *type, PyObject *value) { return PyDict_Size(fields_of(type, value)) == 0; }

static PyObject *read_message(codec *type, const char *record, const source *from) {
  PyObject *const made = empty_message(type);
  if (made == NULL) return NULL;
  PyObject *const fields = ((message *)made)->fields;
  const uint64_t present = load(record + type->presence, type->presence_size);
  uint64_t candidates = present;
  if (from->is_partial) candidates = ~UINT64_C(0);
  for (Py_ssize_t i = 0; i < type->row_count && candidates >> i != 0; ++i) {
    const row *const field = &type->rows[i];
    const bool is_present = (present >> i & 1) != 0;
    if (!is_present && !(from->is_partial && field->kind == nested)) continue;
    if (field->kind == integer_list && load(record + field->count, 4) >= LONG_LIST) {
      if (!keep_integers(field, record, (message *)made)) goto failed;
      continue;
    }
    PyObject *const value = read_value(field, record, from);
    if (value == NULL) goto failed;
    const int failure = is_present || !is_empty(field->child, value) ? PyDict_SetItem(fields, field->name, value) : 0;
    Py_DECREF(value);
    if (failure != 0) goto failed;
  }
  return made;

failed:
  Py_DECREF(made);
  return NULL;
}

// --- Messages to records. Exceptions say only that something is wrong: Python finds out what ---

// The presence bits of the record, or -1 with an exception.
static int64_t write_message(codec *type, PyObject *value, char *record, arena *memory);

static bool wrong(const char *text) {
  PyErr_SetString(PyExc_TypeError, text);
  return false;
}

static bool get_integer(PyObject *value, unsigned bits, bool is_signed, uint64_t *number) {
  if (!PyLong_Check(value)) return wrong("not an integer");
  if (is_signed) {
    const int64_t whole = PyLong_AsLongLong(value);
    if (whole == -1 && PyErr_Occurred() != NULL) return false;
    *number = (uint64_t)whole;
    if (bits == 64 || (whole >= INT32_MIN && whole <= INT32_MAX)) return true;
  } else {
    *number = PyLong_AsUnsignedLongLong(value);
    if (*number == UINT64_MAX && PyErr_Occurred() != NULL) return false;
    if (bits == 64 || *number >> bits == 0) return true;
  }
  PyErr_SetString(PyExc_OverflowError, "out of range");
  return false;
}

static bool write_string(PyObject *value, char *at, arena *memory) {
  if (!PyUnicode_Check(value)) return wrong("not a string");
  Py_ssize_t size;
  const char *text = PyUnicode_AsUTF8AndSize(value, &size);
  if (text == NULL) {
    // It contains bytes that are not UTF-8.
    PyErr_Clear();
    PyObject *const encoded = PyUnicode_AsEncodedString(value, "utf-8", "surrogateescape");
    if (encoded == NULL) return false;
    size = PyBytes_Size(encoded);
    char *const copy = take_zeroed(memory, (size_t)size + 1, 1);
    if (copy != NULL) memcpy(copy, PyBytes_AsString(encoded), (size_t)size);
    Py_DECREF(encoded);
    if (copy == NULL) return false;
    text = copy;
  }
  if (memchr(text, 0, (size_t)size) != NULL) return wrong("a NUL");
  store_pointer(at, text);
  return true;
}

static bool write_bytes(PyObject *value, char *at, char *count, arena *memory) {
  if (PyBytes_Check(value)) {
    store_pointer(at, PyBytes_AsString(value));
    store(count, (uint64_t)PyBytes_Size(value), 8);
    return true;
  }
  Py_buffer view;
  if (!PyMemoryView_Check(value)) return wrong("not bytes");
  if (PyObject_GetBuffer(value, &view, PyBUF_SIMPLE) != 0) return false;
  char *const copy = take_zeroed(memory, (size_t)view.len + 1, 1);
  if (copy != NULL) {
    memcpy(copy, view.buf, (size_t)view.len);
    store_pointer(at, copy);
    store(count, (uint64_t)view.len, 8);
  }
  PyBuffer_Release(&view);
  return copy != NULL;
}

static bool write_list(const row *field, PyObject *value, char *at, char *count, arena *memory) {
  if (!PyList_Check(value)) return wrong("not a list");
  const Py_ssize_t length = PyList_Size(value);
  if (length == 0) return true;
  codec *const child = field->child;
  const size_t size = child != NULL ? child->size : field->bits / 8;
  if ((uint64_t)length > UINT32_MAX) return PyErr_NoMemory() != NULL;
  char *const elements = take_zeroed(memory, (size_t)length, size);
  if (elements == NULL) return false;
  for (Py_ssize_t i = 0; i < length; ++i) {
    PyObject *const element = PyList_GetItem(value, i);
    if (element == NULL) return false;
    char *const to = elements + (size_t)i * size;
    uint64_t number;
    if (child != NULL) {
      if (write_message(child, element, to, memory) < 0) return false;
    } else {
      if (!get_integer(element, field->bits, field->is_signed, &number)) return false;
      store(to, number, size);
    }
  }
  store_pointer(at, elements);
  store(count, (uint64_t)length, 4);
  return true;
}

// Writes a value and adds its bit to `present`, or fails.
static bool write_value(codec *type, const row *field, PyObject *value, char *record, arena *memory,
                        uint32_t *present) {
  char *const at = record + field->offset;
  char *const count = record + field->count;
  bool is_present = true;
  uint64_t number;
  switch (field->kind) {
    case flag:
      if (!PyBool_Check(value)) return wrong("not a flag");
      *at = value == Py_True;
      break;
    case integer:
      if (!get_integer(value, field->bits, field->is_signed, &number)) return false;
      store(at, number, field->bits / 8);
      break;
    case string:
      if (!write_string(value, at, memory)) return false;
      break;
    case bytes:
      if (!write_bytes(value, at, count, memory)) return false;
      break;
    case integer_list:
    case message_list:
      if (!write_list(field, value, at, count, memory)) return false;
      is_present = load(count, 4) != 0;
      break;
    case nested: {
      const int64_t content = write_message(field->child, value, at, memory);
      if (content < 0) return false;
      is_present = content != 0 || ((message *)value)->implicit != Py_True;
    }
  }
  if (is_present) *present |= bit_of(type, field);
  return true;
}

static bool write_unread(codec *type, const message *value, char *record, arena *memory, uint32_t *present) {
  Py_ssize_t last = 0;
  for (const unread_list *each = value->unread; each != NULL; each = each->next) {
    const row *const field = row_of(type, each->name, &last);
    // A copy, because the list may be read, and released, before the record is.
    char *const elements = field != NULL ? take(memory, each->count * each->size) : NULL;
    if (elements == NULL) return PyErr_NoMemory() != NULL;
    memcpy(elements, each->elements, each->count * each->size);
    store_pointer(record + field->offset, elements);
    store(record + field->count, each->count, 4);
    *present |= bit_of(type, field);
  }
  return true;
}

static int64_t write_message(codec *type, PyObject *value, char *record, arena *memory) {
  uint32_t present = 0;
  if (!is_of_class(type, value) || !write_unread(type, (message *)value, record, memory, &present)) return -1;
  PyObject *const fields = ((message *)value)->fields;
  Py_ssize_t position = 0, last = 0;
  PyObject *name, *each;
  while (fields != NULL && PyDict_Next(fields, &position, &name, &each)) {
    const row *const field = row_of(type, name, &last);
    if (field == NULL || !write_value(type, field, each, record, memory, &present)) return -1;
  }
  store(record + type->presence, present, type->presence_size);
  return present;
}

static char *write_record(codec *type, PyObject *value, arena *memory) {
  char *const record = take_zeroed(memory, 1, type->size);
  return record != NULL && write_message(type, value, record, memory) >= 0 ? record : NULL;
}

// --- Values to messages. What needs to be converted or refused is left to Python ---

static PyObject *ready_message(codec *type, PyObject *value);
static PyObject *fill(codec *type, PyObject *made, PyObject *values);

// A new reference to what is stored; null, perhaps with an exception, if that is not for this function to say.
static PyObject *ready_value(const row *field, PyObject *value) {
  uint64_t number;
  switch (field->kind) {
    case flag:
      return PyBool_Check(value) ? Py_NewRef(value) : NULL;
    case integer:
      if (!PyLong_CheckExact(value) || !get_integer(value, field->bits, field->is_signed, &number)) return NULL;
      return Py_NewRef(value);
    case string:
      if (!PyUnicode_CheckExact(value) || PyUnicode_FindChar(value, 0, 0, PyUnicode_GetLength(value), 1) != -1)
        return NULL;
      return Py_NewRef(value);
    case bytes:
      return PyBytes_CheckExact(value) ? Py_NewRef(value) : NULL;
    case integer_list: {
      if (!PyList_CheckExact(value)) return NULL;
      const Py_ssize_t length = PyList_Size(value);
      for (Py_ssize_t i = 0; i < length; ++i) {
        PyObject *const element = PyList_GetItem(value, i);
        if (!PyLong_CheckExact(element) || !get_integer(element, field->bits, field->is_signed, &number)) return NULL;
      }
      return PyList_GetSlice(value, 0, length);
    }
    case message_list: {
      if (!PyList_CheckExact(value)) return NULL;
      const Py_ssize_t length = PyList_Size(value);
      PyObject *list = PyList_New(length);
      for (Py_ssize_t i = 0; list != NULL && i < length; ++i) {
        PyObject *const element = ready_message(field->child, PyList_GetItem(value, i));
        if (element == NULL || PyList_SetItem(list, i, element) != 0) Py_CLEAR(list);
      }
      return list;
    }
    case nested:
      return ready_message(field->child, value);
  }
  return NULL;
}

// A message made from a dictionary.
static PyObject *ready_message(codec *type, PyObject *value) {
  if (!PyDict_CheckExact(value)) return NULL;
  PyObject *made = empty_message(type);
  if (made == NULL) return NULL;
  PyObject *const rest = fill(type, made, value);
  if (rest != Py_None) Py_CLEAR(made);
  Py_XDECREF(rest);
  return made;
}

// Stores the values that are ready; the others are returned in a dictionary, or None if there are none.
static PyObject *fill(codec *type, PyObject *made, PyObject *values) {
  PyObject *const fields = fields_of(type, made);
  if (fields == NULL) return NULL;
  PyObject *rest = Py_NewRef(Py_None);
  Py_ssize_t position = 0, last = 0;
  PyObject *name, *value;
  while (PyDict_Next(values, &position, &name, &value)) {
    // Any other name could have methods in Python, which change the dictionary.
    if (!PyUnicode_CheckExact(name)) {
      Py_DECREF(rest);
      return PyErr_Format(PyExc_TypeError, "names of fields are strings");
    }
    const row *const field = row_of(type, name, &last);
    PyObject *const ready = field != NULL ? ready_value(field, value) : NULL;
    int failure;
    if (ready != NULL) {
      failure = PyDict_SetItem(fields, field->name, ready);
      Py_DECREF(ready);
    } else {
      PyErr_Clear();
      if (rest == Py_None) {
        Py_DECREF(rest);
        rest = PyDict_New();
        if (rest == NULL) return NULL;
      }
      failure = PyDict_SetItem(rest, name, value);
    }
    if (failure != 0) {
      Py_DECREF(rest);
      return NULL;
    }
  }
  return rest;
}

// --- Messages to dictionaries ---

static PyObject *plain(codec *type, PyObject *of);

static PyObject *plain_messages(codec *type, PyObject *list) {
  const Py_ssize_t length = PyList_Size(list);
  PyObject *result = PyList_New(length);
  for (Py_ssize_t i = 0; result != NULL && i < length; ++i) {
    PyObject *const element = PyList_GetItem(list, i);
    PyObject *const made = element != NULL ? plain(type, element) : NULL;
    if (made == NULL || PyList_SetItem(result, i, made) != 0) Py_CLEAR(result);
  }
  return result;
}

// Adds the value to the dictionary, unless it is absent: an empty list, or an empty message that is there only because
// it was looked at.
static bool add_plain(const row *field, PyObject *value, PyObject *to) {
  PyObject *made;
  bool is_present = true;
  if (field->kind == integer_list || field->kind == message_list) {
    if (!PyList_Check(value)) return wrong("not a list");
    is_present = PyList_Size(value) != 0;
    made = field->kind == integer_list ? PyList_GetSlice(value, 0, PyList_Size(value))
                                       : plain_messages(field->child, value);
  } else if (field->kind == nested) {
    made = plain(field->child, value);
    is_present = made != NULL && (PyDict_Size(made) != 0 || ((message *)value)->implicit != Py_True);
  } else {
    made = Py_NewRef(value);
  }
  if (made == NULL) return false;
  const int failure = is_present ? PyDict_SetItem(to, field->name, made) : 0;
  Py_DECREF(made);
  return failure == 0;
}

static PyObject *plain(codec *type, PyObject *of) {
  PyObject *const fields = fields_of(type, of);
  PyObject *const result = fields != NULL ? PyDict_New() : NULL;
  if (result == NULL) return NULL;
  for (Py_ssize_t i = 0, left = PyDict_Size(fields); left > 0 && i < type->row_count; ++i) {
    PyObject *const value = PyDict_GetItemWithError(fields, type->rows[i].name);
    if (value == NULL && PyErr_Occurred() == NULL) continue;
    if (value == NULL || !add_plain(&type->rows[i], value, result)) {
      Py_DECREF(result);
      return NULL;
    }
    --left;
  }
  return result;
}

// --- The operations ---

static int call_decode(const codec *type, char *record, const Py_buffer *input, arena *memory, uint32_t options) {
  const unsigned char *const start = input->buf;
  const size_t length = (size_t)input->len;
  if (type->takes_options)
    return ((decode_function_with_options *)type->decode)(record, start, length, allocate, memory, options);
  return ((decode_function *)type->decode)(record, start, length, allocate, memory);
}

static size_t call_encode(const codec *type, const char *record, unsigned char *to, size_t length) {
  if (type->takes_options) return ((encode_function_with_options *)type->encode)(record, to, length, NULL, NULL, 0);
  return ((encode_function *)type->encode)(record, to, length, NULL, NULL);
}

// decode(data, reference, limit): the message and the result
static PyObject *codec_decode(PyObject *self, PyObject *const *arguments, Py_ssize_t count) {
  codec *const type = (codec *)self;
  if (count != 3) return PyErr_Format(PyExc_TypeError, "decode takes 3 arguments");
  const int reference = PyObject_IsTrue(arguments[1]);
  if (reference < 0) return NULL;
  size_t limit = SIZE_MAX;
  if (arguments[2] != Py_None) {
    limit = PyLong_AsSize_t(arguments[2]);
    if (limit == SIZE_MAX && PyErr_Occurred() != NULL) return NULL;
  }
  Py_buffer input;
  if (PyObject_GetBuffer(arguments[0], &input, PyBUF_SIMPLE) != 0) return NULL;
  arena memory;
  open_arena(&memory, limit);
  PyObject *made = NULL;
  source from = {input.buf, NULL, false};
  char *const record = take(&memory, type->size);
  if (record == NULL) {
    PyErr_NoMemory();
  } else {
    // Bytes need not be copied twice, unless the limit counts them.
    const uint32_t options = reference > 0 || arguments[2] == Py_None;
    const int result = call_decode(type, record, &input, &memory, options);
    from.is_partial = result != 0;
    if (reference > 0) {
      PyObject *const view = PyMemoryView_FromObject(arguments[0]);
      if (view != NULL) from.view = PyObject_CallMethod(view, "cast", "s", "B");
      Py_XDECREF(view);
    }
    if (reference == 0 || from.view != NULL) made = read_message(type, record, &from);
    Py_XDECREF(from.view);
    if (made != NULL && result != 0) {
      PyObject *const with_result = Py_BuildValue("Ni", made, result);
      made = with_result;
    }
  }
  close_arena(&memory);
  PyBuffer_Release(&input);
  return made;
}

static PyObject *codec_encode(PyObject *self, PyObject *value) {
  codec *const type = (codec *)self;
  arena memory;
  open_arena(&memory, SIZE_MAX);
  PyObject *result = NULL;
  const char *const record = write_record(type, value, &memory);
  if (record != NULL) {
    unsigned char buffer[4096];
    const size_t length = call_encode(type, record, buffer, sizeof buffer);
    if (length <= sizeof buffer) {
      result = PyBytes_FromStringAndSize((const char *)buffer, (Py_ssize_t)length);
    } else if (length > PY_SSIZE_T_MAX) {
      PyErr_NoMemory();
    } else {
      result = PyBytes_FromStringAndSize(NULL, (Py_ssize_t)length);
      if (result != NULL) call_encode(type, record, (unsigned char *)PyBytes_AsString(result), length);
    }
  }
  close_arena(&memory);
  return result;
}

static PyObject *codec_compare(PyObject *self, PyObject *const *arguments, Py_ssize_t count) {
  codec *const type = (codec *)self;
  if (count != 2) return PyErr_Format(PyExc_TypeError, "compare takes 2 arguments");
  arena memory;
  open_arena(&memory, SIZE_MAX);
  const char *const a = write_record(type, arguments[0], &memory);
  const char *const b = a != NULL ? write_record(type, arguments[1], &memory) : NULL;
  PyObject *const result = b != NULL ? PyLong_FromLong(((compare_function *)type->compare)(a, b)) : NULL;
  close_arena(&memory);
  return result;
}

// fill(message, values): see above
static PyObject *codec_fill(PyObject *self, PyObject *const *arguments, Py_ssize_t count) {
  if (count != 2 || !PyDict_Check(arguments[1])) return PyErr_Format(PyExc_TypeError, "fill takes a dictionary");
  return fill((codec *)self, arguments[0], arguments[1]);
}

static PyObject *codec_plain(PyObject *self, PyObject *value) { return plain((codec *)self, value); }

// --- Types ---

static void codec_dealloc(PyObject *self) {
  codec *const type = (codec *)self;
  PyTypeObject *const of = Py_TYPE(self);
  for (Py_ssize_t i = 0; i < type->row_count; ++i) {
    Py_XDECREF(type->rows[i].name);
    Py_XDECREF((PyObject *)type->rows[i].child);
  }
  free(type->rows);
  Py_XDECREF((PyObject *)type->class);
  PyObject_Free(self);
  Py_DECREF(of);
}

// Codec(class, size, presence, presence_size, rows, functions, takes_options)
static PyObject *codec_new(PyTypeObject *of, PyObject *arguments, PyObject *Py_UNUSED(keywords)) {
  PyObject *class, *rows;
  Py_ssize_t size, presence, presence_size;
  unsigned long long decode, encode, compare;
  int takes_options;
  if (!PyArg_ParseTuple(arguments, "OnnnO!(KKK)p", &class, &size, &presence, &presence_size, &PyTuple_Type, &rows,
                        &decode, &encode, &compare, &takes_options))
    return NULL;
  codec *const type = PyObject_New(codec, of);
  if (type == NULL) return NULL;
  type->class = (PyTypeObject *)Py_NewRef(class);
  type->size = (size_t)size;
  type->presence = (size_t)presence;
  type->presence_size = (size_t)presence_size;
  type->decode = (uintptr_t)decode;
  type->encode = (uintptr_t)encode;
  type->compare = (uintptr_t)compare;
  type->takes_options = takes_options != 0;
  type->row_count = 0;
  type->rows = calloc((size_t)PyTuple_Size(rows) + 1, sizeof *type->rows);
  if (type->rows == NULL) goto failed;
  for (Py_ssize_t i = 0; i < PyTuple_Size(rows); ++i) {
    PyObject *name, *child;
    int kind, is_signed;
    unsigned bits;
    Py_ssize_t offset, count;
    if (!PyArg_ParseTuple(PyTuple_GetItem(rows, i), "UiIpnnO", &name, &kind, &bits, &is_signed, &offset, &count,
                          &child))
      goto failed;
    row *const to = &type->rows[type->row_count++];
    Py_INCREF(name);
    PyUnicode_InternInPlace(&name);
    to->name = name;
    to->kind = (enum kind)kind;
    to->bits = bits;
    to->is_signed = is_signed != 0;
    to->offset = (size_t)offset;
    to->count = (size_t)count;
    to->child = child == Py_None ? NULL : (codec *)Py_NewRef(child);
  }
  return (PyObject *)type;

failed:
  if (PyErr_Occurred() == NULL) PyErr_NoMemory();
  Py_DECREF(type);
  return NULL;
}

static PyMethodDef codec_methods[] = {
    {"decode", (PyCFunction)(void (*)(void))codec_decode, METH_FASTCALL, NULL},
    {"encode", codec_encode, METH_O, NULL},
    {"compare", (PyCFunction)(void (*)(void))codec_compare, METH_FASTCALL, NULL},
    {"fill", (PyCFunction)(void (*)(void))codec_fill, METH_FASTCALL, NULL},
    {"plain", codec_plain, METH_O, NULL},
    {NULL, NULL, 0, NULL},
};

static PyMemberDef codec_members[] = {
    {"size", T_PYSSIZET, offsetof(codec, size), READONLY, NULL},
    {NULL, 0, 0, 0, NULL},
};

static PyType_Slot codec_slots[] = {
    {Py_tp_new, codec_new},
    {Py_tp_dealloc, codec_dealloc},
    {Py_tp_methods, codec_methods},
    {Py_tp_members, codec_members},
    {0, NULL},
};

static PyType_Spec codec_spec = {"pavo_zorv._native.Codec", sizeof(codec), 0, Py_TPFLAGS_DEFAULT, codec_slots};

// Messages contain each other without cycles, so that the garbage collector need not know them.
static void message_dealloc(PyObject *self) {
  PyTypeObject *const of = Py_TYPE(self);
  if (((message *)self)->weak_references != NULL) PyObject_ClearWeakRefs(self);
  while (((message *)self)->unread != NULL) drop_first_unread((message *)self);
  Py_CLEAR(((message *)self)->fields);
  Py_CLEAR(((message *)self)->implicit);
  ((freefunc)PyType_GetSlot(of, Py_tp_free))(self);
  Py_DECREF(of);
}

static PyMemberDef message_members[] = {
    {"__dictoffset__", T_PYSSIZET, offsetof(message, fields), READONLY, NULL},
    {"__weaklistoffset__", T_PYSSIZET, offsetof(message, weak_references), READONLY, NULL},
    {"_implicit", T_OBJECT_EX, offsetof(message, implicit), 0, NULL},
    {NULL, 0, 0, 0, NULL},
};

static PyObject *message_dictionary(PyObject *self, void *context) {
  return read_lists((message *)self) ? PyObject_GenericGetDict(self, context) : NULL;
}

static int message_set_dictionary(PyObject *self, PyObject *value, void *context) {
  return read_lists((message *)self) ? PyObject_GenericSetDict(self, value, context) : -1;
}

// Also deletes an attribute.
static int message_set_attribute(PyObject *self, PyObject *name, PyObject *value) {
  return read_lists((message *)self) ? PyObject_GenericSetAttr(self, name, value) : -1;
}

static PyGetSetDef message_getters[] = {
    {"__dict__", message_dictionary, message_set_dictionary, NULL, NULL},
    {NULL, NULL, NULL, NULL, NULL},
};

static PyType_Slot message_slots[] = {
    {Py_tp_dealloc, message_dealloc},
    {Py_tp_members, message_members},
    {Py_tp_getset, message_getters},
    {Py_tp_setattro, message_set_attribute},
    {0, NULL},
};

static PyType_Spec message_spec = {"pavo_zorv._native.Base", sizeof(message), 0,
                                   Py_TPFLAGS_DEFAULT | Py_TPFLAGS_BASETYPE, message_slots};

static int add_types(PyObject *module) {
  PyObject *const of_codecs = PyType_FromModuleAndSpec(module, &codec_spec, NULL);
  if (of_codecs == NULL || PyModule_AddObjectRef(module, "Codec", of_codecs) != 0) return -1;
  Py_DECREF(of_codecs);
  PyObject *const of_messages = PyType_FromModuleAndSpec(module, &message_spec, NULL);
  if (of_messages == NULL || PyModule_AddObjectRef(module, "Base", of_messages) != 0) return -1;
  Py_DECREF(of_messages);
  return 0;
}

static PyModuleDef_Slot module_slots[] = {{Py_mod_exec, add_types}, {0, NULL}};

static PyModuleDef module = {PyModuleDef_HEAD_INIT, "_native", NULL, 0, NULL, module_slots, NULL, NULL, NULL};

PyMODINIT_FUNC PyInit__native(void);
PyMODINIT_FUNC PyInit__native(void) { return PyModuleDef_Init(&module); }
