// A growable list of owned items that keeps its slots in one array, grown by
// a fixed step: a tenth of the initial capacity (at least one slot), so a
// list made for 256 items grows to 281, 306, 331 and so on. Items are only
// ever appended; the list frees them when it goes.
//
// Invariant: items occupy slots 0 .. Count() - 1 without gaps; every other
// slot is empty. The list never holds a null item.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <new>
#include <string>
#include <utility>

// The slots added each time a list of `initial_capacity` is full.
int PointerListGrowStep(int initial_capacity);

template <typename T>
class PointerList {
 public:
  // An empty list with `initial_capacity` slots (a negative value counts as 0).
  explicit PointerList(int initial_capacity)
      : grow_step_(PointerListGrowStep(initial_capacity)),
        capacity_(initial_capacity > 0 ? initial_capacity : 0),
        slots_(std::make_unique<std::unique_ptr<T>[]>(static_cast<std::size_t>(capacity_))) {}

  PointerList(const PointerList&) = delete;
  PointerList& operator=(const PointerList&) = delete;
  // The moved-from list is left empty, without slots.
  PointerList(PointerList&& other) noexcept
      : grow_step_(other.grow_step_),
        capacity_(std::exchange(other.capacity_, 0)),
        count_(std::exchange(other.count_, 0)),
        slots_(std::move(other.slots_)) {}

  // Stores `item` after the last one, first growing the array by the grow
  // step when it is full. Returns 0. A null item, or one that finds no room
  // because memory ran out, is not added (and is freed).
  int Append(std::unique_ptr<T> item) {
    if (item == nullptr) return 0;
    if (count_ == capacity_ && !Grow()) return 0;
    slots_[static_cast<std::size_t>(count_++)] = std::move(item);
    return 0;
  }

  // The item at `index`, or null when the index is negative or names an
  // empty slot. The item stays owned by the list.
  T* At(int index) const {
    if (index < 0 || index >= count_) return nullptr;
    return slots_[static_cast<std::size_t>(index)].get();
  }

  int Count() const { return count_; }
  int Capacity() const { return capacity_; }

  // Reorders the items by `compare(a, b)` (negative, zero or positive, as a
  // text comparison answers): direction 1 ascending, 0 descending, any other
  // value leaves the order. Equal items keep their order. Returns 0.
  template <typename Compare>
  int Sort(Compare compare, int direction) {
    auto begin = slots_.get();
    auto end = begin + count_;
    if (direction == 1) {
      std::stable_sort(begin, end, [&](const auto& a, const auto& b) { return compare(*a, *b) < 0; });
    } else if (direction == 0) {
      std::stable_sort(begin, end, [&](const auto& a, const auto& b) { return compare(*a, *b) > 0; });
    }
    return 0;
  }

 private:
  bool Grow() {
    std::size_t grown = static_cast<std::size_t>(capacity_) + static_cast<std::size_t>(grow_step_);
    std::unique_ptr<std::unique_ptr<T>[]> larger(new (std::nothrow) std::unique_ptr<T>[grown]);
    if (larger == nullptr) return false;
    std::move(slots_.get(), slots_.get() + count_, larger.get());
    slots_ = std::move(larger);
    capacity_ = static_cast<int>(grown);
    return true;
  }

  const int grow_step_;  // slots added when the array is full
  int capacity_;         // slots in the array
  int count_ = 0;        // items held, in slots 0 .. count_ - 1
  std::unique_ptr<std::unique_ptr<T>[]> slots_;
};

// The first text of `list`, in slot order, equal to `text` ignoring ASCII
// letter case; null when there is none.
const std::string* PointerListFindText(const PointerList<std::string>& list, const char* text);
