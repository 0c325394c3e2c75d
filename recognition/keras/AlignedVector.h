#pragma once

#include <cstddef>
#include <new>
#include <vector>

namespace keras {

// Allocates on cache-line boundaries, so that no vector load crosses one.
template <typename T>
struct CacheLineAllocator {
  using value_type = T;
  static constexpr std::align_val_t kAlignment{64};

  CacheLineAllocator() = default;
  template <typename U>
  explicit CacheLineAllocator(const CacheLineAllocator<U>&) {}

  T* allocate(std::size_t count) {
    return static_cast<T*>(::operator new(count * sizeof(T), kAlignment));
  }
  void deallocate(T* pointer, std::size_t) { ::operator delete(pointer, kAlignment); }

  friend bool operator==(const CacheLineAllocator&, const CacheLineAllocator&) { return true; }
};

template <typename T>
using AlignedVector = std::vector<T, CacheLineAllocator<T>>;

}  // namespace keras
