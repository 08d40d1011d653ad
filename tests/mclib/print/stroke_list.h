// A print device for tests, which the library doesn't offer: its file lists what jobs are given, a line each.
#pragma once

#include "mclib/print/driver.h"

using namespace mc;

extern const PrintDriver strokeListDriver;
