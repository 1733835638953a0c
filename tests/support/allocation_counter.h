#pragma once

#include <cstddef>

namespace orbinex::test {

/// How often this thread has asked the global operator new for memory.
std::size_t allocationCount();

/// How often it does while `work` runs.
template <class Work>
std::size_t allocationsDuring(Work&& work) {
    const std::size_t before = allocationCount();
    work();
    return allocationCount() - before;
}

}  // namespace orbinex::test
