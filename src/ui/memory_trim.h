#pragma once

namespace orbinex {

/// Gives back to the system what this process can do without for now: freed pieces of the heap, and the pages
/// of libraries' code and constants, which come back from the file when they are used again.
void trimMemory();

}  // namespace orbinex
