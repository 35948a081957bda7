#pragma once

#include <cstddef>
#include <vector>

#include <Foundation/NSTypes.h>
#include <Foundation/detail/GoldenRatio.h>

/// A node's place in an `NSIntrusiveHashTable` of the same tag; nodes derive from it.
template <class Node, class Tag = Node>
struct NSIntrusiveHashLink {
  NSUInteger hash = 0;
  Node* next = nullptr;
  /// The pointer that points at the node; null while it stands in no table.
  Node** place = nullptr;
};

/// A hash table of nodes that lie elsewhere and hold their own links: adding one costs no
/// allocation, and any of them is removed in constant time. Any number of hashes may be equal.
template <class Node, class Tag = Node>
class NSIntrusiveHashTable {
 public:
  /// Makes room for one, so that the next `add` does not throw.
  void makeRoom() {
    if (_count >= _buckets.size()) grow();
  }

  /// Adds a node that stands in no table yet.
  void add(Node& node, NSUInteger hash) {
    makeRoom();
    linkOf(node).hash = hash;
    attach(node);
    ++_count;
  }

  /// Adds a node, or gives one that stands here its hash.
  void put(Node& node, NSUInteger hash) {
    const Link& link = linkOf(node);
    if (link.place != nullptr && link.hash == hash) return;
    remove(node);
    add(node, hash);
  }

  /// Removes the node; does nothing for one that stands in no table.
  void remove(Node& node) noexcept {
    Link& link = linkOf(node);
    if (link.place == nullptr) return;
    *link.place = link.next;
    if (link.next != nullptr) linkOf(*link.next).place = link.place;
    link = {};
    --_count;
  }

  /// Calls the function with the nodes of that hash, the latest first; it may remove the node that
  /// it gets.
  template <class F>
  void forEach(NSUInteger hash, F function) const {
    if (_buckets.empty()) return;
    Node* next = nullptr;
    for (Node* node = _buckets[bucketOf(hash)]; node != nullptr; node = next) {
      next = linkOf(*node).next;
      if (linkOf(*node).hash == hash) function(*node);
    }
  }

 private:
  using Link = NSIntrusiveHashLink<Node, Tag>;
  static constexpr std::size_t fewestBuckets = 16;

  static Link& linkOf(Node& node) noexcept { return node; }

  // Hashes may be small numbers or addresses: a product spreads them upwards.
  [[nodiscard]] std::size_t bucketOf(NSUInteger hash) const noexcept {
    return static_cast<std::size_t>((hash * NSGoldenRatio) >> 32U) & (_buckets.size() - 1);
  }

  void attach(Node& node) noexcept {
    Link& link = linkOf(node);
    Node*& head = _buckets[bucketOf(link.hash)];
    link.next = head;
    link.place = &head;
    if (head != nullptr) linkOf(*head).place = &link.next;
    head = &node;
  }

  void grow() {
    std::vector<Node*> former(_buckets.empty() ? fewestBuckets : 2 * _buckets.size());
    former.swap(_buckets);
    for (Node* node : former) {
      while (node != nullptr) {
        Node* const next = linkOf(*node).next;
        attach(*node);
        node = next;
      }
    }
  }

  std::vector<Node*> _buckets;
  std::size_t _count = 0;
};
