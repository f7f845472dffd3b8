// The services' operations as this library defines them: visible to its users, unlike all else.
#pragma once

#include <cstddef>
#include <cstdint>

#pragma GCC visibility push(default)
#include "hxluser.h"
#pragma GCC visibility pop
