/*
 * A tour of the library through its C interface: constant strings shared
 * between copies, and interning of names under dense ids.
 */
#include <stdio.h>

#include "vexpers/vexpers.h"

static void printText(const char* label, const char16_t* text) {
    printf("%s", label);
    if (text == NULL) {
        printf("(null)\n");
        return;
    }
    for (; *text != 0; ++text) putchar(*text < 128 ? (char)*text : '?');
    putchar('\n');
}

int main(void) {
    static const char16_t* const names[] = {u"position", u"velocity", u"mass", u"position", u"", NULL};
    kstd_stringConstTable table;
    kstd_stringConst name;
    kstd_stringConst copy;
    int64_t liveAtStart = 0;
    int64_t liveAtEnd = 0;
    size_t i;

    ksys_memory_getLiveCount(&liveAtStart);
    if (kstd_stringConstTable_construct(&table) < 0) return 1;
    if (kstd_stringConstTable_resetNumBins(&table, 64) < 0) return 1;
    kstd_stringConst_construct(&name);
    kstd_stringConst_construct(&copy);

    for (i = 0; i < sizeof names / sizeof names[0]; ++i) {
        int32_t id = -1;
        uint32_t added = 0;
        uint32_t hash = 0;
        if (kstd_stringConstTable_addString(&table, names[i], &name, &id, &added) < 0) return 1;
        kstd_stringConst_hash(&name, &hash);
        printf("id %d %s hash %10u  ", (int)id, added ? "added" : "found", (unsigned)hash);
        printText("", name.chars);
    }

    /* A copy shares the characters of the interned string. */
    kstd_stringConstTable_findString(&table, u"velocity", &name, NULL);
    kstd_stringConst_assign(&copy, &name);
    printf("copy shares characters: %s\n", copy.chars == name.chars ? "yes" : "no");

    kstd_stringConst_destruct(&copy);
    kstd_stringConst_destruct(&name);
    kstd_stringConstTable_destruct(&table);
    ksys_memory_getLiveCount(&liveAtEnd);
    printf("memory blocks leaked: %lld\n", (long long)(liveAtEnd - liveAtStart));
    return liveAtEnd == liveAtStart ? 0 : 1;
}
