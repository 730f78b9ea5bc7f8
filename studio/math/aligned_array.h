// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// A zeroed array on a cache line boundary, the widest that any kernel reads or writes at once.

#ifndef CORVIN_STUDIO_MATH_ALIGNED_ARRAY_H_
#define CORVIN_STUDIO_MATH_ALIGNED_ARRAY_H_

#include <cstddef>
#include <memory>
#include <new>
#include <type_traits>

namespace corvin::studio {

inline constexpr std::size_t kKernelAlignment = 64;

template <typename T>
class AlignedArray {
  static_assert(std::is_trivially_copyable_v<T>);

 public:
  AlignedArray() = default;
  explicit AlignedArray(std::size_t size)
      : data_(new (std::align_val_t{kKernelAlignment}) T[size]()), size_(size) {}

  T* data() { return data_.get(); }
  const T* data() const { return data_.get(); }
  std::size_t size() const { return size_; }
  T& operator[](std::size_t i) { return data_.get()[i]; }
  const T& operator[](std::size_t i) const { return data_.get()[i]; }

 private:
  struct Free {
    void operator()(T* data) const {
      ::operator delete[](data, std::align_val_t{kKernelAlignment});
    }
  };
  std::unique_ptr<T, Free> data_;
  std::size_t size_ = 0;
};

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_MATH_ALIGNED_ARRAY_H_
