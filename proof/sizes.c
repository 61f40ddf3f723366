/* Reference implementation of src/core/memory.hpp: sizes that cannot wrap. README.md says what is proved. */
#include "wire.h"

/*@ requires \valid(size) && element != 0;
    terminates \true;
    assigns \result, *size \from count, element;
    ensures \result == 0 <==> count > UINT32_MAX || count * element > SIZE_MAX;
    ensures \result != 0 ==> *size == count * element;
*/
int array_fits(size_t count, size_t element, size_t *size) {
  if (count != (uint32_t)count || count > SIZE_MAX / element) return 0;
  *size = count * element;
  return 1;
}

/*@ requires \valid(size);
    terminates \true;
    assigns \result, *size \from length;
    ensures \result == 0 <==> length + 1 > SIZE_MAX;
    ensures \result != 0 ==> *size == length + 1;
*/
int text_fits(size_t length, size_t *size) {
  if (length == SIZE_MAX) return 0;
  *size = length + 1;
  return 1;
}
