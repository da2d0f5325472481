// What the framework's files on top of system calls share. Internal to the framework.
#pragma once

#include <cerrno>

namespace thornmere {

/// The code for a value of errno; never 0.
long CodeOfSystemError(int systemError);

/// Runs `call` again for as long as a signal interrupts it; gives what it gave, negative for a failure.
template <class Call>
auto RetryInterrupted(Call call) {
    auto result = call();
    while (result < 0 && errno == EINTR)
        result = call();
    return result;
}

// A file reference is the system's descriptor plus 1, so that 0 means closed.
inline unsigned int FileRefOf(int descriptor) {
    return static_cast<unsigned int>(descriptor) + 1;
}
inline int DescriptorOf(unsigned int fileRef) {
    return static_cast<int>(fileRef - 1);
}

}  // namespace thornmere
