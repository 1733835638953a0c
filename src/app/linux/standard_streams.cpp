#include "app/linux/standard_streams.h"

#include <array>
#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace orbinex {

void prepareStandardStreams() {
    // An open takes the lowest number that is free.
    for (int fd = open("/dev/null", O_RDWR); fd >= 0; fd = open("/dev/null", O_RDWR)) {
        if (fd <= STDERR_FILENO) continue;
        close(fd);
        break;
    }
    for (const int number : std::array{SIGPIPE, SIGTTIN, SIGTTOU}) std::signal(number, SIG_IGN);
}

}  // namespace orbinex
