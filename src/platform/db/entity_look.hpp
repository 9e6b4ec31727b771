#pragma once
// The look of an entity: its layer, linetype, plot style, colour, linetype scale and lineweight.
// A drawing of a hundred thousand entities has a few dozen distinct looks, so each distinct look
// is kept once for the whole process and an entity holds a pointer to it: 8 bytes an entity
// where the six properties took 56.
#include "platform/db/acdb_types.hpp"
#include "platform/db/color.hpp"
#include "platform/db/shared_name.hpp"

struct AcDbEntityLook {
    AcDbSharedName layer{L"0"};
    AcDbSharedName linetype{L"BYLAYER"};
    AcDbSharedName plotStyleName;
    AcCmColor color;
    double linetypeScale = 1.0;
    AcDb::LineWeight lineWeight = AcDb::kLnWtByLayer;
};

// Two looks are one when every property is the same, the scale bit for bit (a -0.0 read from a
// file is kept as read, and a NaN is the same as itself).
bool SameLook(const AcDbEntityLook& a, const AcDbEntityLook& b);

class AcDbSharedLook {
public:
    AcDbSharedLook() : m_look(&Default()) {}
    const AcDbEntityLook& get() const { return *m_look; }
    void set(const AcDbEntityLook& look) {
        if (!SameLook(look, *m_look)) m_look = &Intern(look);
    }
    // Sets the look `change` makes of the present one.
    template <typename Change>
    void change(Change&& change) {
        AcDbEntityLook look = *m_look;
        change(look);
        set(look);
    }

private:
    // The one kept copy of a look; it lives as long as the process. Safe to call from any thread.
    static const AcDbEntityLook& Intern(const AcDbEntityLook& look);
    static const AcDbEntityLook& Default();
    const AcDbEntityLook* m_look;
};
