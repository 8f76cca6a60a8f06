#pragma once

#include <volk/volk.h>

#include <cstddef>
#include <memory>

namespace Receiver {

struct VolkFree
{
    void operator()(void* memory) const { volk_free(memory); }
};

// Memory as the vector kernels like it best; not initialised.
template <class T>
using AlignedArray = std::unique_ptr<T[], VolkFree>;

template <class T>
AlignedArray<T> alignedArray(std::size_t count)
{
    return AlignedArray<T>(static_cast<T*>(volk_malloc(count * sizeof(T), volk_get_alignment())));
}

}  // namespace Receiver
