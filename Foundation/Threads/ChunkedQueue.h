#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

/// A queue of any length. Its elements lie in chunks and never move: they may be used in place, it
/// grows without a copy, and a whole queue is appended to another one in constant time.
template <class T>
class NSChunkedQueue {
 public:
  NSChunkedQueue() = default;
  NSChunkedQueue(const NSChunkedQueue&) = delete;
  ~NSChunkedQueue() {
    while (!empty()) pop_front();
  }

  [[nodiscard]] bool empty() const noexcept { return _first == nullptr; }
  [[nodiscard]] T& front() noexcept { return _first->at(_first->begin); }
  [[nodiscard]] const T& front() const noexcept { return _first->at(_first->begin); }

  template <class... Arguments>
  void emplace_back(Arguments&&... arguments) {
    const bool isFull = _last == nullptr || _last->end == Chunk::capacity;
    auto added = isFull ? std::make_unique_for_overwrite<Chunk>() : nullptr;
    Chunk& chunk = isFull ? *added : *_last;
    ::new (&chunk.room[chunk.end]) T{std::forward<Arguments>(arguments)...};
    ++chunk.end;
    if (isFull) link(std::move(added), &chunk);
  }

  void pop_front() noexcept {
    front().~T();
    if (++_first->begin < _first->end) return;
    _first = std::move(_first->next);
    if (_first == nullptr) _last = nullptr;
  }

  /// Calls the function with each element.
  template <class F>
  void forEach(F function) const {
    for (const Chunk* chunk = _first.get(); chunk != nullptr; chunk = chunk->next.get()) {
      for (std::size_t k = chunk->begin; k < chunk->end; ++k) function(chunk->at(k));
    }
  }

  /// Moves all elements of the other queue to the end of this one.
  void append(NSChunkedQueue& other) noexcept {
    if (!other.empty()) link(std::move(other._first), std::exchange(other._last, nullptr));
  }

 private:
  struct Chunk {
    // Small enough for the allocator's cache.
    static constexpr std::size_t bytes = 1000;
    static constexpr std::size_t capacity = bytes / sizeof(T);

    T& at(std::size_t place) noexcept { return *std::launder(reinterpret_cast<T*>(&room[place])); }

    [[nodiscard]] const T& at(std::size_t place) const noexcept {
      return *std::launder(reinterpret_cast<const T*>(&room[place]));
    }

    std::unique_ptr<Chunk> next;
    std::size_t begin = 0;
    std::size_t end = 0;
    std::array<std::aligned_storage_t<sizeof(T), alignof(T)>, capacity> room;
  };

  void link(std::unique_ptr<Chunk> first, Chunk* last) noexcept {
    (_last == nullptr ? _first : _last->next) = std::move(first);
    _last = last;
  }

  // No chunk is without elements.
  std::unique_ptr<Chunk> _first;
  Chunk* _last = nullptr;
};
