// SPDX-License-Identifier: Apache-2.0
#include "StandardStreams.h"

#include <QtGlobal>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#endif

void StandardStreams::HoldPlaces()
{
#ifdef Q_OS_UNIX
    for (int stream = 0; stream <= 2; ++stream) {
        if (::fcntl(stream, F_GETFD) >= 0)
            continue;
        // The lowest free number is this one: those below it are taken. Input is opened for writing and output for
        // reading, which makes every use an error; what goes to the error stream may be lost.
        const int access = stream == 1 ? O_RDONLY : O_WRONLY;
        static_cast<void>(::open("/dev/null", access)); // NOLINT(cppcoreguidelines-pro-type-vararg)
    }
#endif
}
