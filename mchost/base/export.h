// What programs and tests of the host's own may reach beside the calls in mchost/mdl/.
#pragma once

#define HOST_EXPORT __attribute__((visibility("default")))
