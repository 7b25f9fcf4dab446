#include "platform/os/os.h"

#include <fcntl.h>
#include <malloc.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/sysinfo.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>

#include "platform/os/fault.h"
#include "platform/os/native_path.h"
#include "platform/os/posix/error.h"
#include "platform/os/test_values.h"

namespace vx::os {

namespace {

#ifdef VX_FAULTS
std::atomic<const MemoryStatus *> testMemoryStatus{nullptr};
#endif

// What user space can address on the 64-bit systems in use.
constexpr uint64_t userAddressSpace = uint64_t{1} << 47;

uint64_t virtualBytesInUse() noexcept
{
    unsigned long long pages = 0;
    if (std::FILE *statm = std::fopen("/proc/self/statm", "re")) {
        if (std::fscanf(statm, "%llu", &pages) != 1)
            pages = 0;
        std::fclose(statm);
    }
    return pages * pageSize();
}

void *handleOf(int descriptor) noexcept
{
    return reinterpret_cast<void *>(static_cast<intptr_t>(descriptor) + 1);
}

int descriptorOf(void *handle) noexcept
{
    return static_cast<int>(reinterpret_cast<intptr_t>(handle) - 1);
}

}

size_t pageSize() noexcept
{
    return static_cast<size_t>(sysconf(_SC_PAGESIZE));
}

Error memoryStatus(MemoryStatus &out) noexcept
{
    VX_OS_VERB("memoryStatus");
#ifdef VX_FAULTS
    if (const MemoryStatus *set = testMemoryStatus) {
        out = *set;
        return Error::none;
    }
#endif
    struct sysinfo info;
    if (sysinfo(&info) != 0)
        return errorOf(errno);
    rlimit limit{};
    out.totalVirtual = userAddressSpace;
    if (getrlimit(RLIMIT_AS, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY)
        out.totalVirtual = limit.rlim_cur;
    uint64_t used = virtualBytesInUse();
    out.availableVirtual = out.totalVirtual > used ? out.totalVirtual - used : 0;
    out.totalPhysical = static_cast<uint64_t>(info.totalram) * info.mem_unit;
    out.totalPageFile = out.totalPhysical + static_cast<uint64_t>(info.totalswap) * info.mem_unit;
    return Error::none;
}

Error preferLargePages(void *block, size_t size) noexcept
{
    VX_OS_VERB("preferLargePages");
#ifdef MADV_HUGEPAGE
    const auto page = static_cast<uintptr_t>(pageSize());
    const uintptr_t start = (reinterpret_cast<uintptr_t>(block) + page - 1) / page * page;
    const uintptr_t end = (reinterpret_cast<uintptr_t>(block) + size) / page * page;
    if (start >= end)
        return Error::invalid;
    return madvise(reinterpret_cast<void *>(start), end - start, MADV_HUGEPAGE) == 0 ? Error::none
                                                                                     : errorOf(errno);
#else
    return Error::unsupported;
#endif
}

size_t usableSize(const void *block) noexcept
{
    return malloc_usable_size(const_cast<void *>(block));
}

Error mapFile(const char *path, MapMode mode, Mapping &out) noexcept
{
    VX_OS_VERB("mapFile");
    NativePath native(path);
    if (native.error() != Error::none)
        return native.error();
    bool writable = mode != MapMode::read;
    int flags = writable ? O_RDWR | O_CREAT : O_RDONLY;
    int file = open(native.c_str(), flags | O_CLOEXEC, 0666);
    if (file < 0)
        return errorOf(errno);
    auto failed = [file](int code) {
        close(file);
        errno = code;
        return errorOf(code);
    };
    struct stat status;
    if (writable && fsync(file) != 0 && errno != EINVAL)
        return failed(errno);
    if (fstat(file, &status) != 0)
        return failed(errno);
    if (status.st_size == 0)
        return failed(EINVAL);
    int protection = writable ? PROT_READ | PROT_WRITE : PROT_READ;
    void *view = mmap(nullptr, static_cast<size_t>(status.st_size), protection, MAP_SHARED, file, 0);
    if (view == MAP_FAILED)
        return failed(errno);
    out = {view, status.st_size, handleOf(file), nullptr, writable};
    return Error::none;
}

Error unmapFile(Mapping &mapping) noexcept
{
    VX_OS_VERB("unmapFile");
    Error first = Error::none;
    auto note = [&first](int result) {
        if (result != 0 && first == Error::none)
            first = errorOf(errno);
    };
    size_t size = static_cast<size_t>(mapping.size);
    if (mapping.writable)
        note(msync(mapping.view, size, MS_SYNC));
    note(munmap(mapping.view, size));
    note(close(descriptorOf(mapping.file)));
    mapping = Mapping{};
    return first;
}

#ifdef VX_FAULTS
void setTestMemoryStatus(const MemoryStatus *status) noexcept
{
    testMemoryStatus = status;
}
#endif

}
