#include "ui/memory_trim.h"

#include <cstddef>
#include <cstdint>

#include <link.h>
#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

namespace orbinex {

namespace {

/// Drops the pages of an object's segments that are never written, and so are the file's own.
int dropPages(dl_phdr_info* object, std::size_t, void*) {
    const auto pageSize = static_cast<std::uintptr_t>(::sysconf(_SC_PAGESIZE));
    for (int i = 0; i < object->dlpi_phnum; ++i) {
        const auto& segment = object->dlpi_phdr[i];
        if (segment.p_type != PT_LOAD || (segment.p_flags & PF_W) != 0) continue;
        const auto begin = static_cast<std::uintptr_t>(object->dlpi_addr + segment.p_vaddr);
        const auto first = begin / pageSize * pageSize;
        // NOLINTNEXTLINE(performance-no-int-to-ptr): the loader tells addresses as numbers
        ::madvise(reinterpret_cast<void*>(first), begin + segment.p_memsz - first, MADV_DONTNEED);
    }
    return 0;
}

}  // namespace

void trimMemory() {
    ::malloc_trim(0);
    ::dl_iterate_phdr(dropPages, nullptr);
}

}  // namespace orbinex
