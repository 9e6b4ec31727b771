#pragma once
// All geometry types of the platform.
#include "platform/ge/array.hpp"
#include "platform/ge/matrix3d.hpp"
#include "platform/ge/plane.hpp"
#include "platform/ge/point2d.hpp"
#include "platform/ge/point3d.hpp"
#include "platform/ge/tolerance.hpp"
#include "platform/ge/vector2d.hpp"
#include "platform/ge/vector3d.hpp"
