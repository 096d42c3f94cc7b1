// Built against an installed vexpers through find_package(vexpers CONFIG).
#include <cstdio>

#include "vexpers/vexpers.h"

int main() {
    kstd_persistentVariant value;
    kstd_persistentVariant_construct(&value);
    kstd_persistentVariant_setValue_double(&value, 0.5);
    kstd_stringConst text;
    kstd_stringConst_construct(&text);
    const bool ok = kstd_persistentVariant_getValueAsString(&value, &text) == 0 && text.chars != nullptr &&
                    text.chars[0] == u'0' && text.chars[1] == u'.' && text.chars[2] == u'5' && text.chars[3] == 0;
    kstd_stringConst_destruct(&text);
    kstd_persistentVariant_destruct(&value);
    std::printf("installed C++ consumer: %s\n", ok ? "ok" : "wrong text form");
    return ok ? 0 : 1;
}
