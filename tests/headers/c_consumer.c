/* Built as strict C11: the umbrella header must be valid C and usable. */
#include <stdio.h>

#include "vexpers/vexpers.h"

int main(void) {
    void* block = NULL;
    if (ksys_memory_alloc_internal(16, &block) < 0 || block == NULL) return 1;
    if (ksys_memory_free_internal(&block) < 0 || block != NULL) return 1;
    printf("C consumer ok\n");
    return 0;
}
