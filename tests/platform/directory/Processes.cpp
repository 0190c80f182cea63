// SPDX-License-Identifier: Apache-2.0
#include "platform/directory/Processes.h"

#include <cstdio>
#include <exception>
#include <sys/wait.h>
#include <unistd.h>

int FailedProcesses(int count, const std::function<void()>& work)
{
    int gate[2];
    if (pipe(gate) != 0)
        return -1;
    for (int i = 0; i < count; ++i) {
        if (fork() == 0) {
            close(gate[1]);
            char none;
            // Ends for all of them when the parent closes its end.
            const ssize_t got = read(gate[0], &none, 1);
            try {
                work();
            } catch (const std::exception& error) {
                static_cast<void>(std::fprintf(stderr, "%s\n", error.what()));
                _exit(1);
            }
            _exit(got == 0 ? 0 : 2);
        }
    }
    close(gate[0]);
    close(gate[1]);
    int failed = 0;
    for (int i = 0; i < count; ++i) {
        int status = 0;
        if (wait(&status) < 0 || !WIFEXITED(status) || WEXITSTATUS(status) != 0)
            ++failed;
    }
    return failed;
}
