// The registration functions of the usable core types. The registry registers
// every core type when it starts, so these only exist for callers that
// register the types of their members uniformly; each returns 0.
#include "vexpers/type.h"

#include "frame/frame.hpp"

// The second function of a core type is RegisterTypeCoreType_<stem>, except
// for the unicode string, a record type, whose second is
// RegisterTypeObject_kstd_unicodeString.
#define VEXPERS_SECOND_PREFIX_kstd_unicodeString ~, kstd_persistentTypeRegisterTypeObject_
#define VEXPERS_PICK_SECOND(first, second, ...) second
#define VEXPERS_PICK_SECOND_OF(...) VEXPERS_PICK_SECOND(__VA_ARGS__)
#define VEXPERS_SECOND_PREFIX(stem) \
    VEXPERS_PICK_SECOND_OF(VEXPERS_SECOND_PREFIX_##stem, kstd_persistentTypeRegisterTypeCoreType_, ~)

#define VEXPERS_CORE_REGISTRATION(stem)                                                     \
    VEXPERS_EXPORT kstd_result kstd_persistentTypeRegisterType_##stem(void) { return 0; }     \
    VEXPERS_EXPORT kstd_result VEXPERS_CONCAT(VEXPERS_SECOND_PREFIX(stem), stem)(void) { return 0; }

#define VEXPERS_CORE_TYPE(id, stem, name, category, ctype) VEXPERS_CORE_REGISTRATION(stem)
#define VEXPERS_CORE_TYPE_RESERVED(id, stem, name, category)
#define VEXPERS_CORE_TYPE_STRING(id, stem, name, ctype) VEXPERS_CORE_REGISTRATION(stem)

#include "generated/core_types.def"
