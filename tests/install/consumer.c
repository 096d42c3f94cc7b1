/* Built against an installed vexpers through pkg-config. */
#include <stdio.h>

#include "vexpers/vexpers.h"

int main(void) {
    kstd_persistentType type;
    const char16_t* name = NULL;
    int32_t coreTypeId = -9;
    if (kstd_persistentType_construct(&type) < 0) return 1;
    if (kstd_persistentType_resetTypeName(&type, u"double") < 0) return 1;
    kstd_persistentType_getTypeName(&type, &name);
    kstd_persistentType_getCoreTypeId(&type, &coreTypeId);
    kstd_persistentType_destruct(&type);
    printf("installed C consumer: core type id of double is %d\n", (int)coreTypeId);
    return coreTypeId == 29 && name != NULL ? 0 : 1;
}
