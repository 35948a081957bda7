#pragma once

#include <cstddef>
#include <vector>

#include <Foundation/NSTypes.h>

/// A node's place in an `NSIntrusiveHashTable` of the same tag; nodes derive from it.
template <class Node, class Tag = Node>
struct NSIntrusiveHashLink {
  NSUInteger hash = 0;
  Node* next = nullptr;
  /// What points at the node; null while it stands nowhere.
  Node** place = nullptr;
};

/// Finds nodes by a hash, of which any number may be equal. The nodes lie elsewhere and hold their
/// links, so that adding one costs no allocation and any of them can go at once.
template <class Node, class Tag = Node>
class NSIntrusiveHashTable {
 public:
  /// Makes room for one, so that the next `add` does not throw.
  void makeRoom() {
    if (_count >= _chains.size()) grow();
  }

  void add(Node& node, NSUInteger hash) {
    makeRoom();
    linkOf(node).hash = hash;
    attach(node);
    ++_count;
  }

  /// Does nothing for a node that stands nowhere.
  void remove(Node& node) noexcept {
    Link& link = linkOf(node);
    if (link.place == nullptr) return;
    *link.place = link.next;
    if (link.next != nullptr) linkOf(*link.next).place = link.place;
    link = {};
    --_count;
  }

  /// Calls it with the nodes of that hash, the latest first; it may remove the node that it gets.
  template <class F>
  void forEach(NSUInteger hash, F function) const {
    if (_chains.empty()) return;
    Node* next = nullptr;
    for (Node* node = _chains[chainOf(hash)]; node != nullptr; node = next) {
      next = linkOf(*node).next;
      if (linkOf(*node).hash == hash) function(*node);
    }
  }

 private:
  using Link = NSIntrusiveHashLink<Node, Tag>;
  static constexpr std::size_t fewestChains = 16;

  static Link& linkOf(Node& node) noexcept { return node; }

  // Hashes may be small numbers or addresses: a product spreads them upwards. The factor is 2^64
  // over the golden ratio.
  std::size_t chainOf(NSUInteger hash) const noexcept {
    return static_cast<std::size_t>((hash * 0x9E3779B97F4A7C15) >> 32U) & (_chains.size() - 1);
  }

  void attach(Node& node) noexcept {
    Link& link = linkOf(node);
    Node*& head = _chains[chainOf(link.hash)];
    link.next = head;
    link.place = &head;
    if (head != nullptr) linkOf(*head).place = &link.next;
    head = &node;
  }

  void grow() {
    std::vector<Node*> former(_chains.empty() ? fewestChains : 2 * _chains.size());
    former.swap(_chains);
    for (Node* node : former) {
      while (node != nullptr) {
        Node* const next = linkOf(*node).next;
        attach(*node);
        node = next;
      }
    }
  }

  std::vector<Node*> _chains;
  std::size_t _count = 0;
};
