/* A tour of what the library offers so far, through its C interface. */
#include <stdio.h>

#include "vexpers/vexpers.h"

int main(void) {
    void* block = NULL;
    int64_t live = 0;
    if (ksys_memory_alloc_internal(64, &block) < 0) return 1;
    ksys_memory_getLiveCount(&live);
    printf("allocated one block: %lld live\n", (long long)live);
    ksys_memory_free_internal(&block);
    ksys_memory_getLiveCount(&live);
    printf("freed it: %lld live\n", (long long)live);
    return 0;
}
