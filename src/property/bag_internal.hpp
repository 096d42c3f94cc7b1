// Internal interface of the property bag for the rest of the library: the
// add protocol (reserve a slot, fill it, commit or give it back), lookups of
// the properties in use, and preparing a bag for an object's declared
// properties.
//
// Code outside the bag changes numProperties and the slots only through these
// functions and the exported ones, which keep the bag's name index right.
#pragma once

#include "frame/frame.hpp"
#include "vexpers/property.h"

namespace vexpers::property {

using Bag = kstd_persistentPropertyBag;
using Property = kstd_persistentProperty;

// The first property in use whose name is text[0, length); null when none
// (and for a null text).
const Property* findInUse(const Bag* bag, const char16_t* text, int32_t length);
// The same for a zero-terminated name.
const Property* findInUse(const Bag* bag, const char16_t* name);

// One add: reserve() checks the name and takes the next slot (numProperties
// counts it from then on); commit() keeps it. Unless committed, the
// destructor gives the slot back (erases it from the slots) so that the bag
// has the properties it had before, in the same order.
class NewSlot {
public:
    explicit NewSlot(Bag* bag) : bag_(bag) {}
    NewSlot(const NewSlot&) = delete;
    NewSlot& operator=(const NewSlot&) = delete;
    ~NewSlot();

    // 0x800040C3 for a null or empty name, 0x800040C4 when a property in use
    // has that name; a failure to make the slot is returned. Nothing changes
    // on failure.
    kstd_result reserve(const char16_t* name);
    // The reserved slot (the property records of the slots may move when the
    // bag grows: use it before any other change of the bag).
    Property* slot() const;
    void commit();

private:
    Bag* bag_;
    int32_t index_ = -1;
    bool committed_ = false;
};

// Reserves a slot for `name`, fills it with `fill(slot)` and commits it when
// the fill succeeds.
template <class Fill>
kstd_result addWith(Bag* bag, const char16_t* name, Fill fill) {
    VEXPERS_REQUIRE(bag != nullptr);
    NewSlot slot(bag);
    VEXPERS_TRY(slot.reserve(name));
    VEXPERS_TRY(fill(slot.slot()));
    slot.commit();
    return 0;
}

// Empties the bag and makes sure it has at least `count` slots, so that
// storing `count` declared properties does not grow it one at a time; never
// shrinks it. A failure to grow is returned (the bag is then empty).
kstd_result reserveSlots(Bag* bag, int32_t count);

}  // namespace vexpers::property
