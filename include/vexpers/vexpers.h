/*
 * vexpers/vexpers.h - the umbrella header: includes every public header of
 * the vexpers persistence library.
 */
#ifndef VEXPERS_VEXPERS_H
#define VEXPERS_VEXPERS_H

#include "vexpers/base.h"
#include "vexpers/runtime.h"
#include "vexpers/shared.h"
#include "vexpers/text.h"
#include "vexpers/vector.h"
#include "vexpers/containers.h"
#include "vexpers/recordvectors.h"
#include "vexpers/stringconst.h"
#include "vexpers/type.h"
#include "vexpers/variant.h"
#include "vexpers/propertyinfo.h"
#include "vexpers/property.h"
#include "vexpers/tree.h"

#endif /* VEXPERS_VEXPERS_H */
