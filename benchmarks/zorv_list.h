/* A string, bytes or a list for nanopb: an array in the pool that grows in place. */
#ifndef ZORV_LIST_H
#define ZORV_LIST_H

#include <pb.h>

typedef struct zorv_list {
  void *elements;
  uint32_t count;
  uint32_t capacity;
} zorv_list;

#endif
