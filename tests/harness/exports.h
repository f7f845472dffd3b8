// Every export of the library, once: KORVEL_EXPORTS(X) is X(name) for each name of src/exports.txt.
#pragma once

// Made in the build folder by src/exports.cmake.
#include "korvel_exports.h"
