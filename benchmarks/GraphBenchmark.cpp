#include "benchmarks/Support.h"

#include <memory>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include <ZKFoundation/ZKFoundation.h>

using namespace ZKFoundationExtensions;

namespace {

// A document's tree: every part knows its parent and shares one of a hundred styles.
struct Part : NSObject, ZKDeepObjectCopyingProtocol {
  explicit Part(std::size_t aName) : name(aName) {}
  NSRef<NSObject> copyWithZone_refTable_copySpec_subCopySpec(
      NSZone* zone, const NSRef<NSMapTable>& refTable, ZKCopySpec copySpec,
      ZKCopySpec subCopySpec) const override {
    auto copy = NSMake<Part>(name);
    refTable->setObject_forKey(copy, self());
    copy->links.reserve(links.size());
    for (const auto& link : links) {
      auto known = refTable->objectForKey(link);
      if (!known) {
        known =
            link->copyWithZone_refTable_copySpec_subCopySpec(zone, refTable, copySpec, subCopySpec);
      }
      copy->links.push_back(NSRef<Part>::share(static_cast<Part*>(known.get())));
    }
    return copy;
  }
  ZKCopySpec copySpec(ZKCopySpec requested) const override { return requested; }
  void visit(ZKObjectVisitor& visitor, bool& stop) {
    const auto object = self();
    if (stop || !visitor.shouldVisitObject(object)) return;
    visitor.visitObject_stop(object, stop);
    for (const auto& link : links) link->visit(visitor, stop);
  }
  std::size_t name;
  std::vector<NSRef<Part>> links;
};

struct PlainPart {
  std::size_t name = 0;
  std::vector<std::shared_ptr<PlainPart>> links;
};
using PlainCopies = std::unordered_map<const PlainPart*, std::shared_ptr<PlainPart>>;

std::shared_ptr<PlainPart> copyOf(const std::shared_ptr<PlainPart>& part, PlainCopies& copies) {
  auto& known = copies[part.get()];
  if (known) return known;
  auto copy = known = std::make_shared<PlainPart>();
  copy->name = part->name;
  copy->links.reserve(part->links.size());
  for (const auto& link : part->links) copy->links.push_back(copyOf(link, copies));
  return copy;
}

void visit(const std::shared_ptr<PlainPart>& part,
           std::unordered_set<std::shared_ptr<PlainPart>>& visited) {
  if (!visited.insert(part).second) return;
  for (const auto& link : part->links) visit(link, visited);
}

template <class Ref, class Make>
Ref makeTree(std::size_t count, Make make) {
  constexpr std::size_t styles = 100;
  std::vector<Ref> parts;
  for (std::size_t k = 0; k < count; ++k) parts.push_back(make(k));
  for (std::size_t k = styles; k < count; ++k) {
    const std::size_t parent = k == styles ? styles : (k - styles - 1) / 2 + styles;
    parts[k]->links.push_back(parts[k % styles]);
    parts[k]->links.push_back(parts[parent]);
    if (parent != k) parts[parent]->links.push_back(parts[k]);
  }
  return parts[styles];
}

// Cuts the cycles of a copy, so that it dies: all rows pay the same for it.
template <class Ref>
std::size_t dissolve(const Ref& root) {
  std::vector<Ref> rest;
  rest.push_back(root);
  std::size_t count = 0;
  while (!rest.empty()) {
    const Ref part = std::move(rest.back());
    rest.pop_back();
    if (part->links.empty()) continue;
    ++count;
    for (auto& link : part->links) rest.push_back(std::move(link));
    part->links.clear();
  }
  return count;
}

const bool registered = [] {
  constexpr std::size_t count = 100000;
  static const auto tree =
      makeTree<NSRef<Part>>(count, [](std::size_t k) { return NSMake<Part>(k); });
  static const auto plain = makeTree<std::shared_ptr<PlainPart>>(count, [](std::size_t k) {
    auto part = std::make_shared<PlainPart>();
    part->name = k;
    return part;
  });
  const auto isWhole = [](std::size_t parts) { return parts == count - 100; };
  addRow(
      "Graph/DeepCopy100000/ZK", [] { return dissolve(copyWithCopySpec(tree, 1).as<Part>()); },
      isWhole);
  addRow(
      "Graph/DeepCopy100000/unordered_map",
      [] {
        PlainCopies copies;
        return dissolve(copyOf(plain, copies));
      },
      isWhole);
  addRow(
      "Graph/Visit100000/ZK",
      [] {
        const auto visitor = NSMake<ZKGenericVisitor>();
        bool stop = false;
        tree->visit(*visitor, stop);
        return visitor->visitedObjects()->count();
      },
      [](NSUInteger visited) { return visited == count; });
  addRow(
      "Graph/Visit100000/unordered_set",
      [] {
        std::unordered_set<std::shared_ptr<PlainPart>> visited;
        visit(plain, visited);
        return visited.size();
      },
      [](std::size_t visited) { return visited == count; });
  return true;
}();

}  // namespace
