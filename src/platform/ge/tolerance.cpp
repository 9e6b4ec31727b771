#include "platform/ge/tolerance.hpp"

AcGeTol AcGeContext::gTol;
