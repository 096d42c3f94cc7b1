/* Built as strict C11: the umbrella header must be valid C and usable. */
#include <stdio.h>

#include "vexpers/vexpers.h"

int main(void) {
    void* block = NULL;
    if (ksys_memory_alloc_internal(16, &block) < 0 || block == NULL) return 1;
    if (ksys_memory_free_internal(&block) < 0 || block != NULL) return 1;

    /* A typed vector from C, read through its constant accessors. */
    kstd_vectorPtrConstVoid pointers;
    const void* const* begin = NULL;
    intptr_t size = 0;
    if (kstd_vectorPtrConstVoid_constructEmpty(&pointers) < 0) return 1;
    if (kstd_vectorPtrConstVoid_pushBack(&pointers, &pointers) < 0) return 1;
    if (kstd_vectorPtrConstVoid_getBeginSizeIntPtrConst(&pointers, &begin, &size) < 0) return 1;
    if (size != 1 || begin[0] != &pointers) return 1;
    if (kstd_vectorPtrConstVoid_destruct(&pointers) < 0) return 1;
    printf("C consumer ok\n");
    return 0;
}
