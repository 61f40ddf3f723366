/* What nanopb keeps a string, bytes or a list in: an array from the pool that grows where it stands. */
#ifndef ZORV_LIST_H
#define ZORV_LIST_H

#include <pb.h>

typedef struct zorv_list {
  void *elements;
  uint32_t count;
  uint32_t capacity;
} zorv_list;

#endif
