#include "unit/Pipe.h"

#include <fcntl.h>
#include <unistd.h>

namespace headunit {

bool openPipe(System::Descriptor& readEnd, System::Descriptor& writeEnd) {
    int ends[2] = {};
    if (::pipe2(ends, O_CLOEXEC) != 0)
        return false;
    readEnd.reset(ends[0]);
    writeEnd.reset(ends[1]);
    return true;
}

} // namespace headunit
